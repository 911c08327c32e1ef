// Transactions, savepoints and changed-row counts, and the observer that
// reports a connection's work step by step.

#include "core/component_error.h"
#include "database/database.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace dbn {
namespace {

using testing::TempDataRoot;

class Transactions : public ::testing::Test {
protected:
    // Labels the pool row of message node `number` in partition 1; answers
    // the number of rows changed.
    long Label(int number, const std::string& text) {
        return db_.Execute("Update_Node_General_Pool",
                           {text, "2001-01-01 00:00:00", "1", "1", "0", std::to_string(number)});
    }
    // The labels of message nodes 1 to 5 of partition 1, joined by "/".
    std::string Labels() const {
        std::string labels;
        for (int number = 1; number <= 5; ++number) {
            labels += (number == 1 ? "" : "/") +
                      root_.QueryText(
                          "SELECT NodeDescription FROM Node_General_Pool WHERE PartID "
                          "= 1 AND NodeTypeID = 0 AND NodeNumber = " +
                          std::to_string(number));
        }
        return labels;
    }
    long Prompts() const {
        return root_.QueryInt(
            "SELECT count(*) FROM Detail_DBN_Prompts WHERE PartID = 1 AND NodeMasterID = 2");
    }

    TempDataRoot root_{TempDataRoot::Content::Demo};
    DataBase db_;
};

// Rollback undoes everything, savepoints only their own work, innermost
// first; outside a transaction each command stands alone, and a node that
// does not exist changes nothing and is no error.
TEST_F(Transactions, RollbackAndSavepointsUndoTheirWorkAndCommandsAnswerRowsChanged) {
    const std::string before = Labels();
    db_.BeginTrans();
    EXPECT_TRUE(db_.InTransaction());
    EXPECT_EQ(db_.Execute("Delete_DBN_PromptsNode", {"1", "1", "2"}), 9);
    db_.BeginSavepoint();
    EXPECT_EQ(Label(1, "lost"), 1);
    db_.ReleaseSavepoint();  // kept inside a transaction that rolls back: gone with it
    db_.RollbackTrans();
    EXPECT_FALSE(db_.InTransaction());
    EXPECT_EQ(Prompts(), 9);
    EXPECT_EQ(Labels(), before);

    db_.BeginTrans();
    Label(1, "outer");
    db_.BeginSavepoint();
    Label(2, "kept");
    db_.BeginSavepoint();
    Label(3, "undone");
    db_.RollbackToSavepoint();
    db_.ReleaseSavepoint();
    EXPECT_TRUE(db_.InTransaction());
    db_.BeginSavepoint();
    Label(4, "again");
    db_.ReleaseSavepoint();
    db_.CommitTrans();
    EXPECT_EQ(Labels(), "outer/kept/Please hold/again/Before names");

    // Each level has its own savepoint: rolling back the outer one while the
    // inner one's release is still queued undoes both writes and leaves the
    // transaction usable.
    db_.BeginTrans();
    db_.BeginSavepoint();
    Label(1, "outer undone");
    db_.BeginSavepoint();
    Label(2, "inner undone");
    db_.ReleaseSavepoint();
    db_.RollbackToSavepoint();
    EXPECT_TRUE(db_.InTransaction());
    Label(5, "after");
    db_.CommitTrans();
    EXPECT_EQ(Labels(), "outer/kept/Please hold/again/after");

    EXPECT_EQ(db_.Execute("Delete_DBN_PromptsNode", {"1", "1", "2"}), 9);
    EXPECT_EQ(db_.Execute("Delete_DBN_PromptsNode", {"1", "1", "2"}), 0);
    EXPECT_EQ(Prompts(), 0);
    EXPECT_EQ(Label(19, "nobody"), 0);
}

// A queued write travels with the next statements: it lands with the
// commit, goes with a savepoint rolled back (sent or not), runs at once
// outside a transaction, and fails as its own command.
TEST_F(Transactions, QueuedWritesTravelWithTheNextStatementsAndGoWithTheirRollback) {
    auto queueLabel = [&](int number, const std::string& text) {
        db_.QueueWrite({"Update_Node_General_Pool",
                        {text, "2001-01-01 00:00:00", "1", "1", "0", std::to_string(number)}});
    };
    const std::string before = Labels();
    db_.BeginTrans();
    queueLabel(1, "committed");
    db_.BeginSavepoint();
    queueLabel(2, "never sent");
    db_.RollbackToSavepoint();
    db_.BeginSavepoint();
    Label(3, "sent");
    queueLabel(4, "queued after");
    db_.RollbackToSavepoint();
    db_.CommitTrans();
    EXPECT_EQ(Labels(), "committed" + before.substr(before.find('/')));

    queueLabel(5, "at once");
    EXPECT_EQ(root_.QueryText("SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 1 "
                              "AND NodeTypeID = 0 AND NodeNumber = 5"),
              "at once");

    db_.BeginTrans();
    db_.QueueWrite({"Add_DBN_PromptsNode", {"1", "1", "1", "0", "1", "2", "MSG"}});
    try {
        db_.CommitTrans();
        ADD_FAILURE() << "a queued duplicate row was committed";
    } catch (const ComponentError&) {
        db_.RollbackTrans();
    }
    EXPECT_EQ(Prompts(), 9);
}

TEST_F(Transactions, ObserverReportsCommandsReadsAndStepsUntilCleared) {
    // A row set made before the observer is set reports its reads too.
    RowSet& rows = db_.Recordset("Get_Description");
    using Step = DataBaseStep;
    std::vector<Step> steps;
    std::string details;  // command, column and arguments of each step
    db_.SetObserver([&](const DataBaseEvent& event) {
        steps.push_back(event.step);
        details += std::string(event.command);
        details += event.column.empty() ? "" : "." + std::string(event.column);
        for (const std::string& arg : event.args ? *event.args : std::vector<std::string>{}) {
            details += " " + arg;
        }
        details += "|";
    });
    db_.Execute("Get_Description", {"1", "1", "0", "4"});
    EXPECT_EQ(rows.Field("NodeDescription").ToText(), "Goodbye");
    rows.MoveNext();
    EXPECT_TRUE(rows.Eof());
    rows.Close();
    db_.BeginTrans();
    db_.BeginSavepoint();
    db_.RollbackToSavepoint();
    db_.CommitTrans();
    EXPECT_EQ(steps, (std::vector<Step>{Step::Execute, Step::Field, Step::MoveNext, Step::Eof,
                                        Step::Close, Step::BeginTrans, Step::BeginSavepoint,
                                        Step::RollbackToSavepoint, Step::CommitTrans}));
    EXPECT_EQ(details,
              "Get_Description 1 1 0 4|Get_Description.NodeDescription|Get_Description|"
              "Get_Description|Get_Description|||||");

    db_.SetObserver({});
    db_.Execute("Get_Description", {"1", "1", "0", "4"});
    rows.Close();
    EXPECT_EQ(steps.size(), 9u);
}

}  // namespace
}  // namespace dbn
