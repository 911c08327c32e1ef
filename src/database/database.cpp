#include "database/database.h"

#include "database/command_catalogue.h"
#include "database/data_location.h"
#include "database/database_errors.h"
#include "database/database_file.h"
#include "database/sql_translation.h"

#include <sqlite3.h>

#include <map>

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
        if (statement.parameters.size() != static_cast<std::size_t>(command.parameterCount)) {
            RaiseDatabaseError(kErrCatalogueParameters,
                               "Command " + std::string(command.name) + " declares " +
                                   std::to_string(command.parameterCount) +
                                   " parameters but its statement has " +
                                   std::to_string(statement.parameters.size()) + ".");
        }
        found = translated.emplace(command.name, std::move(statement.sql)).first;
    }
    return found->second;
}

const CatalogueCommand& CommandNamed(std::string_view name) {
    const CatalogueCommand* command = FindCatalogueCommand(name);
    if (command == nullptr) {
        RaiseDatabaseError(kErrUnknownCommand,
                           "The command " + std::string(name) + " is not in the catalogue.");
    }
    return *command;
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

}  // namespace

struct DataBase::Impl {
    std::string path;
    // Declared before the statements so that they are finalized first.
    ConnectionHandle connection;
    std::map<std::string, Statement, std::less<>> statements;
    std::map<std::string, RowSet, std::less<>> rowSets;

    sqlite3_stmt* Prepared(sqlite3* db, const CatalogueCommand& command);
    void RunSql(sqlite3* db, const char* sql, std::string_view doing);
};

sqlite3_stmt* DataBase::Impl::Prepared(sqlite3* db, const CatalogueCommand& command) {
    auto found = statements.find(command.name);
    if (found != statements.end()) {
        return found->second.get();
    }
    const std::string& sql = SqliteTextOf(command);
    sqlite3_stmt* raw = nullptr;
    const int rc = sqlite3_prepare_v3(db, sql.c_str(), static_cast<int>(sql.size() + 1),
                                      SQLITE_PREPARE_PERSISTENT, &raw, nullptr);
    Statement statement(raw);
    if (rc != SQLITE_OK) {
        RaiseEngineError(db, rc, path, command.name);
    }
    return statements.emplace(std::string(command.name), std::move(statement)).first->second.get();
}

void DataBase::Impl::RunSql(sqlite3* db, const char* sql, std::string_view doing) {
    const int rc = sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) {
        RaiseEngineError(db, rc, path, doing);
    }
}

DataBase::DataBase() : DataBase(BuildConnectionString()) {}

DataBase::DataBase(std::string connectionString)
    : connectionString_(std::move(connectionString)), impl_(std::make_unique<Impl>()) {
    impl_->path = DataSourceOf(connectionString_);
}

DataBase::~DataBase() {
    // Statements go before the connection they belong to.
    impl_->statements.clear();
}

sqlite3* DataBase::Connection() {
    if (impl_->connection) {
        return impl_->connection.get();
    }
    const std::string& path = impl_->path;
    CheckDatabaseFile(path);
    sqlite3* raw = nullptr;
    // Without SQLITE_OPEN_CREATE a file that vanished since the check is not
    // made anew.
    const int rc = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
    ConnectionHandle connection(raw);
    if (rc != SQLITE_OK) {
        CheckDatabaseFile(path);
        RaiseEngineError(connection.get(), rc, path, "opening");
    }
    sqlite3_extended_result_codes(connection.get(), 1);
    sqlite3_busy_timeout(connection.get(), static_cast<int>(busyTimeout_.count()));
    // A save that reported success must survive a crash or power loss.
    impl_->RunSql(connection.get(), "PRAGMA synchronous=FULL", "opening");
    impl_->connection = std::move(connection);
    return impl_->connection.get();
}

long DataBase::Execute(std::string_view commandName, const std::vector<std::string>& args) {
    const CatalogueCommand& command = CommandNamed(commandName);
    if (args.size() != static_cast<std::size_t>(command.parameterCount)) {
        RaiseDatabaseError(kErrArgumentCount,
                           "The command " + std::string(command.name) + " takes " +
                               std::to_string(command.parameterCount) + " arguments; " +
                               std::to_string(args.size()) + " were given.");
    }
    RowSet* rowSet = nullptr;
    if (command.kind == CommandKind::RowReturning) {
        rowSet = &Recordset(command.name);
        if (rowSet->IsOpen()) {
            RaiseDatabaseError(kErrObjectOpen, kMsgObjectOpen);
        }
    }

    sqlite3* db = Connection();
    sqlite3_stmt* statement = impl_->Prepared(db, command);
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    for (std::size_t i = 0; i < args.size(); ++i) {
        sqlite3_bind_text(statement, static_cast<int>(i + 1), args[i].c_str(),
                          static_cast<int>(args[i].size()), SQLITE_TRANSIENT);
    }
    ++executed_;
    if (observer_) {
        observer_({DataBaseStep::Execute, command.name, &args, {}});
    }

    std::vector<std::vector<FieldValue>> rows;
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
        std::string doing(command.name);
        try {
            RaiseEngineError(db, rc, impl_->path, doing);
        } catch (...) {
            sqlite3_reset(statement);
            throw;
        }
    }
    sqlite3_reset(statement);

    if (rowSet == nullptr) {
        return sqlite3_changes(db);
    }
    std::vector<std::string> columns;
    columns.reserve(static_cast<std::size_t>(columnCount));
    for (int column = 0; column < columnCount; ++column) {
        columns.emplace_back(sqlite3_column_name(statement, column));
    }
    const long count = static_cast<long>(rows.size());
    rowSet->Open(std::move(columns), std::move(rows));
    return count;
}

RowSet& DataBase::Recordset(std::string_view commandName) {
    const CatalogueCommand* command = FindCatalogueCommand(commandName);
    if (command == nullptr || command->kind != CommandKind::RowReturning) {
        RaiseDatabaseError(kErrItemNotFound, kMsgItemNotFound);
    }
    auto found = impl_->rowSets.find(commandName);
    if (found == impl_->rowSets.end()) {
        found = impl_->rowSets
                    .emplace(std::string(commandName), RowSet("rs" + std::string(commandName)))
                    .first;
        found->second.SetObserver(&observer_);
    }
    return found->second;
}

void DataBase::SetObserver(DataBaseObserver observer) {
    observer_ = std::move(observer);
    for (auto& [name, rowSet] : impl_->rowSets) {
        rowSet.SetObserver(&observer_);
    }
}

void DataBase::Notify(DataBaseStep step) {
    if (observer_) {
        observer_({step, {}, nullptr, {}});
    }
}

void DataBase::BeginTrans() {
    // IMMEDIATE takes the write lock at once, waiting up to the busy time-out
    // for another writer, so a save never fails half way for want of a lock.
    Notify(DataBaseStep::BeginTrans);
    impl_->RunSql(Connection(), "BEGIN IMMEDIATE", "BeginTrans");
}

void DataBase::CommitTrans() {
    Notify(DataBaseStep::CommitTrans);
    impl_->RunSql(Connection(), "COMMIT", "CommitTrans");
}

void DataBase::RollbackTrans() {
    Notify(DataBaseStep::RollbackTrans);
    impl_->RunSql(Connection(), "ROLLBACK", "RollbackTrans");
}

void DataBase::BeginSavepoint() {
    Notify(DataBaseStep::BeginSavepoint);
    impl_->RunSql(Connection(), "SAVEPOINT nested", "BeginSavepoint");
}

void DataBase::ReleaseSavepoint() {
    Notify(DataBaseStep::ReleaseSavepoint);
    impl_->RunSql(Connection(), "RELEASE nested", "ReleaseSavepoint");
}

void DataBase::RollbackToSavepoint() {
    Notify(DataBaseStep::RollbackToSavepoint);
    // Rolling back to a savepoint keeps it open; releasing it then ends it.
    impl_->RunSql(Connection(), "ROLLBACK TO nested; RELEASE nested", "RollbackToSavepoint");
}

bool DataBase::InTransaction() const noexcept {
    return impl_->connection && sqlite3_get_autocommit(impl_->connection.get()) == 0;
}

void DataBase::SetBusyTimeout(std::chrono::milliseconds timeout) {
    busyTimeout_ = timeout;
    if (impl_->connection) {
        sqlite3_busy_timeout(impl_->connection.get(), static_cast<int>(busyTimeout_.count()));
    }
}

}  // namespace dbn
