#include "database/sqlite_file_replacement.h"

#include "core/component_error.h"
#include "database/database_errors.h"
#include "database/temporary_files.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace dbn::detail {
namespace {

namespace fs = std::filesystem;

constexpr fs::perms kFolderPermissions =
    fs::perms::owner_all | fs::perms::group_all | fs::perms::others_read | fs::perms::others_exec;
constexpr fs::perms kFilePermissions = fs::perms::owner_read | fs::perms::owner_write |
                                       fs::perms::group_read | fs::perms::group_write |
                                       fs::perms::others_read;

[[noreturn]] void RaiseCreateError(const std::string& path, const std::string& why) {
    RaiseDatabaseError(kErrDatabaseCreate,
                       "The configuration database \"" + path + "\" cannot be created: " + why);
}

const char* KindOf(fs::file_type type) {
    switch (type) {
        case fs::file_type::directory:
            return "a folder";
        case fs::file_type::not_found:
            return "a link to nothing";
        case fs::file_type::fifo:
            return "a pipe";
        case fs::file_type::socket:
            return "a socket";
        case fs::file_type::block:
        case fs::file_type::character:
            return "a device";
        default:
            return "not a file";
    }
}

// Creates every missing folder of dir, each with kFolderPermissions whatever
// the process's file-creation mask.
void CreateFolders(const fs::path& dir, const std::string& databasePath) {
    if (dir.empty()) {
        return;
    }
    std::error_code error;
    if (fs::is_directory(dir, error)) {
        return;
    }
    CreateFolders(dir.parent_path(), databasePath);
    if (!fs::create_directory(dir, error) && !fs::is_directory(dir)) {
        RaiseCreateError(databasePath, "the folder \"" + dir.string() + "\" cannot be made (" +
                                           error.message() + ").");
    }
    fs::permissions(dir, kFolderPermissions, error);
}

}  // namespace

bool IsExistingRegularFile(const std::string& path) {
    std::error_code error;
    if (!fs::exists(fs::symlink_status(path, error))) {
        return false;
    }
    const fs::file_type type = fs::status(path, error).type();
    if (type != fs::file_type::regular) {
        RaiseDatabaseError(
            kErrDatabaseNotRegularFile,
            "The configuration database " + path + " is " + KindOf(type) + ", not a regular file.");
    }
    return true;
}

SqliteFileReplacement::SqliteFileReplacement(std::string path) : path_(std::move(path)) {
    if (!IsExistingRegularFile(path_)) {
        return;
    }
    try {
        old_ = ConnectSqlite(path_, std::chrono::milliseconds(0), OpenMode::Existing);
        old_->BeginWrite();
    } catch (const ComponentError& failure) {
        old_.reset();
        if (failure.Number() == kErrDatabaseLocked) {
            RaiseDatabaseError(kErrDatabaseInUse,
                               "The configuration database " + path_ +
                                   " is in use by another program. Nothing was replaced.");
        }
        // Not a database at all: nobody can be writing it.
        oldUnreadable_ = true;
    }
}

std::string SqliteFileReplacement::KeepBackup() {
    // Copied while the write lock is held, so the copy is one saved state;
    // written beside and renamed, so an older backup is replaced whole.
    const std::string backup = path_ + ".bak";
    const std::string temporary = backup + ".new-" + std::to_string(::getpid());
    std::error_code error;
    fs::copy_file(path_, temporary, fs::copy_options::overwrite_existing, error);
    if (!error) {
        fs::rename(temporary, backup, error);
    }
    if (error) {
        fs::remove(temporary);
        RaiseCreateError(path_, "the previous database cannot be kept as \"" + backup + "\" (" +
                                    error.message() + "). Nothing was replaced.");
    }
    return backup;
}

void SqliteFileReplacement::WriteNew(const std::function<void(DatabaseEngine&)>& fill) {
    const fs::path target(path_);
    CreateFolders(target.parent_path(), path_);
    const std::string temporary = path_ + ".new-" + std::to_string(::getpid());
    for (const std::string& removed : RemoveStaleTemporaries(path_)) {
        DatabaseNotice(removed);
    }
    std::error_code error;
    fs::remove(temporary, error);
    const TemporaryFileGuard guard(temporary);
    try {
        {
            std::unique_ptr<DatabaseEngine> fresh;
            try {
                fresh = ConnectSqlite(temporary, std::chrono::milliseconds(0), OpenMode::CreateNew);
            } catch (const ComponentError& failure) {
                RaiseCreateError(path_, failure.Description());
            }
            fill(*fresh);
        }
        fs::permissions(temporary, kFilePermissions, error);
        fs::rename(temporary, target, error);
        if (error) {
            RaiseCreateError(path_, error.message() + ".");
        }
    } catch (...) {
        fs::remove(temporary, error);
        fs::remove(temporary + "-journal", error);
        throw;
    }
}

}  // namespace dbn::detail
