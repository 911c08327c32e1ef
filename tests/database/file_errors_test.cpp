// The clear errors for a database file that cannot be used.

#include "database/database.h"
#include "database/database_errors.h"
#include "database/database_setup.h"
#include "error_of.h"
#include "temp_database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>

namespace dbn {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::TempDataRoot;

// The error the first command raises on the file at path.
ComponentError FirstCommandError(const std::string& path,
                                 std::chrono::milliseconds timeout = std::chrono::seconds(30)) {
    DataBase db(DatabaseTarget::SqliteFile(path));
    db.SetBusyTimeout(timeout);
    return ErrorOf([&] { db.Execute("Get_Node_Names"); });
}

// Each error names the file and says what is wrong with it.
void ExpectError(const ComponentError& error, long number, const std::string& path,
                 const std::string& why) {
    EXPECT_EQ(error.Number(), number);
    EXPECT_EQ(error.Source(), "SQLite");
    EXPECT_NE(error.Description().find(path), std::string::npos) << error.Description();
    EXPECT_NE(error.Description().find(why), std::string::npos) << error.Description();
}

TEST(DatabaseFile, FilesThatAreNoConfigurationDatabaseSaySoAndNothingIsCreated) {
    TempDataRoot root;
    const std::string path = root.DatabasePath();
    const std::string inMissingFolder = root.Root() + "/nowhere/NewDB.mdb";
    const std::string access =
        "is an Access database file; it must be converted to the SQLite format";
    const std::string notDatabase = "is not a configuration database";
    const struct {
        std::string path;
        std::optional<std::string> content;  // none: no file
        long number;
        std::string why;
    } files[] = {
        {inMissingFolder, std::nullopt, kErrDatabaseMissing, "does not exist"},
        {path, std::nullopt, kErrDatabaseMissing, "does not exist"},
        {path, std::string("\0\1\0\0Standard Jet DB", 19) + std::string(200, '\0'),
         kErrDatabaseIsAccessFile, access},
        {path, std::string("\0\1\0\0Standard ACE DB", 19), kErrDatabaseIsAccessFile, access},
        {path, "just some text\n", kErrNotConfigurationDatabase, notDatabase},
        {path, "", kErrNotConfigurationDatabase, notDatabase},
        {path, "SQLite format 3", kErrNotConfigurationDatabase, notDatabase},
    };
    for (const auto& file : files) {
        fs::remove(path);
        if (file.content) {
            std::ofstream(path, std::ios::binary) << *file.content;
        }
        ExpectError(FirstCommandError(file.path), file.number, file.path, file.why);
        EXPECT_EQ(fs::exists(file.path), file.content.has_value()) << file.path;
    }
    EXPECT_FALSE(fs::exists(fs::path(inMissingFolder).parent_path()));
    fs::remove(path);
    fs::create_directory(path);
    ExpectError(FirstCommandError(path), kErrDatabaseIsDirectory, path, "is a folder");
}

// A pipe, a socket or a device is refused at once, never opened (reading a
// pipe would wait for ever).
TEST(DatabaseFile, APipeASocketOrADeviceIsRefusedAtOnce) {
    TempDataRoot root;
    const std::string pipe = root.Root() + "/pipe.mdb";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string socketPath = root.Root() + "/socket.mdb";
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    for (const auto& [path, kind] : {std::pair{pipe, "a pipe"}, std::pair{socketPath, "a socket"},
                                     std::pair{std::string("/dev/null"), "a device"}}) {
        ExpectError(FirstCommandError(path), kErrDatabaseNotRegularFile, path,
                    std::string(kind) + ", not a regular file");
    }
    ::close(listener);
}

// init --force under an open connection: a write is told that the file was
// replaced, not that it is read-only, and writes nothing anywhere.
TEST(DatabaseFile, AFileReplacedUnderAnOpenConnectionIsToldAsReplaced) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DBN_FILE_TEST_ONLY(root);
    DataBase db(DatabaseTarget::SqliteFile(root.DatabasePath()));
    EXPECT_EQ(db.Execute("Get_Node_Names"), 18);
    CreateConfigurationDatabase(root.DatabasePath(), false, ExistingDatabase::Replace);
    const ComponentError error = ErrorOf([&] {
        db.BeginTrans();
        db.Execute("Update_Node_General_Pool", {"x", "2001-01-01 00:00:00", "1", "1", "0", "1"});
        db.CommitTrans();
    });
    ExpectError(error, kErrDatabaseReplaced, root.DatabasePath(),
                "was replaced by another file since it was opened here. Nothing was written");
}

TEST(DatabaseFile, LockedByAnotherProgramAfterTheTimeOut) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(root.DatabasePath().c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    ExpectError(FirstCommandError(root.DatabasePath(), std::chrono::milliseconds(20)),
                kErrDatabaseLocked, root.DatabasePath(), "locked by another program");

    // A save's transaction waits for the writer the same way.
    DataBase db(DatabaseTarget::SqliteFile(root.DatabasePath()));
    db.SetBusyTimeout(std::chrono::milliseconds(20));
    EXPECT_EQ(ErrorOf([&] { db.BeginTrans(); }).Number(), kErrDatabaseLocked);
    EXPECT_FALSE(db.InTransaction());

    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    EXPECT_EQ(db.Execute("Get_Node_Names"), 18);

    // An open connection's save calls the wait handler (a window's painting)
    // again and again while it waits.
    sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
    db.SetBusyTimeout(std::chrono::milliseconds(200));
    int waits = 0;
    db.SetWaitHandler([&] { ++waits; });
    EXPECT_EQ(ErrorOf([&] { db.BeginTrans(); }).Number(), kErrDatabaseLocked);
    EXPECT_GE(waits, 3);
    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
}

}  // namespace
}  // namespace dbn
