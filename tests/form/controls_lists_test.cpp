#include "controls_test_support.h"
#include "form/controls/list_control.h"
#include "form/controls/simple_controls.h"

namespace dbn::form {
namespace {

using dbn::testing::ChangeLog;
using dbn::testing::EventCount;
using dbn::testing::RaisesError;
using Aspects = std::vector<ChangeAspect>;

class ListControlTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (auto* list : {&choice, &editable}) {
            for (const char* text : {"MSG", "Dbn", "msg"}) {
                list->AddItem(text);
            }
            list->Click = clicks.Handler();
            list->Change = changes.Handler();
        }
    }
    ListControl choice{ControlKind::ChoiceList, "cmbNode", nullptr, Rect{}, 1};
    ListControl editable{ControlKind::EditableList, "cmbNumber", nullptr, Rect{}, 2};
    EventCount clicks;
    EventCount changes;
};

TEST_F(ListControlTest, EntriesTagsAndClearRaiseNoEvent) {
    EXPECT_EQ(choice.NewIndex(), 2);
    choice.SetItemData(1, 15);
    EXPECT_EQ(choice.ItemData(1), 15);
    EXPECT_TRUE(RaisesError([&] { (void)choice.List(3); }, 381, "Invalid property array index"));
    EXPECT_TRUE(
        RaisesError([&] { choice.SetItemData(-1, 1); }, 381, "Invalid property array index"));

    choice.SetListIndex(1);
    clicks.count = 0;
    choice.Clear();
    EXPECT_EQ(choice.ListCount(), 0);
    EXPECT_EQ(choice.ListIndex(), -1);
    EXPECT_EQ(choice.Text(), "");
    EXPECT_EQ(choice.NewIndex(), -1);
    EXPECT_EQ(clicks.count + changes.count, 0);
}

TEST_F(ListControlTest, WritingTheIndexAlwaysClicks) {
    choice.SetListIndex(1);
    choice.SetListIndex(1);
    EXPECT_EQ(choice.Text(), "Dbn");
    choice.SetListIndex(-1);
    EXPECT_EQ(choice.Text(), "");
    EXPECT_EQ(clicks.count, 3);
    EXPECT_TRUE(RaisesError([&] { choice.SetListIndex(3); }, 380, "Invalid property value"));
    EXPECT_TRUE(RaisesError([&] { choice.SetListIndex(-2); }, 380, "Invalid property value"));
    EXPECT_EQ(clicks.count, 3);

    // Selecting on an editable list sets its text without a Change.
    editable.SetListIndex(2);
    EXPECT_EQ(editable.Text(), "msg");
    EXPECT_EQ(changes.count, 0);
}

TEST_F(ListControlTest, ChoiceTextSelectsFirstEntryIgnoringCase) {
    choice.SetText("mSg");
    choice.SetText("MSG");
    EXPECT_EQ(choice.ListIndex(), 0);
    EXPECT_EQ(choice.Text(), "MSG");
    EXPECT_EQ(clicks.count, 2);
    EXPECT_TRUE(RaisesError([&] { choice.SetText("MS"); }, 383, "'Text' property is read-only"));
    EXPECT_EQ(choice.Text(), "MSG");
    EXPECT_EQ(clicks.count, 2);
}

TEST_F(ListControlTest, EditableTextChangesOnlyWhenDifferentAndKeepsIndex) {
    editable.SetListIndex(1);
    editable.SetText("msg");
    editable.SetText("msg");
    EXPECT_EQ(editable.ListIndex(), 1);
    EXPECT_EQ(changes.count, 1);
    EXPECT_EQ(clicks.count, 1);
    editable.SetSelStart(10);
    EXPECT_EQ(editable.SelStart(), 3);
}

TEST_F(ListControlTest, NotifiesOnlyRealChanges) {
    choice.SetListIndex(0);
    ChangeLog log(choice);
    choice.SetListIndex(0);
    choice.SetItemData(0, 0);
    choice.SetVisible(true);
    choice.SetWidth(0);
    EXPECT_TRUE(log.aspects.empty());

    choice.SetListIndex(2);
    choice.AddItem("X");
    choice.SetEnabled(false);
    choice.SetLeft(5);
    EXPECT_EQ(log.aspects,
              (Aspects{ChangeAspect::Selection, ChangeAspect::Text, ChangeAspect::Entries,
                       ChangeAspect::State, ChangeAspect::Geometry}));
}

TEST(TextFieldTest, CutsToMaxLengthAndChangesOnlyWhenDifferent) {
    TextField field("txtDescription", nullptr, Rect{}, 7, "", 5);
    EventCount changes;
    field.Change = changes.Handler();
    field.SetText("abcdefgh");
    field.SetText("abcdexyz");  // cut to the same text: no change
    EXPECT_EQ(field.Text(), "abcde");
    EXPECT_EQ(changes.count, 1);
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
}

TEST(PlainListTest, FindsWholeTextIgnoringCase) {
    PlainList list("lstNodeTypeName", nullptr, Rect{}, 89);
    list.AddItem("MSG");
    list.AddItem("msg 12");
    EXPECT_EQ(list.FindExact("Msg 12"), 1);
    EXPECT_EQ(list.FindExact("ms"), -1);
    EXPECT_TRUE(RaisesError([&] { (void)list.List(2); }, 381, "Invalid property array index"));
}

}  // namespace
}  // namespace dbn::form
