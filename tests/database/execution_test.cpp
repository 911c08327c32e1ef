// Executing commands: text arguments, changed-row counts and transactions.

#include "database/database.h"
#include "temp_database.h"

#include <gtest/gtest.h>

namespace dbn {
namespace {

using testing::TempDataRoot;

TEST(Execution, TextArgumentsMeetIntegerColumns) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase db;
    ASSERT_EQ(db.Execute("Get_DBN_Node", {"1", "2", "5", "15"}), 1);
    RowSet& node = db.Recordset("Get_DBN_Node");
    EXPECT_EQ(node.Field("NodeNumber").ToInt16(), 5);
    EXPECT_EQ(node.Field("NodeDescription").ToText(), "Support directory");
    // Stored whole numbers come back as integers, not as text.
    EXPECT_TRUE(std::holds_alternative<std::int64_t>(node.Field("MaxMatch").Raw()));
    node.Close();

    EXPECT_EQ(db.Execute("Add_DBN_PromptsNode", {"1", "2", "12", "0", "3", "5", "MSG"}), 1);
    EXPECT_EQ(root.QueryText("SELECT typeof(PromptNumber) || ',' || typeof(PromptNodeType) FROM "
                             "Detail_DBN_Prompts WHERE PartID = 2 AND NodeMasterID = 5 AND "
                             "PromptNumber = 12"),
              "integer,text");
    EXPECT_EQ(root.QueryInt("SELECT PromptNumber + PromptNodeNumber FROM Detail_DBN_Prompts "
                            "WHERE PartID = 2 AND NodeMasterID = 5 AND PromptNumber = 12"),
              15);
}

TEST(Execution, ActionCommandsAnswerTheRowsTheyChanged) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase db;
    EXPECT_EQ(db.Execute("Delete_DBN_PromptsNode", {"1", "1", "1"}), 9);
    EXPECT_EQ(db.Execute("Delete_DBN_PromptsNode", {"1", "1", "1"}), 0);
    // Updating a node that does not exist changes nothing and is no error.
    EXPECT_EQ(db.Execute("Update_Node_General_Pool",
                         {"Nobody", "2024-01-01 00:00:00", "1", "1", "15", "19"}),
              0);
    EXPECT_EQ(db.Execute("Update_Node_General_Pool",
                         {"Front desk", "2024-01-01 00:00:00", "1", "1", "15", "1"}),
              1);
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 1 AND "
                             "NodeTypeID = 15 AND NodeNumber = 1"),
              "Front desk");
}

// The save writes Node_DBN in two halves; together they set every column
// but the key, each parameter landing in its own column.
TEST(Execution, TheTwoUpdateHalvesSetEveryNonKeyColumn) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase db;
    std::vector<std::string> part1;
    for (int i = 1; i <= 35; ++i) {
        part1.push_back(std::to_string(100 + i));
    }
    part1.insert(part1.end(), {"1", "1", "15", "2"});
    std::vector<std::string> part2;
    for (int i = 1; i <= 32; ++i) {
        part2.push_back(std::to_string(200 + i));
    }
    part2.insert(part2.end(), {"1", "1", "15", "2"});
    EXPECT_EQ(db.Execute("Update_DBN_Node_Part1", part1), 1);
    EXPECT_EQ(db.Execute("Update_DBN_Node_Part2", part2), 1);

    ASSERT_EQ(db.Execute("Get_DBN_Node", {"1", "1", "2", "15"}), 1);
    RowSet& node = db.Recordset("Get_DBN_Node");
    EXPECT_EQ(node.Field("NodeDescription").ToText(), "101");
    EXPECT_EQ(node.Field("SecondMinDigits").ToInt16(), 131);
    EXPECT_EQ(node.Field("SecondPromptNodeTypeID").ToInt16(), 135);
    EXPECT_EQ(node.Field("TimeoutNodeType").ToText(), "201");
    EXPECT_EQ(node.Field("Reserved10").ToInt16(), 231);
    EXPECT_EQ(node.Field("NodeType").ToText(), "232");
    EXPECT_EQ(node.Field("NodeNumber").ToInt16(), 2);
    node.Close();
}

TEST(Execution, TransactionsCommitOrRollBack) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase db;
    EXPECT_FALSE(db.InTransaction());
    db.BeginTrans();
    EXPECT_TRUE(db.InTransaction());
    db.Execute("Delete_DBN_PromptsNode", {"1", "1", "2"});
    db.RollbackTrans();
    EXPECT_FALSE(db.InTransaction());
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM Detail_DBN_Prompts WHERE PartID = 1 AND "
                            "NodeMasterID = 2"),
              9);

    db.BeginTrans();
    db.Execute("Delete_DBN_PromptsNode", {"1", "1", "2"});
    db.CommitTrans();
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM Detail_DBN_Prompts WHERE PartID = 1 AND "
                            "NodeMasterID = 2"),
              0);
}

TEST(Execution, TwoConnectionsSeeEachOthersWrites) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase first;
    DataBase second;
    first.Execute("Update_Node_General_Pool", {"Renamed", "now", "1", "2", "15", "5"});
    ASSERT_EQ(second.Execute("Get_Description", {"1", "2", "15", "5"}), 1);
    EXPECT_EQ(second.Recordset("Get_Description").Field("NodeDescription").ToText(), "Renamed");
    second.Recordset("Get_Description").Close();
    EXPECT_EQ(first.ExecutedCount(), 1);
    EXPECT_EQ(second.ExecutedCount(), 1);
}

}  // namespace
}  // namespace dbn
