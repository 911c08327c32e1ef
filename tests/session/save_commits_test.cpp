// How a save with created nodes reaches the file: copies made without a
// question in between share the save's commit, no transaction is open while
// the operator is asked, and a save that goes wrong keeps the copies.
#include "session_support.h"

namespace dbn::testing {
namespace {

using SaveCommits = SessionTest;

struct Transactions {
    int begun = 0;
    int committed = 0;
};

// Counts the transactions of the form's own connection from now on.
Transactions& Watch(form::GUI& gui, Transactions& seen) {
    Rules(gui).Db().SetObserver([&seen](const DataBaseEvent& event) {
        seen.begun += event.step == DataBaseStep::BeginTrans ? 1 : 0;
        seen.committed += event.step == DataBaseStep::CommitTrans ? 1 : 0;
    });
    return seen;
}

// Points the greeting, the invalid target and the abort row at nodes the demo lacks.
void ReferToThreeMissingNodes(form::GUI& gui) {
    Set(gui,
        "txtDescription=Front desk; cmbGreetingNumber=50; cmbInvalidNode=MSG; "
        "cmbInvalidNumber=51");
    SetTarget(gui.LVActions.ItemAt(1), "CMD 15|CMD|1|15");
}

TEST_F(SaveCommits, CopiesWithoutAQuestionBetweenThemShareTheSavesCommit) {
    struct Case {
        std::deque<long> answers;
        int commits;
    };
    // Yes to All: one commit for everything. Yes each time: the copy made
    // before each further question is committed before it is asked.
    for (const Case& c : {Case{{form::kConfirmYesToAll}, 1}, Case{{2, 2, 2}, 3}}) {
        root.Exec(
            "DELETE FROM Node_MSG WHERE NodeNumber IN (50, 51); DELETE FROM Node_CMD WHERE "
            "NodeNumber = 15; DELETE FROM Detail_CMD WHERE NodeMasterID = 15; DELETE FROM "
            "Node_General_Pool WHERE NodeNumber IN (15, 50, 51)");
        services.confirmAnswers = c.answers;
        Open(1, 1, [&](form::GUI& gui) {
            ReferToThreeMissingNodes(gui);
            // A label of the case's own: the form differs from the last case's save.
            Set(gui, "txtDescription=Desk " + std::to_string(c.commits));
            services.onConfirm = [&] { EXPECT_FALSE(Rules(gui).Db().InTransaction()); };
            Transactions seen;
            Watch(gui, seen);
            gui.cmdApply_Click();
            EXPECT_FALSE(gui.cmdApply.Enabled());
            EXPECT_EQ(std::pair(seen.begun, seen.committed), std::pair(c.commits, c.commits));
            EXPECT_FALSE(Rules(gui).Db().InTransaction());
        });
        EXPECT_EQ(services.TakeBoxTexts(), std::vector<std::string>{});
        EXPECT_EQ(Count("Node_General_Pool",
                        " WHERE PartID = 1 AND ((NodeTypeID = 0 AND "
                        "NodeNumber IN (50, 51)) OR (NodeTypeID = 1 AND "
                        "NodeNumber = 15))"),
                  3);
        EXPECT_EQ(Count("Detail_CMD", Where(1, "NodeMasterID", 15)), 1);
        EXPECT_EQ(NodeColumn("NodeDescription || GreetingNodeNumber || AbortNodeType", 1, 1),
                  "Desk " + std::to_string(c.commits) + "50CMD");
    }
}

TEST_F(SaveCommits, ASaveThatFailsOrFindsItsNodeGoneKeepsTheCopies) {
    const std::string prompts = TableRows("Detail_DBN_Prompts", Where(1, "NodeMasterID", 1));
    root.InjectFailure("Node_General_Pool", "UPDATE");
    services.confirmAnswers = {form::kConfirmYesToAll};
    Open(1, 1, [&](form::GUI& gui) {
        ReferToThreeMissingNodes(gui);
        gui.cmdApply_Click();
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_FALSE(Rules(gui).Db().InTransaction());
    });
    ASSERT_EQ(services.boxes.size(), 1u);
    EXPECT_NE(services.boxes[0].text.find("injected"), std::string::npos);
    EXPECT_EQ(Count("Node_MSG", " WHERE PartID = 1 AND NodeNumber IN (50, 51)"), 2);
    EXPECT_EQ(Count("Node_CMD", Where(1, "NodeNumber", 15)), 1);
    EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), "Staff directory");
    EXPECT_EQ(TableRows("Detail_DBN_Prompts", Where(1, "NodeMasterID", 1)), prompts);

    root.RemoveInjectedFailure("Node_General_Pool");
    services.boxes.clear();
    services.confirmAnswers = {form::kConfirmYesToAll};
    Open(1, 2, [&](form::GUI& gui) {
        Set(gui, "cmbGreetingNumber=60");
        root.Exec("DELETE FROM Node_DBN" + Where(1, "NodeNumber", 2));
        EXPECT_FALSE(Rules(gui).SaveChanges(2));
        EXPECT_FALSE(Rules(gui).Db().InTransaction());
    });
    ASSERT_EQ(services.boxes.size(), 1u);
    EXPECT_EQ(services.boxes[0].title, "Information");
    EXPECT_EQ(Count("Node_MSG", Where(1, "NodeNumber", 60)), 1);
    EXPECT_EQ(Count("Detail_DBN_Prompts", Where(1, "NodeMasterID", 2)), 9);
}

}  // namespace
}  // namespace dbn::testing
