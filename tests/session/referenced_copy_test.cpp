// Creating a node from its type's template: the node row, its detail rows
// under the new master, and its pool row.

#include "save_support.h"

namespace dbn::testing {
namespace {

struct CopyCase {
    std::string typeID;
    int poolTypeID;
    std::string nodeTable;
    std::vector<std::string> detailTables;
};

class ReferencedCopyTest : public SavingTest, public ::testing::WithParamInterface<CopyCase> {};

TEST_P(ReferencedCopyTest, TemplateIsCopiedUnderTheNewNumber) {
    const CopyCase& copy = GetParam();
    Edit(1, 1,
         [&](form::GUI&, Business_Rules& rules) { rules.AutoCreateNode("0", "37", copy.typeID); });
    EXPECT_EQ(Count(copy.nodeTable, Where(1, "NodeNumber", 37)), 1);
    for (const std::string& detail : copy.detailTables) {
        const long long copied = Count(detail, Where(1, "NodeMasterID", 37));
        EXPECT_GT(copied, 0) << detail;
        EXPECT_EQ(copied, Count(detail, Where(1, "NodeMasterID", 0))) << detail;
    }
    // The pool row takes its type code and description from the template's.
    const std::string pool =
        "SELECT NodeType || NodeDescription FROM Node_General_Pool WHERE "
        "PartID = 1 AND NodeTypeID = " +
        std::to_string(copy.poolTypeID);
    EXPECT_EQ(root.QueryText(pool + " AND NodeNumber = 37"),
              root.QueryText(pool + " AND NodeNumber = 0"));
    if (copy.poolTypeID == 0) {
        EXPECT_EQ(root.QueryText("SELECT OrvFilename FROM Node_MSG" + Where(1, "NodeNumber", 37)),
                  "P01M037.wav");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Types, ReferencedCopyTest,
    ::testing::Values(CopyCase{"0", 0, "Node_MSG", {}}, CopyCase{"817", 0, "Node_MSG", {}},
                      CopyCase{"818", 0, "Node_MSG", {}},
                      CopyCase{"1", 1, "Node_CMD", {"Detail_CMD"}},
                      CopyCase{"2", 2, "Node_TIME", {"Detail_TIME"}},
                      CopyCase{"3", 3, "Node_DATE", {"Detail_DATE"}},
                      CopyCase{"4", 4, "Node_XFER", {}},
                      CopyCase{"6", 6, "Node_DTMF", {"Detail_DTMF_Prompts", "Detail_DTMF_Action"}},
                      CopyCase{"7", 7, "Node_VOX", {"Detail_VOX_Prompts", "Detail_VOX_Action"}},
                      CopyCase{"8", 8, "Node_LIST", {"Detail_LIST"}},
                      CopyCase{"9", 9, "Node_AUTO", {"Detail_AUTO_Prompts", "Detail_AUTO_Action"}},
                      CopyCase{"12", 12, "Node_PAAS", {"Detail_PAAS"}},
                      CopyCase{"13", 13, "Node_TABLE", {"Detail_TABLE_Action"}},
                      CopyCase{"15", 15, "Node_DBN", {"Detail_DBN_Prompts"}},
                      CopyCase{"16", 16, "Node_DIR", {"Detail_DIR"}}));

TEST_F(SavingTest, UnknownTypeCopiesNothing) {
    const long long rows = Count("Node_General_Pool", "");
    Edit(1, 1, [&](form::GUI&, Business_Rules& rules) { rules.AutoCreateNode("0", "37", "5"); });
    EXPECT_EQ(Count("Node_General_Pool", ""), rows);
}

}  // namespace
}  // namespace dbn::testing
