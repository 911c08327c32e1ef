#include "database/database_engine.h"

#include "database/database_errors.h"

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

std::vector<CommandResult> DatabaseEngine::RunBatch(const std::vector<EngineStep>& steps) {
    std::vector<CommandResult> results;
    results.reserve(steps.size());
    for (const EngineStep& step : steps) {
        switch (step.kind) {
            case EngineStep::Kind::Command:
                results.push_back(Run(*step.command, *step.args));
                break;
            case EngineStep::Kind::BeginWrite:
                BeginWrite();
                results.emplace_back();
                break;
            case EngineStep::Kind::Commit:
                Exec("COMMIT", "CommitTrans");
                results.emplace_back();
                break;
            case EngineStep::Kind::Statement:
                Exec(*step.sql, step.doing);
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
