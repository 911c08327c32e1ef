// Savepoints inside a transaction, and the observer that reports a
// connection's work step by step.

#include "database/database.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace dbn {
namespace {

using testing::TempDataRoot;

// Labels the pool row of message node `number` in partition 1.
void Label(DataBase& db, int number, const std::string& text) {
    EXPECT_EQ(db.Execute("Update_Node_General_Pool",
                         {text, "2001-01-01 00:00:00", "1", "1", "0", std::to_string(number)}),
              1);
}

std::string LabelOf(const TempDataRoot& root, int number) {
    return root.QueryText(
        "SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 1 AND NodeTypeID = 0 AND "
        "NodeNumber = " +
        std::to_string(number));
}

TEST(Savepoints, UndoOnlyTheirOwnWorkInnermostFirst) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase db;
    db.BeginTrans();
    Label(db, 1, "outer");
    db.BeginSavepoint();
    Label(db, 2, "kept");
    db.BeginSavepoint();
    Label(db, 3, "undone");
    db.RollbackToSavepoint();
    db.ReleaseSavepoint();
    EXPECT_TRUE(db.InTransaction());
    db.BeginSavepoint();
    Label(db, 4, "again");
    db.ReleaseSavepoint();
    db.CommitTrans();

    EXPECT_EQ(
        LabelOf(root, 1) + "/" + LabelOf(root, 2) + "/" + LabelOf(root, 3) + "/" + LabelOf(root, 4),
        "outer/kept/Please hold/again");

    // A savepoint kept inside a transaction that rolls back is gone with it.
    db.BeginTrans();
    db.BeginSavepoint();
    Label(db, 5, "lost");
    db.ReleaseSavepoint();
    db.RollbackTrans();
    EXPECT_EQ(LabelOf(root, 5), "Before names");
}

const char* Name(DataBaseStep step) {
    switch (step) {
        case DataBaseStep::Execute:
            return "Execute";
        case DataBaseStep::Eof:
            return "Eof";
        case DataBaseStep::Field:
            return "Field";
        case DataBaseStep::MoveNext:
            return "MoveNext";
        case DataBaseStep::MoveLast:
            return "MoveLast";
        case DataBaseStep::Close:
            return "Close";
        case DataBaseStep::BeginTrans:
            return "BeginTrans";
        case DataBaseStep::CommitTrans:
            return "CommitTrans";
        case DataBaseStep::RollbackTrans:
            return "RollbackTrans";
        case DataBaseStep::BeginSavepoint:
            return "BeginSavepoint";
        case DataBaseStep::ReleaseSavepoint:
            return "ReleaseSavepoint";
        case DataBaseStep::RollbackToSavepoint:
            return "RollbackToSavepoint";
    }
    return "?";
}

TEST(Observer, ReportsCommandsReadsAndTransactionStepsUntilCleared) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase db;
    // A row set made before the observer is set reports its reads too.
    RowSet& rows = db.Recordset("Get_Description");
    std::vector<std::string> seen;
    db.SetObserver([&seen](const DataBaseEvent& event) {
        std::string line = std::string(Name(event.step)) + " " + std::string(event.command) +
                           (event.column.empty() ? "" : "." + std::string(event.column));
        for (const std::string& arg :
             event.args != nullptr ? *event.args : std::vector<std::string>{}) {
            line += " " + arg;
        }
        seen.push_back(line);
    });
    db.Execute("Get_Description", {"1", "1", "0", "4"});
    EXPECT_EQ(rows.Field("NodeDescription").ToText(), "Goodbye");
    rows.MoveNext();
    EXPECT_TRUE(rows.Eof());
    rows.Close();
    db.BeginTrans();
    db.BeginSavepoint();
    db.RollbackToSavepoint();
    db.CommitTrans();
    EXPECT_EQ(seen, (std::vector<std::string>{
                        "Execute Get_Description 1 1 0 4", "Field Get_Description.NodeDescription",
                        "MoveNext Get_Description", "Eof Get_Description", "Close Get_Description",
                        "BeginTrans ", "BeginSavepoint ", "RollbackToSavepoint ", "CommitTrans "}));

    seen.clear();
    db.SetObserver({});
    db.Execute("Get_Description", {"1", "1", "0", "4"});
    rows.Close();
    EXPECT_TRUE(seen.empty());
}

}  // namespace
}  // namespace dbn
