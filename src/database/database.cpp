#include "database/database.h"

#include "core/component_error.h"
#include "database/command_catalogue.h"
#include "database/database_engine.h"
#include "database/database_errors.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace dbn {

DataBase::DataBase() : DataBase(ResolveDatabaseTarget()) {}

DataBase::DataBase(DatabaseTarget target) : target_(std::move(target)) {}

DataBase::~DataBase() = default;

template <class Work>
auto DataBase::WithCommitWording(Work work) {
    try {
        return work();
    } catch (const ComponentError& error) {
        if (error.Number() != kErrCommitUncertain || uncertainCommit_.empty()) {
            throw;
        }
        RaiseServerError(kErrCommitUncertain,
                         "The database server \"" + DisplayName(target_) +
                             "\" cannot be reached: the connection to it was lost during the "
                             "commit, so " +
                             uncertainCommit_);
    }
}

std::string DataBase::ConnectionString() const {
    return target_.IsServer() ? DisplayName(target_)
                              : "Provider=SQLite;Data Source=" + target_.location;
}

DatabaseEngine& DataBase::Connected() {
    if (!engine_) {
        std::unique_ptr<DatabaseEngine> engine = ConnectEngine(target_, busyTimeout_);
        engine->SetWaitHandler(waitHandler_);
        engine_ = std::move(engine);
        schemaKnown_ = false;
    }
    return *engine_;
}

DatabaseEngine& DataBase::Engine() {
    DatabaseEngine& engine = Connected();
    if (!schemaKnown_) {
        schema_ = PrepareSchema(engine, target_);
        schemaKnown_ = true;
    }
    return engine;
}

std::vector<CommandResult> DataBase::SendBatch(const std::vector<BatchStep>& steps) {
    if (!schemaKnown_) {
        std::optional<std::vector<CommandResult>> results =
            Connected().RunBatchAtVersion(steps, kCurrentSchemaVersion);
        if (results) {
            schema_ = SchemaState{.version = kCurrentSchemaVersion};
            schemaKnown_ = true;
            return std::move(*results);
        }
    }
    return Engine().RunBatch(steps);
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
    const CatalogueCommand& command = CatalogueCommandNamed(name);
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
    std::optional<BatchAnswer> kept = TakeReadAhead(command.name, args);
    if (!kept && !queued_.empty()) {
        // The queued steps travel with the command.
        std::vector<BatchStep> all = std::exchange(queued_, {});
        const std::size_t queued = all.size();
        all.push_back({std::string(command.name), args});
        kept = std::move(RunBatch(all, queued).back());
    }
    Connected();
    ++executed_;
    if (observer_) {
        observer_({DataBaseStep::Execute, command.name, &args, {}});
    }
    if (kept) {
        if (rowSet == nullptr) {
            return kept->count;
        }
        std::vector<std::string> columns = kept->rows.Columns();
        rowSet->Open(std::move(columns), kept->rows.TakeRows());
        return kept->count;
    }
    CommandResult result = std::move(SendBatch({{std::string(command.name), args}}).front());
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
        RaiseDatabaseError(kErrNotAnActionCommand, "Only action commands can be queued.");
    }
    Queue(std::move(step));
}

void DataBase::Queue(BatchStep step) {
    ForgetReadAhead();  // a write may change what was read ahead
    queued_.push_back(std::move(step));
    if (!InTransaction()) {
        SendQueuedWrites();
    }
}

void DataBase::SendQueuedWrites() {
    if (!queued_.empty()) {
        std::vector<BatchStep> queued = std::exchange(queued_, {});
        RunBatch(queued, queued.size());
    }
}

std::vector<BatchAnswer> DataBase::ExecuteBatch(const std::vector<BatchStep>& steps) {
    if (queued_.empty()) {
        return RunBatch(steps, steps.size());
    }
    // The queued steps go first, in the same round trip.
    std::vector<BatchStep> all = std::exchange(queued_, {});
    const auto queued = static_cast<std::ptrdiff_t>(all.size());
    all.insert(all.end(), steps.begin(), steps.end());
    std::vector<BatchAnswer> answers = RunBatch(all, all.size());
    answers.erase(answers.begin(), answers.begin() + queued);
    return answers;
}

std::vector<BatchAnswer> DataBase::RunBatch(const std::vector<BatchStep>& steps,
                                            std::size_t observed) {
    if (steps.empty()) {
        return {};
    }
    for (const BatchStep& step : steps) {
        // A write or a transaction step may change what was read ahead.
        if (step.kind != BatchStep::Kind::Command ||
            CheckedCommand(step.command, step.args.size()).kind != CommandKind::RowReturning) {
            ForgetReadAhead();
        }
    }
    Connected();
    for (std::size_t i = 0; i < std::min(observed, steps.size()); ++i) {
        const BatchStep& step = steps[i];
        switch (step.kind) {
            case BatchStep::Kind::Command:
                ++executed_;
                if (observer_) {
                    observer_({DataBaseStep::Execute, step.command, &step.args, {}});
                    // A batch's rows are read from its answers, never from
                    // the command's row set, which is left closed.
                    if (CommandOf(step).kind == CommandKind::RowReturning) {
                        observer_({DataBaseStep::Close, step.command, nullptr, {}});
                    }
                }
                break;
            case BatchStep::Kind::BeginTrans:
                Notify(DataBaseStep::BeginTrans);
                break;
            case BatchStep::Kind::CommitTrans:
                Notify(DataBaseStep::CommitTrans);
                break;
            case BatchStep::Kind::Statement:
                break;  // told when it was queued
        }
    }
    std::vector<CommandResult> results = WithCommitWording([&] { return SendBatch(steps); });
    std::vector<BatchAnswer> answers(results.size());
    for (std::size_t i = 0; i < results.size(); ++i) {
        const BatchStep& step = steps[i];
        if (step.kind == BatchStep::Kind::Command &&
            CommandOf(step).kind == CommandKind::RowReturning) {
            answers[i].count = static_cast<long>(results[i].rows.size());
            answers[i].rows = RowSet("rs" + step.command);
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
            RaiseDatabaseError(kErrNotARowReturningCommand,
                               "Only row-returning commands can be read ahead.");
        }
    }
    // The queued steps (only ever inside a transaction) travel first. Reading
    // ahead is not itself a command of the session: the reads are not
    // counted or reported; each is when its answer is taken.
    std::vector<BatchStep> all = std::exchange(queued_, {});
    const std::size_t queued = all.size();
    all.insert(all.end(), reads.begin(), reads.end());
    std::vector<BatchAnswer> answers;
    try {
        answers = RunBatch(all, queued);
    } catch (const std::exception&) {
        if (InTransaction()) {
            throw;
        }
        return {};
    }
    answers.erase(answers.begin(), answers.begin() + static_cast<std::ptrdiff_t>(queued));
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
    savepoints_ = 0;
    Engine().BeginWrite();
}

void DataBase::CommitTrans() {
    savepoints_ = 0;
    if (!queued_.empty()) {
        ExecuteBatch({BatchStep::CommitTrans()});
        return;
    }
    ForgetReadAhead();
    Notify(DataBaseStep::CommitTrans);
    WithCommitWording([&] { Engine().Exec("COMMIT", "CommitTrans"); });
}

void DataBase::RollbackTrans() {
    queued_.clear();
    savepoints_ = 0;
    ForgetReadAhead();
    Notify(DataBaseStep::RollbackTrans);
    // A lost connection took its transaction with it: nothing to undo, and
    // no new connection just for that.
    if (engine_) {
        engine_->Exec("ROLLBACK", "RollbackTrans");
    }
}

void DataBase::BeginSavepoint() {
    Notify(DataBaseStep::BeginSavepoint);
    ++savepoints_;
    Queue(BatchStep::Statement("BeginSavepoint", "SAVEPOINT " + SavepointName(), savepoints_));
}

void DataBase::ReleaseSavepoint() {
    Notify(DataBaseStep::ReleaseSavepoint);
    const std::string name = SavepointName();
    savepoints_ = std::max(0, savepoints_ - 1);
    Queue(BatchStep::Statement("ReleaseSavepoint", "RELEASE " + name));
}

std::string DataBase::SavepointName() const {
    return "nested" + std::to_string(savepoints_);
}

void DataBase::RollbackToSavepoint() {
    ForgetReadAhead();
    Notify(DataBaseStep::RollbackToSavepoint);
    const std::string name = SavepointName();
    const int number = savepoints_;
    savepoints_ = std::max(0, savepoints_ - 1);
    // A savepoint not yet sent is undone by dropping it and what followed it
    // (inner savepoints released meanwhile included).
    for (auto step = queued_.rbegin(); step != queued_.rend(); ++step) {
        if (step->savepoint == number) {
            queued_.erase(std::next(step).base(), queued_.end());
            return;
        }
    }
    // Sent: everything queued is inside it.
    queued_.clear();
    // Rolling back to a savepoint keeps it open; releasing it then ends it.
    Engine().Exec("ROLLBACK TO " + name + "; RELEASE " + name, "RollbackToSavepoint");
}

void DataBase::SetUncertainCommitText(std::string text) {
    uncertainCommit_ = std::move(text);
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
    // The locks travel with the statements that follow them.
    for (std::string& lock : Engine().RowLockStatements(locks)) {
        Queue(BatchStep::Statement("LockRows", std::move(lock)));
    }
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
