// The schema's version: what init makes, the upgrade of a database made
// before the version existed, an older one that cannot be written, and the
// refusal of a newer one.

#include "database/schema_version.h"
#include "database/database.h"
#include "database/database_errors.h"
#include "error_of.h"
#include "temp_database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <vector>

namespace dbn {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::TempDataRoot;

// Collects what the upgrade says, for the length of a test.
class Notices {
public:
    Notices() {
        SetSchemaNoticeHandler([this](const std::string& text) { said.push_back(text); });
    }
    ~Notices() { SetSchemaNoticeHandler({}); }
    Notices(const Notices&) = delete;
    Notices& operator=(const Notices&) = delete;
    std::vector<std::string> said;
};

// The database as init made it before the schema had a version: the same
// tables without the history and the version table.
void MakeVersionOne(const TempDataRoot& root) {
    root.Exec("DROP TABLE Node_History; DROP TABLE Schema_Version");
}

long long Rows(const TempDataRoot& root, const std::string& table) {
    return root.QueryInt("SELECT count(*) FROM " + table);
}

// The dial-by-name nodes of an SQLite file, read as they are (no upgrade).
long long NodesIn(const std::string& path) {
    sqlite3* raw = nullptr;
    sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> file(raw, sqlite3_close);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(file.get(), "SELECT count(*) FROM Node_DBN", -1, &statement, nullptr);
    const long long count =
        sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : -1;
    sqlite3_finalize(statement);
    return count;
}

TEST(SchemaVersion, InitMakesTheCurrentVersion) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    EXPECT_EQ(root.QueryInt("SELECT Version FROM Schema_Version"), kCurrentSchemaVersion);
    EXPECT_EQ(Rows(root, "Schema_Version"), 1);
    DataBase db;
    EXPECT_EQ(db.SchemaVersion(), kCurrentSchemaVersion);
    EXPECT_TRUE(db.KeepsHistory());
}

TEST(SchemaVersion, UpgradesVersionOneOnceKeepingEveryRow) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    MakeVersionOne(root);
    const long long nodes = Rows(root, "Node_DBN");
    Notices notices;
    {
        // The first command of the connection finds the old version and
        // runs after the upgrade.
        DataBase db;
        EXPECT_EQ(db.Execute("Get_Last_History_Entry"), 1);
        EXPECT_EQ(db.SchemaVersion(), 2);
        EXPECT_TRUE(db.KeepsHistory());
    }
    EXPECT_EQ(root.QueryInt("SELECT Version FROM Schema_Version"), 2);
    EXPECT_EQ(Rows(root, "Node_History"), 0);
    EXPECT_EQ(Rows(root, "Node_DBN"), nodes);
    const std::string backup = UpgradeBackupPath(root.DatabasePath(), 1);
    if (root.OnServer()) {
        EXPECT_EQ(notices.said,
                  std::vector<std::string>{
                      "The configuration database was upgraded from version 1 to 2."});
    } else {
        EXPECT_EQ(notices.said,
                  std::vector<std::string>{"The configuration database was upgraded from version 1 "
                                           "to 2; the copy of version 1 is " +
                                           backup + "."});
        // The copy is the database as it was: no version table.
        ASSERT_TRUE(fs::exists(backup));
        sqlite3* raw = nullptr;
        ASSERT_EQ(sqlite3_open_v2(backup.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
        std::unique_ptr<sqlite3, int (*)(sqlite3*)> copy(raw, sqlite3_close);
        auto count = [&](const char* sql) {
            sqlite3_stmt* statement = nullptr;
            sqlite3_prepare_v2(copy.get(), sql, -1, &statement, nullptr);
            sqlite3_step(statement);
            const long long value = sqlite3_column_int64(statement, 0);
            sqlite3_finalize(statement);
            return value;
        };
        EXPECT_EQ(count("SELECT count(*) FROM sqlite_schema WHERE name = 'Schema_Version'"), 0);
        EXPECT_EQ(count("SELECT count(*) FROM Node_DBN"), nodes);
    }
    // Opened again: nothing more to do or say.
    DataBase again;
    EXPECT_EQ(again.SchemaVersion(), 2);
    EXPECT_EQ(notices.said.size(), 1u);
}

// An upgrade killed outright while it copies the old version: the copy's
// name only ever holds a whole copy, and the next run finishes the upgrade
// and removes what the killed one left.
TEST(SchemaVersion, AKilledUpgradeNeverLeavesAPartialCopyUnderTheBackupName) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DBN_FILE_TEST_ONLY(root);
    MakeVersionOne(root);
    const long long nodes = Rows(root, "Node_DBN");
    const std::string backup = UpgradeBackupPath(root.DatabasePath(), 1);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        DataBase db;
        db.SchemaVersion();
        ::_exit(0);
    }
    // Killed as soon as its copy is begun, under either name (or when it is
    // done).
    const std::string partial = backup + ".new-" + std::to_string(child);
    int status = 0;
    while (!fs::exists(partial) && !fs::exists(backup) &&
           ::waitpid(child, &status, WNOHANG) == 0) {
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    Notices notices;
    DataBase db;
    EXPECT_EQ(db.SchemaVersion(), 2);
    // Every copy there is holds every node; nothing else is left.
    for (const std::string& copy : {backup, backup + ".2"}) {
        if (fs::exists(copy)) {
            EXPECT_EQ(NodesIn(copy), nodes) << copy;
        }
    }
    EXPECT_TRUE(fs::exists(backup));
    for (const auto& entry : fs::directory_iterator(fs::path(backup).parent_path())) {
        EXPECT_EQ(entry.path().string().find(".new-"), std::string::npos) << entry.path();
    }
}

TEST(SchemaVersion, RefusesANewerVersionWithoutWritingToIt) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    root.Exec("UPDATE Schema_Version SET Version = 3");
    const auto modified =
        root.OnServer() ? fs::file_time_type() : fs::last_write_time(root.DatabasePath());
    DataBase db;
    const ComponentError refused = ErrorOf([&] { db.Execute("Get_Node_Names"); });
    EXPECT_EQ(refused.Number(), kErrSchemaTooNew);
    EXPECT_NE(refused.Description().find("is of version 3; this program knows versions up to 2. "
                                         "Nothing was written to it."),
              std::string::npos)
        << refused.Description();
    EXPECT_EQ(root.QueryInt("SELECT Version FROM Schema_Version"), 3);
    if (!root.OnServer()) {
        EXPECT_EQ(fs::last_write_time(root.DatabasePath()), modified);
    }
}

TEST(SchemaVersion, ReadOnlyVersionOneIsUsedWithoutHistory) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    MakeVersionOne(root);
    Notices notices;
    std::optional<DataBase> db;
    if (root.OnServer()) {
        // A connection whose transactions may only read.
        db.emplace(DatabaseTarget::Server(root.Target().location +
                                          "&options=-c%20default_transaction_read_only%3Don"));
    } else {
        if (geteuid() == 0) {
            GTEST_SKIP() << "the superuser writes read-only files";
        }
        fs::permissions(root.DatabasePath(), fs::perms::owner_read | fs::perms::group_read);
        db.emplace(DatabaseTarget::SqliteFile(root.DatabasePath()));
    }
    EXPECT_GT(db->Execute("Get_Node_Names"), 0);
    EXPECT_EQ(db->SchemaVersion(), 1);
    EXPECT_FALSE(db->KeepsHistory());
    ASSERT_EQ(notices.said.size(), 1u);
    EXPECT_NE(notices.said[0].find("is of version 1 and cannot be upgraded to 2: it is "
                                   "read-only. It is used without history."),
              std::string::npos)
        << notices.said[0];
    EXPECT_FALSE(fs::exists(UpgradeBackupPath(root.DatabasePath(), 1)));
}

}  // namespace
}  // namespace dbn
