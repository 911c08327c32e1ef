#pragma once

#include <string>
#include <string_view>

struct sqlite3;

namespace dbn {

// Checks, before the engine opens it, that path names an existing SQLite
// file; raises the clear error for a missing file, a folder, an Access
// database file or any other kind of file.
void CheckDatabaseFile(const std::string& path);

// Raises the error for a failed engine call on the database at path: a lock
// held by another program, a read-only file and a damaged file get their own
// message; anything else carries the engine's message, what was being done
// and the path.
[[noreturn]] void RaiseEngineError(sqlite3* db, int resultCode, const std::string& path,
                                   std::string_view doing);

}  // namespace dbn
