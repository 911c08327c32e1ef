#include "database/database.h"

#include "database/command_catalogue.h"
#include "database/database_engine.h"
#include "database/database_errors.h"

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

long DataBase::Execute(std::string_view commandName, const std::vector<std::string>& args) {
    const CatalogueCommand& command = CommandNamed(commandName);
    if (args.size() != static_cast<std::size_t>(command.parameterCount)) {
        RaiseDatabaseError(kErrArgumentCount,
                           "The command " + std::string(command.name) + " takes " +
                               std::to_string(command.parameterCount) + " arguments; " +
                               std::to_string(args.size()) + " were given.");
    }
    RowSet* rowSet = nullptr;
    if (command.kind == CommandKind::RowReturning) {
        rowSet = &Recordset(command.name);
        if (rowSet->IsOpen()) {
            RaiseDatabaseError(kErrObjectOpen, kMsgObjectOpen);
        }
    }
    DatabaseEngine& engine = Engine();
    ++executed_;
    if (observer_) {
        observer_({DataBaseStep::Execute, command.name, &args, {}});
    }
    CommandResult result = engine.Run(command, args);
    if (rowSet == nullptr) {
        return result.changes;
    }
    const long count = static_cast<long>(result.rows.size());
    rowSet->Open(std::move(result.columns), std::move(result.rows));
    return count;
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
    Notify(DataBaseStep::BeginTrans);
    Engine().BeginWrite();
}

void DataBase::CommitTrans() {
    Notify(DataBaseStep::CommitTrans);
    Engine().Exec("COMMIT", "CommitTrans");
}

void DataBase::RollbackTrans() {
    Notify(DataBaseStep::RollbackTrans);
    Engine().Exec("ROLLBACK", "RollbackTrans");
}

void DataBase::BeginSavepoint() {
    Notify(DataBaseStep::BeginSavepoint);
    Engine().Exec("SAVEPOINT nested", "BeginSavepoint");
}

void DataBase::ReleaseSavepoint() {
    Notify(DataBaseStep::ReleaseSavepoint);
    Engine().Exec("RELEASE nested", "ReleaseSavepoint");
}

void DataBase::RollbackToSavepoint() {
    Notify(DataBaseStep::RollbackToSavepoint);
    // Rolling back to a savepoint keeps it open; releasing it then ends it.
    Engine().Exec("ROLLBACK TO nested; RELEASE nested", "RollbackToSavepoint");
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
