#include "database/database_setup.h"

#include "core/component_error.h"
#include "database/configuration_tables.h"
#include "database/database_engine.h"
#include "database/database_errors.h"
#include "database/demo_content_sql.h"
#include "database/schema_sql.h"
#include "database/schema_version.h"
#include "database/sqlite_file_replacement.h"

#include "database/data_location.h"

#include <algorithm>
#include <ctime>

namespace dbn {
namespace {

constexpr std::chrono::milliseconds kNoWait{0};

// The demo content as rows of every table, made by running its script on a
// database in memory: one source for both engines.
std::vector<TableRows> DemoContentRows() {
    auto memory = ConnectSqlite(":memory:", kNoWait, OpenMode::CreateNew);
    memory->Exec(std::string(sql::k_schema) + sql::k_demo_content, "making the demo content");
    std::vector<TableRows> tables;
    for (const SchemaTable& table : ConfigurationSchema()) {
        tables.push_back(memory->ReadTable(table));
    }
    return tables;
}

[[noreturn]] void RaiseExists(const std::string& name) {
    RaiseDatabaseError(kErrDatabaseExists,
                       "The configuration database \"" + name + "\" already exists.");
}

// "NewDB-YYYYMMDD-HHMMSS.bak.mdb" in the database folder, for now.
std::string DefaultServerBackup() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", &local);
    return GetDatabaseFolder() + "NewDB-" + stamp + ".bak.mdb";
}

// Copies every configuration table the server has into a new SQLite file at
// path (inside the server's open transaction, so that it is the state about
// to be replaced).
void WriteServerBackup(DatabaseEngine& server, const std::string& path) {
    if (detail::IsExistingRegularFile(path)) {
        RaiseExists(path);
    }
    const std::vector<TableRows> rows = ReadConfigurationTables(server);
    detail::SqliteFileReplacement backup(path);
    backup.WriteNew([&rows](DatabaseEngine& file) {
        file.BeginWrite();
        WriteConfigurationTables(file, rows);
        file.Exec("COMMIT", "writing the backup");
    });
}

std::optional<std::string> CreateOnServer(const std::string& conninfo, bool withDemoContent,
                                          ExistingDatabase existing,
                                          const std::optional<std::string>& backupPath) {
    auto server = ConnectPostgres(conninfo, kNoWait);
    try {
        server->BeginWrite();
    } catch (const ComponentError& failure) {
        if (failure.Number() == kErrDatabaseLocked) {
            RaiseServerError(kErrDatabaseInUse,
                             "The configuration database " + server->Name() +
                                 " is in use by another program. Nothing was replaced.");
        }
        throw;
    }
    const auto& tables = ConfigurationSchema();
    const bool hasTables = std::any_of(tables.begin(), tables.end(),
                                       [&](const SchemaTable& t) { return server->HasTable(t); });
    if (hasTables && existing == ExistingDatabase::Refuse) {
        RaiseExists(server->Name());
    }
    std::optional<std::string> backup;
    if (hasTables) {
        backup = backupPath.value_or(DefaultServerBackup());
        WriteServerBackup(*server, *backup);
    }
    server->CreateSchema();
    if (withDemoContent) {
        const std::vector<TableRows> rows = DemoContentRows();
        for (std::size_t i = 0; i < tables.size(); ++i) {
            server->AppendRows(tables[i], rows[i]);
        }
    }
    server->Exec("COMMIT", "creating the configuration");
    return backup;
}

}  // namespace

std::optional<std::string> CreateConfigurationDatabase(
    const DatabaseTarget& target, bool withDemoContent, ExistingDatabase existing,
    const std::optional<std::string>& serverBackup) {
    if (target.IsServer()) {
        return CreateOnServer(target.location, withDemoContent, existing, serverBackup);
    }
    return CreateConfigurationDatabase(target.location, withDemoContent, existing);
}

std::optional<std::string> CreateConfigurationDatabase(const std::string& filePath,
                                                       bool withDemoContent,
                                                       ExistingDatabase existing) {
    if (detail::IsExistingRegularFile(filePath) && existing == ExistingDatabase::Refuse) {
        RaiseExists(filePath);
    }
    detail::SqliteFileReplacement replacement(filePath);
    std::optional<std::string> backup;
    if (replacement.Exists()) {
        backup = replacement.KeepBackup();
    }
    replacement.WriteNew([withDemoContent](DatabaseEngine& file) {
        file.Exec(std::string("BEGIN;\n") + sql::k_schema +
                      (withDemoContent ? sql::k_demo_content : "") + "\n" + SchemaVersionRowSql() +
                      "COMMIT;\n",
                  "creating the configuration");
    });
    return backup;
}

void CreateConfigurationDatabase(const std::string& filePath, bool withDemoContent) {
    CreateConfigurationDatabase(filePath, withDemoContent, ExistingDatabase::Refuse);
}

}  // namespace dbn
