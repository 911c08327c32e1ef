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
// GetDatabaseFolder() + "NewDB.mdb": the derived configuration database file.
std::string GetDatabaseFilePath();
// "Provider=SQLite;Data Source=" + GetDatabaseFilePath(), a text for display
// only: the path itself is passed on as a path, never read back from it.
std::string BuildConnectionString();

}  // namespace dbn
