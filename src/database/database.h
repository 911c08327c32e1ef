#pragma once

#include "database/batch_step.h"
#include "database/database_observer.h"
#include "database/database_target.h"
#include "database/row_lock.h"
#include "database/row_set.h"
#include "database/schema_version.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

class DatabaseEngine;
struct CommandResult;
struct CatalogueCommand;

// What one step of a batch gave back.
struct BatchAnswer {
    RowSet rows{""};  // a row-returning command's rows, open at the first
    long count = 0;   // its row count, or the rows an action command changed
};

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

    // Runs the steps as one batch and answers one BatchAnswer per step, in
    // order. On the server the whole batch travels in one round trip; on
    // the file the steps run one after another. A failing step raises its
    // own error and no step after it is applied. Outside a transaction the
    // steps before it are undone too, on either engine; inside one, the
    // transaction is then failed, as after any failed command.
    std::vector<BatchAnswer> ExecuteBatch(const std::vector<BatchStep>& steps);

    // A write whose answer nobody needs, sent in front of the next
    // statements that go to the database (a batch, a commit) instead of in a
    // round trip of its own; a failure is that step's. Outside a transaction
    // it runs at once. Rolling back (to a savepoint) drops it with the rest.
    void QueueWrite(BatchStep step);

    // Runs row-returning commands as one batch and keeps their answers with
    // those kept before: a later Execute of the same command with the same
    // arguments opens its row set from the kept answer instead of asking the
    // database again. Any action command, transaction step or
    // ForgetReadAhead drops what is kept. When the batch fails outside a transaction nothing is
    // kept and each command reports its own error when it runs. Answers the batch's answers (empty
    // when it failed).
    std::vector<BatchAnswer> ReadAhead(const std::vector<BatchStep>& reads);
    void ForgetReadAhead() noexcept { readAhead_.clear(); }
    bool HasReadAhead() const noexcept { return !readAhead_.empty(); }

    // The row set "rs" + command of a row-returning command.
    RowSet& Recordset(std::string_view command);

    // A transaction whose connection is lost stays open here until it is
    // committed or rolled back: no statement of it is ever sent on a new
    // connection. Each then fails with the lost-connection message, saying
    // that nothing was written; a commit whose answer was lost says that
    // it may or may not have been written.
    void BeginTrans();
    void CommitTrans();
    // Ends the transaction; on a lost connection there is nothing to undo.
    void RollbackTrans();
    bool InTransaction() const noexcept;
    // The end of the message of a commit whose answer was lost, after
    // "... lost during the commit, so ": what may or may not have been
    // written and what to check. Empty (the default): a save's wording.
    void SetUncertainCommitText(std::string text);

    // When this process may read the configuration but not change it:
    // "The configuration database "NAME" is open read-only: USER may read it
    // but not change it. Changes cannot be saved." Else std::nullopt.
    std::optional<std::string> ReadOnlyNotice();

    // Inside the open transaction: locks the rows matching each key against
    // every other writer until the transaction ends (any program, not only
    // this one's other connections). On the file the write transaction
    // already holds the whole database. The locks travel with the next
    // statements, which run once they are held.
    void LockRows(const std::vector<RowLock>& locks);

    // A nested unit of work inside the open transaction: rolling it back
    // undoes its own work only; releasing it keeps that work in the
    // transaction. Nested ones end innermost first; each level has its own
    // name, so that a rollback never reaches a savepoint whose release is
    // still queued. Beginning and releasing
    // one travel with the next statements; rolling back one that has not
    // yet travelled costs nothing.
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
    // The connection, made on first use; the schema version is asked on the
    // way (upgrading an older database) unless the engine can ask it with
    // the first batch.
    DatabaseEngine& Engine();
    // The connection without asking the schema version.
    DatabaseEngine& Connected();
    // Sends steps to the engine; the first batch of a connection asks the
    // schema version in the same round trip where the engine can.
    std::vector<CommandResult> SendBatch(const std::vector<BatchStep>& steps);
    void Notify(DataBaseStep step);
    // The name of the innermost open savepoint.
    std::string SavepointName() const;
    // Runs work, giving a commit whose answer was lost this connection's
    // wording.
    template <class Work>
    auto WithCommitWording(Work work);
    // Queues a step to travel with the next ones (at once outside a
    // transaction).
    void Queue(BatchStep step);
    // Sends the queued steps, in a round trip of their own.
    void SendQueuedWrites();
    // Runs the steps as one batch; the first `observed` are counted and
    // reported to the observer.
    std::vector<BatchAnswer> RunBatch(const std::vector<BatchStep>& steps, std::size_t observed);
    const CatalogueCommand& CheckedCommand(std::string_view name, std::size_t argCount) const;
    // A copy of the kept answer of this command and arguments, if any.
    std::optional<BatchAnswer> TakeReadAhead(std::string_view command,
                                             const std::vector<std::string>& args);

    struct KeptAnswer {
        BatchStep step;
        BatchAnswer answer;
    };

    DatabaseTarget target_;
    std::chrono::milliseconds busyTimeout_{30000};
    std::function<void()> waitHandler_;
    std::unique_ptr<DatabaseEngine> engine_;
    SchemaState schema_;
    bool schemaKnown_ = false;
    std::map<std::string, RowSet, std::less<>> rowSets_;
    std::vector<BatchStep> queued_;
    long executed_ = 0;
    DataBaseObserver observer_;
    std::vector<KeptAnswer> readAhead_;
    int savepoints_ = 0;  // open savepoints of the transaction
    std::string uncertainCommit_;
};

// Drops the answers read ahead on a DataBase when the scope ends, so that
// they never outlive the operation that asked for them.
class ReadAheadScope {
public:
    explicit ReadAheadScope(DataBase& db) : db_(db) {}
    ~ReadAheadScope() { db_.ForgetReadAhead(); }
    ReadAheadScope(const ReadAheadScope&) = delete;
    ReadAheadScope& operator=(const ReadAheadScope&) = delete;

private:
    DataBase& db_;
};

}  // namespace dbn
