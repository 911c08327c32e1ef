// The server engine's whole-table work: the schema, reading and appending
// every row of a table for set-up and copy, and row locks.
#include "database/postgres_engine.h"
#include "database/schema_version.h"

#include <cctype>
#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace dbn::postgres {
namespace {

// Type numbers of the values read back.
constexpr Oid kInt8 = 20;
constexpr Oid kInt2 = 21;
constexpr Oid kInt4 = 23;
constexpr Oid kFloat4 = 700;
constexpr Oid kFloat8 = 701;
constexpr Oid kNumeric = 1700;

// A table or column name as the server spells it: lower case, quoted.
std::string QuotedName(std::string name) {
    for (char& c : name) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return "\"" + name + "\"";
}

std::string ColumnList(const SchemaTable& table) {
    std::string list;
    for (const SchemaColumn& column : table.columns) {
        list += (list.empty() ? "" : ", ") + QuotedName(column.name);
    }
    return list;
}

// One value in COPY's text format.
void AppendCopyValue(std::string& line, const FieldValue& value) {
    std::visit(
        [&line](const auto& v) {
            using V = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<V, std::monostate>) {
                line += "\\N";
            } else if constexpr (std::is_same_v<V, std::int64_t>) {
                line += std::to_string(v);
            } else if constexpr (std::is_same_v<V, double>) {
                char buffer[32];
                std::snprintf(buffer, sizeof buffer, "%.17g", v);
                line += buffer;
            } else {
                for (const char c : v) {
                    switch (c) {
                        case '\\':
                            line += "\\\\";
                            break;
                        case '\n':
                            line += "\\n";
                            break;
                        case '\r':
                            line += "\\r";
                            break;
                        case '\t':
                            line += "\\t";
                            break;
                        default:
                            line += c;
                    }
                }
            }
        },
        value.Raw());
}

}  // namespace

FieldValue ReadValue(const PGresult* result, int row, int column) {
    if (PQgetisnull(result, row, column) != 0) {
        return FieldValue();
    }
    const char* text = PQgetvalue(result, row, column);
    const auto length = static_cast<std::size_t>(PQgetlength(result, row, column));
    switch (PQftype(result, column)) {
        case kInt2:
        case kInt4:
        case kInt8: {
            std::int64_t value = 0;
            std::from_chars(text, text + length, value);
            return FieldValue(value);
        }
        case kFloat4:
        case kFloat8:
        case kNumeric:
            return FieldValue(std::strtod(text, nullptr));
        default:
            return FieldValue(std::string(text, length));
    }
}

std::vector<std::string> PostgresEngine::RowLockStatements(const std::vector<RowLock>& locks) {
    // A SELECT ... FOR UPDATE a table. The values are whole numbers, written
    // as such.
    std::vector<std::string> statements;
    for (const RowLock& lock : locks) {
        std::string where;
        for (const auto& [column, value] : lock.key) {
            where += (where.empty() ? " WHERE " : " AND ") + QuotedName(column) + " = " +
                     std::to_string(value);
        }
        statements.push_back("SELECT 1 FROM " + QuotedName(lock.table) + where + " FOR UPDATE");
    }
    return statements;
}

bool PostgresEngine::HasTable(const SchemaTable& table) {
    const std::string name = QuotedName(table.name);
    const char* values[] = {name.c_str()};
    Result result = Checked(PQexecParams(conn_.get(), "SELECT to_regclass($1) IS NOT NULL", 1,
                                         nullptr, values, nullptr, nullptr, 0),
                            "reading the schema");
    return PQntuples(result.get()) == 1 && std::string_view(PQgetvalue(result.get(), 0, 0)) == "t";
}

TableRows PostgresEngine::ReadTable(const SchemaTable& table) {
    std::string order;
    for (const std::string& key : table.primaryKey) {
        order += (order.empty() ? "" : ", ") + QuotedName(key);
    }
    Result result = Checked(PQexec(conn_.get(), ("SELECT " + ColumnList(table) + " FROM " +
                                                 QuotedName(table.name) + " ORDER BY " + order)
                                                    .c_str()),
                            "reading " + table.name);
    TableRows rows;
    const int columns = PQnfields(result.get());
    for (int row = 0; row < PQntuples(result.get()); ++row) {
        std::vector<FieldValue> values;
        values.reserve(static_cast<std::size_t>(columns));
        for (int column = 0; column < columns; ++column) {
            values.push_back(ReadValue(result.get(), row, column));
        }
        rows.push_back(std::move(values));
    }
    return rows;
}

void PostgresEngine::AppendRows(const SchemaTable& table, const TableRows& rows) {
    const std::string doing = "writing " + table.name;
    Checked(
        PQexec(
            conn_.get(),
            ("COPY " + QuotedName(table.name) + " (" + ColumnList(table) + ") FROM STDIN").c_str()),
        doing);
    std::string chunk;
    const auto flush = [&] {
        if (PQputCopyData(conn_.get(), chunk.data(), static_cast<int>(chunk.size())) != 1) {
            RaiseFailure(nullptr, doing);
        }
        chunk.clear();
    };
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (i > 0) {
                chunk += '\t';
            }
            AppendCopyValue(chunk, row[i]);
        }
        chunk += '\n';
        if (chunk.size() > 65536) {
            flush();
        }
    }
    flush();
    if (PQputCopyEnd(conn_.get(), nullptr) != 1) {
        RaiseFailure(nullptr, doing);
    }
    Checked(PQgetResult(conn_.get()), doing);
    // The copy's end leaves one more empty result to take.
    while (PGresult* rest = PQgetResult(conn_.get())) {
        PQclear(rest);
    }
}

void PostgresEngine::CreateSchema() {
    std::string drops;
    for (const SchemaTable& table : ConfigurationSchema()) {
        drops += "DROP TABLE IF EXISTS " + QuotedName(table.name) + ";\n";
    }
    Exec("DROP FUNCTION IF EXISTS dbn_announce_history() CASCADE;\n" + drops + PostgresSchemaSql() +
             SchemaVersionRowSql(),
         "creating the tables");
}

bool PostgresEngine::HasRows(const SchemaTable& table) {
    Result result = Checked(
        PQexec(conn_.get(), ("SELECT 1 FROM " + QuotedName(table.name) + " LIMIT 1").c_str()),
        "reading " + table.name);
    return PQntuples(result.get()) > 0;
}

bool PostgresEngine::CanChangeSchema() {
    Result result = Checked(PQexec(conn_.get(),
                                   "SELECT has_schema_privilege(current_schema(), 'CREATE') AND "
                                   "current_setting('transaction_read_only') = 'off'"),
                            "reading the schema");
    return PQntuples(result.get()) == 1 && std::string_view(PQgetvalue(result.get(), 0, 0)) == "t";
}

std::optional<int> PostgresEngine::QuickSchemaVersion() {
    // A missing table only fails this statement: no transaction is open.
    Result result(PQexec(conn_.get(), "SELECT max(version) FROM schema_version"));
    if (PQresultStatus(result.get()) != PGRES_TUPLES_OK || PQntuples(result.get()) != 1) {
        return std::nullopt;
    }
    return PQgetisnull(result.get(), 0, 0) != 0 ? 1 : std::atoi(PQgetvalue(result.get(), 0, 0));
}

}  // namespace dbn::postgres
