#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace dbn {

enum class ColumnType { Integer, Real, Text };

struct SchemaColumn {
    std::string name;  // as the schema spells it
    ColumnType type = ColumnType::Text;
    bool notNull = false;
    bool inPrimaryKey = false;
    // The whole numbers a column of type Integer accepts (its CHECK, else
    // 64-bit).
    std::int64_t low = std::numeric_limits<std::int64_t>::min();
    std::int64_t high = std::numeric_limits<std::int64_t>::max();
};

struct SchemaTable {
    std::string name;
    std::vector<SchemaColumn> columns;
    std::vector<std::string> primaryKey;

    // The column of that name (compared without regard to case), or nullptr.
    const SchemaColumn* Column(const std::string& columnName) const;
};

// The configuration tables in the order the schema creates them, read once
// from the compiled-in SQLite schema: the one source of both engines' tables.
const std::vector<SchemaTable>& ConfigurationSchema();

// The table of that name (compared without regard to case), or nullptr.
const SchemaTable* FindSchemaTable(const std::string& tableName);

// The PostgreSQL type of a column: whole numbers by their range, 16-bit
// (smallint), 32-bit (integer) or 64-bit like SQLite's INTEGER (bigint).
std::string PostgresColumnType(const SchemaColumn& column);

// CREATE TABLE statements of every configuration table for PostgreSQL, with
// the same columns, keys and NOT NULL rules. Identifiers are folded to lower
// case, as PostgreSQL folds the catalogue's unquoted names.
std::string PostgresSchemaSql();

// The CREATE TABLE statement of one table, for each engine.
std::string PostgresCreateTableSql(const SchemaTable& table);
std::string SqliteCreateTableSql(const SchemaTable& table);

// The trigger by which a server announces each new history entry on
// kHistoryChannel, its entry number as the payload, at commit.
std::string PostgresAnnouncementSql();

}  // namespace dbn
