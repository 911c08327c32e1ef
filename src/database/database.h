#pragma once

#include "database/database_observer.h"
#include "database/row_set.h"

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace dbn {

// One connection to the configuration database and its catalogue of named
// commands. The connection string is fixed at creation; the file opens on
// the first command and stays open until the object is destroyed. Errors are
// raised as ComponentError.
class DataBase {
public:
    // Uses BuildConnectionString().
    DataBase();
    explicit DataBase(std::string connectionString);
    ~DataBase();
    DataBase(const DataBase&) = delete;
    DataBase& operator=(const DataBase&) = delete;

    const std::string& ConnectionString() const noexcept { return connectionString_; }

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

    // Number of commands executed through this object (for measurements).
    long ExecutedCount() const noexcept { return executed_; }

    // Reports every command, row-set read and transaction step to observer
    // until it is replaced; an empty observer stops the reports.
    void SetObserver(DataBaseObserver observer);

private:
    struct Impl;
    sqlite3* Connection();
    void Notify(DataBaseStep step);

    std::string connectionString_;
    std::chrono::milliseconds busyTimeout_{30000};
    std::unique_ptr<Impl> impl_;
    long executed_ = 0;
    DataBaseObserver observer_;
};

}  // namespace dbn
