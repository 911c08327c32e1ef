// Creating configuration databases, and the facts of the demo content.

#include "core/component_error.h"
#include "database/database.h"
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
    EXPECT_EQ(std::distance(fs::directory_iterator(fs::path(root.DatabasePath()).parent_path()),
                            fs::directory_iterator()),
              1);

    fs::remove(root.DatabasePath());
    fs::create_directory(root.DatabasePath());
    EXPECT_THROW(CreateConfigurationDatabase(root.DatabasePath(), false, ExistingDatabase::Replace),
                 ComponentError);
    EXPECT_TRUE(fs::is_directory(root.DatabasePath()));
}

TEST(Setup, FoldersAreGroupWritableWhateverTheMask) {
    TempDataRoot root;
    const fs::path file = fs::path(root.Root()) / "a" / "b" / "NewDB.mdb";
    const mode_t previous = ::umask(077);
    CreateConfigurationDatabase(file.string(), false);
    ::umask(previous);
    const auto mode = [](const fs::path& path) { return fs::status(path).permissions(); };
    const fs::perms folder = fs::perms::owner_all | fs::perms::group_all | fs::perms::others_read |
                             fs::perms::others_exec;
    EXPECT_EQ(mode(file.parent_path()), folder);
    EXPECT_EQ(mode(file.parent_path().parent_path()), folder);
    EXPECT_EQ(mode(file), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read |
                              fs::perms::group_write | fs::perms::others_read);
}

TEST(Setup, EmptyDatabaseHasTheSchemaOnly) {
    TempDataRoot root;
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM sqlite_schema WHERE type = 'table'"), 32);
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM pragma_table_info('Node_DBN')"), 71);
    EXPECT_EQ(root.QueryText("SELECT group_concat(name) FROM pragma_table_info('Node_DBN') "
                             "WHERE cid IN (0, 5, 70)"),
              "ConfigID,NodeDescription,Reserved10");
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM SR_Node_Type_Names"), 0);
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM Node_General_Pool"), 0);
    // Every whole-number column of the node row converts text to integers.
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM pragma_table_info('Node_DBN') WHERE type = "
                            "'INTEGER'"),
              71 - 2 - 13);  // NodeType, NodeDescription and thirteen reference type codes
}

class DemoContent : public ::testing::Test {
protected:
    TempDataRoot root_{TempDataRoot::Content::Demo};
};

TEST_F(DemoContent, TypeCatalogueRulesAndLimits) {
    EXPECT_EQ(root_.QueryText("SELECT group_concat(ID || ' ' || English_Name, ', ') FROM "
                              "(SELECT * FROM SR_Node_Type_Names ORDER BY ID)"),
              "0 MSG, 1 CMD, 2 TIME, 3 DATE, 4 XFER, 6 DTMF, 7 VOX, 8 LIST, 9 AUTO, 12 PAAS, "
              "13 TABLE, 15 DBN, 16 DIR, 814 NOOP, 816 GOTO, 817 M_ON, 818 M_OFF, 999 HANGUP");
    const auto children = [this](int set) {
        return root_.QueryText(
            "SELECT group_concat(Child_Node_Type_ID, ',') FROM (SELECT Child_Node_Type_ID FROM "
            "SR_Node_Type_can_contain_Node_Type WHERE Parent_Node_Type_ID = 15 AND Set_ID = " +
            std::to_string(set) + " ORDER BY 1)");
    };
    EXPECT_EQ(children(1), "0,8,814");
    EXPECT_EQ(children(2), "0,1,2,3,4,6,7,8,9,12,13,15,814,817,818");
    EXPECT_EQ(root_.QueryText("SELECT group_concat(NodeType_ID, ',') FROM (SELECT NodeType_ID "
                              "FROM Node_Type_Max WHERE PartitionID = 2 AND Max_Number = 0 "
                              "ORDER BY 1)"),
              "1,2,7,8,12");
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Node_Type_Max WHERE PartitionID = 1 AND "
                             "Max_Number > 0"),
              13);
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Node_Type_Max WHERE NodeType_ID >= 814"), 0);
}

TEST_F(DemoContent, DialByNameNodes) {
    EXPECT_EQ(root_.QueryText("SELECT group_concat(PartID || ':' || NodeNumber || ' ' || "
                              "NodeDescription, ', ') FROM (SELECT * FROM Node_DBN ORDER BY "
                              "PartID, NodeNumber)"),
              "1:0 DBN template, 1:1 Staff directory, 1:2 Sales directory, 2:0 DBN template, "
              "2:5 Support directory");
    EXPECT_EQ(root_.QueryText("SELECT Method || Confirm || MaxMatch || GreetingNodeType || "
                              "GreetingNodeNumber || ValidMatchNodeType || ValidMatchNodeNumber "
                              "|| AbortNodeType || AbortNodeNumber || StarNodeTypeID FROM "
                              "Node_DBN WHERE PartID = 1 AND NodeNumber = 1"),
              "013MSG1XFER1MSG4814");
    EXPECT_EQ(root_.QueryText("SELECT Method || Confirm || FirstLanguage || SecondLanguage FROM "
                              "Node_DBN WHERE PartID = 1 AND NodeNumber = 2"),
              "1012");
    EXPECT_EQ(root_.QueryText("SELECT Method || Confirm || MaxMatch || AbortNodeType || "
                              "AbortNodeNumber FROM Node_DBN WHERE PartID = 2 AND NodeNumber = 5"),
              "012MSG4");
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Detail_DBN_Prompts"), 5 * 9);
}

// Every reference a dial-by-name node holds, other than to the NOOP type,
// names a node of the general pool; MSG 12 of partition 2 is left for the
// end-to-end request to create.
TEST_F(DemoContent, EveryReferenceExistsInThePool) {
    std::string references;
    for (const char* role :
         {"Greeting", "ValidMatch", "Abort", "Star", "Pound", "Zero", "FirstPrompt", "SecondPrompt",
          "Timeout", "Invalid", "BeforePrompt", "AfterPrompt", "ConfirmationExit"}) {
        references += std::string(references.empty() ? "" : " UNION ALL ") + "SELECT PartID, " +
                      role + "NodeTypeID AS T, " + role + "NodeNumber AS N FROM Node_DBN";
    }
    references += " UNION ALL SELECT PartID, 16, DirectoryNodeNumber FROM Node_DBN";
    references +=
        " UNION ALL SELECT PartID, PromptNodeTypeID, PromptNodeNumber FROM "
        "Detail_DBN_Prompts";
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM (" + references +
                             ") AS r WHERE T <> 814 AND NOT EXISTS (SELECT 1 FROM "
                             "Node_General_Pool AS p WHERE p.PartID = r.PartID AND "
                             "p.NodeTypeID = r.T AND p.NodeNumber = r.N)"),
              0);
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Node_General_Pool WHERE PartID = 2 AND "
                             "NodeTypeID = 0 AND NodeNumber = 12"),
              0);
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Detail_DIR WHERE NodeMasterID = 1"), 10);
    // The labels of one partition tell its nodes apart.
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM (SELECT PartID, NodeDescription FROM "
                             "Node_General_Pool GROUP BY 1, 2 HAVING count(*) > 1)"),
              0);
}

// Each copyable type's template copies under a new number with its detail
// rows and a pool row, as the creation of a missing node does.
TEST_F(DemoContent, TemplatesCopyUnderANewNumber) {
    const std::vector<std::pair<int, std::vector<std::string>>> copies = {
        {1, {"Duplicate_CMD_NODE", "Duplicate_Detail_CMD_NODE"}},
        {2, {"Duplicate_TIME_Node", "Duplicate_Detail_TIME_Node"}},
        {3, {"Duplicate_DATE_Node", "Duplicate_Detail_DATE_Node"}},
        {4, {"Duplicate_XFER_Node"}},
        {6,
         {"Duplicate_DTMF_Node", "Duplicate_DetailPrompts_DTMF_Node",
          "Duplicate_DetailActions_DTMF_Node"}},
        {7,
         {"Duplicate_VOX_Node", "Duplicate_DetailPrompts_VOX_Node",
          "Duplicate_DetailActions_VOX_Node"}},
        {8, {"Duplicate_LIST_Node", "Duplicate_Detail_LIST_Node"}},
        {9,
         {"Duplicate_AUTO_Node", "Duplicate_DetailPrompts_AUTO_Node",
          "Duplicate_DetailActions_AUTO_Node"}},
        {12, {"Duplicate_PAAS_Node", "Duplicate_Detail_PAAS_Node"}},
        {13, {"Duplicate_TABLE_Node", "Duplicate_DetailActions_TABLE_Node"}},
        {15, {"Duplicate_DBN_Node", "Duplicate_DetailPrompts_DBN_Node"}},
        {16, {"Duplicate_DIR_Node", "Duplicate_Detail_DIR_Node"}},
    };
    DataBase db;
    for (const std::string partition : {"1", "2"}) {
        EXPECT_EQ(db.Execute("Duplicate_MSG_NODE",
                             {"12", "P0" + partition + "M012.wav", "1", partition, "0"}),
                  1);
        EXPECT_EQ(db.Execute("Duplicate_Node_In_General_Pool",
                             {"12", "2024-05-06 10:00:00", "1", partition, "0", "0"}),
                  1);
        for (const auto& [type, commands] : copies) {
            SCOPED_TRACE(partition + "/" + std::to_string(type));
            for (const std::string& command : commands) {
                EXPECT_GE(db.Execute(command, {"12", "1", partition, "0"}), 1) << command;
            }
            EXPECT_EQ(db.Execute(
                          "Duplicate_Node_In_General_Pool",
                          {"12", "2024-05-06 10:00:00", "1", partition, "0", std::to_string(type)}),
                      1);
        }
    }
    EXPECT_EQ(root_.QueryText("SELECT OrvFilename FROM Node_MSG WHERE PartID = 2 AND "
                              "NodeNumber = 12"),
              "P02M012.wav");
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Node_General_Pool WHERE NodeNumber = 12"), 26);
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Detail_DBN_Prompts WHERE NodeMasterID = 12"),
              18);
    EXPECT_EQ(root_.QueryInt("SELECT count(*) FROM Detail_DIR WHERE NodeMasterID = 12"), 2);
}

}  // namespace
}  // namespace dbn
