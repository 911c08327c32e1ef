#include "database/schema_version.h"

#include "core/component_error.h"
#include "database/database_engine.h"
#include "database/database_errors.h"
#include "database/schema_model.h"
#include "database/temporary_files.h"

#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <mutex>
#include <set>

namespace dbn {
namespace {

const SchemaTable& TableNamed(const char* name) {
    const SchemaTable* table = FindSchemaTable(name);
    if (table == nullptr) {
        RaiseDatabaseError(kErrNotConfigurationDatabase,
                           std::string("The schema has no table ") + name + ".");
    }
    return *table;
}

std::string CreateTable(const SchemaTable& table, bool server) {
    return server ? PostgresCreateTableSql(table) : SqliteCreateTableSql(table);
}

// Version 1 to 2: the node history and the version table; a server also
// announces each new history entry.
void AddHistory(DatabaseEngine& engine, bool server) {
    std::string sql = CreateTable(TableNamed("Node_History"), server) +
                      CreateTable(TableNamed("Schema_Version"), server);
    if (server) {
        sql += PostgresAnnouncementSql();
    }
    engine.Exec(sql, "upgrading the schema");
}

struct UpgradeStep {
    int to;
    void (*apply)(DatabaseEngine&, bool server);
};

// One step per version after the first, in order.
constexpr UpgradeStep kSteps[] = {
    {2, &AddHistory},
};

std::mutex& NoticeMutex() {
    static std::mutex mutex;
    return mutex;
}

SchemaNoticeHandler& NoticeHandler() {
    static SchemaNoticeHandler handler;
    return handler;
}

// Says a message about a database once per process.
void Notice(const std::string& database, const std::string& message) {
    std::lock_guard lock(NoticeMutex());
    static std::set<std::string> told;
    if (!told.insert(database + '\n' + message).second) {
        return;
    }
    if (NoticeHandler()) {
        NoticeHandler()(message);
    } else {
        std::cerr << message << '\n';
    }
}

bool IsReadOnlyFailure(const ComponentError& failure) {
    return failure.Number() == kErrDatabaseReadOnly || failure.Number() == kErrDatabaseCreate;
}

std::string FreeBackupPath(const std::string& path, int version) {
    const std::string first = UpgradeBackupPath(path, version);
    std::string candidate = first;
    for (int n = 2; std::filesystem::exists(candidate); ++n) {
        candidate = first + "." + std::to_string(n);
    }
    return candidate;
}

// The copy of the file before its upgrade, written beside its final name and
// renamed into place when whole, so that a run killed half way never leaves
// a partial copy under the name the messages give.
void WriteBackup(const std::string& path, const std::string& backup) {
    for (const std::string& removed : detail::RemoveStaleTemporaries(backup)) {
        DatabaseNotice(removed);
    }
    const std::string temporary = backup + ".new-" + std::to_string(::getpid());
    const detail::TemporaryFileGuard guard(temporary);
    std::error_code error;
    try {
        BackupSqliteFile(path, temporary);
        std::filesystem::rename(temporary, backup, error);
    } catch (...) {
        std::filesystem::remove(temporary, error);
        throw;
    }
    if (error) {
        std::filesystem::remove(temporary, error);
        RaiseDatabaseError(kErrDatabaseCreate, "The copy " + backup + " cannot be written.");
    }
}

void Upgrade(DatabaseEngine& engine, bool server, int from) {
    engine.BeginWrite();
    try {
        // Another program may have upgraded it since it was read.
        if (ReadSchemaVersion(engine) == from) {
            for (const UpgradeStep& step : kSteps) {
                if (step.to > from) {
                    step.apply(engine, server);
                }
            }
            engine.Exec("DELETE FROM Schema_Version;\n" + SchemaVersionRowSql(),
                        "upgrading the schema");
        }
        engine.Exec("COMMIT", "upgrading the schema");
    } catch (...) {
        try {
            engine.Exec("ROLLBACK", "upgrading the schema");
        } catch (const ComponentError&) {
            // The connection has already ended the transaction.
        }
        throw;
    }
}

}  // namespace

int ReadSchemaVersion(DatabaseEngine& engine) {
    const SchemaTable& versions = TableNamed("Schema_Version");
    if (!engine.HasTable(versions)) {
        return engine.HasTable(TableNamed("Node_DBN")) ? 1 : 0;
    }
    const TableRows rows = engine.ReadTable(versions);
    if (rows.empty() || rows.front().empty()) {
        return 1;
    }
    return static_cast<int>(std::stol(rows.back().front().ToText()));
}

SchemaState PrepareSchema(DatabaseEngine& engine, const DatabaseTarget& target) {
    SchemaState state;
    state.version = engine.QuickSchemaVersion().value_or(0);
    if (state.version == 0) {
        state.version = ReadSchemaVersion(engine);
    }
    if (state.version > kCurrentSchemaVersion) {
        RaiseDatabaseError(kErrSchemaTooNew, "The configuration database " + engine.Name() +
                                                 " is of version " + std::to_string(state.version) +
                                                 "; this program knows versions up to " +
                                                 std::to_string(kCurrentSchemaVersion) +
                                                 ". Nothing was written to it.");
    }
    if (state.version == 0 || state.version == kCurrentSchemaVersion) {
        return state;
    }
    const std::string from = std::to_string(state.version);
    const std::string to = std::to_string(kCurrentSchemaVersion);
    const std::string readOnly = "The configuration database " + engine.Name() + " is of version " +
                                 from + " and cannot be upgraded to " + to +
                                 ": it is read-only. It is used without history.";
    if (!engine.CanChangeSchema()) {
        state.readOnly = true;
        Notice(engine.Name(), readOnly);
        return state;
    }
    std::string backup;
    try {
        if (!target.IsServer()) {
            backup = FreeBackupPath(target.location, state.version);
            WriteBackup(target.location, backup);
        }
        Upgrade(engine, target.IsServer(), state.version);
    } catch (const ComponentError& failure) {
        if (!IsReadOnlyFailure(failure)) {
            throw;
        }
        state.readOnly = true;
        Notice(engine.Name(), readOnly);
        return state;
    }
    Notice(engine.Name(),
           "The configuration database was upgraded from version " + from + " to " + to +
               (backup.empty() ? "." : "; the copy of version " + from + " is " + backup + "."));
    state.version = kCurrentSchemaVersion;
    state.upgraded = true;
    return state;
}

std::string SchemaVersionRowSql() {
    return "INSERT INTO Schema_Version (Version) VALUES (" + std::to_string(kCurrentSchemaVersion) +
           ");\n";
}

void SetSchemaNoticeHandler(SchemaNoticeHandler handler) {
    std::lock_guard lock(NoticeMutex());
    NoticeHandler() = std::move(handler);
}

std::string UpgradeBackupPath(const std::string& path, int version) {
    return path + ".bak-v" + std::to_string(version);
}

}  // namespace dbn
