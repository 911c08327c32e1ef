// Creating configuration databases, and the facts of the demo content.

#include "core/component_error.h"
#include "database/database_errors.h"
#include "database/database_setup.h"
#include "temp_database.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace dbn {
namespace {

namespace fs = std::filesystem;
using testing::TempDataRoot;

TEST(Setup, RefusesToOverwriteUnlessAskedToReplace) {
    TempDataRoot root;
    std::ofstream(root.DatabasePath(), std::ios::trunc) << "keep me";
    try {
        CreateConfigurationDatabase(root.DatabasePath(), true);
        ADD_FAILURE() << "an existing file was overwritten";
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), kErrDatabaseExists);
        EXPECT_NE(error.Description().find(root.DatabasePath()), std::string::npos);
    }
    EXPECT_EQ(fs::file_size(root.DatabasePath()), 7u);

    CreateConfigurationDatabase(root.DatabasePath(), true, ExistingDatabase::Replace);
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM Node_DBN"), 5);
    // Nothing of the build is left beside the database.
    const fs::path folder = fs::path(root.DatabasePath()).parent_path();
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);

    fs::remove(root.DatabasePath());
    fs::create_directory(root.DatabasePath());
    EXPECT_THROW(CreateConfigurationDatabase(root.DatabasePath(), false, ExistingDatabase::Replace),
                 ComponentError);
    EXPECT_TRUE(fs::is_directory(root.DatabasePath()));
}

TEST(Setup, EmptyDatabaseHasTheSchemaOnlyInGroupWritableFoldersWhateverTheMask) {
    TempDataRoot root;
    const fs::path file = fs::path(root.Root()) / "a" / "b" / "NewDB.mdb";
    const mode_t previous = ::umask(077);
    CreateConfigurationDatabase(file.string(), false);
    ::umask(previous);
    using fs::perms;
    const perms folder =
        perms::owner_all | perms::group_all | perms::others_read | perms::others_exec;
    EXPECT_EQ(fs::status(file.parent_path()).permissions(), folder);
    EXPECT_EQ(fs::status(file.parent_path().parent_path()).permissions(), folder);
    EXPECT_EQ(fs::status(file).permissions(), perms::owner_read | perms::owner_write |
                                                  perms::group_read | perms::group_write |
                                                  perms::others_read);

    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM sqlite_schema WHERE type = 'table'"), 32);
    EXPECT_EQ(root.QueryText("SELECT count(*) || group_concat(CASE WHEN cid IN (0, 5, 70) THEN "
                             "name END) FROM pragma_table_info('Node_DBN')"),
              "71ConfigID,NodeDescription,Reserved10");
    // Every whole-number column of the node row converts text to integers:
    // all but NodeType, NodeDescription and thirteen reference type codes.
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM pragma_table_info('Node_DBN') WHERE type = "
                            "'INTEGER'"),
              71 - 2 - 13);
    EXPECT_EQ(root.QueryInt("SELECT (SELECT count(*) FROM SR_Node_Type_Names) + (SELECT count(*) "
                            "FROM Node_General_Pool)"),
              0);
}

class DemoContent : public ::testing::Test {
protected:
    TempDataRoot root_{TempDataRoot::Content::Demo};
};

TEST_F(DemoContent, TypeCatalogueRulesLimitsAndNodes) {
    EXPECT_EQ(root_.QueryText("SELECT group_concat(ID || ' ' || English_Name, ', ') FROM "
                              "(SELECT * FROM SR_Node_Type_Names ORDER BY ID)"),
              "0 MSG, 1 CMD, 2 TIME, 3 DATE, 4 XFER, 6 DTMF, 7 VOX, 8 LIST, 9 AUTO, 12 PAAS, "
              "13 TABLE, 15 DBN, 16 DIR, 814 NOOP, 816 GOTO, 817 M_ON, 818 M_OFF, 999 HANGUP");
    EXPECT_EQ(root_.QueryText("SELECT group_concat(Set_ID || ':' || Child_Node_Type_ID) FROM "
                              "(SELECT * FROM SR_Node_Type_can_contain_Node_Type WHERE "
                              "Parent_Node_Type_ID = 15 ORDER BY Set_ID, Child_Node_Type_ID)"),
              "1:0,1:8,1:814,2:0,2:1,2:2,2:3,2:4,2:6,2:7,2:8,2:9,2:12,2:13,2:15,2:814,2:817,2:818");
    // Partition 2 offers some types with a limit of 0, which show as unavailable.
    EXPECT_EQ(root_.QueryText("SELECT group_concat(NodeType_ID) FROM (SELECT NodeType_ID FROM "
                              "Node_Type_Max WHERE PartitionID = 2 AND Max_Number = 0 ORDER BY 1)"),
              "1,2,7,8,12");
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Node_Type_Max WHERE PartitionID = 1 AND "
                             "Max_Number > 0"),
              13);
    EXPECT_EQ(root_.QueryText("SELECT group_concat(PartID || ':' || NodeNumber || ' ' || "
                              "NodeDescription, ', ') FROM (SELECT * FROM Node_DBN ORDER BY "
                              "PartID, NodeNumber)"),
              "1:0 DBN template, 1:1 Staff directory, 1:2 Sales directory, 2:0 DBN template, "
              "2:5 Support directory");
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Detail_DBN_Prompts"), 5 * 9);
}

// Every reference a dial-by-name node holds, other than to the NOOP type,
// names a node of the general pool, but for MSG 12 of partition 2, left for
// the end-to-end request to create.
TEST_F(DemoContent, EveryReferenceExistsInThePool) {
    std::string references =
        "SELECT PartID, 16 AS T, DirectoryNodeNumber AS N FROM Node_DBN UNION ALL SELECT "
        "PartID, PromptNodeTypeID, PromptNodeNumber FROM Detail_DBN_Prompts";
    for (const char* role :
         {"Greeting", "ValidMatch", "Abort", "Star", "Pound", "Zero", "FirstPrompt", "SecondPrompt",
          "Timeout", "Invalid", "BeforePrompt", "AfterPrompt", "ConfirmationExit"}) {
        references += std::string(" UNION ALL SELECT PartID, ") + role + "NodeTypeID, " + role +
                      "NodeNumber FROM Node_DBN";
    }
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM (" + references +
                             ") AS r WHERE T <> 814 AND NOT EXISTS (SELECT 1 FROM "
                             "Node_General_Pool AS p WHERE p.PartID = r.PartID AND "
                             "p.NodeTypeID = r.T AND p.NodeNumber = r.N)"),
              0);
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Node_General_Pool WHERE PartID = 2 AND "
                             "NodeTypeID = 0 AND NodeNumber = 12"),
              0);
    // The labels of one partition tell its nodes apart.
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM (SELECT PartID, NodeDescription FROM "
                             "Node_General_Pool GROUP BY 1, 2 HAVING count(*) > 1)"),
              0);
}

}  // namespace
}  // namespace dbn
