#include "form/controls/operator_input.h"
#include "form_fixture.h"
#include "lists_support.h"

namespace dbn::testing {
namespace {

namespace input = form::operator_input;

class ConfirmationTest : public FormFixture {
protected:
    form::ListItem& Row(int position) { return gui.LVConfirm.ItemAt(position); }
    bool PickersVisible() { return gui.cmbConfirmNode.Visible() || gui.cmbConfirmNumber.Visible(); }
    static std::string NewRow(int position, const std::string& name) {
        const std::string number = std::to_string(position);
        return number + "a:" + number + "|" + name + "|MSG 1||MSG|0|1";
    }
};

TEST_F(ConfirmationTest, OffAndOnAgainRestoresTheRows) {
    ASSERT_EQ(gui.LVConfirm.ItemCount(), 7);
    EXPECT_EQ(Cells(Row(0)), NewRow(1, "Before Names"));
    EXPECT_EQ(Cells(Row(6)), NewRow(7, "Name5"));
    SetTarget(Row(2), "LIST 4|Smith|LIST|8|4");
    const auto rows = AllCells(gui.LVConfirm);

    ASSERT_TRUE(input::Pick(gui.cmbConfirmation, 0));
    EXPECT_EQ(gui.LVConfirm.ItemCount(), 0);
    EXPECT_EQ(AllCells(gui.LVTemp), rows);
    EXPECT_FALSE(gui.cmbMaxMatches.Enabled());
    EXPECT_FALSE(gui.cmdConfirmEdit.Enabled());
    EXPECT_FALSE(gui.LVConfirm.TabStop());
    EXPECT_TRUE(gui.cmdApply.Enabled());

    input::Pick(gui.cmbConfirmation, 1);
    EXPECT_EQ(AllCells(gui.LVConfirm), rows);
    EXPECT_EQ(gui.LVTemp.ItemCount(), 0);
    EXPECT_TRUE(gui.cmdConfirmDefault.Enabled());
    EXPECT_TRUE(gui.LVConfirm.TabStop());
}

TEST_F(ConfirmationTest, NumberOfMatchesGrowsAndShrinksKeepingTargets) {
    input::Pick(gui.cmbMaxMatches, 2);  // 3 matches
    ASSERT_EQ(gui.LVConfirm.ItemCount(), 5);
    SetTarget(Row(3), "LIST 4|Jones|LIST|8|4");

    input::Pick(gui.cmbMaxMatches, 5);  // 6 matches
    const auto rows = AllCells(gui.LVConfirm);
    ASSERT_EQ(rows.size(), 8u);
    EXPECT_EQ(rows[3], "4a:4|Name2|LIST 4|Jones|LIST|8|4");
    EXPECT_EQ(rows[5], NewRow(6, "Name4"));
    EXPECT_EQ(rows[7], NewRow(8, "Name6"));

    // With the section off the list stays empty and nothing is marked.
    input::Pick(gui.cmbConfirmation, 0);
    gui.cmdApply.SetEnabled(false);
    gui.cmbMaxMatches.SetListIndex(1);
    EXPECT_EQ(gui.LVConfirm.ItemCount(), 0);
    EXPECT_FALSE(gui.cmdApply.Enabled());
}

TEST_F(ConfirmationTest, DefaultGivesYesFiveMatchesAndNewRows) {
    input::Pick(gui.cmbMaxMatches, 1);
    SetTarget(Row(0), "LIST 4|Smith|LIST|8|4");
    gui.cmdApply.SetEnabled(false);
    ASSERT_TRUE(input::Press(gui.cmdConfirmDefault));
    EXPECT_EQ(gui.cmbConfirmation.Text(), "Yes");
    EXPECT_EQ(gui.cmbMaxMatches.Text(), "5");
    ASSERT_EQ(gui.LVConfirm.ItemCount(), 7);
    EXPECT_EQ(Cells(Row(0)), NewRow(1, "Before Names"));
    EXPECT_EQ(Cells(Row(6)), NewRow(7, "Name5"));
    EXPECT_TRUE(gui.cmdApply.Enabled());
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ConfirmationTest, GuardedSelectionsAddNoRowsAndSettingAsideKeepsOnlyCurrentRows) {
    input::Pick(gui.cmbConfirmation, 0);
    {
        form::GUI::ConfirmRowsGuard guard(gui);
        gui.cmbConfirmation.SetListIndex(1);
        EXPECT_EQ(gui.LVConfirm.ItemCount(), 0);
        EXPECT_EQ(gui.LVTemp.ItemCount(), 7);
        EXPECT_TRUE(gui.cmbMaxMatches.Enabled());
        gui.LVConfirm.AddItem("1a", "1").SetSubItem(1, "Loaded");
        gui.cmbMaxMatches.SetListIndex(8);
        EXPECT_EQ(gui.LVConfirm.ItemCount(), 1);
    }
    input::Pick(gui.cmbConfirmation, 0);
    EXPECT_EQ(AllCells(gui.LVTemp), std::vector<std::string>{"1a:1|Loaded|||||"});
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ConfirmationTest, EditModeEditsTheSelectedRowInPlace) {
    gui.LVConfirm.SetSelectedItem(&Row(2));
    ASSERT_TRUE(input::Press(gui.cmdConfirmEdit));
    EXPECT_EQ(gui.cmdConfirmEdit.Caption(), "Edit Off");
    EXPECT_FALSE(gui.cmdConfirmDefault.Enabled());
    EXPECT_EQ(gui.LVConfirm.EnsuredVisible(), 2);
    const form::RowPosition row = gui.LVConfirm.RowPositionOf(Row(2));
    EXPECT_EQ(gui.cmbConfirmNode.Left(), gui.LVConfirm.Left() + row.left + 1600);
    EXPECT_EQ(gui.cmbConfirmNode.Top(), gui.LVConfirm.Top() + row.top + 50);
    EXPECT_EQ(gui.cmbConfirmNumber.Left(), gui.cmbConfirmNode.Left() + 900);
    EXPECT_TRUE(gui.cmdApply.Enabled());

    input::Pick(gui.cmbConfirmNode, 1);  // LIST
    input::Pick(gui.cmbConfirmNumber, 3);
    EXPECT_EQ(Cells(Row(2)), "3a:3|Name1|LIST 4||LIST|8|4");
    input::Pick(gui.cmbConfirmNode, 2);  // NOOP
    EXPECT_EQ(Cells(Row(2)), "3a:3|Name1|NOOP||NOOP|814|0");
    EXPECT_EQ(gui.cmbConfirmNode.Width(), 1600);
    EXPECT_FALSE(gui.cmbConfirmNumber.Visible());

    SetTarget(Row(1), "PAAS 1||PAAS|12|1");
    input::ClickRow(gui.LVConfirm, Row(1));
    EXPECT_EQ(services.TakeBoxTexts(),
              std::vector<std::string>{"Please check the \"Max Number of each Node\" Section for "
                                       "PAAS Node in Partition Settings."});
    EXPECT_FALSE(PickersVisible());

    input::ClickRow(gui.LVConfirm, Row(0));
    EXPECT_TRUE(gui.cmbConfirmNode.HasFocus());
    input::Scroll(gui.LVConfirm);
    EXPECT_FALSE(PickersVisible());
    input::Press(gui.cmdConfirmEdit);
    EXPECT_EQ(gui.cmdConfirmEdit.Caption(), "Edit");
    EXPECT_TRUE(gui.cmdConfirmDefault.Enabled());
}

TEST_F(ConfirmationTest, TheTwoListsAreNeverInEditModeTogether) {
    input::Press(gui.cmdActionsEdit);
    input::Press(gui.cmdConfirmEdit);
    EXPECT_EQ(gui.cmdActionsEdit.Caption(), "Edit");
    EXPECT_FALSE(gui.cmbValidMatchNode.Visible());
    EXPECT_TRUE(PickersVisible());

    input::Press(gui.cmdActionsEdit);
    EXPECT_EQ(gui.cmdConfirmEdit.Caption(), "Edit");
    EXPECT_FALSE(PickersVisible());
    EXPECT_TRUE(gui.cmbValidMatchNode.Visible());
}

}  // namespace
}  // namespace dbn::testing
