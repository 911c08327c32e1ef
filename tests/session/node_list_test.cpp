// The node list's model: partitions, rows, missing targets counted as the
// referenced-node check finds them, the filter, and new nodes from the template.
#include "session_support.h"

#include "database/database.h"
#include "session/node_list.h"

#include <deque>

namespace dbn::testing {
namespace {

using session::NodeList;
using session::NodeListRow;
using session::PartitionKey;

using NodeListTest = SessionTest;

TEST_F(NodeListTest, ListsPartitionsAndTheirNodesWithTheTemplateMarked) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase db;
    NodeList list(db);
    EXPECT_EQ(list.Partitions(), (std::vector<PartitionKey>{{1, 1}, {1, 2}}));
    const std::vector<NodeListRow> rows = list.Nodes({1, 1});
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_TRUE(rows[0].isTemplate);
    EXPECT_EQ(rows[1].number, 1);
    EXPECT_EQ(rows[1].label, "Staff directory");
    EXPECT_EQ(rows[1].method, "Custom");
    EXPECT_EQ(rows[2].method, "Default Last Name");
    EXPECT_EQ(rows[2].modified, "2024-03-04 09:15:00");
    EXPECT_FALSE(rows[2].isTemplate);
    EXPECT_EQ(list.HighestNodeNumber({1, 2}), 10);
}

// The Reachable column is the directory check of each stored node; a node
// whose directory node is missing has no count and does not stop the list.
TEST_F(NodeListTest, ReachableCountsComeFromEachNodesDirectoryCheck) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    root.Exec(
        "UPDATE Detail_DIR SET LastName = '--' WHERE PartID = 1 AND NodeMasterID = 1 AND "
        "SequenceNo = 2;"
        "UPDATE Node_DBN SET DirectoryNodeNumber = 9 WHERE PartID = 1 AND NodeNumber = 2");
    DataBase db;
    const std::vector<NodeListRow> rows = NodeList(db).Nodes({1, 1});
    ASSERT_EQ(rows.size(), 3u);
    ASSERT_TRUE(rows[1].reachable.has_value());
    EXPECT_EQ(rows[1].reachable->reachable, 4);
    EXPECT_EQ(rows[1].reachable->total, 5);
    EXPECT_FALSE(rows[2].reachable.has_value());
}

// Every node's count equals the questions the check asks before a save of
// the node as loaded, with some of the demo's targets gone.
TEST_F(NodeListTest, MissingTargetsAreWhatTheReferencedNodeCheckAsksAbout) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    root.Exec(
        "DELETE FROM Node_General_Pool WHERE NodeTypeID = 0 AND NodeNumber IN (2, 4, 7);"
        "DELETE FROM Node_General_Pool WHERE NodeTypeID = 4 AND NodeNumber = 1;"
        "UPDATE Node_DBN SET AbortNodeTypeID = 817 WHERE NodeNumber = 2");
    DataBase db;
    NodeList list(db);
    int counted = 0;
    for (const PartitionKey key : list.Partitions()) {
        for (const NodeListRow& row : list.Nodes(key)) {
            services.confirmations.clear();
            services.confirmAnswers = std::deque<long>(20, 7);  // skip every node
            Open(key.partition, row.number,
                 [&](form::GUI& gui) { Rules(gui).CheckForUnReferencedNodes(); });
            EXPECT_EQ(row.missingTargets, static_cast<int>(services.confirmations.size()))
                << "node " << key.partition << "/" << row.number;
            counted += row.missingTargets;
        }
    }
    EXPECT_GT(counted, 3);
}

TEST_F(NodeListTest, FilterKeepsRowsWhoseNumberOrLabelHoldsTheText) {
    std::vector<NodeListRow> rows(3);
    rows[0].number = 1;
    rows[0].label = "Staff directory";
    rows[1].number = 12;
    rows[1].label = "Sales";
    rows[2].number = 2;
    rows[2].label = "Night";
    const struct {
        const char* text;
        std::vector<std::int16_t> kept;
    } cases[] = {{"", {1, 12, 2}}, {"1", {1, 12}}, {"SAL", {12}}, {"dir", {1}}, {"x", {}}};
    for (const auto& filterCase : cases) {
        std::vector<std::int16_t> kept;
        for (const NodeListRow& row : session::FilterNodeRows(rows, filterCase.text)) {
            kept.push_back(row.number);
        }
        EXPECT_EQ(kept, filterCase.kept) << filterCase.text;
    }
}

TEST_F(NodeListTest, NewNodeTakesOnlyAFreeNumberWithinTheLimitAndCopiesTheTemplate) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase db;
    NodeList list(db);
    const struct {
        const char* number;
        std::string refusal;
    } cases[] = {{"0", "The node number must be a whole number from 1 to 10, not \"0\"."},
                 {"11", "The node number must be a whole number from 1 to 10, not \"11\"."},
                 {"x", "The node number must be a whole number from 1 to 10, not \"x\"."},
                 {"5", "DBN 5 exists already."},
                 {"7", ""}};
    for (const auto& numberCase : cases) {
        EXPECT_EQ(list.RefusalOfNewNode({1, 2}, numberCase.number).value_or(""), numberCase.refusal)
            << numberCase.number;
    }
    list.CreateNode({1, 2}, 7);
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_DBN WHERE PartID = 2 AND "
                             "NodeNumber = 7"),
              "DBN template");
    EXPECT_EQ(root.QueryInt("SELECT COUNT(*) FROM Detail_DBN_Prompts WHERE PartID = 2 AND "
                            "NodeMasterID = 7"),
              9);
    EXPECT_EQ(root.QueryInt("SELECT COUNT(*) FROM Node_General_Pool WHERE PartID = 2 AND "
                            "NodeTypeID = 15 AND NodeNumber = 7"),
              1);
    EXPECT_EQ(list.RefusalOfNewNode({1, 2}, "7").value_or(""), "DBN 7 exists already.");

    root.Exec("DELETE FROM Node_DBN WHERE PartID = 2 AND NodeNumber = 0");
    EXPECT_EQ(list.RefusalOfNewNode({1, 2}, "8").value_or(""),
              "There is no template node DBN 0 in this partition to copy.");
}

}  // namespace
}  // namespace dbn::testing
