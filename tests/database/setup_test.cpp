// Creating configuration databases, and the facts of the demo content.

#include "database/database.h"
#include "database/database_errors.h"
#include "database/database_setup.h"
#include "error_of.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace dbn {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::TempDataRoot;

TEST(Setup, RefusesToOverwriteUnlessAskedToReplace) {
    TempDataRoot root;
    DBN_FILE_TEST_ONLY(root);
    const std::string path = root.DatabasePath();
    std::ofstream(path, std::ios::trunc) << "keep me";
    const ComponentError refused = ErrorOf([&] { CreateConfigurationDatabase(path, true); });
    EXPECT_EQ(refused.Number(), kErrDatabaseExists);
    EXPECT_NE(refused.Description().find(path), std::string::npos);
    EXPECT_EQ(fs::file_size(path), 7u);

    std::ofstream(path + ".bak", std::ios::trunc) << "an older backup";
    EXPECT_EQ(CreateConfigurationDatabase(path, true, ExistingDatabase::Replace), path + ".bak");
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM Node_DBN"), 5);
    // The previous file is kept whole beside it, in place of the older backup;
    // nothing of the build is left.
    EXPECT_EQ(fs::file_size(path + ".bak"), 7u);
    const fs::path folder = fs::path(path).parent_path();
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 2);

    fs::remove(path);
    fs::create_directory(path);
    for (const ExistingDatabase existing : {ExistingDatabase::Refuse, ExistingDatabase::Replace}) {
        const ComponentError notAFile =
            ErrorOf([&] { CreateConfigurationDatabase(path, false, existing); });
        EXPECT_EQ(notAFile.Number(), kErrDatabaseNotRegularFile);
        EXPECT_EQ(notAFile.Description(),
                  "The configuration database " + path + " is a folder, not a regular file.");
    }
    EXPECT_TRUE(fs::is_directory(path));
}

TEST(Setup, ReplacingLeavesADatabaseThatAnotherProgramIsWritingAlone) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DBN_FILE_TEST_ONLY(root);
    const std::string path = root.DatabasePath();
    DataBase writer(DatabaseTarget::SqliteFile(path));
    writer.BeginTrans();
    const ComponentError inUse =
        ErrorOf([&] { CreateConfigurationDatabase(path, false, ExistingDatabase::Replace); });
    EXPECT_EQ(inUse.Number(), kErrDatabaseInUse);
    EXPECT_EQ(inUse.Description(), "The configuration database " + path +
                                       " is in use by another program. Nothing was replaced.");
    writer.RollbackTrans();
    EXPECT_FALSE(fs::exists(path + ".bak"));
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM Node_DBN"), 5);
}

// Every whole-number column of the node row converts text to integers: all
// but NodeType, NodeDescription and thirteen reference type codes. A new
// database has no rows.
TEST(Setup, EmptyDatabaseHasTheSchemaOnly) {
    TempDataRoot root;
    DBN_FILE_TEST_ONLY(root);
    EXPECT_EQ(root.QueryText("SELECT count(*) || ' ' || sum(type = 'INTEGER') || ' ' || "
                             "((SELECT count(*) FROM SR_Node_Type_Names) + (SELECT count(*) FROM "
                             "Node_General_Pool)) FROM pragma_table_info('Node_DBN')"),
              "71 56 0");
}

// Every reference a dial-by-name node of the demo holds, other than to the
// NOOP type, names a node of the general pool, but for MSG 12 of partition
// 2, left for the end-to-end request to create; the labels of one partition
// tell its nodes apart.
TEST(Setup, DemoReferencesExistInThePool) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    std::string references =
        "SELECT PartID, 16 AS T, DirectoryNodeNumber AS N FROM Node_DBN UNION ALL SELECT "
        "PartID, PromptNodeTypeID, PromptNodeNumber FROM Detail_DBN_Prompts";
    for (const char* role :
         {"Greeting", "ValidMatch", "Abort", "Star", "Pound", "Zero", "FirstPrompt", "SecondPrompt",
          "Timeout", "Invalid", "BeforePrompt", "AfterPrompt", "ConfirmationExit"}) {
        references += std::string(" UNION ALL SELECT PartID, ") + role + "NodeTypeID, " + role +
                      "NodeNumber FROM Node_DBN";
    }
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM (" + references +
                            ") AS r WHERE T <> 814 AND NOT EXISTS (SELECT 1 FROM "
                            "Node_General_Pool AS p WHERE p.PartID = r.PartID AND "
                            "p.NodeTypeID = r.T AND p.NodeNumber = r.N)"),
              0);
    EXPECT_EQ(root.QueryInt("SELECT (SELECT count(*) FROM Node_General_Pool WHERE PartID = 2 AND "
                            "NodeTypeID = 0 AND NodeNumber = 12) + (SELECT count(*) FROM (SELECT "
                            "1 FROM Node_General_Pool GROUP BY PartID, NodeDescription HAVING "
                            "count(*) > 1) AS twins)"),
              0);
}

}  // namespace
}  // namespace dbn
