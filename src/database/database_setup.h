#pragma once

#include "database/database_target.h"

#include <optional>
#include <string>

namespace dbn {

// What to do when the target already holds a configuration.
enum class ExistingDatabase { Refuse, Replace };

// Creates a configuration database at target: the full schema and, when
// asked, the demo content. An existing configuration raises an error unless
// existing is Replace; one that another program is writing is never
// replaced. Raises ComponentError.
//
// An SQLite file gets its missing folders (owner and group may write, others
// not) and is built under a temporary name beside it and renamed into place,
// so a failure leaves no half-made database; a replaced file is kept as
// PATH.bak, whose path is answered. A server database gets its tables in one
// transaction.
//
// A server's configuration that is replaced is first copied whole into an
// SQLite file, serverBackup or else NewDB-YYYYMMDD-HHMMSS.bak.mdb in the
// data root's database folder, whose path is answered; a backup that cannot
// be written replaces nothing.
std::optional<std::string> CreateConfigurationDatabase(
    const DatabaseTarget& target, bool withDemoContent, ExistingDatabase existing,
    const std::optional<std::string>& serverBackup = std::nullopt);

// The same for an SQLite file.
std::optional<std::string> CreateConfigurationDatabase(const std::string& filePath,
                                                       bool withDemoContent,
                                                       ExistingDatabase existing);

// The same, refusing to touch an existing file.
void CreateConfigurationDatabase(const std::string& filePath, bool withDemoContent);

}  // namespace dbn
