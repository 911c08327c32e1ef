// The generated large partition: its size, and that the editor can open,
// walk and save it without a word to the operator.
#include "support/bench_data.h"
#include "support/editor_run.h"

#include <gtest/gtest.h>

#include <string>

namespace dbn::bench {
namespace {

TEST(LargePartition, HoldsEveryNodeWithItsRowsAndLimits) {
    BenchDataRoot root(BenchDataRoot::Content::DemoAndLarge);
    auto count = [&root](const std::string& table, const std::string& where) {
        return QueryNumber(root.DatabasePath(), "SELECT count(*) FROM " + table +
                                                    " WHERE ConfigID = 1 AND PartID = 3" + where);
    };
    EXPECT_EQ(count("Node_DBN", " AND NodeNumber > 0"), kLargeNodeCount);
    EXPECT_EQ(count("Detail_DBN_Prompts", " AND NodeMasterID > 0"), 9 * kLargeNodeCount);
    EXPECT_EQ(count("Node_MSG", " AND NodeNumber > 0"), kLargeNodeCount);
    EXPECT_EQ(count("Node_General_Pool", " AND NodeTypeID IN (0, 15) AND NodeNumber > 0"),
              2 * kLargeNodeCount);
    // Node 0 of every type that can be copied, with its pool row.
    EXPECT_EQ(count("Node_General_Pool", " AND NodeNumber = 0"), 13);
    EXPECT_EQ(count("Detail_DIR", " AND NodeMasterID = 0"), 1);
    EXPECT_EQ(QueryNumber(root.DatabasePath(),
                          "SELECT count(*) FROM Node_Type_Max WHERE PartitionID = 3 AND "
                          "Max_Number = " +
                              std::to_string(kLargeNodeCount)),
              13);
    // The demo partitions are untouched.
    EXPECT_EQ(QueryNumber(root.DatabasePath(), "SELECT count(*) FROM Node_DBN WHERE PartID < 3"),
              5);
}

TEST(LargePartition, OpensWalksAndSavesWithoutAQuestion) {
    BenchDataRoot root(BenchDataRoot::Content::DemoAndLarge);
    BenchServices services;
    OpenEditor(services, kLargePartition, kLargeNodeCount - 1, [](form::GUI& gui, Business_Rules&) {
        EXPECT_EQ(gui.cmbNode.ListCount(), kLargeNodeCount);
        EXPECT_EQ(gui.lblRecordPosition.Caption(), "998 of 999");
        EXPECT_EQ(gui.cmbGreetingNumber.Text(), "998");
        gui.cmdNext_Click();
        EXPECT_EQ(gui.txtDescription.Text(), "Directory 999");
        EXPECT_EQ(gui.LVActions.ItemAt(1).SubItem(2), "MSG 1");
        gui.txtDescription.SetText("Last directory");
        gui.cmdApply_Click();
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    // Every reference exists: no node was offered for creation.
    EXPECT_TRUE(services.confirmations.empty());
    EXPECT_EQ(QueryNumber(root.DatabasePath(),
                          "SELECT count(*) FROM Node_General_Pool WHERE PartID = 3 AND "
                          "NodeNumber = 999 AND NodeDescription = 'Last directory'"),
              1);
}

}  // namespace
}  // namespace dbn::bench
