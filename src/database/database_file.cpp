#include "database/database_file.h"

#include "core/component_error.h"
#include "database/database_errors.h"
#include "database/sqlite_file_replacement.h"

#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace dbn {
namespace {

constexpr std::string_view kSqliteMagic{"SQLite format 3\0", 16};
constexpr std::string_view kJetMagic = "Standard Jet DB";
constexpr std::string_view kAceMagic = "Standard ACE DB";
constexpr std::size_t kAccessMagicOffset = 4;

std::string Quoted(const std::string& path) {
    return "\"" + path + "\"";
}

}  // namespace

void RaiseDatabaseError(long number, std::string description) {
    throw ComponentError(number, kDatabaseSource, std::move(description));
}

void RaiseServerError(long number, std::string description) {
    throw ComponentError(number, kServerSource, std::move(description));
}

void RaiseLockedError(const std::string& name, const char* source) {
    throw ComponentError(kErrDatabaseLocked, source,
                         "The configuration database " + Quoted(name) +
                             " is locked by another program. Try again when that program has "
                             "finished with it.");
}

void CheckDatabaseFile(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) {
        RaiseDatabaseError(kErrDatabaseMissing,
                           "The configuration database " + Quoted(path) + " does not exist.");
    }
    if (status.type() == fs::file_type::directory) {
        RaiseDatabaseError(kErrDatabaseIsDirectory, "The configuration database " + Quoted(path) +
                                                        " is a folder, not a database file.");
    }

    // A pipe, socket or device is refused before it is opened: reading one
    // would wait for ever.
    if (status.type() != fs::file_type::regular) {
        detail::IsExistingRegularFile(path);
    }

    std::array<char, 100> header{};
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        RaiseDatabaseError(SQLITE_CANTOPEN,
                           "The configuration database " + Quoted(path) + " cannot be read.");
    }
    file.read(header.data(), header.size());
    const std::string_view head(header.data(), static_cast<std::size_t>(file.gcount()));

    if (head.size() >= kAccessMagicOffset + kJetMagic.size()) {
        const std::string_view tag = head.substr(kAccessMagicOffset, kJetMagic.size());
        if (tag == kJetMagic || tag == kAceMagic) {
            RaiseDatabaseError(kErrDatabaseIsAccessFile,
                               "The file " + Quoted(path) +
                                   " is an Access database file; it must be converted to the "
                                   "SQLite format before the editor can use it.");
        }
    }
    if (!head.starts_with(kSqliteMagic)) {
        RaiseDatabaseError(kErrNotConfigurationDatabase,
                           "The file " + Quoted(path) + " is not a configuration database.");
    }
}

void RaiseEngineError(sqlite3* db, int resultCode, const std::string& path,
                      std::string_view doing) {
    const std::string engineMessage =
        db != nullptr ? sqlite3_errmsg(db) : sqlite3_errstr(resultCode);
    if (resultCode == SQLITE_READONLY_DBMOVED) {
        // init --force or copy --force put another file in its place.
        RaiseDatabaseError(kErrDatabaseReplaced,
                           "The configuration database " + Quoted(path) +
                               " was replaced by another file since it was opened here. Nothing "
                               "was written; open it again.");
    }
    switch (resultCode & 0xff) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            RaiseLockedError(path, kDatabaseSource);
        case SQLITE_READONLY:
            RaiseDatabaseError(kErrDatabaseReadOnly,
                               "The configuration database " + Quoted(path) +
                                   " cannot be written: the file or its folder is read-only.");
        case SQLITE_NOTADB:
            RaiseDatabaseError(kErrNotConfigurationDatabase,
                               "The file " + Quoted(path) + " is not a configuration database.");
        default:
            RaiseDatabaseError(resultCode & 0xff, engineMessage + " (" + std::string(doing) +
                                                      " on " + Quoted(path) + ")");
    }
}

}  // namespace dbn
