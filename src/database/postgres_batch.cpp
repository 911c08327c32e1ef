// The server engine's batches: every step of a batch is sent at once in a
// pipeline and the answers are read back in one round trip.
#include "database/database_errors.h"
#include "database/postgres_engine.h"
#include "database/sql_translation.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <utility>

namespace dbn::postgres {
namespace {

// True when every step is a catalogue read, which may be sent again.
bool OnlyReads(const std::vector<BatchStep>& steps) {
    return std::all_of(steps.begin(), steps.end(), [](const BatchStep& step) {
        return step.kind == BatchStep::Kind::Command &&
               CommandOf(step).kind == CommandKind::RowReturning;
    });
}

// True when a step commits the open transaction.
bool Commits(const std::vector<BatchStep>& steps) {
    return std::any_of(steps.begin(), steps.end(), [](const BatchStep& step) {
        return step.kind == BatchStep::Kind::CommitTrans;
    });
}

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

// A field of a failed result's error, empty when it has none.
std::string ErrorField(const PGresult* result, int field) {
    const char* value = PQresultErrorField(result, field);
    return value != nullptr ? value : "";
}

}  // namespace

CommandResult PostgresEngine::Run(const CatalogueCommand& command,
                                  const std::vector<std::string>& args) {
    // A statement not yet prepared is prepared in the same round trip.
    return std::move(RunBatch({{std::string(command.name), args}}).front());
}

int PostgresEngine::SendStep(const BatchStep& step) {
    PGconn* conn = conn_.get();
    switch (step.kind) {
        case BatchStep::Kind::BeginTrans:
            return PQsendQueryParams(conn, "BEGIN", 0, nullptr, nullptr, nullptr, nullptr, 0) !=
                               0 &&
                           PQsendQueryParams(conn, "SELECT pg_advisory_xact_lock(4473422)", 0,
                                             nullptr, nullptr, nullptr, nullptr, 0) != 0
                       ? 2
                       : -1;
        case BatchStep::Kind::CommitTrans:
            return PQsendQueryParams(conn, "COMMIT", 0, nullptr, nullptr, nullptr, nullptr, 0) != 0
                       ? 1
                       : -1;
        case BatchStep::Kind::Statement:
            return PQsendQueryParams(conn, step.sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr,
                                     0) != 0
                       ? 1
                       : -1;
        case BatchStep::Kind::Command:
            break;
    }
    const CatalogueCommand& command = CommandOf(step);
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
    values.reserve(step.args.size());
    for (const std::string& arg : step.args) {
        values.push_back(arg.c_str());
    }
    return PQsendQueryPrepared(conn, name.c_str(), static_cast<int>(values.size()), values.data(),
                               nullptr, nullptr, 0) != 0
               ? results
               : -1;
}

template <class Attempt>
auto PostgresEngine::Resent(const std::vector<BatchStep>& steps, Attempt attempt) {
    try {
        ReconnectIfLost();
        // Reads sent outside a transaction are sent once more on a new
        // connection when the old one broke under them; writes, which may
        // have been done when their answer was lost, never are.
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
    } catch (...) {
        // A batch that commits ends its transaction however it goes: lost
        // with its connection (as its error told), it is over, and the next
        // statement may connect again.
        if (Lost() && Commits(steps)) {
            open_ = Open::None;
        }
        throw;
    }
}

std::vector<CommandResult> PostgresEngine::RunBatch(const std::vector<BatchStep>& steps) {
    return Resent(steps, [&] { return Succeeded(RunBatchOnce(steps)); });
}

std::vector<CommandResult> PostgresEngine::Succeeded(BatchOutcome outcome) const {
    if (const std::optional<StepFailure>& failure = outcome.failure) {
        RaiseStatementFailure(failure->sqlState, failure->message, failure->doing);
    }
    return std::move(outcome.results);
}

std::optional<std::vector<CommandResult>> PostgresEngine::RunBatchAtVersion(
    const std::vector<BatchStep>& steps, int version) {
    // The first statement fails (division by zero, or a missing table) unless
    // the version is the one asked for; the pipeline then skips every step
    // after it, so nothing of the batch runs.
    const std::string guard = "SELECT 1 / (coalesce(max(version), 1) = " + std::to_string(version) +
                              ")::int FROM schema_version";
    std::vector<BatchStep> guarded;
    guarded.reserve(steps.size() + 1);
    guarded.push_back(BatchStep::Statement("reading the schema version", guard));
    guarded.insert(guarded.end(), steps.begin(), steps.end());
    return Resent(steps, [&]() -> std::optional<std::vector<CommandResult>> {
        BatchOutcome outcome = RunBatchOnce(guarded);
        if (outcome.failure && outcome.failure->step == 0) {
            return std::nullopt;
        }
        std::vector<CommandResult> results = Succeeded(std::move(outcome));
        results.erase(results.begin());
        return results;
    });
}

BatchOutcome PostgresEngine::RunBatchOnce(const std::vector<BatchStep>& steps) {
    PGconn* conn = conn_.get();
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
    for (const BatchStep& step : steps) {
        const bool prepares = step.kind == BatchStep::Kind::Command &&
                              !prepared_.contains(step.command) &&
                              !preparing.contains(step.command);
        if (step.kind == BatchStep::Kind::BeginTrans) {
            open_ = Open::Writing;
        }
        const int results = sent ? SendStep(step) : -1;
        commitSent = commitSent || step.kind == BatchStep::Kind::CommitTrans;
        if (results < 0) {
            sent = false;
            break;
        }
        if (prepares) {
            preparing.emplace(step.command);
            prepared_.emplace(step.command);  // later steps use it
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
    BatchOutcome outcome;
    outcome.results.resize(steps.size());
    Result failure;
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
        const BatchStep& step = steps[i];
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
                    outcome.failure = StepFailure{
                        .step = i,
                        .sqlState = ErrorField(failure.get(), PG_DIAG_SQLSTATE),
                        .message = PQresultErrorMessage(failure.get()),
                        .doing = step.kind == BatchStep::Kind::Command       ? step.command
                                 : step.kind == BatchStep::Kind::BeginTrans  ? "BeginTrans"
                                 : step.kind == BatchStep::Kind::CommitTrans ? "CommitTrans"
                                                                             : step.doing};
                }
                continue;
            }
            const bool isPrepare =
                part == 0 && expected[i] == 2 && step.kind == BatchStep::Kind::Command;
            if (isPrepare) {
                confirmed.emplace(step.command);
                continue;
            }
            if (step.kind != BatchStep::Kind::Command) {
                continue;
            }
            CommandResult& answer = outcome.results[i];
            if (CommandOf(step).kind == CommandKind::Action) {
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
    if (lost) {
        RaiseFailure(failure.get(), failure ? outcome.failure->doing : "sending a batch");
    }
    return outcome;
}

}  // namespace dbn::postgres
