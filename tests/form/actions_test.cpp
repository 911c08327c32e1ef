#include "form/controls/operator_input.h"
#include "form_fixture.h"
#include "lists_support.h"

namespace dbn::testing {
namespace {

namespace input = form::operator_input;

class ActionsTest : public FormFixture {
protected:
    int VisiblePickers() {
        int visible = 0;
        for (const form::ListControl* picker :
             {&gui.cmbValidMatchNode, &gui.cmbValidMatchNumber, &gui.cmbAbortNode,
              &gui.cmbAbortNumber, &gui.cmbStarNode, &gui.cmbStarNumber, &gui.cmbPoundNode,
              &gui.cmbPoundNumber, &gui.cmbZeroNode, &gui.cmbZeroNumber}) {
            visible += picker->Visible() ? 1 : 0;
        }
        return visible;
    }
    form::ListItem& Row(int position) { return gui.LVActions.ItemAt(position); }
};

TEST_F(ActionsTest, DefaultGivesTheFiveRowsAndMarksTheChange) {
    SetTarget(Row(0), "MSG 3|Operator|MSG|0|3");
    ASSERT_TRUE(input::Press(gui.cmdActionsDefault));
    EXPECT_EQ(AllCells(gui.LVActions),
              (std::vector<std::string>{"1a:1|Valid Match|XFER 1||XFER|4|1",
                                        "2a:2|Abort|MSG 1||MSG|0|1", "3a:3|*|NOOP||NOOP|814|0",
                                        "4a:4|#|NOOP||NOOP|814|0", "5a:5|0|NOOP||NOOP|814|0"}));
    EXPECT_TRUE(gui.cmdApply.Enabled());
    EXPECT_EQ(gui.LVActions.Column(1).width, 1000);
    EXPECT_EQ(gui.LVActions.Column(2).width, 1500);
}

TEST_F(ActionsTest, EditModeOpensPickersOverTheSelectedRowAndClosesThem) {
    gui.LVActions.SetSelectedItem(&Row(1));  // Abort, MSG 1
    ASSERT_TRUE(input::Press(gui.cmdActionsEdit));
    EXPECT_EQ(gui.cmdActionsEdit.Caption(), "Edit Off");
    EXPECT_FALSE(gui.cmdActionsDefault.Enabled());
    EXPECT_EQ(VisiblePickers(), 2);
    const form::RowPosition row = gui.LVActions.RowPositionOf(Row(1));
    EXPECT_EQ(gui.cmbAbortNode.Left(), gui.LVActions.Left() + row.left + 1000);
    EXPECT_EQ(gui.cmbAbortNode.Top(), gui.LVActions.Top() + row.top + 50);
    EXPECT_EQ(gui.cmbAbortNumber.Left(), gui.cmbAbortNode.Left() + gui.cmbAbortNode.Width());
    EXPECT_EQ(gui.cmbAbortNumber.Text(), "1");
    EXPECT_TRUE(gui.cmdApply.Enabled());

    // A row of the type without numbers opens without the number picker.
    ASSERT_TRUE(input::ClickRow(gui.LVActions, Row(3)));
    EXPECT_EQ(VisiblePickers(), 1);
    EXPECT_TRUE(gui.cmbPoundNode.HasFocus());
    EXPECT_TRUE(services.boxes.empty());

    // A picked number goes into the row; its label stays.
    input::ClickRow(gui.LVActions, Row(0));
    gui.cmbValidMatchNode.SetText("MSG");
    Row(0).SetSubItem(3, "Reception");
    input::Pick(gui.cmbValidMatchNumber, 6);
    EXPECT_EQ(Cells(Row(0)), "1a:1|Valid Match|MSG 7|Reception|MSG|0|7");

    gui.cmdApply.SetEnabled(false);
    input::Press(gui.cmdActionsEdit);
    EXPECT_EQ(gui.cmdActionsEdit.Caption(), "Edit");
    EXPECT_TRUE(gui.cmdActionsDefault.Enabled());
    EXPECT_EQ(VisiblePickers(), 0);
    EXPECT_TRUE(gui.cmdApply.Enabled());
    input::ClickRow(gui.LVActions, Row(0));
    EXPECT_EQ(VisiblePickers(), 0);
}

TEST_F(ActionsTest, UnavailableTypeShowsTheNoticeAndNoPicker) {
    gui.NotAvailableAllInstructionsNode().Add("MSG", "0");
    SetTarget(Row(0), "M_ON 3|Old|M_ON|817|3");
    SetTarget(Row(1), "PAAS 2||PAAS|12|2");
    gui.LVActions.SetSelectedItem(&Row(0));
    input::Press(gui.cmdActionsEdit);
    input::ClickRow(gui.LVActions, Row(1));
    const std::string notice = "Please check the \"Max Number of each Node\" Section for ";
    EXPECT_EQ(services.TakeBoxTexts(),
              (std::vector<std::string>{notice + "M_ON Node in Partition Settings.",
                                        notice + "PAAS Node in Partition Settings."}));
    EXPECT_EQ(VisiblePickers(), 0);
    EXPECT_EQ(Cells(Row(0)), "1a:1|Valid Match|M_ON 3|Old|M_ON|817|3");
}

TEST_F(ActionsTest, HeaderPressHidesThePickersOfEitherListScrollingOnlyThoseOfConfirmation) {
    input::Press(gui.cmdActionsEdit);
    input::Scroll(gui.LVActions);
    EXPECT_EQ(VisiblePickers(), 2);
    input::PressHeader(gui.LVActions);
    EXPECT_EQ(VisiblePickers(), 0);
    EXPECT_EQ(gui.cmdActionsEdit.Caption(), "Edit Off");

    input::Press(gui.cmdConfirmEdit);
    ASSERT_TRUE(gui.cmbConfirmNode.Visible());
    input::PressHeader(gui.LVConfirm);
    EXPECT_FALSE(gui.cmbConfirmNode.Visible() || gui.cmbConfirmNumber.Visible());
}

}  // namespace
}  // namespace dbn::testing
