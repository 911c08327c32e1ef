// The referenced-node check: which references are gathered, how the
// operator's answers steer it, and what it tells the operator.

#include "save_support.h"

#include "form/controls/operator_input.h"

namespace dbn::testing {
namespace {

// The required-node lists as "key|type ID|number" rows.
std::vector<std::string> Required(const form::GUI& gui) {
    std::vector<std::string> rows;
    for (int i = 0; i < gui.lstNodeTypeName.ListCount(); ++i) {
        rows.push_back(gui.lstNodeTypeName.List(i) + "|" + gui.lstNodeTypeID.List(i) + "|" +
                       gui.lstNodeNumber.List(i));
    }
    return rows;
}

class ReferencedCheckTest : public SavingTest {};

TEST_F(ReferencedCheckTest, GathersInOrderOnceEachAndSkipsTypesWithoutNodes) {
    Edit(1, 1, [&](form::GUI& gui, Business_Rules& rules) {
        PickTarget(gui.cmbGreetingNode, gui.cmbGreetingNumber, "MSG", "3");
        SetTarget(gui.LVActions, 1, "msg 3", "MSG", "0", "3");  // the greeting, other case
        SetTarget(gui.LVActions, 2, "M_ON 5", "M_ON", "817", "5");
        SetTarget(gui.LVActions, 3, "GOTO 2", "GOTO", "816", "2");
        SetTarget(gui.LVActions, 4, "HANGUP", "HANGUP", "999", "0");
        PickTarget(gui.cmbInvalidNode, gui.cmbInvalidNumber, "MSG", "4");
        rules.CheckForUnReferencedNodes();
        // Greeting, directory, actions, then the custom method's prompts,
        // error targets, confirmation rows and exit prompt.
        EXPECT_EQ(Required(gui),
                  (std::vector<std::string>{"MSG 3|0|3", "DIR 1|16|1", "XFER 1|4|1", "MSG 5|0|5",
                                            "MSG 2|0|2", "MSG 4|0|4", "MSG 6|0|6", "MSG 7|0|7",
                                            "MSG 8|0|8", "MSG 9|0|9"}));
        EXPECT_EQ(gui.StatusBar1.PanelText(), "Checking for non-existing nodes. Please wait...");
        EXPECT_EQ(services.doEventsCalls, 1);

        // "Default Last Name" uses only the greeting, the directory and the actions.
        gui.cmbMethod.SetListIndex(1);
        PickTarget(gui.cmbFirstMatchPrompt, gui.cmbFirstMatchPromptNumber, "MSG", "40");
        rules.CheckForUnReferencedNodes();
        EXPECT_EQ(Required(gui),
                  (std::vector<std::string>{"MSG 3|0|3", "DIR 1|16|1", "XFER 1|4|1", "MSG 5|0|5"}));
    });
    EXPECT_TRUE(services.confirmations.empty());
    EXPECT_TRUE(services.boxes.empty());
}

struct AnswerCase {
    std::vector<long> answers;
    std::size_t questions;
    std::vector<bool> created;  // XFER 21, MSG 21, CMD 5
};

class ReferencedAnswerTest : public SavingTest, public ::testing::WithParamInterface<AnswerCase> {};

TEST_P(ReferencedAnswerTest, AnswersDecideWhatIsCreatedAndWhetherToAskOn) {
    const AnswerCase& answerCase = GetParam();
    services.confirmAnswers.assign(answerCase.answers.begin(), answerCase.answers.end());
    std::vector<int> busyWhenAsked;
    services.onConfirm = [&] { busyWhenAsked.push_back(services.busyDepth); };
    Edit(1, 2, [&](form::GUI& gui, Business_Rules& rules) {
        SetTarget(gui.LVActions, 0, "XFER 21", "XFER", "4", "21");
        SetTarget(gui.LVActions, 1, "MSG 21", "MSG", "0", "21");
        SetTarget(gui.LVActions, 2, "CMD 5", "CMD", "1", "5");
        services.SetBusyCursor(true);
        rules.CheckForUnReferencedNodes();
        EXPECT_GT(services.busyDepth, 0) << "busy cursor not shown again after asking";
    });
    ASSERT_EQ(services.confirmations.size(), answerCase.questions);
    EXPECT_EQ(services.confirmations[0],
              "XFER 21 is referenced but it does not exist.\r\nDo you want to auto create node "
              "'XFER 21'?");
    EXPECT_EQ(services.confirmTitles[0], "Confirmation");
    EXPECT_EQ(busyWhenAsked, std::vector<int>(answerCase.questions, 0));
    EXPECT_EQ(PoolHas(1, 4, 21), answerCase.created[0]);
    EXPECT_EQ(PoolHas(1, 0, 21), answerCase.created[1]);
    EXPECT_EQ(PoolHas(1, 1, 5), answerCase.created[2]);
    EXPECT_TRUE(services.boxes.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Answers, ReferencedAnswerTest,
    ::testing::Values(AnswerCase{{4}, 1, {true, true, true}},           // yes to all
                      AnswerCase{{5}, 1, {false, false, false}},        // cancel
                      AnswerCase{{0}, 1, {false, false, false}},        // closed
                      AnswerCase{{7, 2, 5}, 3, {false, true, false}},   // no, yes, cancel
                      AnswerCase{{3, 2, 2}, 3, {false, true, true}}));  // other code skips

TEST_F(ReferencedCheckTest, NodesThatCannotBeCreatedAreReportedAndTheCheckGoesOn) {
    root.Exec(
        "DELETE FROM Node_General_Pool WHERE PartID = 1 AND NodeTypeID = 2 AND "
        "NodeNumber = 0");
    services.confirmAnswers = {2, 2, 2};
    Edit(1, 2, [&](form::GUI& gui, Business_Rules& rules) {
        SetTarget(gui.LVActions, 0, "XYZ 3", "XYZ", "5", "3");
        SetTarget(gui.LVActions, 1, "TIME 7", "TIME", "2", "7");
        SetTarget(gui.LVActions, 2, "M_OFF 12", "M_OFF", "818", "12");
        rules.CheckForUnReferencedNodes();
        EXPECT_EQ(gui.StatusBar1.PanelText(), "MSG 12 is created.");
    });
    ASSERT_EQ(services.boxes.size(), 2u);
    EXPECT_EQ(services.boxes[0].title, "Information");
    EXPECT_EQ(services.boxes[0].text,
              "XYZ 3 could not be created: its type cannot be created here.");
    EXPECT_EQ(services.boxes[1].text,
              "TIME 7 could not be created: there is no template node 0 of its type.");
    EXPECT_EQ(Count("Node_TIME", Where(1, "NodeNumber", 7)), 0);
    EXPECT_EQ(root.QueryText("SELECT OrvFilename FROM Node_MSG" + Where(1, "NodeNumber", 12)),
              "P01M012.wav");
}

TEST_F(ReferencedCheckTest, FailedCreationIsUndoneAndTheSaveStillHappens) {
    root.Exec(
        "CREATE TRIGGER injected BEFORE INSERT ON Node_General_Pool BEGIN "
        "SELECT RAISE(ABORT, 'injected'); END");
    services.confirmAnswers = {2};
    Edit(2, 5, [&](form::GUI& gui, Business_Rules& rules) {
        SetTarget(gui.LVActions, 1, "MSG 12", "MSG", "0", "12");
        EXPECT_TRUE(rules.SaveChanges(5));
    });
    ASSERT_EQ(services.boxes.size(), 1u);
    EXPECT_NE(services.boxes[0].text.find(" - CheckForUnReferencedNodes \r\n"), std::string::npos);
    EXPECT_EQ(Count("Node_MSG", Where(2, "NodeNumber", 12)), 0);
    EXPECT_EQ(NodeColumn("AbortNodeNumber", 2, 5), "12");
}

TEST_F(ReferencedCheckTest, OperatorCreatesAMissingAbortTargetWhileApplying) {
    services.confirmAnswers = {2};
    Edit(2, 5, [&](form::GUI& gui, Business_Rules&) {
        namespace input = form::operator_input;
        services.onConfirm = [&] {
            EXPECT_FALSE(gui.Frame1.Enabled());
            EXPECT_TRUE(gui.StatusBar1.Visible());
            EXPECT_EQ(services.busyDepth, 0);
        };
        ASSERT_TRUE(input::Press(gui.cmdActionsEdit));
        ASSERT_TRUE(input::ClickRow(gui.LVActions, gui.LVActions.ItemAt(1)));
        ASSERT_TRUE(input::Pick(gui.cmbAbortNode, gui.cmbAbortNode.FindEntry("MSG")));
        ASSERT_TRUE(input::Pick(gui.cmbAbortNumber, 11));
        ASSERT_TRUE(input::Press(gui.cmdApply));
        EXPECT_FALSE(gui.cmdApply.Enabled());
        EXPECT_TRUE(gui.Frame1.Enabled());
        EXPECT_FALSE(gui.StatusBar1.Visible());
        ASSERT_TRUE(input::Press(gui.cmdOK));
        EXPECT_FALSE(gui.IsLoaded());
    });
    EXPECT_EQ(services.confirmations,
              std::vector<std::string>{"MSG 12 is referenced but it does not exist.\r\nDo you "
                                       "want to auto create node 'MSG 12'?"});
    EXPECT_TRUE(services.boxes.empty()) << services.boxes.front().text;
    EXPECT_EQ(root.QueryText("SELECT OrvFilename FROM Node_MSG" + Where(2, "NodeNumber", 12)),
              "P02M012.wav");
    EXPECT_TRUE(PoolHas(2, 0, 12));
    EXPECT_EQ(NodeColumn("AbortNodeType", 2, 5) + " " + NodeColumn("AbortNodeNumber", 2, 5),
              "MSG 12");
}

}  // namespace
}  // namespace dbn::testing
