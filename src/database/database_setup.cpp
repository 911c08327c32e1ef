#include "database/database_setup.h"

#include "database/database_errors.h"
#include "database/demo_content_sql.h"
#include "database/schema_sql.h"

#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <system_error>

namespace dbn {
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

struct ConnectionCloser {
    void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};

void WriteDatabase(const std::string& file, bool withDemoContent, const std::string& path) {
    sqlite3* raw = nullptr;
    const int rc =
        sqlite3_open_v2(file.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    std::unique_ptr<sqlite3, ConnectionCloser> db(raw);
    if (rc != SQLITE_OK) {
        RaiseCreateError(path, raw != nullptr ? sqlite3_errmsg(raw) : sqlite3_errstr(rc));
    }
    const std::string script = std::string("BEGIN;\n") + sql::k_schema +
                               (withDemoContent ? sql::k_demo_content : "") + "\nCOMMIT;\n";
    if (sqlite3_exec(db.get(), script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        RaiseCreateError(path, sqlite3_errmsg(db.get()));
    }
}

}  // namespace

void CreateConfigurationDatabase(const std::string& filePath, bool withDemoContent) {
    CreateConfigurationDatabase(filePath, withDemoContent, ExistingDatabase::Refuse);
}

void CreateConfigurationDatabase(const std::string& filePath, bool withDemoContent,
                                 ExistingDatabase existing) {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(filePath, error);
    if (fs::exists(status)) {
        if (existing == ExistingDatabase::Refuse) {
            RaiseDatabaseError(kErrDatabaseExists,
                               "The configuration database \"" + filePath + "\" already exists.");
        }
        if (fs::is_directory(status)) {
            RaiseCreateError(filePath, "a folder of that name is in the way.");
        }
    }
    const fs::path target(filePath);
    CreateFolders(target.parent_path(), filePath);

    const std::string temporary = filePath + ".new-" + std::to_string(::getpid());
    fs::remove(temporary, error);
    try {
        WriteDatabase(temporary, withDemoContent, filePath);
        fs::permissions(temporary, kFilePermissions, error);
        fs::rename(temporary, target, error);
        if (error) {
            RaiseCreateError(filePath, error.message() + ".");
        }
    } catch (...) {
        fs::remove(temporary, error);
        fs::remove(temporary + "-journal", error);
        throw;
    }
}

}  // namespace dbn
