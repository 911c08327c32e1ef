// A node changed by another program between loading and saving: the save
// writes nothing and asks; Yes overwrites, No shows the stored node, Cancel
// keeps the edits. Only a committed save lets OK, the close box and
// navigation go on.
#include "session_support.h"

#include "session/nodes/apply_nodes.h"
#include "session/nodes/node_text_store.h"

namespace dbn::testing {
namespace {

using ConcurrentEdit = SessionTest;

const std::string kQuestion =
    "DBN 1 was changed by another program after it was opened here. Save your changes over it?";
const std::string kNode1 =
    " WHERE ConfigID = 1 AND PartID = 1 AND NodeTypeID = 15 AND "
    "NodeNumber = 1";

TEST_F(ConcurrentEdit, EachAnswerToTheQuestionAfterAChangeElsewhere) {
    struct Case {
        int answer;
        const char* stored;
        const char* shown;
        bool dirty;
    };
    for (const Case& c : {Case{form::kAnswerYes, "Mine", "Mine", false},
                          Case{form::kAnswerNo, "Theirs", "Theirs", false},
                          Case{form::kAnswerCancel, "Theirs", "Mine", true}}) {
        root.Exec("UPDATE Node_DBN SET NodeDescription = 'Staff directory'" + kNode1);
        services.answers = {c.answer};
        Open(1, 1, [&](form::GUI& gui) {
            Set(gui, "txtDescription=Mine");
            root.Exec("UPDATE Node_DBN SET NodeDescription = 'Theirs'" + kNode1);
            gui.cmdApply_Click();
            EXPECT_EQ(gui.txtDescription.Text(), c.shown) << c.answer;
            EXPECT_EQ(gui.cmdApply.Enabled(), c.dirty) << c.answer;
            EXPECT_FALSE(Rules(gui).Db().InTransaction());
        });
        ASSERT_EQ(services.boxes.size(), 1u) << c.answer;
        EXPECT_EQ(services.boxes[0].text, kQuestion);
        EXPECT_EQ(services.boxes[0].title, "Confirmation");
        EXPECT_EQ(services.boxes[0].icon, form::MsgBoxIcon::Question);
        EXPECT_EQ(services.boxes[0].buttons, form::MsgBoxButtons::SaveOverDiscardCancel);
        services.boxes.clear();
        EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), c.stored) << c.answer;
    }
}

TEST_F(ConcurrentEdit, AChangeToTheNodeRowItsPromptsOrItsPoolRowIsSeen) {
    for (const std::string& change :
         {"UPDATE Node_DBN SET RetryLimit = 4" + kNode1,
          "UPDATE Detail_DBN_Prompts SET PromptNodeNumber = 9" + Where(1, "NodeMasterID", 1) +
              " AND PromptNumber = 5",
          "UPDATE Node_General_Pool SET DateModified = 'then'" + kNode1}) {
        services.answers = {form::kAnswerCancel};
        Open(1, 1, [&](form::GUI& gui) {
            Set(gui, "txtDescription=Mine");
            root.Exec(change);
            gui.cmdApply_Click();
        });
        EXPECT_EQ(services.TakeBoxTexts(), std::vector<std::string>{kQuestion}) << change;
    }
    EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), "Staff directory");
}

// Another program (no editor) whose transaction is still open when the save
// begins and commits while the save waits for it: the save sees its change
// and asks, for each of the node's rows.
TEST_F(ConcurrentEdit, AWriterCommittingWhileTheSaveWaitsIsSeenAndAsked) {
    for (const std::string& change :
         {"UPDATE Node_DBN SET RetryLimit = 4" + kNode1,
          "DELETE FROM Detail_DBN_Prompts" + Where(1, "NodeMasterID", 1) + " AND PromptNumber = 9",
          "UPDATE Node_General_Pool SET NodeDescription = 'Theirs'" + kNode1}) {
        services.answers = {form::kAnswerCancel};
        Open(1, 1, [&](form::GUI& gui) {
            Set(gui, "txtDescription=Mine");
            TempDataRoot::Writer other(root, change);
            bool committed = false;
            Rules(gui).Db().SetWaitHandler([&] {
                if (!committed) {
                    committed = true;
                    other.Commit();
                }
            });
            gui.cmdApply_Click();
            EXPECT_TRUE(committed) << change;
            EXPECT_EQ(gui.txtDescription.Text(), "Mine");
            EXPECT_TRUE(gui.cmdApply.Enabled());
        });
        EXPECT_EQ(services.TakeBoxTexts(), std::vector<std::string>{kQuestion}) << change;
        EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), "Staff directory") << change;
    }
    EXPECT_EQ(NodeColumn("RetryLimit", 1, 1), "4");
}

// The question's details name who changed the node only when the history
// holds that change; a change made outside this program is told as such,
// with the fields that differ from what the form loaded.
TEST_F(ConcurrentEdit, TheQuestionNamesTheChangeAsTheHistoryHoldsIt) {
    services.answers = {form::kAnswerCancel, form::kAnswerCancel};
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui, "txtDescription=Mine");
        DataBase other;
        nodetext::NodeDocument theirs = session::ExportNodes(other, 1, 1, {1});
        theirs.nodes[0].columns["NodeDescription"] = std::string("Theirs");
        ASSERT_TRUE(session::ApplyNodes(other, theirs, {}).written);
        gui.cmdApply_Click();
        root.Exec("UPDATE Node_DBN SET RetryLimit = 4" + kNode1);
        gui.cmdApply_Click();
    });
    ASSERT_EQ(services.boxDetails.size(), 2u);
    const std::string label = R"(NodeDescription: "Staff directory" -> "Theirs")";
    EXPECT_TRUE(services.boxDetails[0].starts_with("Changed by ")) << services.boxDetails[0];
    EXPECT_NE(services.boxDetails[0].find(": " + label), std::string::npos);
    EXPECT_EQ(services.boxDetails[0].find("RetryLimit"), std::string::npos);
    EXPECT_TRUE(services.boxDetails[1].starts_with(
        "This node was changed outside this program; not in the history: " + label))
        << services.boxDetails[1];
    EXPECT_NE(services.boxDetails[1].find("RetryLimit: 3 -> 4"), std::string::npos);
}

TEST_F(ConcurrentEdit, OnlyACommittedSaveLetsTheFormGoAndItIsTheNewReference) {
    services.answers = {form::kAnswerNo,                        // OK: the question
                        form::kAnswerYes, form::kAnswerCancel,  // Next: save, question
                        form::kAnswerYes, form::kAnswerCancel,  // close box: save, question
                        form::kAnswerYes};                      // Apply: the question
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui, "txtDescription=Mine");
        root.Exec("UPDATE Node_DBN SET RetryLimit = 4" + kNode1);
        gui.cmdOK_Click();
        EXPECT_TRUE(gui.IsLoaded());
        EXPECT_EQ(gui.cmbRetryLimit.Text(), "4");

        Set(gui, "txtDescription=Mine");
        root.Exec("UPDATE Node_DBN SET RetryLimit = 5" + kNode1);
        gui.cmdNext_Click();
        EXPECT_EQ(gui.nodeNumber(), 1);
        EXPECT_FALSE(gui.Unload());
        EXPECT_EQ(gui.txtDescription.Text(), "Mine");

        // Saved over it; the next save compares with what was saved.
        gui.cmdApply_Click();
        EXPECT_FALSE(gui.cmdApply.Enabled());
        Set(gui, "txtDescription=Again");
        gui.cmdApply_Click();
        gui.cmdOK_Click();
        EXPECT_FALSE(gui.IsLoaded());
    });
    EXPECT_TRUE(services.answers.empty());
    EXPECT_EQ(services.boxes.size(), 6u);
    EXPECT_EQ(NodeColumn("NodeDescription || RetryLimit", 1, 1), "Again4");
}

TEST_F(ConcurrentEdit, NodesCreatedBeforeTheQuestionStayCreated) {
    services.confirmAnswers = {form::kConfirmYes};
    services.answers = {form::kAnswerCancel};
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui, "cmbGreetingNumber=50");
        root.Exec("UPDATE Node_DBN SET RetryLimit = 4" + kNode1);
        gui.cmdApply_Click();
        EXPECT_TRUE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(Count("Node_MSG", Where(1, "NodeNumber", 50)), 1);
    EXPECT_EQ(NodeColumn("GreetingNodeNumber", 1, 1), "1");
}

}  // namespace
}  // namespace dbn::testing
