// The control model's event rules: lists, text fields, list views, focus and
// the operator's input.

#include "form_fixture.h"

namespace dbn::testing {
namespace {

using namespace form;
using Aspects = std::vector<ChangeAspect>;

class ListControlTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (auto* list : {&choice, &editable}) {
            for (const char* text : {"MSG", "Dbn", "msg"}) {
                list->AddItem(text);
            }
            list->Click = [this] { ++clicks; };
            list->Change = [this] { ++changes; };
        }
    }
    ListControl choice{ControlKind::ChoiceList, "cmbNode", nullptr, Rect{}, 1};
    ListControl editable{ControlKind::EditableList, "cmbNumber", nullptr, Rect{}, 2};
    int clicks = 0;
    int changes = 0;
};

TEST_F(ListControlTest, WritingTheIndexAlwaysClicksAndClearingRaisesNothing) {
    EXPECT_EQ(choice.NewIndex(), 2);
    choice.SetItemData(1, 15);
    EXPECT_EQ(choice.ItemData(1), 15);
    EXPECT_TRUE(RaisesError([&] { (void)choice.List(3); }, 381, "Invalid property array index"));
    EXPECT_TRUE(
        RaisesError([&] { choice.SetItemData(-1, 1); }, 381, "Invalid property array index"));

    choice.SetListIndex(1);
    choice.SetListIndex(1);
    EXPECT_EQ(choice.Text(), "Dbn");
    choice.SetListIndex(-1);
    EXPECT_EQ(choice.Text(), "");
    EXPECT_EQ(clicks, 3);
    for (int wrong : {3, -2}) {
        EXPECT_TRUE(
            RaisesError([&] { choice.SetListIndex(wrong); }, 380, "Invalid property value"));
    }
    EXPECT_EQ(clicks, 3);
    // Selecting on an editable list sets its text without a Change.
    editable.SetListIndex(2);
    EXPECT_EQ(editable.Text(), "msg");
    EXPECT_EQ(changes, 0);

    choice.SetListIndex(1);
    clicks = 0;
    choice.Clear();
    EXPECT_EQ(choice.ListCount(), 0);
    EXPECT_EQ(choice.ListIndex(), -1);
    EXPECT_EQ(choice.Text(), "");
    EXPECT_EQ(choice.NewIndex(), -1);
    EXPECT_EQ(clicks + changes, 0);
}

TEST_F(ListControlTest, WritingTheText) {
    // A choice list selects the first entry that matches, ignoring case.
    choice.SetText("mSg");
    choice.SetText("MSG");
    EXPECT_EQ(choice.ListIndex(), 0);
    EXPECT_EQ(choice.Text(), "MSG");
    EXPECT_EQ(clicks, 2);
    EXPECT_TRUE(RaisesError([&] { choice.SetText("MS"); }, 383, "'Text' property is read-only"));
    EXPECT_EQ(choice.Text(), "MSG");
    EXPECT_EQ(clicks, 2);

    // An editable list changes only when the text differs and keeps its index.
    editable.SetListIndex(1);
    editable.SetText("msg");
    editable.SetText("msg");
    EXPECT_EQ(editable.ListIndex(), 1);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(clicks, 3);
    editable.SetSelStart(10);
    EXPECT_EQ(editable.SelStart(), 3);
}

TEST_F(ListControlTest, ObserversHearOnlyRealChangesUntilRemoved) {
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
}

TEST(TextFieldAndPlainList, CutTextAndFindWholeEntries) {
    TextField field("txtDescription", nullptr, Rect{}, 7, "", 5);
    int changes = 0;
    field.Change = [&] { ++changes; };
    field.SetText("abcdefgh");
    field.SetText("abcdexyz");  // cut to the same text: no change
    EXPECT_EQ(field.Text(), "abcde");
    EXPECT_EQ(changes, 1);
    // The limit counts characters, not bytes.
    field.SetText("\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9");
    EXPECT_EQ(field.Text(), "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9");
    field.SetText("abc");
    field.SetSelStart(1);
    field.SetSelLength(9);
    EXPECT_EQ(field.SelLength(), 2);
    field.SetText("a");
    EXPECT_EQ(field.SelStart(), 1);
    EXPECT_EQ(field.SelLength(), 0);

    PlainList list("lstNodeTypeName", nullptr, Rect{}, 89);
    list.AddItem("MSG");
    list.AddItem("msg 12");
    EXPECT_EQ(list.FindExact("Msg 12"), 1);
    EXPECT_EQ(list.FindExact("ms"), -1);
    EXPECT_TRUE(RaisesError([&] { (void)list.List(2); }, 381, "Invalid property array index"));
}

class ListViewTest : public ::testing::Test {
protected:
    ListView list{"LVActions", nullptr, Rect{}, 22};
};

TEST_F(ListViewTest, ColumnsKeyedRowsAndSubItems) {
    list.AddColumn({"#", 300, ColumnAlignment::Right});
    EXPECT_EQ(list.Column(0).alignment, ColumnAlignment::Right);
    EXPECT_TRUE(RaisesError([&] { (void)list.Column(1); }, 35600, "Index out of bounds"));

    ListItem& first = list.AddItem("1a", "1");
    ListItem& second = list.AddItem("2a", "2");
    EXPECT_TRUE(
        RaisesError([&] { list.AddItem("1a", "x"); }, 35602, "Key is not unique in collection"));
    EXPECT_EQ(list.ItemCount(), 2);
    EXPECT_EQ(list.FindItem("2a"), &second);
    EXPECT_TRUE(RaisesError([&] { (void)list.ItemAt(2); }, 35600, "Index out of bounds"));

    ChangeLog log(list);
    EXPECT_EQ(first.SubItem(6), "");
    first.SetSubItem(4, "Abort");
    first.SetSubItem(4, "Abort");
    first.SetSubItem(1, "");
    EXPECT_EQ(first.SubItem(4), "Abort");
    EXPECT_TRUE(RaisesError([&] { first.SetSubItem(7, "x"); }, 380, "Invalid property value"));
    EXPECT_EQ(log.aspects, (Aspects{ChangeAspect::Rows}));

    list.RemoveItem(0);
    EXPECT_EQ(second.Index(), 0);
    list.AddItem("1a", "1");  // the removed row's key is free again
}

TEST_F(ListViewTest, SelectionFollowsAddRemoveAndClear) {
    ListItem& first = list.AddItem("1a", "1");
    ListItem& second = list.AddItem("2a", "2");
    EXPECT_EQ(list.SelectedItem(), &first);
    EXPECT_TRUE(first.Selected());
    list.SetSelectedItem(&second);
    EXPECT_FALSE(first.Selected());
    EXPECT_TRUE(second.Selected());
    list.RemoveItem(0);
    EXPECT_EQ(list.SelectedItem(), &second);
    list.RemoveItem(0);
    EXPECT_EQ(list.SelectedItem(), nullptr);

    ListItem& third = list.AddItem("3a", "3");
    EXPECT_EQ(list.SelectedItem(), &third);
    EXPECT_TRUE(third.Selected());
    list.ClearItems();
    EXPECT_EQ(list.SelectedItem(), nullptr);
}

TEST_F(ListViewTest, RowPositionsVisibilityAndTabStop) {
    list.AddItem("1a", "1");
    list.AddItem("2a", "2");
    ListItem& third = list.AddItem("3a", "3");
    EXPECT_EQ(list.RowPositionOf(third).top, 285 + 2 * 255);
    list.SetRowGeometry([](const ListView&, int position) { return RowPosition{30, position}; });
    EXPECT_EQ(list.RowPositionOf(third).top, 2);

    ChangeLog log(list);
    list.EnsureVisible(third);
    EXPECT_EQ(list.EnsuredVisible(), 2);
    list.SetTabStop(true);
    list.SetTabStop(false);
    EXPECT_EQ(log.aspects, (Aspects{ChangeAspect::Rows, ChangeAspect::State}));
}

// One control of each kind the operator works with, in a frame in a frame;
// every event is written to a journal.
class InputTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (Control* control : controls) {
            control->AttachFocusScope(&scope);
            control->GotFocus = Log("focus " + control->Name());
        }
        for (ListControl* combo : {&choice, &editable}) {
            combo->AddItem("MSG");
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

TEST_F(InputTest, InputFocusesFirstThenActs) {
    ChangeLog buttonLog(button);
    EXPECT_TRUE(input::Pick(choice, 0));
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
    EXPECT_FALSE(field.HasFocus());
    EXPECT_EQ(scope.Focused(), &button);
    EXPECT_EQ(buttonLog.aspects, Aspects(3, ChangeAspect::Focus));
    EXPECT_EQ(journal, (Texts{"focus cmbNode", "click cmbNode", "click cmbNode", "focus cmbNumber",
                              "change cmbNumber", "focus txt", "change txt", "focus cmd",
                              "click cmd", "focus LV", "item 2a", "mouseup", "focus txt", "header",
                              "scroll", "focus cmd"}));
}

TEST_F(InputTest, HiddenOrDisabledControlsAndContainersRefuseInput) {
    EXPECT_FALSE(input::Type(choice, "MSG"));
    EXPECT_FALSE(input::Type(readOnly, "x"));
    EXPECT_FALSE(input::Pick(choice, 1));
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
    for (bool hide : {false, true}) {
        for (Control* control : controls) {
            control->SetEnabled(hide);
            control->SetVisible(!hide);
        }
        EXPECT_TRUE(RefusesAll()) << (hide ? "hidden" : "disabled");
    }
    EXPECT_TRUE(journal.empty());
    EXPECT_EQ(scope.Focused(), nullptr);
    EXPECT_EQ(editable.Text(), "");
    EXPECT_EQ(list.SelectedItem(), first);
}

TEST_F(InputTest, StopsWhenTheFocusHandlerDisablesTheControl) {
    button.GotFocus = [this] { frame.SetEnabled(false); };
    EXPECT_FALSE(input::Press(button));
    frame.SetEnabled(true);
    list.GotFocus = [this] { list.SetVisible(false); };
    EXPECT_FALSE(input::ClickRow(list, *second));
    EXPECT_TRUE(journal.empty());
    EXPECT_EQ(list.SelectedItem(), first);
}

}  // namespace
}  // namespace dbn::testing
