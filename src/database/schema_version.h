#pragma once

// The configuration schema's version and its upgrades, one step per version.
// Version 1 is the schema without a version table; version 2 adds the node
// history. Opening an older database upgrades it once, in one transaction
// (an SQLite file after a copy of it beside it); a read-only one is used as
// it is, without history; a newer one is refused before anything is written.

#include "database/database_target.h"

#include <functional>
#include <string>

namespace dbn {

class DatabaseEngine;

inline constexpr int kCurrentSchemaVersion = 2;
// The first version that keeps the node history.
inline constexpr int kHistorySchemaVersion = 2;
// The channel on which a PostgreSQL server announces each history entry.
inline constexpr const char* kHistoryChannel = "dbn_node_history";

// The version a database holds: its Schema_Version row, 1 for a
// configuration without that table, 0 for a database without the
// configuration's tables (left alone).
int ReadSchemaVersion(DatabaseEngine& engine);

// What opening found and did.
struct SchemaState {
    int version = 0;  // the version now in use
    bool upgraded = false;
    bool readOnly = false;  // older, and could not be upgraded
};

// Brings an opened database to the current version as described above.
// Raises ComponentError for a newer version or a failed upgrade (then
// nothing of it stays).
SchemaState PrepareSchema(DatabaseEngine& engine, const DatabaseTarget& target);

// The statements that write the current version into a new schema.
std::string SchemaVersionRowSql();

// Told once per database and process what an upgrade did, or why a
// database stays at its version: by default on standard error.
using SchemaNoticeHandler = std::function<void(const std::string& message)>;
void SetSchemaNoticeHandler(SchemaNoticeHandler handler);

// The path of the copy an upgrade from version makes of an SQLite file.
std::string UpgradeBackupPath(const std::string& path, int version);

}  // namespace dbn
