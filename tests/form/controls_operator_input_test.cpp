#include "controls_test_support.h"
#include "form/controls/operator_input.h"

namespace dbn::form {
namespace {

namespace input = operator_input;
using Journal = std::vector<std::string>;

// One control of each kind the operator works with, in a frame; every event
// is written to a journal.
class OperatorInputTest : public ::testing::Test {
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
    bool RefusesAll() {
        return !input::Pick(choice, 0) && !input::Type(editable, "1") && !input::Type(field, "x") &&
               !input::Press(button) && !input::ClickRow(list, *second) && !input::Focus(button) &&
               !input::PressHeader(list) && !input::Scroll(list);
    }

    FocusScope scope;
    Frame frame{"fraTest", nullptr, Rect{}, 0, "Test", true};
    ListControl choice{ControlKind::ChoiceList, "cmbNode", &frame, Rect{}, 1};
    ListControl editable{ControlKind::EditableList, "cmbNumber", &frame, Rect{}, 2};
    TextField field{"txt", &frame, Rect{}, 3, "", 4};
    TextField readOnly{"txtDIR", &frame, Rect{}, 4, "DIR", 0, true};
    Button button{"cmd", &frame, Rect{}, 5, "OK"};
    ListView list{"LV", &frame, Rect{}, 6};
    std::vector<Control*> controls{&choice, &editable, &field, &readOnly, &button, &list};
    ListItem* first = nullptr;
    ListItem* second = nullptr;
    Journal journal;
};

TEST_F(OperatorInputTest, InputFocusesFirstThenActs) {
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
    EXPECT_EQ(journal,
              (Journal{"focus cmbNode", "click cmbNode", "click cmbNode", "focus cmbNumber",
                       "change cmbNumber", "focus txt", "change txt", "focus cmd", "click cmd",
                       "focus LV", "item 2a", "mouseup", "focus txt", "header", "scroll"}));
}

TEST_F(OperatorInputTest, InputThatDoesNotFitIsRefused) {
    EXPECT_FALSE(input::Type(choice, "MSG"));
    EXPECT_FALSE(input::Type(readOnly, "x"));
    EXPECT_FALSE(input::Pick(choice, 1));
    ListView other{"LVOther", &frame, Rect{}, 7};
    EXPECT_FALSE(input::ClickRow(list, other.AddItem("1a", "1")));
    EXPECT_TRUE(journal.empty());
    EXPECT_EQ(scope.Focused(), nullptr);
}

TEST_F(OperatorInputTest, HiddenOrDisabledControlsAndContainersRefuseInput) {
    frame.SetEnabled(false);
    EXPECT_TRUE(RefusesAll());
    frame.SetEnabled(true);
    frame.SetVisible(false);
    EXPECT_TRUE(RefusesAll());
    frame.SetVisible(true);
    for (Control* control : controls) {
        control->SetEnabled(false);
    }
    EXPECT_TRUE(RefusesAll());
    for (Control* control : controls) {
        control->SetEnabled(true);
        control->SetVisible(false);
    }
    EXPECT_TRUE(RefusesAll());
    EXPECT_TRUE(journal.empty());
    EXPECT_EQ(scope.Focused(), nullptr);
    EXPECT_EQ(editable.Text(), "");
    EXPECT_EQ(list.SelectedItem(), first);
}

TEST_F(OperatorInputTest, StopsWhenTheFocusHandlerDisablesTheControl) {
    button.GotFocus = [this] { frame.SetEnabled(false); };
    EXPECT_FALSE(input::Press(button));
    frame.SetEnabled(true);
    list.GotFocus = [this] { list.SetVisible(false); };
    EXPECT_FALSE(input::ClickRow(list, *second));
    EXPECT_TRUE(journal.empty());
    EXPECT_EQ(list.SelectedItem(), first);
}

}  // namespace
}  // namespace dbn::form
