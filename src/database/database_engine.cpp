#include "database/database_engine.h"

#include "database/database_errors.h"

#include <algorithm>

namespace dbn {

void CheckParameterCount(const CatalogueCommand& command, const TranslatedStatement& statement) {
    if (statement.parameters.size() != static_cast<std::size_t>(command.parameterCount)) {
        RaiseDatabaseError(kErrCatalogueParameters,
                           "Command " + std::string(command.name) + " declares " +
                               std::to_string(command.parameterCount) +
                               " parameters but its statement has " +
                               std::to_string(statement.parameters.size()) + ".");
    }
}

const CatalogueCommand& CatalogueCommandNamed(std::string_view name) {
    const CatalogueCommand* command = FindCatalogueCommand(name);
    if (command == nullptr) {
        RaiseDatabaseError(kErrUnknownCommand,
                           "The command " + std::string(name) + " is not in the catalogue.");
    }
    return *command;
}

namespace {

// True for two or more catalogue commands, at least one of them a write: the
// batch that runs as one transaction when none is open.
bool CommandsWithAWrite(const std::vector<BatchStep>& steps) {
    return steps.size() > 1 &&
           std::all_of(
               steps.begin(), steps.end(),
               [](const BatchStep& step) { return step.kind == BatchStep::Kind::Command; }) &&
           std::any_of(steps.begin(), steps.end(), [](const BatchStep& step) {
               return CommandOf(step).kind == CommandKind::Action;
           });
}

}  // namespace

std::vector<CommandResult> DatabaseEngine::RunBatch(const std::vector<BatchStep>& steps) {
    if (InTransaction() || !CommandsWithAWrite(steps)) {
        return RunSteps(steps);
    }
    // Outside a transaction the writes of a batch are all made or none is,
    // as on the server, where a batch is one implicit transaction.
    BeginWrite();
    try {
        std::vector<CommandResult> results = RunSteps(steps);
        Exec("COMMIT", "CommitTrans");
        return results;
    } catch (...) {
        if (InTransaction()) {
            try {
                Exec("ROLLBACK", "RollbackTrans");
            } catch (...) {
                // The step's error is the one told.
            }
        }
        throw;
    }
}

std::vector<CommandResult> DatabaseEngine::RunSteps(const std::vector<BatchStep>& steps) {
    std::vector<CommandResult> results;
    results.reserve(steps.size());
    for (const BatchStep& step : steps) {
        switch (step.kind) {
            case BatchStep::Kind::Command:
                results.push_back(Run(CommandOf(step), step.args));
                break;
            case BatchStep::Kind::BeginTrans:
                BeginWrite();
                results.emplace_back();
                break;
            case BatchStep::Kind::CommitTrans:
                Exec("COMMIT", "CommitTrans");
                results.emplace_back();
                break;
            case BatchStep::Kind::Statement:
                Exec(step.sql, step.doing);
                results.emplace_back();
                break;
        }
    }
    return results;
}

std::unique_ptr<DatabaseEngine> ConnectEngine(const DatabaseTarget& target,
                                              std::chrono::milliseconds lockTimeout,
                                              OpenMode mode) {
    if (target.IsServer()) {
        return ConnectPostgres(target.location, lockTimeout);
    }
    return ConnectSqlite(target.location, lockTimeout, mode);
}

}  // namespace dbn
