#include "database/configuration_copy.h"

#include "core/component_error.h"
#include "database/configuration_tables.h"
#include "database/database_engine.h"
#include "database/database_errors.h"
#include "database/sqlite_file_replacement.h"

#include <algorithm>

namespace dbn {
namespace {

constexpr std::chrono::milliseconds kNoWait{0};
constexpr std::chrono::milliseconds kLockWait{30000};

std::vector<TableRows> ReadConfiguration(DatabaseEngine& source) {
    source.BeginRead();
    std::vector<TableRows> tables = ReadConfigurationTables(source);
    source.Exec("COMMIT", "reading");
    return tables;
}

// Refuses, before anything is written, a whole number that its column
// cannot hold (a file made before the ranges were stated may hold one),
// naming the table, the row's key and the column.
void CheckRanges(const std::vector<TableRows>& rows) {
    const auto& tables = ConfigurationSchema();
    for (std::size_t t = 0; t < tables.size(); ++t) {
        const SchemaTable& table = tables[t];
        for (const auto& row : rows[t]) {
            for (std::size_t c = 0; c < table.columns.size() && c < row.size(); ++c) {
                const SchemaColumn& column = table.columns[c];
                const auto* value = std::get_if<std::int64_t>(&row[c].Raw());
                if (column.type != ColumnType::Integer || value == nullptr ||
                    (*value >= column.low && *value <= column.high)) {
                    continue;
                }
                std::string key;
                for (std::size_t k = 0; k < table.columns.size() && k < row.size(); ++k) {
                    if (table.columns[k].inPrimaryKey) {
                        key += (key.empty() ? "" : ", ") + table.columns[k].name + " " +
                               row[k].ToText();
                    }
                }
                RaiseDatabaseError(kErrValueOutOfRange,
                                   "Nothing was copied: the row (" + key + ") of " + table.name +
                                       " holds " + std::to_string(*value) + " in " + column.name +
                                       ", which takes whole numbers from " +
                                       std::to_string(column.low) + " to " +
                                       std::to_string(column.high) + ".");
            }
        }
    }
}

bool HoldsConfigurationRows(DatabaseEngine& target) {
    const auto& tables = ConfigurationSchema();
    return std::any_of(tables.begin(), tables.end(), [&target](const SchemaTable& table) {
        return table.name != "Schema_Version" && target.HasTable(table) && target.HasRows(table);
    });
}

[[noreturn]] void RaiseHoldsRows(const std::string& name) {
    RaiseDatabaseError(
        kErrTargetHasConfiguration,
        "The database \"" + name + "\" already holds a configuration. Use --force to replace it.");
}

void WriteConfiguration(DatabaseEngine& target, const std::vector<TableRows>& rows) {
    WriteConfigurationTables(target, rows);
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
    CheckRanges(rows);
    if (to.IsServer()) {
        CopyToServer(to.location, rows, existing);
    } else {
        CopyToFile(to.location, rows, existing);
    }
    std::vector<CopiedTable> counts;
    const auto& tables = ConfigurationSchema();
    for (std::size_t i = 0; i < tables.size(); ++i) {
        // The target's version row is its own, written with its schema.
        counts.push_back({tables[i].name, tables[i].name == "Schema_Version" ? 1 : rows[i].size()});
    }
    return counts;
}

}  // namespace dbn
