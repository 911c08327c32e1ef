#include "form/controls/operator_input.h"
#include "form_fixture.h"
#include "lists_support.h"

namespace dbn::testing {
namespace {

namespace input = form::operator_input;
using PickersTest = FormFixture;

TEST_F(PickersTest, FormPairRefillsOnlyForAnotherLimitAndThenSelectsTheFirstEntry) {
    gui.cmbTimeoutNumber.SetListIndex(6);             // MSG, 20 numbers
    ASSERT_TRUE(input::Pick(gui.cmbTimeoutNode, 5));  // M_ON, also 20
    EXPECT_EQ(gui.cmbTimeoutNumber.ListIndex(), 6);
    EXPECT_TRUE(gui.cmdApply.Enabled());

    input::Pick(gui.cmbTimeoutNode, 1);  // XFER, 12
    EXPECT_EQ(gui.cmbTimeoutNumber.ListCount(), 12);
    EXPECT_EQ(gui.cmbTimeoutNumber.List(11), "12");
    EXPECT_EQ(gui.cmbTimeoutNumber.Text(), "1");
}

TEST_F(PickersTest, NoNumberTypeWidensTheNodePickerOverTheNumberPlace) {
    gui.cmbGreetingNode.SetText("NOOP");
    EXPECT_FALSE(gui.cmbGreetingNumber.Visible());
    EXPECT_EQ(gui.cmbGreetingNode.Width(), gui.cmbDirectory.Width() + gui.txtDIR.Width());
    gui.cmbGreetingNode.SetText("MSG");
    EXPECT_TRUE(gui.cmbGreetingNumber.Visible());
    EXPECT_EQ(gui.cmbGreetingNode.Width(), gui.txtDIR.Width());

    gui.cmbStarNode.SetText("MSG");
    EXPECT_EQ(gui.cmbStarNode.Width(), 850);
    EXPECT_EQ(gui.cmbStarNumber.Left(), gui.cmbStarNode.Left() + 850);
    EXPECT_TRUE(gui.cmbStarNumber.Visible());
    gui.cmbStarNode.SetText("NOOP");
    EXPECT_EQ(gui.cmbStarNode.Width(), 1550);
    EXPECT_FALSE(gui.cmbStarNumber.Visible());
}

TEST_F(PickersTest, InListPickRewritesTheSelectedRowOnly) {
    form::ListItem& star = gui.LVActions.ItemAt(2);
    gui.LVActions.SetSelectedItem(&star);
    SetTarget(star, "XFER 7|Sales|XFER|4|7");
    gui.cmbStarNode.SetText("LIST");  // 5 numbers: 7 falls back to 1
    EXPECT_EQ(Cells(star), "3a:3|*|LIST 1||LIST|8|1");
    EXPECT_EQ(gui.cmbStarNumber.Text(), "1");

    SetTarget(star, "XFER 7|Sales|XFER|4|7");
    gui.cmbStarNode.SetText("MSG");  // 20 numbers: 7 stays
    EXPECT_EQ(Cells(star), "3a:3|*|MSG 7||MSG|0|7");
    EXPECT_EQ(gui.cmbStarNumber.Text(), "7");

    gui.cmbStarNode.SetText("NOOP");
    EXPECT_EQ(Cells(star), "3a:3|*|NOOP||NOOP|814|0");

    const auto rows = AllCells(gui.LVActions);
    gui.LVActions.SetSelectedItem(nullptr);
    gui.cmbStarNode.SetText("LIST");
    EXPECT_EQ(gui.cmbStarNumber.ListCount(), 5);
    EXPECT_EQ(AllCells(gui.LVActions), rows);
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(PickersTest, FailedRefillIsReportedAndStillMarksTheChange) {
    gui.cmbGreetingNode.Clear();
    gui.HandleMSGLISTNOOPPromptBOX(gui.cmbGreetingNode, gui.cmbGreetingNumber, false);
    EXPECT_EQ(services.TakeBoxTexts(),
              std::vector<std::string>{"Source: CVL_DBN_Node - GenericMSGLISTNOOPNode_Click \r\n"
                                       "Description: Invalid property array index"});
    EXPECT_TRUE(gui.cmdApply.Enabled());
}

}  // namespace
}  // namespace dbn::testing
