// The node list's model: partitions, rows, missing targets counted as the
// referenced-node check finds them, the filter, and new nodes from the template.
#include "session_support.h"

#include "database/database.h"
#include "session/nodes/node_list.h"

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

// Node 1 of partition 1 with every reference on a node of its own: MSG 101
// to 111 for the roles, MSG 121 to 123 for the confirmation rows, DIR 1.
// Removing one target's pool row makes exactly that reference missing.
class MissingTargetCountTest : public NodeListTest {
protected:
    struct Reference {
        const char* role;  // "" for a confirmation row or the directory
        int typeID;
        int number;
    };
    static constexpr Reference kReferences[] = {{"Greeting", 0, 101},
                                                {"ValidMatch", 0, 102},
                                                {"Abort", 0, 103},
                                                {"Star", 0, 104},
                                                {"Pound", 0, 105},
                                                {"Zero", 0, 106},
                                                {"FirstPrompt", 0, 107},
                                                {"SecondPrompt", 0, 108},
                                                {"Timeout", 0, 109},
                                                {"Invalid", 0, 110},
                                                {"BeforePrompt", 0, 111},
                                                {"AfterPrompt", 0, 112},
                                                {"ConfirmationExit", 0, 113},
                                                {"", 0, 121},
                                                {"", 0, 122},
                                                {"", 0, 123},
                                                {"", 16, 1}};

    void PlantDistinctTargets() {
        std::string sql =
            "UPDATE Node_DBN SET Method = 0, Confirm = 1, MaxMatch = 0, DirectoryNodeNumber = 1";
        for (const Reference& ref : kReferences) {
            if (*ref.role != '\0') {
                sql += std::string(", ") + ref.role + "NodeType = 'MSG', " + ref.role +
                       "NodeNumber = " + std::to_string(ref.number) + ", " + ref.role +
                       "NodeTypeID = 0";
            }
        }
        sql +=
            " WHERE PartID = 1 AND NodeNumber = 1;"
            "DELETE FROM Detail_DBN_Prompts WHERE PartID = 1 AND NodeMasterID = 1;";
        for (int row = 1; row <= 3; ++row) {
            sql +=
                "INSERT INTO Detail_DBN_Prompts (ConfigID, PartID, PromptNumber, "
                "PromptNodeTypeID, PromptNodeNumber, NodeMasterID, PromptNodeType) VALUES (1, "
                "1, " +
                std::to_string(row) + ", 0, " + std::to_string(120 + row) + ", 1, 'MSG');";
        }
        for (const Reference& ref : kReferences) {
            if (ref.typeID == 0) {
                sql += Restoration(ref);
            }
        }
        root.Exec(sql);
    }
    static std::string Restoration(const Reference& ref) {
        return "INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber, "
               "NodeType, NodeDescription, DateModified) VALUES (1, 1, " +
               std::to_string(ref.typeID) + ", " + std::to_string(ref.number) + ", '" +
               (ref.typeID == 0 ? "MSG" : "DIR") + "', 'target', '2024-03-04 09:15:00');";
    }
    static std::string Removal(const Reference& ref) {
        return "DELETE FROM Node_General_Pool WHERE PartID = 1 AND NodeTypeID = " +
               std::to_string(ref.typeID) + " AND NodeNumber = " + std::to_string(ref.number) + ";";
    }
    int CountOfNodeOne() {
        DataBase db;
        const std::vector<NodeListRow> rows = NodeList(db).Nodes({1, 1});
        return rows.at(1).missingTargets;
    }

    TempDataRoot root{TempDataRoot::Content::Demo};
};

TEST_F(MissingTargetCountTest, EachReferenceMissingAloneCountsOnce) {
    PlantDistinctTargets();
    EXPECT_EQ(CountOfNodeOne(), 0);
    for (const Reference& ref : kReferences) {
        root.Exec(Removal(ref));
        EXPECT_EQ(CountOfNodeOne(), 1) << ref.role << " " << ref.typeID << " " << ref.number;
        root.Exec(Restoration(ref));
    }
}

TEST_F(MissingTargetCountTest, EveryReferenceMissingCountsEach) {
    PlantDistinctTargets();
    std::string sql;
    for (const Reference& ref : kReferences) {
        sql += Removal(ref);
    }
    root.Exec(sql);
    EXPECT_EQ(CountOfNodeOne(), static_cast<int>(std::size(kReferences)));
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
