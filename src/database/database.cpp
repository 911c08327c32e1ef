#include "database/database.h"

#include "database/command_catalogue.h"
#include "database/database_engine.h"
#include "database/database_errors.h"

#include <utility>

namespace dbn {
namespace {

const CatalogueCommand& CommandNamed(std::string_view name) {
    const CatalogueCommand* command = FindCatalogueCommand(name);
    if (command == nullptr) {
        RaiseDatabaseError(kErrUnknownCommand,
                           "The command " + std::string(name) + " is not in the catalogue.");
    }
    return *command;
}

}  // namespace

DataBase::DataBase() : DataBase(ResolveDatabaseTarget()) {}

DataBase::DataBase(DatabaseTarget target) : target_(std::move(target)) {}

DataBase::~DataBase() = default;

std::string DataBase::ConnectionString() const {
    return target_.IsServer() ? DisplayName(target_)
                              : "Provider=SQLite;Data Source=" + target_.location;
}

DatabaseEngine& DataBase::Engine() {
    if (!engine_) {
        std::unique_ptr<DatabaseEngine> engine = ConnectEngine(target_, busyTimeout_);
        schema_ = PrepareSchema(*engine, target_);
        engine->SetWaitHandler(waitHandler_);
        engine_ = std::move(engine);
    }
    return *engine_;
}

int DataBase::SchemaVersion() {
    Engine();
    return schema_.version;
}

std::string DataBase::UserName() {
    return Engine().UserName();
}

int DataBase::ListenForChanges() {
    return Engine().ListenForChanges();
}

bool DataBase::ChangesCommitted() {
    return Engine().ChangesCommitted();
}

const CatalogueCommand& DataBase::CheckedCommand(std::string_view name,
                                                 std::size_t argCount) const {
    const CatalogueCommand& command = CommandNamed(name);
    if (argCount != static_cast<std::size_t>(command.parameterCount)) {
        RaiseDatabaseError(kErrArgumentCount,
                           "The command " + std::string(command.name) + " takes " +
                               std::to_string(command.parameterCount) + " arguments; " +
                               std::to_string(argCount) + " were given.");
    }
    return command;
}

long DataBase::Execute(std::string_view commandName, const std::vector<std::string>& args) {
    const CatalogueCommand& command = CheckedCommand(commandName, args.size());
    RowSet* rowSet = nullptr;
    if (command.kind == CommandKind::RowReturning) {
        rowSet = &Recordset(command.name);
        if (rowSet->IsOpen()) {
            RaiseDatabaseError(kErrObjectOpen, kMsgObjectOpen);
        }
    } else {
        // A write may change what was read ahead.
        ForgetReadAhead();
    }
    SendQueuedWrites();
    std::optional<BatchAnswer> kept = TakeReadAhead(command.name, args);
    DatabaseEngine& engine = Engine();
    ++executed_;
    if (observer_) {
        observer_({DataBaseStep::Execute, command.name, &args, {}});
    }
    if (kept) {
        std::vector<std::string> columns = kept->rows.Columns();
        rowSet->Open(std::move(columns), kept->rows.TakeRows());
        return kept->count;
    }
    CommandResult result = engine.Run(command, args);
    if (rowSet == nullptr) {
        return result.changes;
    }
    const long count = static_cast<long>(result.rows.size());
    rowSet->Open(std::move(result.columns), std::move(result.rows));
    return count;
}

void DataBase::QueueWrite(BatchStep step) {
    if (step.kind != BatchStep::Kind::Command ||
        CheckedCommand(step.command, step.args.size()).kind == CommandKind::RowReturning) {
        RaiseDatabaseError(kErrArgumentCount, "Only action commands can be queued.");
    }
    ForgetReadAhead();  // a write may change what was read ahead
    queued_.push_back(std::move(step));
    if (!InTransaction()) {
        SendQueuedWrites();
    }
}

void DataBase::SendQueuedWrites() {
    if (!queued_.empty()) {
        RunBatch(std::exchange(queued_, {}));
    }
}

std::vector<BatchAnswer> DataBase::ExecuteBatch(const std::vector<BatchStep>& steps) {
    if (queued_.empty()) {
        return RunBatch(steps);
    }
    // The queued writes go first, in the same round trip.
    std::vector<BatchStep> all = std::exchange(queued_, {});
    const auto queued = static_cast<std::ptrdiff_t>(all.size());
    all.insert(all.end(), steps.begin(), steps.end());
    std::vector<BatchAnswer> answers = RunBatch(all);
    answers.erase(answers.begin(), answers.begin() + queued);
    return answers;
}

std::vector<BatchAnswer> DataBase::RunBatch(const std::vector<BatchStep>& steps) {
    if (steps.empty()) {
        return {};
    }
    std::vector<EngineStep> engineSteps;
    engineSteps.reserve(steps.size());
    for (const BatchStep& step : steps) {
        switch (step.kind) {
            case BatchStep::Kind::Command:
                engineSteps.push_back({EngineStep::Kind::Command,
                                       &CheckedCommand(step.command, step.args.size()),
                                       &step.args});
                if (engineSteps.back().command->kind != CommandKind::RowReturning) {
                    ForgetReadAhead();  // a write may change what was read ahead
                }
                break;
            case BatchStep::Kind::BeginTrans:
                ForgetReadAhead();
                engineSteps.push_back({EngineStep::Kind::BeginWrite});
                break;
            case BatchStep::Kind::CommitTrans:
                ForgetReadAhead();
                engineSteps.push_back({EngineStep::Kind::Commit});
                break;
        }
    }
    DatabaseEngine& engine = Engine();
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const BatchStep& step = steps[i];
        if (step.kind == BatchStep::Kind::Command) {
            ++executed_;
            if (observer_) {
                observer_({DataBaseStep::Execute, step.command, &step.args, {}});
                // A batch's rows are read from its answers, never from the
                // command's row set, which is left closed.
                if (engineSteps[i].command->kind == CommandKind::RowReturning) {
                    observer_({DataBaseStep::Close, step.command, nullptr, {}});
                }
            }
        } else {
            Notify(step.kind == BatchStep::Kind::BeginTrans ? DataBaseStep::BeginTrans
                                                            : DataBaseStep::CommitTrans);
        }
    }
    std::vector<CommandResult> results = engine.RunBatch(engineSteps);
    std::vector<BatchAnswer> answers(results.size());
    for (std::size_t i = 0; i < results.size(); ++i) {
        const EngineStep& step = engineSteps[i];
        if (step.kind == EngineStep::Kind::Command &&
            step.command->kind == CommandKind::RowReturning) {
            answers[i].count = static_cast<long>(results[i].rows.size());
            answers[i].rows = RowSet("rs" + std::string(step.command->name));
            answers[i].rows.Open(std::move(results[i].columns), std::move(results[i].rows));
        } else {
            answers[i].count = results[i].changes;
        }
    }
    return answers;
}

std::vector<BatchAnswer> DataBase::ReadAhead(const std::vector<BatchStep>& reads) {
    for (const BatchStep& step : reads) {
        if (step.kind != BatchStep::Kind::Command ||
            CheckedCommand(step.command, step.args.size()).kind != CommandKind::RowReturning) {
            RaiseDatabaseError(kErrArgumentCount, "Only row-returning commands can be read ahead.");
        }
    }
    SendQueuedWrites();
    // Reading ahead is not itself a command of the session: it is not
    // counted or reported; each command is when its answer is taken.
    DataBaseObserver observer = std::move(observer_);
    observer_ = nullptr;
    const long executed = executed_;
    std::vector<BatchAnswer> answers;
    try {
        answers = ExecuteBatch(reads);
    } catch (const std::exception&) {
        observer_ = std::move(observer);
        executed_ = executed;
        if (InTransaction()) {
            throw;
        }
        return {};
    }
    observer_ = std::move(observer);
    executed_ = executed;
    for (std::size_t i = 0; i < reads.size(); ++i) {
        KeptAnswer kept{reads[i], answers[i]};
        readAhead_.push_back(std::move(kept));
    }
    return answers;
}

std::optional<BatchAnswer> DataBase::TakeReadAhead(std::string_view command,
                                                   const std::vector<std::string>& args) {
    for (const KeptAnswer& kept : readAhead_) {
        if (kept.step.command == command && kept.step.args == args) {
            BatchAnswer answer;
            answer.count = kept.answer.count;
            answer.rows = kept.answer.rows;
            return answer;
        }
    }
    return std::nullopt;
}

RowSet& DataBase::Recordset(std::string_view commandName) {
    const CatalogueCommand* command = FindCatalogueCommand(commandName);
    if (command == nullptr || command->kind != CommandKind::RowReturning) {
        RaiseDatabaseError(kErrItemNotFound, kMsgItemNotFound);
    }
    auto found = rowSets_.find(commandName);
    if (found == rowSets_.end()) {
        found = rowSets_.emplace(std::string(commandName), RowSet("rs" + std::string(commandName)))
                    .first;
        found->second.SetObserver(&observer_);
    }
    return found->second;
}

void DataBase::SetObserver(DataBaseObserver observer) {
    observer_ = std::move(observer);
    for (auto& [name, rowSet] : rowSets_) {
        rowSet.SetObserver(&observer_);
    }
}

void DataBase::Notify(DataBaseStep step) {
    if (observer_) {
        observer_({step, {}, nullptr, {}});
    }
}

void DataBase::BeginTrans() {
    SendQueuedWrites();
    ForgetReadAhead();
    Notify(DataBaseStep::BeginTrans);
    Engine().BeginWrite();
}

void DataBase::CommitTrans() {
    if (!queued_.empty()) {
        ExecuteBatch({BatchStep::CommitTrans()});
        return;
    }
    ForgetReadAhead();
    Notify(DataBaseStep::CommitTrans);
    Engine().Exec("COMMIT", "CommitTrans");
}

void DataBase::RollbackTrans() {
    queued_.clear();
    ForgetReadAhead();
    Notify(DataBaseStep::RollbackTrans);
    Engine().Exec("ROLLBACK", "RollbackTrans");
}

void DataBase::BeginSavepoint() {
    SendQueuedWrites();
    ForgetReadAhead();
    Notify(DataBaseStep::BeginSavepoint);
    Engine().Exec("SAVEPOINT nested", "BeginSavepoint");
}

void DataBase::ReleaseSavepoint() {
    SendQueuedWrites();
    ForgetReadAhead();
    Notify(DataBaseStep::ReleaseSavepoint);
    Engine().Exec("RELEASE nested", "ReleaseSavepoint");
}

void DataBase::RollbackToSavepoint() {
    queued_.clear();
    ForgetReadAhead();
    Notify(DataBaseStep::RollbackToSavepoint);
    // Rolling back to a savepoint keeps it open; releasing it then ends it.
    Engine().Exec("ROLLBACK TO nested; RELEASE nested", "RollbackToSavepoint");
}

std::optional<std::string> DataBase::ReadOnlyNotice() {
    const std::optional<std::string> user = Engine().ReadOnlyUser();
    if (!user) {
        return std::nullopt;
    }
    return "The configuration database \"" + DisplayName(target_) +
           "\" is open read-only: " + *user +
           " may read it but not change it. Changes cannot be saved.";
}

void DataBase::LockRows(const std::vector<RowLock>& locks) {
    SendQueuedWrites();
    Engine().LockRows(locks);
}

bool DataBase::InTransaction() const noexcept {
    return engine_ && engine_->InTransaction();
}

void DataBase::SetWaitHandler(std::function<void()> handler) {
    waitHandler_ = std::move(handler);
    if (engine_) {
        engine_->SetWaitHandler(waitHandler_);
    }
}

void DataBase::SetBusyTimeout(std::chrono::milliseconds timeout) {
    busyTimeout_ = timeout;
    if (engine_) {
        engine_->SetLockTimeout(busyTimeout_);
    }
}

}  // namespace dbn
