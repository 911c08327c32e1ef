// The server engine: one libpq connection to a PostgreSQL database.
#include "database/database_engine.h"
#include "database/database_errors.h"
#include "database/schema_version.h"
#include "database/sql_translation.h"

#include <libpq-fe.h>
#include <algorithm>

#include <poll.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace dbn {
namespace {

// True when every step is a catalogue read, which may be sent again.
bool OnlyReads(const std::vector<EngineStep>& steps) {
    return std::all_of(steps.begin(), steps.end(), [](const EngineStep& step) {
        return step.kind == EngineStep::Kind::Command &&
               step.command->kind == CommandKind::RowReturning;
    });
}

// Every writer of the configuration takes this transaction-scoped lock first,
// so that writers follow one another as they do on the embedded file.
constexpr const char* kBeginWrite = "BEGIN; SELECT pg_advisory_xact_lock(4473422)";

// Type numbers of the values read back.
constexpr Oid kInt8 = 20;
constexpr Oid kInt2 = 21;
constexpr Oid kInt4 = 23;
constexpr Oid kFloat4 = 700;
constexpr Oid kFloat8 = 701;
constexpr Oid kNumeric = 1700;

struct ResultClear {
    void operator()(PGresult* result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, ResultClear>;

struct ConnectionFinish {
    void operator()(PGconn* conn) const { PQfinish(conn); }
};
using Connection = std::unique_ptr<PGconn, ConnectionFinish>;

// The PostgreSQL text of a catalogue command, translated once per process.
const TranslatedStatement& PostgresTextOf(const CatalogueCommand& command) {
    static std::map<std::string_view, TranslatedStatement> translated;
    auto found = translated.find(command.name);
    if (found == translated.end()) {
        TranslatedStatement statement = TranslateToPostgres(command.text);
        CheckParameterCount(command, statement);
        found = translated.emplace(command.name, std::move(statement)).first;
    }
    return found->second;
}

bool Contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

std::string Quoted(const std::string& name) {
    return "\"" + name + "\"";
}

std::string Lowered(std::string name) {
    for (char& c : name) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return name;
}

std::string ColumnList(const SchemaTable& table) {
    std::string list;
    for (const SchemaColumn& column : table.columns) {
        list += (list.empty() ? "" : ", ") + Quoted(Lowered(column.name));
    }
    return list;
}

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

class PostgresEngine final : public DatabaseEngine {
public:
    PostgresEngine(const std::string& conninfo, std::chrono::milliseconds lockTimeout);

    CommandResult Run(const CatalogueCommand& command,
                      const std::vector<std::string>& args) override;
    std::vector<CommandResult> RunBatch(const std::vector<EngineStep>& steps) override;
    std::optional<std::vector<CommandResult>> RunBatchAtVersion(
        const std::vector<EngineStep>& steps, int version) override;
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
    bool HasRows(const SchemaTable& table) override {
        Result result =
            Checked(PQexec(conn_.get(),
                           ("SELECT 1 FROM " + Quoted(Lowered(table.name)) + " LIMIT 1").c_str()),
                    "reading " + table.name);
        return PQntuples(result.get()) > 0;
    }
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
    bool CanChangeSchema() override {
        Result result =
            Checked(PQexec(conn_.get(),
                           "SELECT has_schema_privilege(current_schema(), 'CREATE') AND "
                           "current_setting('transaction_read_only') = 'off'"),
                    "reading the schema");
        return PQntuples(result.get()) == 1 &&
               std::string_view(PQgetvalue(result.get(), 0, 0)) == "t";
    }
    std::optional<int> QuickSchemaVersion() override {
        // A missing table only fails this statement: no transaction is open.
        Result result(PQexec(conn_.get(), "SELECT max(version) FROM schema_version"));
        if (PQresultStatus(result.get()) != PGRES_TUPLES_OK || PQntuples(result.get()) != 1) {
            return std::nullopt;
        }
        return PQgetisnull(result.get(), 0, 0) != 0 ? 1 : std::atoi(PQgetvalue(result.get(), 0, 0));
    }
    int ListenForChanges() override {
        Exec(std::string("LISTEN ") + kHistoryChannel, "watching for changes");
        return PQsocket(conn_.get());
    }
    bool ChangesCommitted() override {
        if (PQconsumeInput(conn_.get()) == 0 || Lost()) {
            RaiseFailure(nullptr, "watching for changes");
        }
        bool heard = false;
        while (PGnotify* note = PQnotifies(conn_.get())) {
            heard = true;
            PQfreemem(note);
        }
        return heard;
    }

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

    std::chrono::milliseconds lockTimeout_{0};
    // The answer of ReadOnlyUser on this connection, once asked.
    std::optional<std::optional<std::string>> readOnly_;
    // Waits (calling the wait handler) until a result can be read without
    // blocking; false when the connection failed.
    bool AwaitReadable();
    // Sends one batch step into the open pipeline; answers how many results
    // it will give back (a statement prepared on the way gives one more).
    int SendStep(const EngineStep& step);
    // Runs attempt (one try at steps), after making a lost connection again;
    // once more on a new connection when the steps are reads outside a
    // transaction and the connection broke under them.
    template <class Attempt>
    auto Resent(const std::vector<EngineStep>& steps, Attempt attempt);
    // One attempt at a batch, on the connection as it is. When it fails,
    // failedStep_ is the step whose error was raised (none when the
    // connection was lost).
    std::vector<CommandResult> RunBatchOnce(const std::vector<EngineStep>& steps);
    std::optional<std::size_t> failedStep_;

    std::string conninfo_;
    std::string name_;
    Connection conn_;
    std::set<std::string, std::less<>> prepared_;
    std::function<void()> waitHandler_;
    Open open_ = Open::None;
};

PostgresEngine::PostgresEngine(const std::string& conninfo, std::chrono::milliseconds lockTimeout)
    : conninfo_(conninfo), name_(DisplayName(DatabaseTarget::Server(conninfo))) {
    if (const std::optional<std::string> problem = ConnectionStringProblem(conninfo_)) {
        RaiseServerError(kErrConnectionString,
                         "The server connection string cannot be used: " + *problem + ".");
    }
    // Defaults that the connection string or the PG* variables override.
    std::vector<const char*> keywords;
    std::vector<const char*> values;
    if (std::getenv("PGCONNECT_TIMEOUT") == nullptr) {
        keywords.push_back("connect_timeout");
        values.push_back("10");
    }
    if (std::getenv("PGAPPNAME") == nullptr) {
        keywords.push_back("application_name");
        values.push_back("dbn-node-editor");
    }
    // Settings the session needs travel with the connection request rather
    // than as statements of their own, each a round trip.
    const std::string options = "-c client_min_messages=warning -c lock_timeout=" +
                                std::to_string(std::max<long long>(1, lockTimeout.count()));
    keywords.push_back("client_encoding");
    values.push_back("UTF8");
    keywords.push_back("options");
    values.push_back(options.c_str());
    keywords.push_back("dbname");
    values.push_back(conninfo_.c_str());
    keywords.push_back(nullptr);
    values.push_back(nullptr);
    conn_.reset(PQconnectdbParams(keywords.data(), values.data(), 1));
    if (PQstatus(conn_.get()) != CONNECTION_OK) {
        const std::string message = conn_ ? PQerrorMessage(conn_.get()) : "out of memory";
        // A value libpq refuses (a port, a time-out, an SSL mode) is told in
        // its words, naming the option.
        if (message.starts_with("invalid ")) {
            std::string reason = WithoutPassword(message.substr(0, message.find('\n')), conninfo_);
            RaiseServerError(kErrConnectionString, "The server connection string \"" + name_ +
                                                       "\" cannot be used: " + reason + ".");
        }
        if (Contains(message, "authentication failed") || Contains(message, "no password")) {
            RaiseServerError(kErrServerLogin,
                             "The database server \"" + name_ +
                                 "\" refused the login: authentication failed. Check the user "
                                 "name and the password (for example in ~/.pgpass).");
        }
        if (Contains(message, "database \"") && Contains(message, "does not exist")) {
            RaiseServerError(kErrServerDatabaseMissing,
                             "The database server \"" + name_ +
                                 "\" has no such database. Create the database, then the "
                                 "configuration in it with: dbn-node-editor init --database '" +
                                 name_ + "'");
        }
        RaiseServerError(kErrServerUnreachable,
                         "The database server \"" + name_ +
                             "\" cannot be reached: it is not running or does not accept "
                             "connections.");
    }
    lockTimeout_ = lockTimeout;
}

void PostgresEngine::PrepareSession() {
    PQsetClientEncoding(conn_.get(), "UTF8");
    prepared_.clear();
    readOnly_.reset();
    Checked(PQexec(conn_.get(), ("SET client_min_messages = warning; SET lock_timeout = " +
                                 std::to_string(std::max<long long>(1, lockTimeout_.count())))
                                    .c_str()),
            "opening");
}

bool PostgresEngine::Lost() const {
    return PQstatus(conn_.get()) != CONNECTION_OK;
}

void PostgresEngine::Reconnect() {
    PQreset(conn_.get());
    if (Lost()) {
        RaiseServerError(kErrServerUnreachable,
                         "The database server \"" + name_ +
                             "\" cannot be reached: the connection to it was lost.");
    }
    PrepareSession();
}

template <class Send>
Result PostgresEngine::Sent(Send send, std::string_view doing, bool repeatable) {
    // A connection found lost before anything is sent is made again; a
    // statement sent outside a transaction that cannot have written anything
    // is sent once more on a new connection when the old one broke under it.
    ReconnectIfLost();
    const bool idle = !InTransaction();
    PGresult* raw = send();
    if (idle && repeatable && Lost()) {
        PQclear(raw);
        Reconnect();
        raw = send();
    }
    NoteTransaction();
    return Checked(raw, doing);
}

void PostgresEngine::ReconnectIfLost() {
    if (!Lost()) {
        return;
    }
    if (open_ != Open::None) {
        RaiseLostTransaction();
    }
    Reconnect();
}

void PostgresEngine::RaiseFailure(const PGresult* result, std::string_view doing) const {
    if (PQstatus(conn_.get()) != CONNECTION_OK) {
        // Inside a write transaction whose commit was not sent, certainly
        // nothing; the transaction stays open here until it is ended.
        RaiseServerError(kErrServerUnreachable,
                         "The database server \"" + name_ +
                             "\" cannot be reached: the connection to it was lost." +
                             (open_ == Open::Writing ? " Nothing was written." : ""));
    }
    const char* state = result != nullptr ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    const std::string sqlState = state != nullptr ? state : "";
    if (sqlState == "55P03" || sqlState == "40P01") {
        RaiseLockedError(name_, kServerSource);
    }
    if (sqlState == "42501" || sqlState == "25006") {
        // A role that may not write, or a standby: the words the editor uses.
        RaiseServerError(kErrDatabaseReadOnly,
                         "The configuration database \"" + name_ +
                             "\" is open read-only: " + UserName() +
                             " may read it but not change it. Changes cannot be saved.");
    }
    if (sqlState == "42P01") {
        RaiseServerError(kErrSchemaMissing,
                         "The configuration database \"" + name_ +
                             "\" has no configuration tables. Create them with: dbn-node-editor "
                             "init --database '" +
                             name_ + "'");
    }
    std::string message = result != nullptr ? PQresultErrorMessage(result) : "";
    if (message.empty()) {
        message = PQerrorMessage(conn_.get());
    }
    while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) {
        message.pop_back();
    }
    if (message.starts_with("ERROR:  ")) {
        message.erase(0, 8);
    }
    RaiseServerError(kErrServerStatement,
                     message + " (" + std::string(doing) + " on \"" + name_ + "\")");
}

Result PostgresEngine::Checked(PGresult* raw, std::string_view doing) const {
    Result result(raw);
    const ExecStatusType status = PQresultStatus(result.get());
    if (!result ||
        (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK && status != PGRES_COPY_IN)) {
        RaiseFailure(result.get(), doing);
    }
    return result;
}

CommandResult PostgresEngine::Run(const CatalogueCommand& command,
                                  const std::vector<std::string>& args) {
    // A statement not yet prepared is prepared in the same round trip.
    return std::move(
        RunBatch({{.kind = EngineStep::Kind::Command, .command = &command, .args = &args}})
            .front());
}

void PostgresEngine::Exec(const std::string& sql, std::string_view doing) {
    const bool commit = sql.starts_with("COMMIT");
    const bool ending = commit || sql.starts_with("ROLLBACK") || sql.starts_with("RELEASE");
    if (ending && Lost()) {
        // The transaction went with the connection; a rollback has nothing
        // left to do, a commit was never sent.
        if (sql == "ROLLBACK") {
            open_ = Open::None;
            return;
        }
        if (commit) {
            const Open was = std::exchange(open_, Open::None);
            RaiseServerError(kErrServerUnreachable,
                             "The database server \"" + name_ +
                                 "\" cannot be reached: the connection to it was lost." +
                                 (was == Open::Writing ? " Nothing was written." : ""));
        }
        RaiseFailure(nullptr, doing);
    }
    if (commit) {
        Result result(ExecWaiting(sql));
        if (Lost()) {
            RaiseCommitUncertain(doing);
        }
        NoteTransaction();
        Checked(result.release(), doing);
        return;
    }
    Sent([&] { return ExecWaiting(sql); }, doing, !ending);
}

void PostgresEngine::RaiseCommitUncertain(std::string_view doing) {
    open_ = Open::None;
    // What may or may not have been written, and what to check.
    std::string outcome = "the save may or may not have been written: the node is read again.";
    if (doing == "copying") {
        outcome =
            "the copy may or may not have been written: see whether the target holds the "
            "configuration (dbn-node-editor export --database TARGET CONFIG PARTITION), or "
            "copy again with --force.";
    } else if (doing == "creating the configuration") {
        outcome =
            "the new configuration may or may not have been written: see whether the database "
            "holds it (dbn-node-editor export CONFIG PARTITION), or run init --force again.";
    } else if (doing == "upgrading the schema") {
        outcome =
            "the upgrade may or may not have been written: run the command again; it upgrades "
            "the database if it is still of the older version.";
    }
    RaiseServerError(kErrCommitUncertain,
                     "The database server \"" + name_ +
                         "\" cannot be reached: the connection to it was lost during the "
                         "commit, so " +
                         outcome);
}

PGresult* PostgresEngine::ExecWaiting(const std::string& sql) {
    if (!waitHandler_) {
        return PQexec(conn_.get(), sql.c_str());
    }
    if (PQsendQuery(conn_.get(), sql.c_str()) == 0) {
        return nullptr;
    }
    return AwaitResult();
}

PGresult* PostgresEngine::AwaitResult() {
    PGconn* conn = conn_.get();
    AwaitReadable();  // a failed connection is reported by PQgetResult
    // As PQexec: the last result, or the first failure, of all statements.
    PGresult* kept = nullptr;
    while (PGresult* next = PQgetResult(conn)) {
        const ExecStatusType status = PQresultStatus(next);
        const bool failed = status == PGRES_FATAL_ERROR || status == PGRES_NONFATAL_ERROR;
        const bool keptFailed = kept != nullptr && PQresultStatus(kept) == PGRES_FATAL_ERROR;
        if (keptFailed && !failed) {
            PQclear(next);
            continue;
        }
        PQclear(kept);
        kept = next;
    }
    return kept;
}

bool PostgresEngine::AwaitReadable() {
    constexpr int kStepMilliseconds = 20;
    PGconn* conn = conn_.get();
    while (PQisBusy(conn) != 0) {
        pollfd socket{PQsocket(conn), POLLIN, 0};
        const int ready = ::poll(&socket, 1, kStepMilliseconds);
        if (ready > 0) {
            if (PQconsumeInput(conn) == 0) {
                return false;
            }
        } else if (ready == 0) {
            if (waitHandler_) {
                waitHandler_();
            }
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

int PostgresEngine::SendStep(const EngineStep& step) {
    PGconn* conn = conn_.get();
    switch (step.kind) {
        case EngineStep::Kind::BeginWrite:
            return PQsendQueryParams(conn, "BEGIN", 0, nullptr, nullptr, nullptr, nullptr, 0) !=
                               0 &&
                           PQsendQueryParams(conn, "SELECT pg_advisory_xact_lock(4473422)", 0,
                                             nullptr, nullptr, nullptr, nullptr, 0) != 0
                       ? 2
                       : -1;
        case EngineStep::Kind::Commit:
            return PQsendQueryParams(conn, "COMMIT", 0, nullptr, nullptr, nullptr, nullptr, 0) != 0
                       ? 1
                       : -1;
        case EngineStep::Kind::Statement:
            return PQsendQueryParams(conn, step.sql->c_str(), 0, nullptr, nullptr, nullptr, nullptr,
                                     0) != 0
                       ? 1
                       : -1;
        case EngineStep::Kind::Command:
            break;
    }
    const CatalogueCommand& command = *step.command;
    const TranslatedStatement& statement = PostgresTextOf(command);
    const std::string name(command.name);
    int results = 1;
    if (!prepared_.contains(command.name)) {
        if (PQsendPrepare(conn, name.c_str(), statement.sql.c_str(),
                          static_cast<int>(statement.parameters.size()), nullptr) == 0) {
            return -1;
        }
        ++results;
    }
    std::vector<const char*> values;
    values.reserve(step.args->size());
    for (const std::string& arg : *step.args) {
        values.push_back(arg.c_str());
    }
    return PQsendQueryPrepared(conn, name.c_str(), static_cast<int>(values.size()), values.data(),
                               nullptr, nullptr, 0) != 0
               ? results
               : -1;
}

template <class Attempt>
auto PostgresEngine::Resent(const std::vector<EngineStep>& steps, Attempt attempt) {
    ReconnectIfLost();
    // Reads sent outside a transaction are sent once more on a new connection
    // when the old one broke under them; writes, which may have been done
    // when their answer was lost, never are.
    const bool repeatable = !InTransaction() && OnlyReads(steps);
    try {
        return attempt();
    } catch (...) {
        if (!repeatable || !Lost()) {
            throw;
        }
    }
    Reconnect();
    return attempt();
}

std::vector<CommandResult> PostgresEngine::RunBatch(const std::vector<EngineStep>& steps) {
    return Resent(steps, [&] { return RunBatchOnce(steps); });
}

std::optional<std::vector<CommandResult>> PostgresEngine::RunBatchAtVersion(
    const std::vector<EngineStep>& steps, int version) {
    // The first statement fails (division by zero, or a missing table) unless
    // the version is the one asked for; the pipeline then skips every step
    // after it, so nothing of the batch runs.
    const std::string guard = "SELECT 1 / (coalesce(max(version), 1) = " + std::to_string(version) +
                              ")::int FROM schema_version";
    std::vector<EngineStep> guarded;
    guarded.reserve(steps.size() + 1);
    guarded.push_back({.kind = EngineStep::Kind::Statement,
                       .sql = &guard,
                       .doing = "reading the schema version"});
    guarded.insert(guarded.end(), steps.begin(), steps.end());
    return Resent(steps, [&]() -> std::optional<std::vector<CommandResult>> {
        try {
            std::vector<CommandResult> results = RunBatchOnce(guarded);
            results.erase(results.begin());
            return results;
        } catch (...) {
            if (!Lost() && failedStep_ == 0) {
                return std::nullopt;
            }
            throw;
        }
    });
}

std::vector<CommandResult> PostgresEngine::RunBatchOnce(const std::vector<EngineStep>& steps) {
    PGconn* conn = conn_.get();
    failedStep_.reset();
    if (PQenterPipelineMode(conn) == 0) {
        RaiseFailure(nullptr, "sending a batch");
    }
    // The results each step gives back; a prepared statement is named as
    // prepared only once its preparation succeeded.
    std::vector<int> expected;
    expected.reserve(steps.size());
    bool sent = true;
    // Set once the commit's messages are on their way: a connection lost
    // after that leaves the outcome unknown.
    bool commitSent = false;
    std::set<std::string, std::less<>> preparing;
    for (const EngineStep& step : steps) {
        const bool prepares = step.kind == EngineStep::Kind::Command &&
                              !prepared_.contains(step.command->name) &&
                              !preparing.contains(step.command->name);
        if (step.kind == EngineStep::Kind::BeginWrite) {
            open_ = Open::Writing;
        }
        const int results = sent ? SendStep(step) : -1;
        commitSent = commitSent || step.kind == EngineStep::Kind::Commit;
        if (results < 0) {
            sent = false;
            break;
        }
        if (prepares) {
            preparing.emplace(step.command->name);
            prepared_.emplace(step.command->name);  // later steps use it
        }
        expected.push_back(results);
    }
    if (!sent || PQpipelineSync(conn) == 0) {
        for (const std::string& name : preparing) {
            prepared_.erase(name);
        }
        PQexitPipelineMode(conn);
        if (commitSent && Lost()) {
            RaiseCommitUncertain("CommitTrans");
        }
        RaiseFailure(nullptr, "sending a batch");
    }
    // Reads every result up to the batch's end, keeping the first failure.
    std::vector<CommandResult> out(steps.size());
    Result failure;
    std::string failedDoing;
    std::set<std::string, std::less<>> confirmed;
    bool lost = false;
    auto nextResult = [&]() -> Result {
        if (!AwaitReadable()) {
            lost = true;
            return nullptr;
        }
        return Result(PQgetResult(conn));
    };
    for (std::size_t i = 0; i < steps.size() && !lost; ++i) {
        const EngineStep& step = steps[i];
        for (int part = 0; part < expected[i] && !lost; ++part) {
            Result result = nextResult();
            if (!result) {
                lost = true;
                break;
            }
            const ExecStatusType status = PQresultStatus(result.get());
            // Each query's results end with a null one.
            Result end = nextResult();
            (void)end;
            if (status == PGRES_PIPELINE_ABORTED) {
                continue;
            }
            if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
                if (!failure) {
                    failure = std::move(result);
                    failedStep_ = i;
                    failedDoing = step.kind == EngineStep::Kind::Command
                                      ? std::string(step.command->name)
                                  : step.kind == EngineStep::Kind::BeginWrite ? "BeginTrans"
                                  : step.kind == EngineStep::Kind::Commit     ? "CommitTrans"
                                                                          : std::string(step.doing);
                }
                continue;
            }
            const bool isPrepare =
                part == 0 && expected[i] == 2 && step.kind == EngineStep::Kind::Command;
            if (isPrepare) {
                confirmed.emplace(step.command->name);
                continue;
            }
            if (step.kind != EngineStep::Kind::Command) {
                continue;
            }
            CommandResult& answer = out[i];
            if (step.command->kind == CommandKind::Action) {
                const char* changed = PQcmdTuples(result.get());
                answer.changes = changed != nullptr && *changed != '\0' ? std::atol(changed) : 0;
                continue;
            }
            const int columns = PQnfields(result.get());
            const int rows = PQntuples(result.get());
            for (int column = 0; column < columns; ++column) {
                answer.columns.emplace_back(PQfname(result.get(), column));
            }
            answer.rows.reserve(static_cast<std::size_t>(rows));
            for (int row = 0; row < rows; ++row) {
                std::vector<FieldValue> values;
                values.reserve(static_cast<std::size_t>(columns));
                for (int column = 0; column < columns; ++column) {
                    values.push_back(ReadValue(result.get(), row, column));
                }
                answer.rows.push_back(std::move(values));
            }
        }
    }
    if (!lost) {
        // The batch's end.
        Result sync = nextResult();
        if (!sync || PQresultStatus(sync.get()) != PGRES_PIPELINE_SYNC) {
            lost = true;
        }
    }
    PQexitPipelineMode(conn);
    // Statements whose preparation did not take place are prepared again
    // next time.
    for (const std::string& name : preparing) {
        if (!confirmed.contains(name)) {
            prepared_.erase(name);
        }
    }
    if (commitSent && Lost()) {
        RaiseCommitUncertain("CommitTrans");
    }
    NoteTransaction();
    if (failure || lost) {
        RaiseFailure(failure.get(), failure ? failedDoing : "sending a batch");
    }
    return out;
}

void PostgresEngine::BeginWrite() {
    try {
        Exec(kBeginWrite, "BeginTrans");
    } catch (...) {
        // The failed lock leaves the transaction open and aborted.
        Result ignored(PQexec(conn_.get(), "ROLLBACK"));
        open_ = Open::None;
        throw;
    }
}

std::optional<std::string> PostgresEngine::ReadOnlyUser() {
    // Asked once a connection.
    if (readOnly_) {
        return *readOnly_;
    }
    // A standby, a read-only default, or a role that may not write every
    // table a save writes.
    Result result = Sent(
        [&] {
            return ExecWaiting(
                "SELECT current_user, pg_is_in_recovery() OR "
                "current_setting('default_transaction_read_only') = 'on' OR NOT "
                "(has_table_privilege('node_dbn', 'UPDATE') AND "
                "has_table_privilege('detail_dbn_prompts', 'INSERT, DELETE') AND "
                "has_table_privilege('node_general_pool', 'INSERT, UPDATE'))");
        },
        "ReadOnlyUser", true);
    readOnly_.emplace();
    if (PQntuples(result.get()) == 1 && std::string_view(PQgetvalue(result.get(), 0, 1)) == "t") {
        *readOnly_ = std::string(PQgetvalue(result.get(), 0, 0));
    }
    return *readOnly_;
}

std::vector<std::string> PostgresEngine::RowLockStatements(const std::vector<RowLock>& locks) {
    // A SELECT ... FOR UPDATE a table. The values are whole numbers, written
    // as such.
    std::vector<std::string> statements;
    for (const RowLock& lock : locks) {
        std::string where;
        for (const auto& [column, value] : lock.key) {
            where += (where.empty() ? " WHERE " : " AND ") + Quoted(Lowered(column)) + " = " +
                     std::to_string(value);
        }
        statements.push_back("SELECT 1 FROM " + Quoted(Lowered(lock.table)) + where +
                             " FOR UPDATE");
    }
    return statements;
}

void PostgresEngine::SetLockTimeout(std::chrono::milliseconds timeout) {
    // Zero would mean "wait for ever" to the server; the shortest wait is 1 ms.
    lockTimeout_ = timeout;
    const auto milliseconds = std::max<long long>(1, timeout.count());
    Exec("SET lock_timeout = " + std::to_string(milliseconds), "setting the lock time-out");
}

bool PostgresEngine::HasTable(const SchemaTable& table) {
    const std::string name = Quoted(Lowered(table.name));
    const char* values[] = {name.c_str()};
    Result result = Checked(PQexecParams(conn_.get(), "SELECT to_regclass($1) IS NOT NULL", 1,
                                         nullptr, values, nullptr, nullptr, 0),
                            "reading the schema");
    return PQntuples(result.get()) == 1 && std::string_view(PQgetvalue(result.get(), 0, 0)) == "t";
}

TableRows PostgresEngine::ReadTable(const SchemaTable& table) {
    std::string order;
    for (const std::string& key : table.primaryKey) {
        order += (order.empty() ? "" : ", ") + Quoted(Lowered(key));
    }
    Result result = Checked(PQexec(conn_.get(), ("SELECT " + ColumnList(table) + " FROM " +
                                                 Quoted(Lowered(table.name)) + " ORDER BY " + order)
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
    Checked(PQexec(conn_.get(), ("COPY " + Quoted(Lowered(table.name)) + " (" + ColumnList(table) +
                                 ") FROM STDIN")
                                    .c_str()),
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
        drops += "DROP TABLE IF EXISTS " + Quoted(Lowered(table.name)) + ";\n";
    }
    Exec("DROP FUNCTION IF EXISTS dbn_announce_history() CASCADE;\n" + drops + PostgresSchemaSql() +
             SchemaVersionRowSql(),
         "creating the tables");
}

}  // namespace

std::unique_ptr<DatabaseEngine> ConnectPostgres(const std::string& conninfo,
                                                std::chrono::milliseconds lockTimeout) {
    return std::make_unique<PostgresEngine>(conninfo, lockTimeout);
}

}  // namespace dbn
