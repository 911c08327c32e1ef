#include "database/configuration_tables.h"

#include "database/schema_model.h"

namespace dbn {

std::vector<TableRows> ReadConfigurationTables(DatabaseEngine& source) {
    std::vector<TableRows> tables;
    for (const SchemaTable& table : ConfigurationSchema()) {
        const bool copied = table.name != "Schema_Version" && source.HasTable(table);
        tables.push_back(copied ? source.ReadTable(table) : TableRows{});
    }
    return tables;
}

void WriteConfigurationTables(DatabaseEngine& target, const std::vector<TableRows>& rows) {
    target.CreateSchema();
    const auto& tables = ConfigurationSchema();
    for (std::size_t i = 0; i < tables.size(); ++i) {
        target.AppendRows(tables[i], rows[i]);
    }
}

}  // namespace dbn
