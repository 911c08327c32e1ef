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

namespace dbn {
namespace {

namespace fs = std::filesystem;
using testing::TempDataRoot;

// The error the first command raises on the database of root.
ComponentError FirstCommandError(const std::string& path,
                                 std::chrono::milliseconds timeout = std::chrono::seconds(30)) {
    DataBase db("Provider=SQLite;Data Source=" + path);
    db.SetBusyTimeout(timeout);
    try {
        db.Execute("Get_Node_Names");
    } catch (const ComponentError& error) {
        return error;
    }
    ADD_FAILURE() << "no error from " << path;
    return ComponentError(0, "", "");
}

void WriteFile(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

TEST(DatabaseFile, MissingFileIsNamedAndNotCreated) {
    TempDataRoot root;
    const fs::path missing = fs::path(root.Root()) / "nowhere" / "NewDB.mdb";
    const ComponentError error = FirstCommandError(missing.string());
    EXPECT_EQ(error.Number(), kErrDatabaseMissing);
    EXPECT_EQ(error.Source(), "SQLite");
    EXPECT_NE(error.Description().find(missing.string()), std::string::npos);
    EXPECT_NE(error.Description().find("does not exist"), std::string::npos);
    EXPECT_FALSE(fs::exists(missing));
    EXPECT_FALSE(fs::exists(missing.parent_path()));

    fs::remove(root.DatabasePath());
    EXPECT_EQ(FirstCommandError(root.DatabasePath()).Number(), kErrDatabaseMissing);
    EXPECT_FALSE(fs::exists(root.DatabasePath()));
}

TEST(DatabaseFile, AccessFilesMustBeConverted) {
    TempDataRoot root;
    for (const char* tag : {"Standard Jet DB", "Standard ACE DB"}) {
        SCOPED_TRACE(tag);
        WriteFile(root.DatabasePath(), std::string("\0\1\0\0", 4) + tag + std::string(200, '\0'));
        const ComponentError error = FirstCommandError(root.DatabasePath());
        EXPECT_EQ(error.Number(), kErrDatabaseIsAccessFile);
        EXPECT_NE(error.Description().find("Access database file"), std::string::npos);
        EXPECT_NE(error.Description().find("converted to the SQLite format"), std::string::npos);
        EXPECT_NE(error.Description().find(root.DatabasePath()), std::string::npos);
    }
}

TEST(DatabaseFile, OtherFilesAreNotConfigurationDatabases) {
    TempDataRoot root;
    for (const std::string& content : {std::string("just some text\n"), std::string(),
                                       std::string("SQLite format 3") /* cut short */}) {
        WriteFile(root.DatabasePath(), content);
        const ComponentError error = FirstCommandError(root.DatabasePath());
        EXPECT_EQ(error.Number(), kErrNotConfigurationDatabase);
        EXPECT_NE(error.Description().find("is not a configuration database"), std::string::npos);
        EXPECT_NE(error.Description().find(root.DatabasePath()), std::string::npos);
    }
}

TEST(DatabaseFile, FolderInPlaceOfTheFile) {
    TempDataRoot root;
    fs::remove(root.DatabasePath());
    fs::create_directory(root.DatabasePath());
    const ComponentError error = FirstCommandError(root.DatabasePath());
    EXPECT_EQ(error.Number(), kErrDatabaseIsDirectory);
    EXPECT_NE(error.Description().find("is a folder"), std::string::npos);
    EXPECT_NE(error.Description().find(root.DatabasePath()), std::string::npos);
}

TEST(DatabaseFile, LockedByAnotherProgramAfterTheTimeOut) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(root.DatabasePath().c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);

    const ComponentError error =
        FirstCommandError(root.DatabasePath(), std::chrono::milliseconds(20));
    EXPECT_EQ(error.Number(), kErrDatabaseLocked);
    EXPECT_NE(error.Description().find("locked by another program"), std::string::npos);
    EXPECT_NE(error.Description().find(root.DatabasePath()), std::string::npos);

    // A save's transaction waits for the writer the same way.
    DataBase db;
    db.SetBusyTimeout(std::chrono::milliseconds(20));
    try {
        db.BeginTrans();
        ADD_FAILURE() << "BeginTrans went through a held lock";
    } catch (const ComponentError& beginError) {
        EXPECT_EQ(beginError.Number(), kErrDatabaseLocked);
    }
    EXPECT_FALSE(db.InTransaction());

    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    EXPECT_EQ(db.Execute("Get_Node_Names"), 18);
}

TEST(DatabaseFile, ReadOnlyFileCannotBeWritten) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    fs::permissions(root.DatabasePath(), fs::perms::owner_read | fs::perms::group_read);
    fs::permissions(fs::path(root.DatabasePath()).parent_path(),
                    fs::perms::owner_read | fs::perms::owner_exec);
    if (::access(root.DatabasePath().c_str(), W_OK) == 0) {
        fs::permissions(fs::path(root.DatabasePath()).parent_path(), fs::perms::owner_all);
        GTEST_SKIP() << "this user may write read-only files";
    }
    DataBase db;
    EXPECT_EQ(db.Execute("Get_Node_Names"), 18);  // reading still works
    try {
        db.Execute("Update_Node_General_Pool", {"x", "y", "1", "1", "0", "1"});
        ADD_FAILURE() << "a read-only database was written";
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), kErrDatabaseReadOnly);
        EXPECT_NE(error.Description().find("cannot be written"), std::string::npos);
        EXPECT_NE(error.Description().find(root.DatabasePath()), std::string::npos);
    }
    fs::permissions(fs::path(root.DatabasePath()).parent_path(), fs::perms::owner_all);
}

}  // namespace
}  // namespace dbn
