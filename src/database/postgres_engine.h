#pragma once

// The server engine: one libpq connection to a PostgreSQL database. Its
// work is spread by concern: the connection and its reconnection
// (postgres_connection.cpp), batches sent as pipelines (postgres_batch.cpp),
// whole tables and the schema (postgres_tables.cpp), and the changes other
// connections announce (postgres_notifications.cpp).

#include "database/database_engine.h"

#include <libpq-fe.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace dbn::postgres {

struct ResultClear {
    void operator()(PGresult* result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, ResultClear>;

struct ConnectionFinish {
    void operator()(PGconn* conn) const { PQfinish(conn); }
};
using Connection = std::unique_ptr<PGconn, ConnectionFinish>;

// A value read back, typed by its column's type.
FieldValue ReadValue(const PGresult* result, int row, int column);

// The step of a batch that failed on a live connection, with the server's
// SQLSTATE and message; doing names the step in the error.
struct StepFailure {
    std::size_t step = 0;
    std::string sqlState;
    std::string message;
    std::string doing;
};

// What one attempt at a batch gave back: a result per step, or the failure
// of the first step that failed (no step after it was applied).
struct BatchOutcome {
    std::vector<CommandResult> results;
    std::optional<StepFailure> failure;
};

class PostgresEngine final : public DatabaseEngine {
public:
    PostgresEngine(const std::string& conninfo, std::chrono::milliseconds lockTimeout);

    CommandResult Run(const CatalogueCommand& command,
                      const std::vector<std::string>& args) override;
    std::vector<CommandResult> RunBatch(const std::vector<BatchStep>& steps) override;
    std::optional<std::vector<CommandResult>> RunBatchAtVersion(const std::vector<BatchStep>& steps,
                                                                int version) override;
    void BeginWrite() override;
    void Exec(const std::string& sql, std::string_view doing) override;
    // A transaction whose connection was lost stays open until it is ended
    // here, so that none of its statements goes to a new connection.
    bool InTransaction() const override {
        return Lost() ? open_ != Open::None : ServerInTransaction();
    }
    std::vector<std::string> RowLockStatements(const std::vector<RowLock>& locks) override;
    std::optional<std::string> ReadOnlyUser() override;
    void SetLockTimeout(std::chrono::milliseconds timeout) override;
    void SetWaitHandler(std::function<void()> handler) override {
        waitHandler_ = std::move(handler);
    }
    bool HasTable(const SchemaTable& table) override;
    bool HasRows(const SchemaTable& table) override;
    void BeginRead() override {
        Exec("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY", "reading");
        open_ = Open::Reading;
    }
    TableRows ReadTable(const SchemaTable& table) override;
    void AppendRows(const SchemaTable& table, const TableRows& rows) override;
    void CreateSchema() override;
    const std::string& Name() const override { return name_; }
    std::string UserName() const override {
        const char* user = PQuser(conn_.get());
        return user != nullptr ? user : "";
    }
    bool CanChangeSchema() override;
    std::optional<int> QuickSchemaVersion() override;
    int ListenForChanges() override;
    bool ChangesCommitted() override;

private:
    // The transaction this connection has open, as far as this side knows.
    enum class Open { None, Reading, Writing };
    bool ServerInTransaction() const {
        const PGTransactionStatusType status = PQtransactionStatus(conn_.get());
        return status == PQTRANS_INTRANS || status == PQTRANS_INERROR || status == PQTRANS_ACTIVE;
    }
    // After a round trip on a live connection: what the server says.
    void NoteTransaction() {
        if (!Lost()) {
            open_ = !ServerInTransaction() ? Open::None
                    : open_ == Open::None  ? Open::Writing
                                           : open_;
        }
    }
    // Raises the clear error for a failed result (or a lost connection).
    [[noreturn]] void RaiseFailure(const PGresult* result, std::string_view doing) const;
    // Raises the clear error for a statement the server refused with
    // sqlState and message (or for a lost connection).
    [[noreturn]] void RaiseStatementFailure(const std::string& sqlState, std::string message,
                                            std::string_view doing) const;
    // The connection was lost inside an open transaction, before its
    // commit was sent: nothing of it was written. It stays open here until
    // it is ended.
    [[noreturn]] void RaiseLostTransaction() const { RaiseFailure(nullptr, {}); }
    // The connection was lost after the commit was sent, before its answer.
    [[noreturn]] void RaiseCommitUncertain(std::string_view doing);
    // Before anything is sent: a lost connection is made again, unless a
    // transaction was open on it.
    void ReconnectIfLost();
    // Checks that result is one of the good statuses.
    Result Checked(PGresult* raw, std::string_view doing) const;
    // Runs sql (one or more statements) as PQexec does; while the server has
    // not answered, the wait handler is called between short waits.
    PGresult* ExecWaiting(const std::string& sql);
    // Collects the answer of the query just sent, as PQexec would return it.
    PGresult* AwaitResult();
    // The settings every new connection gets; forgets the prepared statements.
    void PrepareSession();
    bool Lost() const;
    // Makes the connection again (once); raises the lost-connection error
    // when the server still cannot be reached.
    void Reconnect();
    // Runs send (which sends one statement text and answers its result)
    // after making a lost connection again; repeatable: it may be sent again
    // on a new connection when the connection broke under it.
    template <class Send>
    Result Sent(Send send, std::string_view doing, bool repeatable);
    // Waits (calling the wait handler) until a result can be read without
    // blocking; false when the connection failed.
    bool AwaitReadable();

    // Sends one batch step into the open pipeline; answers how many results
    // it will give back (a statement prepared on the way gives one more).
    int SendStep(const BatchStep& step);
    // Runs attempt (one try at steps), after making a lost connection again;
    // once more on a new connection when the steps are reads outside a
    // transaction and the connection broke under them.
    template <class Attempt>
    auto Resent(const std::vector<BatchStep>& steps, Attempt attempt);
    // One attempt at a batch, on the connection as it is. A lost connection
    // raises its error; a step the server refused is the outcome's failure.
    BatchOutcome RunBatchOnce(const std::vector<BatchStep>& steps);
    // The results of a batch, or the error of its failed step.
    std::vector<CommandResult> Succeeded(BatchOutcome outcome) const;

    std::chrono::milliseconds lockTimeout_{0};
    // The answer of ReadOnlyUser on this connection, once asked.
    std::optional<std::optional<std::string>> readOnly_;
    std::string conninfo_;
    std::string name_;
    Connection conn_;
    std::set<std::string, std::less<>> prepared_;
    std::function<void()> waitHandler_;
    Open open_ = Open::None;
};

}  // namespace dbn::postgres
