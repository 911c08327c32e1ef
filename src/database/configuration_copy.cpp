#include "database/configuration_copy.h"

#include "core/component_error.h"
#include "database/database_engine.h"
#include "database/database_errors.h"
#include "database/sqlite_file_replacement.h"

#include <algorithm>

namespace dbn {
namespace {

constexpr std::chrono::milliseconds kNoWait{0};
constexpr std::chrono::milliseconds kLockWait{30000};

// The version row is not copied: the target's new schema carries its own.
bool IsVersionTable(const SchemaTable& table) {
    return table.name == "Schema_Version";
}

// Every table's rows; a table an older source does not have yet (the
// history) is empty.
std::vector<TableRows> ReadConfiguration(DatabaseEngine& source) {
    source.BeginRead();
    std::vector<TableRows> tables;
    for (const SchemaTable& table : ConfigurationSchema()) {
        const bool copied = !IsVersionTable(table) && source.HasTable(table);
        tables.push_back(copied ? source.ReadTable(table) : TableRows{});
    }
    source.Exec("COMMIT", "reading");
    return tables;
}

bool HoldsConfigurationRows(DatabaseEngine& target) {
    const auto& tables = ConfigurationSchema();
    return std::any_of(tables.begin(), tables.end(), [&target](const SchemaTable& table) {
        return !IsVersionTable(table) && target.HasTable(table) && target.HasRows(table);
    });
}

[[noreturn]] void RaiseHoldsRows(const std::string& name) {
    RaiseDatabaseError(
        kErrTargetHasConfiguration,
        "The database \"" + name + "\" already holds a configuration. Use --force to replace it.");
}

void WriteConfiguration(DatabaseEngine& target, const std::vector<TableRows>& rows) {
    const auto& tables = ConfigurationSchema();
    target.CreateSchema();
    for (std::size_t i = 0; i < tables.size(); ++i) {
        target.AppendRows(tables[i], rows[i]);
    }
    target.Exec("COMMIT", "copying");
}

void CopyToServer(const std::string& conninfo, const std::vector<TableRows>& rows,
                  ExistingDatabase existing) {
    auto server = ConnectPostgres(conninfo, kLockWait);
    server->BeginWrite();
    if (existing == ExistingDatabase::Refuse && HoldsConfigurationRows(*server)) {
        RaiseHoldsRows(server->Name());
    }
    WriteConfiguration(*server, rows);
}

void CopyToFile(const std::string& path, const std::vector<TableRows>& rows,
                ExistingDatabase existing) {
    detail::SqliteFileReplacement replacement(path);
    // A file that is no database at all is not overwritten without asking.
    if (existing == ExistingDatabase::Refuse && replacement.Exists() &&
        (replacement.Old() == nullptr || HoldsConfigurationRows(*replacement.Old()))) {
        RaiseHoldsRows(path);
    }
    replacement.WriteNew([&rows](DatabaseEngine& file) {
        file.BeginWrite();
        WriteConfiguration(file, rows);
    });
}

}  // namespace

std::vector<CopiedTable> CopyConfiguration(const DatabaseTarget& from, const DatabaseTarget& to,
                                           ExistingDatabase existing) {
    std::vector<TableRows> rows;
    {
        auto source = ConnectEngine(from, kLockWait);
        rows = ReadConfiguration(*source);
    }
    if (to.IsServer()) {
        CopyToServer(to.location, rows, existing);
    } else {
        CopyToFile(to.location, rows, existing);
    }
    std::vector<CopiedTable> counts;
    const auto& tables = ConfigurationSchema();
    for (std::size_t i = 0; i < tables.size(); ++i) {
        // The target's version row is its own, written with its schema.
        counts.push_back({tables[i].name, IsVersionTable(tables[i]) ? 1 : rows[i].size()});
    }
    return counts;
}

}  // namespace dbn
