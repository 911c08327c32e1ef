// The embedded engine: one SQLite file.
#include "database/database_engine.h"
#include "database/database_errors.h"
#include "database/database_file.h"
#include "database/schema_sql.h"
#include "database/schema_version.h"
#include "database/sql_translation.h"

#include <sqlite3.h>

#include <pwd.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <thread>

namespace dbn {
namespace {

struct StatementCloser {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementCloser>;

struct ConnectionCloser {
    void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
using ConnectionHandle = std::unique_ptr<sqlite3, ConnectionCloser>;

// The SQLite text of a catalogue command, translated once per process. A
// parameter count that differs from the declared one is a catalogue fault.
const std::string& SqliteTextOf(const CatalogueCommand& command) {
    static std::map<std::string_view, std::string> translated;
    auto found = translated.find(command.name);
    if (found == translated.end()) {
        TranslatedStatement statement = TranslateToSqlite(command.text);
        CheckParameterCount(command, statement);
        found = translated.emplace(command.name, std::move(statement.sql)).first;
    }
    return found->second;
}

FieldValue ColumnValue(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
        case SQLITE_INTEGER:
            return FieldValue(std::int64_t{sqlite3_column_int64(statement, column)});
        case SQLITE_FLOAT:
            return FieldValue(sqlite3_column_double(statement, column));
        case SQLITE_NULL:
            return FieldValue();
        default: {
            const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
            const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
            return FieldValue(
                std::string(bytes == nullptr ? "" : bytes, bytes == nullptr ? 0 : size));
        }
    }
}

void BindValue(sqlite3_stmt* statement, int index, const FieldValue& value) {
    std::visit(
        [&](const auto& v) {
            using V = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<V, std::monostate>) {
                sqlite3_bind_null(statement, index);
            } else if constexpr (std::is_same_v<V, std::int64_t>) {
                sqlite3_bind_int64(statement, index, v);
            } else if constexpr (std::is_same_v<V, double>) {
                sqlite3_bind_double(statement, index, v);
            } else {
                sqlite3_bind_text(statement, index, v.c_str(), static_cast<int>(v.size()),
                                  SQLITE_TRANSIENT);
            }
        },
        value.Raw());
}

std::string Quoted(const std::string& name) {
    return "\"" + name + "\"";
}

std::string ColumnList(const SchemaTable& table) {
    std::string list;
    for (const SchemaColumn& column : table.columns) {
        list += (list.empty() ? "" : ", ") + Quoted(column.name);
    }
    return list;
}

class SqliteEngine final : public DatabaseEngine {
public:
    SqliteEngine(std::string path, std::chrono::milliseconds lockTimeout, OpenMode mode);
    ~SqliteEngine() override { statements_.clear(); }

    CommandResult Run(const CatalogueCommand& command,
                      const std::vector<std::string>& args) override;
    void BeginWrite() override { Exec("BEGIN IMMEDIATE", "BeginTrans"); }
    void Exec(const std::string& sql, std::string_view doing) override;
    bool InTransaction() const override { return sqlite3_get_autocommit(db_.get()) == 0; }
    // The write transaction (BEGIN IMMEDIATE) already keeps every other
    // writer of the file out.
    std::vector<std::string> RowLockStatements(const std::vector<RowLock>&) override {
        return {};
    }
    std::optional<std::string> ReadOnlyUser() override {
        // The file opened for reading only, or a folder where the journal
        // of a write cannot be made.
        const std::string folder = std::filesystem::path(path_).parent_path().string();
        if (sqlite3_db_readonly(db_.get(), "main") != 1 &&
            ::access(folder.empty() ? "." : folder.c_str(), W_OK) == 0) {
            return std::nullopt;
        }
        const passwd* account = ::getpwuid(::geteuid());
        return account != nullptr ? account->pw_name : "this user";
    }
    void SetLockTimeout(std::chrono::milliseconds timeout) override {
        lockTimeout_ = timeout;
        sqlite3_busy_handler(db_.get(), &SqliteEngine::OnBusy, this);
    }
    void SetWaitHandler(std::function<void()> handler) override {
        waitHandler_ = std::move(handler);
    }
    bool HasTable(const SchemaTable& table) override;
    bool HasRows(const SchemaTable& table) override {
        Statement statement =
            Prepare("SELECT 1 FROM " + Quoted(table.name) + " LIMIT 1", "reading " + table.name);
        return !StepAll(statement.get(), "reading " + table.name).empty();
    }
    void BeginRead() override { Exec("BEGIN", "reading"); }
    TableRows ReadTable(const SchemaTable& table) override;
    void AppendRows(const SchemaTable& table, const TableRows& rows) override;
    void CreateSchema() override;
    const std::string& Name() const override { return path_; }
    bool CanChangeSchema() override { return sqlite3_db_readonly(db_.get(), "main") == 0; }
    int ListenForChanges() override {
        ChangesCommitted();
        return -1;
    }
    bool ChangesCommitted() override;

private:
    // SQLite's busy handler: waits for another connection's lock in short
    // steps, calling the wait handler between them, until the lock time-out.
    static int OnBusy(void* self, int attempt);

    Statement Prepare(const std::string& sql, std::string_view doing, unsigned flags = 0);
    // Steps statement to its end, collecting the rows.
    TableRows StepAll(sqlite3_stmt* statement, std::string_view doing);

    std::string path_;
    // Declared before the statements so that they are finalized first.
    ConnectionHandle db_;
    std::map<std::string, Statement, std::less<>> statements_;
    std::chrono::milliseconds lockTimeout_{0};
    std::chrono::steady_clock::time_point waitStart_;
    std::function<void()> waitHandler_;
    std::int64_t dataVersion_ = -1;
};

bool SqliteEngine::ChangesCommitted() {
    Statement statement = Prepare("PRAGMA data_version", "watching for changes");
    const TableRows rows = StepAll(statement.get(), "watching for changes");
    const std::int64_t version = rows.empty() ? 0 : std::stoll(rows[0][0].ToText());
    const bool changed = dataVersion_ >= 0 && version != dataVersion_;
    dataVersion_ = version;
    return changed;
}

int SqliteEngine::OnBusy(void* self, int attempt) {
    constexpr std::chrono::milliseconds kStep{20};
    auto& engine = *static_cast<SqliteEngine*>(self);
    const auto now = std::chrono::steady_clock::now();
    if (attempt == 0) {
        engine.waitStart_ = now;
    }
    if (now - engine.waitStart_ >= engine.lockTimeout_) {
        return 0;
    }
    if (engine.waitHandler_) {
        engine.waitHandler_();
    }
    std::this_thread::sleep_for(kStep);
    return 1;
}

SqliteEngine::SqliteEngine(std::string path, std::chrono::milliseconds lockTimeout, OpenMode mode)
    : path_(std::move(path)) {
    if (mode == OpenMode::Existing) {
        CheckDatabaseFile(path_);
    }
    // Without SQLITE_OPEN_CREATE a file that vanished since the check is not
    // made anew. A connection is only ever used by one thread at a time, so
    // it goes without SQLite's own locking of every call.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX |
                      (mode == OpenMode::CreateNew ? SQLITE_OPEN_CREATE : 0);
    sqlite3* raw = nullptr;
    const int rc = sqlite3_open_v2(path_.c_str(), &raw, flags, nullptr);
    ConnectionHandle connection(raw);
    if (rc != SQLITE_OK) {
        if (mode == OpenMode::Existing) {
            CheckDatabaseFile(path_);
        }
        RaiseEngineError(connection.get(), rc, path_, "opening");
    }
    db_ = std::move(connection);
    sqlite3_extended_result_codes(db_.get(), 1);
    SetLockTimeout(lockTimeout);
    // A save that reported success must survive a crash or power loss.
    Exec("PRAGMA synchronous=FULL", "opening");
}

Statement SqliteEngine::Prepare(const std::string& sql, std::string_view doing, unsigned flags) {
    sqlite3_stmt* raw = nullptr;
    const int rc = sqlite3_prepare_v3(db_.get(), sql.c_str(), static_cast<int>(sql.size() + 1),
                                      flags, &raw, nullptr);
    Statement statement(raw);
    if (rc != SQLITE_OK) {
        RaiseEngineError(db_.get(), rc, path_, doing);
    }
    return statement;
}

TableRows SqliteEngine::StepAll(sqlite3_stmt* statement, std::string_view doing) {
    TableRows rows;
    const int columnCount = sqlite3_column_count(statement);
    int rc = SQLITE_OK;
    while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
        std::vector<FieldValue> row;
        row.reserve(static_cast<std::size_t>(columnCount));
        for (int column = 0; column < columnCount; ++column) {
            row.push_back(ColumnValue(statement, column));
        }
        rows.push_back(std::move(row));
    }
    if (rc != SQLITE_DONE) {
        // Reset releases the statement's locks before the error leaves.
        std::string what(doing);
        try {
            RaiseEngineError(db_.get(), rc, path_, what);
        } catch (...) {
            sqlite3_reset(statement);
            throw;
        }
    }
    sqlite3_reset(statement);
    return rows;
}

CommandResult SqliteEngine::Run(const CatalogueCommand& command,
                                const std::vector<std::string>& args) {
    auto found = statements_.find(command.name);
    if (found == statements_.end()) {
        found = statements_
                    .emplace(std::string(command.name), Prepare(SqliteTextOf(command), command.name,
                                                                SQLITE_PREPARE_PERSISTENT))
                    .first;
    }
    sqlite3_stmt* statement = found->second.get();
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    for (std::size_t i = 0; i < args.size(); ++i) {
        sqlite3_bind_text(statement, static_cast<int>(i + 1), args[i].c_str(),
                          static_cast<int>(args[i].size()), SQLITE_TRANSIENT);
    }
    CommandResult result;
    result.rows = StepAll(statement, command.name);
    if (command.kind == CommandKind::Action) {
        result.changes = sqlite3_changes(db_.get());
        return result;
    }
    const int columnCount = sqlite3_column_count(statement);
    result.columns.reserve(static_cast<std::size_t>(columnCount));
    for (int column = 0; column < columnCount; ++column) {
        result.columns.emplace_back(sqlite3_column_name(statement, column));
    }
    return result;
}

void SqliteEngine::Exec(const std::string& sql, std::string_view doing) {
    const int rc = sqlite3_exec(db_.get(), sql.c_str(), nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) {
        RaiseEngineError(db_.get(), rc, path_, doing);
    }
}

bool SqliteEngine::HasTable(const SchemaTable& table) {
    Statement statement =
        Prepare("SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?1 COLLATE NOCASE",
                "reading the schema");
    sqlite3_bind_text(statement.get(), 1, table.name.c_str(), -1, SQLITE_TRANSIENT);
    return !StepAll(statement.get(), "reading the schema").empty();
}

TableRows SqliteEngine::ReadTable(const SchemaTable& table) {
    std::string order;
    for (const std::string& key : table.primaryKey) {
        order += (order.empty() ? "" : ", ") + Quoted(key);
    }
    Statement statement = Prepare(
        "SELECT " + ColumnList(table) + " FROM " + Quoted(table.name) + " ORDER BY " + order,
        "reading " + table.name);
    return StepAll(statement.get(), "reading " + table.name);
}

void SqliteEngine::AppendRows(const SchemaTable& table, const TableRows& rows) {
    std::string marks;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        marks += i == 0 ? "?" : ", ?";
    }
    Statement statement = Prepare(
        "INSERT INTO " + Quoted(table.name) + " (" + ColumnList(table) + ") VALUES (" + marks + ")",
        "writing " + table.name);
    for (const auto& row : rows) {
        sqlite3_reset(statement.get());
        for (std::size_t i = 0; i < row.size(); ++i) {
            BindValue(statement.get(), static_cast<int>(i + 1), row[i]);
        }
        StepAll(statement.get(), "writing " + table.name);
    }
}

void SqliteEngine::CreateSchema() {
    std::string drops;
    for (const SchemaTable& table : ConfigurationSchema()) {
        drops += "DROP TABLE IF EXISTS " + Quoted(table.name) + ";\n";
    }
    Exec(drops + sql::k_schema + SchemaVersionRowSql(), "creating the tables");
}

}  // namespace

void BackupSqliteFile(const std::string& from, const std::string& to) {
    sqlite3* rawSource = nullptr;
    ConnectionHandle source;
    int rc = sqlite3_open_v2(from.c_str(), &rawSource, SQLITE_OPEN_READONLY, nullptr);
    source.reset(rawSource);
    if (rc != SQLITE_OK) {
        RaiseEngineError(source.get(), rc, from, "copying");
    }
    sqlite3* rawTarget = nullptr;
    rc = sqlite3_open_v2(to.c_str(), &rawTarget, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                         nullptr);
    ConnectionHandle target(rawTarget);
    if (rc != SQLITE_OK) {
        RaiseDatabaseError(kErrDatabaseCreate, "The copy " + to + " cannot be written.");
    }
    sqlite3_backup* backup = sqlite3_backup_init(target.get(), "main", source.get(), "main");
    if (backup == nullptr) {
        RaiseDatabaseError(kErrDatabaseCreate, "The copy " + to + " cannot be written.");
    }
    rc = sqlite3_backup_step(backup, -1);
    sqlite3_backup_finish(backup);
    if (rc != SQLITE_DONE) {
        RaiseDatabaseError(kErrDatabaseCreate, "The copy " + to + " cannot be written.");
    }
}

std::unique_ptr<DatabaseEngine> ConnectSqlite(const std::string& path,
                                              std::chrono::milliseconds lockTimeout,
                                              OpenMode mode) {
    return std::make_unique<SqliteEngine>(path, lockTimeout, mode);
}

}  // namespace dbn
