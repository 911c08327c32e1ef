#pragma once

// One open connection of one engine (SQLite or PostgreSQL) behind DataBase,
// configuration set-up and copy. Every failure is raised as ComponentError
// with the engine's clear message.

#include "database/batch_step.h"
#include "database/command_catalogue.h"
#include "database/database_target.h"
#include "database/field_value.h"
#include "database/row_lock.h"
#include "database/schema_model.h"
#include "database/sql_translation.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

using TableRows = std::vector<std::vector<FieldValue>>;

// What a catalogue command gave back.
struct CommandResult {
    std::vector<std::string> columns;  // row-returning commands only
    TableRows rows;
    long changes = 0;  // rows changed by an action command
};

// The catalogue command of that name; raises the unknown-command error when
// there is none.
const CatalogueCommand& CatalogueCommandNamed(std::string_view name);
// The catalogue command of a Command step.
inline const CatalogueCommand& CommandOf(const BatchStep& step) {
    return CatalogueCommandNamed(step.command);
}

class DatabaseEngine {
public:
    virtual ~DatabaseEngine() = default;

    // Runs the steps in order and answers one result per step. A failing
    // step raises its error and no step after it is applied; outside a
    // transaction, the steps before it are undone too. This default runs
    // them one after another (in a transaction of their own when they
    // write outside one); the server sends them all at once.
    virtual std::vector<CommandResult> RunBatch(const std::vector<BatchStep>& steps);

    // Runs a catalogue command, its arguments bound as text in order.
    virtual CommandResult Run(const CatalogueCommand& command,
                              const std::vector<std::string>& args) = 0;

    // Opens a transaction holding the database's write lock, waiting for
    // another writer up to the lock time-out, so that a save never stops
    // half way for want of a lock.
    virtual void BeginWrite() = 0;
    // Runs statements without results (commit, rollback, savepoints, DDL).
    virtual void Exec(const std::string& sql, std::string_view doing) = 0;
    virtual bool InTransaction() const = 0;
    // The statements that lock the rows matching each key until the
    // transaction ends, one a table; none where the write transaction holds
    // the whole database already.
    virtual std::vector<std::string> RowLockStatements(const std::vector<RowLock>& locks) = 0;
    // How long a statement waits for a lock held by another connection.
    virtual void SetLockTimeout(std::chrono::milliseconds timeout) = 0;
    // Called again and again (every few tens of milliseconds) while a
    // statement waits for a lock or for the server's answer, so that a window
    // can keep painting; it must not use this connection. Empty: just wait.
    virtual void SetWaitHandler(std::function<void()> handler) = 0;

    // The user this connection works as, when it may read the configuration
    // but not change it (a read-only file or folder, a server role without
    // the right to change the tables, a standby server); else std::nullopt.
    virtual std::optional<std::string> ReadOnlyUser() = 0;

    // Whole-table access for set-up and copy.
    virtual bool HasTable(const SchemaTable& table) = 0;
    // True when the table (which must exist) holds at least one row.
    virtual bool HasRows(const SchemaTable& table) = 0;
    // Opens a read-only transaction that sees one consistent state.
    virtual void BeginRead() = 0;
    // Every row, columns in schema order, sorted by the primary key.
    virtual TableRows ReadTable(const SchemaTable& table) = 0;
    // Appends rows given in schema column order.
    virtual void AppendRows(const SchemaTable& table, const TableRows& rows) = 0;
    // Removes every configuration table there is and creates them empty.
    virtual void CreateSchema() = 0;

    // The database as messages name it (no password).
    virtual const std::string& Name() const = 0;
    // The database user on a server; empty for a file.
    virtual std::string UserName() const { return {}; }
    // False when the database can only be read (a read-only file or a
    // server user without the right to create tables).
    virtual bool CanChangeSchema() = 0;
    // The stored schema version in one round trip, outside a transaction:
    // std::nullopt when the version table is missing or the engine cannot
    // tell that way (the caller then looks at the tables).
    virtual std::optional<int> QuickSchemaVersion() { return std::nullopt; }
    // Runs the steps as RunBatch does, but only when the stored schema
    // version is version, asked in the same round trip; std::nullopt when it
    // is another one or the engine cannot ask that way: then no step ran.
    virtual std::optional<std::vector<CommandResult>> RunBatchAtVersion(
        const std::vector<BatchStep>& steps, int version) {
        (void)steps;
        (void)version;
        return std::nullopt;
    }

    // Starts hearing the changes other connections commit: answers the
    // socket that becomes readable when one is announced, or -1 when
    // ChangesCommitted must be asked on a short timer instead.
    virtual int ListenForChanges() = 0;
    // True when another connection has committed a change (or announced
    // one) since the last call. Cheap: reads no table.
    virtual bool ChangesCommitted() = 0;

protected:
    // Runs the steps one after another, as they come.
    std::vector<CommandResult> RunSteps(const std::vector<BatchStep>& steps);
};

// Raises the catalogue fault of a command whose statement has another number
// of parameters than it declares.
void CheckParameterCount(const CatalogueCommand& command, const TranslatedStatement& statement);

enum class OpenMode { Existing, CreateNew };

// Connects to target. An SQLite file must exist and be a configuration
// database unless mode is CreateNew, which makes an empty file.
std::unique_ptr<DatabaseEngine> ConnectEngine(const DatabaseTarget& target,
                                              std::chrono::milliseconds lockTimeout,
                                              OpenMode mode = OpenMode::Existing);

std::unique_ptr<DatabaseEngine> ConnectSqlite(const std::string& path,
                                              std::chrono::milliseconds lockTimeout, OpenMode mode);
// Copies the SQLite database at from, consistently, to a new file at to.
void BackupSqliteFile(const std::string& from, const std::string& to);

std::unique_ptr<DatabaseEngine> ConnectPostgres(const std::string& conninfo,
                                                std::chrono::milliseconds lockTimeout);

}  // namespace dbn
