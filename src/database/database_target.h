#pragma once

#include <optional>
#include <string>

namespace dbn {

enum class EngineKind { SQLite, PostgreSQL };

// Where a DataBase connects: the path of an SQLite file, or a PostgreSQL
// connection string (URI or key/value, as libpq reads it). The location is
// used as it stands; it is never rebuilt from a display text.
struct DatabaseTarget {
    EngineKind engine = EngineKind::SQLite;
    std::string location;

    static DatabaseTarget SqliteFile(std::string path) {
        return {EngineKind::SQLite, std::move(path)};
    }
    static DatabaseTarget Server(std::string conninfo) {
        return {EngineKind::PostgreSQL, std::move(conninfo)};
    }
    bool IsServer() const noexcept { return engine == EngineKind::PostgreSQL; }
};

// Reads a TARGET as the user gives it: a postgresql:// or postgres:// URI, or
// a key/value string ("host=db dbname=config"), names a server; anything else
// is the path of an SQLite file.
DatabaseTarget ParseDatabaseTarget(const std::string& text);

// Replaces the target for this process (the --database option); std::nullopt
// goes back to $DBN_DATABASE or the derived file.
void SetDatabaseOverride(std::optional<std::string> target);

// The target every DataBase of this process uses by default: the override,
// else $DBN_DATABASE when set and not empty, else the derived SQLite file.
DatabaseTarget ResolveDatabaseTarget();

// The target as messages and `where` show it: the file path, or the server's
// connection string without any password.
std::string DisplayName(const DatabaseTarget& target);

// Why libpq cannot read a server connection string (its own words, any
// password in it hidden), or std::nullopt when it reads it.
std::optional<std::string> ConnectionStringProblem(const std::string& conninfo);

// The text with any password that conninfo holds replaced by "****".
std::string WithoutPassword(std::string text, const std::string& conninfo);

// True when a server target carries its password in the connection string.
bool HasPassword(const DatabaseTarget& target);

}  // namespace dbn
