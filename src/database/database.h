#pragma once

#include "database/database_observer.h"
#include "database/database_target.h"
#include "database/row_set.h"
#include "database/schema_version.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

class DatabaseEngine;

// One connection to the configuration database and its catalogue of named
// commands, on either engine. The target is fixed at creation; the
// connection opens on the first command and stays open until the object is
// destroyed. Errors are raised as ComponentError.
class DataBase {
public:
    // Uses ResolveDatabaseTarget().
    DataBase();
    explicit DataBase(DatabaseTarget target);
    ~DataBase();
    DataBase(const DataBase&) = delete;
    DataBase& operator=(const DataBase&) = delete;

    const DatabaseTarget& Target() const noexcept { return target_; }
    // The connection as a text for display: "Provider=SQLite;Data Source="
    // and the path, or the server's connection string without password.
    std::string ConnectionString() const;

    // Executes a catalogue command with its arguments, bound as text in
    // order. A row-returning command leaves its rows in Recordset(command)
    // and answers the row count; an action command answers the rows changed.
    long Execute(std::string_view command, const std::vector<std::string>& args = {});

    // The row set "rs" + command of a row-returning command.
    RowSet& Recordset(std::string_view command);

    void BeginTrans();
    void CommitTrans();
    void RollbackTrans();
    bool InTransaction() const noexcept;

    // A nested unit of work inside the open transaction: rolling it back
    // undoes its own work only; releasing it keeps that work in the
    // transaction. Nested ones end innermost first.
    void BeginSavepoint();
    void ReleaseSavepoint();
    void RollbackToSavepoint();

    // How long a command waits for a lock held by another connection
    // (30 seconds unless changed).
    void SetBusyTimeout(std::chrono::milliseconds timeout);

    // Called again and again while a command waits for another connection's
    // lock or for the server, so that a window keeps painting meanwhile. The
    // handler must not use this DataBase. Empty: just wait.
    void SetWaitHandler(std::function<void()> handler);

    // Number of commands executed through this object (for measurements).
    long ExecutedCount() const noexcept { return executed_; }

    // The schema version in use; connects first. An older database is
    // upgraded on connecting (see schema_version.h).
    int SchemaVersion();
    // True when the database keeps the node history (not an older one
    // opened read-only).
    bool KeepsHistory() { return SchemaVersion() >= kHistorySchemaVersion; }
    // The database user on a server; empty for a file.
    std::string UserName();

    // Starts hearing changes committed by other connections: answers the
    // socket to watch for them, or -1 when ChangesCommitted must be asked on
    // a short timer.
    int ListenForChanges();
    // True when another connection committed (or announced) a change since
    // the last call.
    bool ChangesCommitted();

    // Reports every command, row-set read and transaction step to observer
    // until it is replaced; an empty observer stops the reports.
    void SetObserver(DataBaseObserver observer);

private:
    DatabaseEngine& Engine();
    void Notify(DataBaseStep step);

    DatabaseTarget target_;
    std::chrono::milliseconds busyTimeout_{30000};
    std::function<void()> waitHandler_;
    std::unique_ptr<DatabaseEngine> engine_;
    SchemaState schema_;
    std::map<std::string, RowSet, std::less<>> rowSets_;
    long executed_ = 0;
    DataBaseObserver observer_;
};

}  // namespace dbn
