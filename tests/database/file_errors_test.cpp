// The clear errors for a database file that cannot be used.

#include "core/component_error.h"
#include "database/database.h"
#include "database/database_errors.h"
#include "temp_database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>

namespace dbn {
namespace {

namespace fs = std::filesystem;
using testing::TempDataRoot;

// The error an action raises; number 0 when it raises none.
ComponentError ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const ComponentError& error) {
        return error;
    }
    return ComponentError(0, "", "");
}

// The error the first command raises on the file at path.
ComponentError FirstCommandError(const std::string& path,
                                 std::chrono::milliseconds timeout = std::chrono::seconds(30)) {
    DataBase db("Provider=SQLite;Data Source=" + path);
    db.SetBusyTimeout(timeout);
    return ErrorOf([&] { db.Execute("Get_Node_Names"); });
}

// Each error names the file, says what is wrong with it, and leaves it as it was.
void ExpectError(const ComponentError& error, long number, const std::string& path,
                 const std::string& why) {
    EXPECT_EQ(error.Number(), number);
    EXPECT_NE(error.Description().find(path), std::string::npos) << error.Description();
    EXPECT_NE(error.Description().find(why), std::string::npos) << error.Description();
}

TEST(DatabaseFile, FilesThatAreNoConfigurationDatabaseSaySo) {
    TempDataRoot root;
    const std::string path = root.DatabasePath();
    const fs::path missing = fs::path(root.Root()) / "nowhere" / "NewDB.mdb";
    ExpectError(FirstCommandError(missing.string()), kErrDatabaseMissing, missing.string(),
                "does not exist");
    EXPECT_EQ(FirstCommandError(missing.string()).Source(), "SQLite");
    EXPECT_FALSE(fs::exists(missing.parent_path()));  // opening creates nothing

    const char* accessFile =
        "is an Access database file; it must be converted to the SQLite format";
    const struct {
        std::string content;
        long number;
        const char* why;
    } files[] = {
        {std::string("\0\1\0\0Standard Jet DB", 19) + std::string(200, '\0'),
         kErrDatabaseIsAccessFile, accessFile},
        {std::string("\0\1\0\0Standard ACE DB", 19), kErrDatabaseIsAccessFile, accessFile},
        {"just some text\n", kErrNotConfigurationDatabase, "is not a configuration database"},
        {"", kErrNotConfigurationDatabase, "is not a configuration database"},
        {"SQLite format 3", kErrNotConfigurationDatabase, "is not a configuration database"},
    };
    for (const auto& file : files) {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << file.content;
        ExpectError(FirstCommandError(path), file.number, path, file.why);
    }
    fs::remove(path);
    EXPECT_EQ(FirstCommandError(path).Number(), kErrDatabaseMissing);
    EXPECT_FALSE(fs::exists(path));
    fs::create_directory(path);
    ExpectError(FirstCommandError(path), kErrDatabaseIsDirectory, path, "is a folder");
}

TEST(DatabaseFile, LockedByAnotherProgramAfterTheTimeOut) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(root.DatabasePath().c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    ExpectError(FirstCommandError(root.DatabasePath(), std::chrono::milliseconds(20)),
                kErrDatabaseLocked, root.DatabasePath(), "locked by another program");

    // A save's transaction waits for the writer the same way.
    DataBase db;
    db.SetBusyTimeout(std::chrono::milliseconds(20));
    EXPECT_EQ(ErrorOf([&] { db.BeginTrans(); }).Number(), kErrDatabaseLocked);
    EXPECT_FALSE(db.InTransaction());

    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    EXPECT_EQ(db.Execute("Get_Node_Names"), 18);
}

TEST(DatabaseFile, ReadOnlyFileCannotBeWritten) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    const fs::path folder = fs::path(root.DatabasePath()).parent_path();
    fs::permissions(root.DatabasePath(), fs::perms::owner_read | fs::perms::group_read);
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    if (::access(root.DatabasePath().c_str(), W_OK) == 0) {
        fs::permissions(folder, fs::perms::owner_all);
        GTEST_SKIP() << "this user may write read-only files";
    }
    DataBase db;
    EXPECT_EQ(db.Execute("Get_Node_Names"), 18);  // reading still works
    ExpectError(ErrorOf([&] {
                    db.Execute("Update_Node_General_Pool", {"x", "y", "1", "1", "0", "1"});
                }),
                kErrDatabaseReadOnly, root.DatabasePath(), "cannot be written");
    fs::permissions(folder, fs::perms::owner_all);
}

}  // namespace
}  // namespace dbn
