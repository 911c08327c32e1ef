#pragma once

#include <optional>
#include <string>

namespace dbn {

// Replaces the common application-data root for this process (both of its
// sources then answer dir). std::nullopt goes back to the machine's folders.
void SetDataRootOverride(std::optional<std::string> dir);

// The product folder: <root>/Corvell/Sonavis+/ where root is /var/lib when
// that folder exists there, else the per-user data folder. Trailing "/".
std::string GetProductFolder();
// GetProductFolder() + "Database/".
std::string GetDatabaseFolder();
// "Provider=SQLite;Data Source=" + GetDatabaseFolder() + "NewDB.mdb".
std::string BuildConnectionString();
// The file path that a connection string names (its Data Source).
std::string DataSourceOf(const std::string& connectionString);

}  // namespace dbn
