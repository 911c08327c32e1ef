#pragma once

// The configuration's tables as rows, for the programs that move a whole
// configuration from one database to another (copy, the backup init makes
// before it replaces a server's configuration).

#include "database/database_engine.h"

#include <vector>

namespace dbn {

// Every configuration table's rows, in schema order, inside the source's
// open transaction. The version table, which each database writes with its
// own schema, and the tables an older database does not have yet read as
// empty.
std::vector<TableRows> ReadConfigurationTables(DatabaseEngine& source);

// Gives the target a new schema holding those rows, inside its open write
// transaction.
void WriteConfigurationTables(DatabaseEngine& target, const std::vector<TableRows>& rows);

}  // namespace dbn
