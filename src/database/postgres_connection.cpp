// The server engine's connection: opening it, making it again when it was
// lost, running single statements while the wait handler keeps a window
// painting, and turning the server's failures into clear errors.
#include "core/component_error.h"
#include "database/database_errors.h"
#include "database/postgres_engine.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

namespace dbn {
namespace postgres {
namespace {

// Every writer of the configuration takes this transaction-scoped lock first,
// so that writers follow one another as they do on the embedded file.
constexpr const char* kBeginWrite = "BEGIN; SELECT pg_advisory_xact_lock(4473422)";

bool Contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

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
    // A new connection with the settings of the old one: resetting a
    // connection that broke inside a pipeline does not bring it back.
    PQconninfoOption* settings = PQconninfo(conn_.get());
    std::vector<const char*> keywords;
    std::vector<const char*> values;
    for (const PQconninfoOption* setting = settings; setting != nullptr && setting->keyword;
         ++setting) {
        if (setting->val != nullptr && *setting->val != '\0') {
            keywords.push_back(setting->keyword);
            values.push_back(setting->val);
        }
    }
    keywords.push_back(nullptr);
    values.push_back(nullptr);
    conn_.reset(PQconnectdbParams(keywords.data(), values.data(), 0));
    PQconninfoFree(settings);
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
    // repeatable statement sent outside a transaction is sent once more on a
    // new connection when the old one broke under it.
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
    const char* state = result != nullptr ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    RaiseStatementFailure(state != nullptr ? state : "",
                          result != nullptr ? PQresultErrorMessage(result) : "", doing);
}

void PostgresEngine::RaiseStatementFailure(const std::string& sqlState, std::string message,
                                           std::string_view doing) const {
    if (PQstatus(conn_.get()) != CONNECTION_OK) {
        // Inside a write transaction whose commit was not sent, certainly
        // nothing; the transaction stays open here until it is ended.
        RaiseServerError(kErrServerUnreachable,
                         "The database server \"" + name_ +
                             "\" cannot be reached: the connection to it was lost." +
                             (open_ == Open::Writing ? " Nothing was written." : ""));
    }
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

void PostgresEngine::Exec(const std::string& sql, std::string_view doing) {
    const bool commit = sql.starts_with("COMMIT");
    const bool ending = commit || sql.starts_with("ROLLBACK") || sql.starts_with("RELEASE");
    if (sql == "ROLLBACK") {
        // However it goes, the transaction is over: undone, or gone with a
        // connection lost before or under the rollback, which then has
        // nothing left to do.
        if (!Lost()) {
            try {
                Sent([&] { return ExecWaiting(sql); }, doing, false);
            } catch (const ComponentError&) {
                if (!Lost()) {
                    throw;
                }
            }
        }
        open_ = Open::None;
        return;
    }
    if (ending && Lost()) {
        // The transaction went with the connection; a commit was never sent.
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
void PostgresEngine::SetLockTimeout(std::chrono::milliseconds timeout) {
    // Zero would mean "wait for ever" to the server; the shortest wait is 1 ms.
    lockTimeout_ = timeout;
    const auto milliseconds = std::max<long long>(1, timeout.count());
    Exec("SET lock_timeout = " + std::to_string(milliseconds), "setting the lock time-out");
}

}  // namespace postgres

std::unique_ptr<DatabaseEngine> ConnectPostgres(const std::string& conninfo,
                                                std::chrono::milliseconds lockTimeout) {
    return std::make_unique<postgres::PostgresEngine>(conninfo, lockTimeout);
}

}  // namespace dbn
