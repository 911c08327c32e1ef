#include "database/schema_model.h"

#include "database/schema_sql.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace dbn {
namespace {

std::string Lowered(std::string text) {
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

bool SameName(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) ==
               std::tolower(static_cast<unsigned char>(y));
    });
}

std::string Unquoted(std::string name) {
    name.erase(std::remove(name.begin(), name.end(), '"'), name.end());
    return name;
}

std::vector<std::string> NamesBetweenParentheses(const std::string& line) {
    const auto open = line.find('(');
    const auto close = line.find(')', open);
    std::vector<std::string> names;
    std::stringstream list(line.substr(open + 1, close - open - 1));
    for (std::string name; std::getline(list, name, ',');) {
        std::stringstream trimmed(name);
        trimmed >> name;
        names.push_back(Unquoted(name));
    }
    return names;
}

// Reads "CREATE TABLE name (", one "column TYPE [NOT NULL]," per line,
// "PRIMARY KEY (...)" and ") STRICT;", skipping comments and blank lines.
std::vector<SchemaTable> ParseSchema(const std::string& sql) {
    std::vector<SchemaTable> tables;
    std::stringstream lines(sql);
    for (std::string line; std::getline(lines, line);) {
        std::stringstream words(line);
        std::string first;
        words >> first;
        if (first.empty() || first.starts_with("--") || first.starts_with(")")) {
            continue;
        }
        if (first == "CREATE") {
            std::string table;
            std::string name;
            words >> table >> name;
            tables.push_back(SchemaTable{Unquoted(name), {}, {}});
        } else if (first == "PRIMARY") {
            tables.back().primaryKey = NamesBetweenParentheses(line);
        } else if (!tables.empty()) {
            std::string type;
            words >> type;
            SchemaColumn column;
            column.name = Unquoted(first);
            column.type = type.starts_with("INTEGER") ? ColumnType::Integer
                          : type.starts_with("REAL")  ? ColumnType::Real
                                                      : ColumnType::Text;
            column.notNull = line.find("NOT NULL") != std::string::npos;
            // "CHECK (name BETWEEN low AND high)": the column's range.
            if (const auto between = line.find(" BETWEEN "); between != std::string::npos) {
                std::stringstream range(line.substr(between + 9));
                std::string andWord;
                range >> column.low >> andWord >> column.high;
            }
            tables.back().columns.push_back(std::move(column));
        }
    }
    for (SchemaTable& table : tables) {
        for (SchemaColumn& column : table.columns) {
            column.inPrimaryKey =
                std::any_of(table.primaryKey.begin(), table.primaryKey.end(),
                            [&column](const std::string& key) { return key == column.name; });
        }
    }
    return tables;
}

std::string PostgresName(const std::string& name) {
    std::string quoted = "\"";
    quoted += Lowered(name);
    return quoted + "\"";
}

}  // namespace

const SchemaColumn* SchemaTable::Column(const std::string& columnName) const {
    const auto found =
        std::find_if(columns.begin(), columns.end(),
                     [&columnName](const SchemaColumn& c) { return SameName(c.name, columnName); });
    return found == columns.end() ? nullptr : &*found;
}

const std::vector<SchemaTable>& ConfigurationSchema() {
    static const std::vector<SchemaTable> tables = ParseSchema(sql::k_schema);
    return tables;
}

const SchemaTable* FindSchemaTable(const std::string& tableName) {
    const auto& tables = ConfigurationSchema();
    const auto found =
        std::find_if(tables.begin(), tables.end(),
                     [&tableName](const SchemaTable& t) { return SameName(t.name, tableName); });
    return found == tables.end() ? nullptr : &*found;
}

std::string PostgresColumnType(const SchemaColumn& column) {
    switch (column.type) {
        case ColumnType::Integer:
            if (column.low >= std::numeric_limits<std::int16_t>::min() &&
                column.high <= std::numeric_limits<std::int16_t>::max()) {
                return "smallint";
            }
            if (column.low >= std::numeric_limits<std::int32_t>::min() &&
                column.high <= std::numeric_limits<std::int32_t>::max()) {
                return "integer";
            }
            return "bigint";
        case ColumnType::Real:
            return "double precision";
        case ColumnType::Text:
            break;
    }
    return "text";
}

std::string PostgresCreateTableSql(const SchemaTable& table) {
    std::string sql = "CREATE TABLE " + PostgresName(table.name) + " (\n";
    for (const SchemaColumn& column : table.columns) {
        sql += "    " + PostgresName(column.name) + " " + PostgresColumnType(column) +
               (column.notNull ? " NOT NULL" : "") + ",\n";
    }
    sql += "    PRIMARY KEY (";
    for (std::size_t i = 0; i < table.primaryKey.size(); ++i) {
        sql += (i == 0 ? "" : ", ") + PostgresName(table.primaryKey[i]);
    }
    return sql + ")\n);\n";
}

std::string SqliteCreateTableSql(const SchemaTable& table) {
    std::string sql = "CREATE TABLE \"" + table.name + "\" (\n";
    for (const SchemaColumn& column : table.columns) {
        const char* type = column.type == ColumnType::Integer ? "INTEGER"
                           : column.type == ColumnType::Real  ? "REAL"
                                                              : "TEXT";
        sql += "    \"" + column.name + "\" " + type + (column.notNull ? " NOT NULL" : "");
        if (column.low != std::numeric_limits<std::int64_t>::min() ||
            column.high != std::numeric_limits<std::int64_t>::max()) {
            sql += " CHECK (\"" + column.name + "\" BETWEEN " + std::to_string(column.low) +
                   " AND " + std::to_string(column.high) + ")";
        }
        sql += ",\n";
    }
    sql += "    PRIMARY KEY (";
    for (std::size_t i = 0; i < table.primaryKey.size(); ++i) {
        sql += (i == 0 ? "\"" : ", \"") + table.primaryKey[i] + "\"";
    }
    return sql + ")\n) STRICT;\n";
}

std::string PostgresAnnouncementSql() {
    return "CREATE OR REPLACE FUNCTION dbn_announce_history() RETURNS trigger LANGUAGE plpgsql "
           "AS $$ BEGIN PERFORM pg_notify('dbn_node_history', NEW.entryid::text); RETURN NEW; "
           "END $$;\n"
           "CREATE TRIGGER node_history_announce AFTER INSERT ON node_history FOR EACH ROW "
           "EXECUTE FUNCTION dbn_announce_history();\n";
}

std::string PostgresSchemaSql() {
    std::string sql;
    for (const SchemaTable& table : ConfigurationSchema()) {
        sql += PostgresCreateTableSql(table);
    }
    return sql + PostgresAnnouncementSql();
}

}  // namespace dbn
