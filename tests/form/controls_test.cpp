// The control model's event rules: lists, text fields, list views, change
// notifications, focus and the operator's input.

#include "form_fixture.h"

namespace dbn::testing {
namespace {

using namespace form;
using Aspects = std::vector<ChangeAspect>;
const std::string kBadIndex = "Invalid property array index";

// One control of each kind the operator works with, in a frame in a frame;
// every event is written to a journal.
class ControlsTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (Control* control : controls) {
            control->AttachFocusScope(&scope);
            control->GotFocus = Log("focus " + control->Name());
        }
        for (ListControl* combo : {&choice, &editable}) {
            for (const char* text : {"MSG", "Dbn", "msg"}) {
                combo->AddItem(text);
            }
            combo->Click = Log("click " + combo->Name());
            combo->Change = Log("change " + combo->Name());
        }
        field.Change = Log("change txt");
        button.Click = Log("click cmd");
        first = &list.AddItem("1a", "1");
        second = &list.AddItem("2a", "2");
        list.ItemClick = [this](ListItem& row) { journal.push_back("item " + row.Key()); };
        list.MouseUp = Log("mouseup");
        list.HeaderPressed = Log("header");
        list.Scrolled = Log("scroll");
    }
    std::function<void()> Log(std::string entry) {
        return [this, entry] { journal.push_back(entry); };
    }
    // Every kind of input is refused, and so is the focus from code.
    bool RefusesAll() {
        return !input::Pick(choice, 0) && !input::Type(editable, "1") && !input::Type(field, "x") &&
               !input::Press(button) && !input::ClickRow(list, *second) && !input::Focus(button) &&
               !input::PressHeader(list) && !input::Scroll(list) &&
               RaisesError([&] { field.SetFocus(); }, 5, "Invalid procedure call or argument");
    }

    FocusScope scope;
    Frame outer{"Frame1", nullptr, Rect{}, 86, "", false};
    Frame frame{"fraTest", &outer, Rect{}, 0, "Test", true};
    ListControl choice{ControlKind::ChoiceList, "cmbNode", &frame, Rect{}, 1};
    ListControl editable{ControlKind::EditableList, "cmbNumber", &frame, Rect{}, 2};
    TextField field{"txt", &frame, Rect{}, 3, "", 4};
    TextField readOnly{"txtDIR", &frame, Rect{}, 4, "DIR", 0, true};
    Button button{"cmd", &frame, Rect{}, 5, "OK"};
    ListView list{"LV", &frame, Rect{}, 6};
    std::vector<Control*> controls{&choice, &editable, &field, &readOnly, &button, &list};
    ListItem* first = nullptr;
    ListItem* second = nullptr;
    Texts journal;
};

TEST_F(ControlsTest, ListSelectionAndTextWrittenInCode) {
    choice.SetListIndex(1);
    choice.SetListIndex(1);  // the same index clicks again
    EXPECT_EQ(choice.Text(), "Dbn");
    choice.SetListIndex(-1);
    EXPECT_EQ(choice.Text(), "");
    choice.SetText("mSg");  // selects the first entry that matches, ignoring case
    EXPECT_EQ(choice.ListIndex(), 0);
    for (int wrong : {3, -2}) {
        EXPECT_TRUE(
            RaisesError([&] { choice.SetListIndex(wrong); }, 380, "Invalid property value"));
    }
    EXPECT_TRUE(RaisesError([&] { choice.SetText("MS"); }, 383, "'Text' property is read-only"));
    EXPECT_EQ(choice.Text(), "MSG");

    // An editable list: selecting sets the text without a Change; writing the
    // text raises Change only when it differs, and keeps the index.
    editable.SetListIndex(2);
    editable.SetText("msg");
    editable.SetText("Dbn");
    EXPECT_EQ(editable.ListIndex(), 2);
    editable.SetSelStart(10);
    EXPECT_EQ(editable.SelStart(), 3);
    EXPECT_EQ(journal, (Texts{"click cmbNode", "click cmbNode", "click cmbNode", "click cmbNode",
                              "click cmbNumber", "change cmbNumber"}));
}

TEST_F(ControlsTest, EntriesTagsClearingAndTextLimits) {
    EXPECT_EQ(choice.NewIndex(), 2);
    choice.SetItemData(1, 15);
    EXPECT_EQ(choice.ItemData(1), 15);
    EXPECT_TRUE(RaisesError([&] { (void)choice.List(3); }, 381, kBadIndex));
    EXPECT_TRUE(RaisesError([&] { choice.SetItemData(-1, 1); }, 381, kBadIndex));
    choice.SetListIndex(1);
    choice.Clear();  // no event
    EXPECT_EQ(std::tuple(choice.ListCount(), choice.ListIndex(), choice.Text(), choice.NewIndex()),
              std::tuple(0, -1, "", -1));

    PlainList plain("lstNodeTypeName", nullptr, Rect{}, 89);
    plain.AddItem("MSG");
    plain.AddItem("msg 12");
    EXPECT_EQ(plain.FindExact("Msg 12"), 1);
    EXPECT_EQ(plain.FindExact("ms"), -1);
    EXPECT_TRUE(RaisesError([&] { (void)plain.List(2); }, 381, kBadIndex));

    // A text field cuts to its maximum length in characters, not bytes.
    field.SetText("abcdefgh");
    field.SetText("abcdxyz");  // cut to the same text: no change
    EXPECT_EQ(field.Text(), "abcd");
    field.SetText("\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9");
    EXPECT_EQ(field.Text(), "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9");
    field.SetText("abc");
    field.SetSelStart(1);
    field.SetSelLength(9);
    EXPECT_EQ(field.SelLength(), 2);
    field.SetText("a");
    EXPECT_EQ(std::pair(field.SelStart(), field.SelLength()), std::pair(1, 0));
    EXPECT_EQ(journal,
              (Texts{"click cmbNode", "change txt", "change txt", "change txt", "change txt"}));
}

TEST_F(ControlsTest, ObserversHearOnlyRealChangesUntilRemoved) {
    choice.SetListIndex(0);
    ChangeLog log(choice);
    choice.SetListIndex(0);
    choice.SetItemData(0, 0);
    choice.SetVisible(true);
    choice.SetWidth(0);
    EXPECT_TRUE(log.aspects.empty());
    int seen = 0;
    const int handle = choice.Observe([&](Control&, ChangeAspect) { ++seen; });
    choice.SetListIndex(2);
    choice.Unobserve(handle);
    choice.AddItem("X");
    choice.SetEnabled(false);
    choice.SetLeft(5);
    EXPECT_EQ(seen, 2);
    EXPECT_EQ(log.aspects,
              (Aspects{ChangeAspect::Selection, ChangeAspect::Text, ChangeAspect::Entries,
                       ChangeAspect::State, ChangeAspect::Geometry}));

    // A list view reports cells, scrolling and its tab stop.
    ChangeLog rows(list);
    first->SetSubItem(4, "Abort");
    first->SetSubItem(4, "Abort");
    first->SetSubItem(1, "");
    list.EnsureVisible(*second);
    EXPECT_EQ(list.EnsuredVisible(), 1);
    list.SetTabStop(true);
    list.SetTabStop(false);
    EXPECT_EQ(rows.aspects, (Aspects{ChangeAspect::Rows, ChangeAspect::Rows, ChangeAspect::State}));
}

TEST_F(ControlsTest, ListViewKeyedRowsSelectionAndPositions) {
    EXPECT_TRUE(RaisesError([&] { (void)list.Column(0); }, 35600, "Index out of bounds"));
    EXPECT_TRUE(
        RaisesError([&] { list.AddItem("1a", "x"); }, 35602, "Key is not unique in collection"));
    EXPECT_TRUE(RaisesError([&] { (void)list.ItemAt(2); }, 35600, "Index out of bounds"));
    EXPECT_TRUE(RaisesError([&] { first->SetSubItem(7, "x"); }, 380, "Invalid property value"));
    EXPECT_EQ(list.FindItem("2a"), second);
    EXPECT_EQ(first->SubItem(6), "");

    // The first row added to a list without a selection becomes selected.
    EXPECT_TRUE(list.SelectedItem() == first && first->Selected());
    list.SetSelectedItem(second);
    EXPECT_TRUE(!first->Selected() && second->Selected());
    list.RemoveItem(0);
    EXPECT_EQ(second->Index(), 0);
    EXPECT_EQ(list.SelectedItem(), second);
    ListItem& again = list.AddItem("1a", "1");  // the removed row's key is free again
    EXPECT_EQ(list.RowPositionOf(again).top, 285 + 255);
    list.SetRowGeometry([](const ListView&, int position) { return RowPosition{30, position}; });
    EXPECT_EQ(list.RowPositionOf(again).top, 1);
    list.RemoveItem(0);
    EXPECT_EQ(list.SelectedItem(), nullptr);
    ListItem& third = list.AddItem("3a", "3");
    EXPECT_TRUE(list.SelectedItem() == &third && third.Selected());
    list.ClearItems();
    EXPECT_EQ(list.SelectedItem(), nullptr);
}

TEST_F(ControlsTest, InputFocusesFirstThenActs) {
    ChangeLog buttonLog(button);
    EXPECT_TRUE(input::Pick(choice, 0));
    // Picking the entry already shown is taken but changes nothing: no Click.
    EXPECT_TRUE(input::Pick(choice, 0));
    EXPECT_TRUE(input::Type(editable, "12"));
    EXPECT_TRUE(input::Type(field, "abcdef"));
    EXPECT_EQ(field.Text(), "abcd");
    EXPECT_TRUE(input::Press(button));
    EXPECT_TRUE(input::ClickRow(list, *second));
    EXPECT_EQ(list.SelectedItem(), second);
    EXPECT_TRUE(input::Focus(field));
    // Header presses and scrolling leave the focus where it is.
    EXPECT_TRUE(input::PressHeader(list));
    EXPECT_TRUE(input::Scroll(list));
    EXPECT_EQ(scope.Focused(), &field);
    // Focus from code raises GotFocus only when the focus moves.
    field.SetFocus();
    button.SetFocus();
    EXPECT_TRUE(button.HasFocus() && !field.HasFocus());
    EXPECT_EQ(buttonLog.aspects, Aspects(3, ChangeAspect::Focus));
    EXPECT_EQ(journal,
              (Texts{"focus cmbNode", "click cmbNode", "focus cmbNumber", "change cmbNumber",
                     "focus txt", "change txt", "focus cmd", "click cmd", "focus LV", "item 2a",
                     "mouseup", "focus txt", "header", "scroll", "focus cmd"}));
}

// Only the operator's input that changes a value marks a control changed by
// the operator: values set by code, a re-pick of the entry shown, the same
// text typed again, buttons and rows do not.
TEST_F(ControlsTest, OnlyTheOperatorsChangesMarkAControl) {
    choice.SetListIndex(1);
    editable.SetText("7");
    field.SetText("ab");
    EXPECT_TRUE(input::Pick(choice, 1) && input::Type(editable, "7") && input::Type(field, "ab") &&
                input::Press(button) && input::ClickRow(list, *second));
    for (Control* control : controls) {
        EXPECT_FALSE(control->ChangedByOperator()) << control->Name();
    }
    EXPECT_TRUE(input::Pick(choice, 0) && input::Type(editable, "8") && input::Type(field, "abc"));
    EXPECT_TRUE(choice.ChangedByOperator() && editable.ChangedByOperator() &&
                field.ChangedByOperator());
}

TEST_F(ControlsTest, HiddenOrDisabledControlsAndContainersRefuseInput) {
    EXPECT_FALSE(input::Type(choice, "MSG"));
    EXPECT_FALSE(input::Type(readOnly, "x"));
    EXPECT_FALSE(input::Pick(choice, 3));
    ListView other{"LVOther", &frame, Rect{}, 7};
    EXPECT_FALSE(input::ClickRow(list, other.AddItem("1a", "1")));

    for (Frame* container : {&outer, &frame}) {
        container->SetEnabled(false);
        EXPECT_TRUE(RefusesAll()) << container->Name() << " disabled";
        container->SetEnabled(true);
        container->SetVisible(false);
        EXPECT_TRUE(RefusesAll()) << container->Name() << " hidden";
        container->SetVisible(true);
    }
    EXPECT_EQ(scope.Focused(), nullptr);
    // Input also stops when the focus handler disables or hides the control.
    button.GotFocus = [this] { frame.SetEnabled(false); };
    EXPECT_FALSE(input::Press(button));
    frame.SetEnabled(true);
    list.GotFocus = [this] { list.SetVisible(false); };
    EXPECT_FALSE(input::ClickRow(list, *second));
    // The control's own state counts as well.
    for (Control* control : controls) {
        control->SetEnabled(false);
    }
    EXPECT_TRUE(RefusesAll());

    EXPECT_TRUE(journal.empty());
    EXPECT_EQ(editable.Text(), "");
    EXPECT_EQ(list.SelectedItem(), first);
}

}  // namespace
}  // namespace dbn::testing
