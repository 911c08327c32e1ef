#include "support/statement_trace.h"

#include "database/command_catalogue.h"

#include <variant>

namespace dbn::bench {

void StatementTrace::Attach(DataBase& db) {
    db.SetObserver([this](const DataBaseEvent& event) {
        TraceStep step{event.step, std::string(event.command), {}, std::string(event.column)};
        if (event.args != nullptr) {
            step.args = *event.args;
        }
        steps_.push_back(std::move(step));
    });
}

void StatementTrace::Detach(DataBase& db) {
    db.SetObserver({});
}

long StatementTrace::Statements(std::size_t first, std::size_t last) const {
    long count = 0;
    for (std::size_t i = first; i < last && i < steps_.size(); ++i) {
        count += steps_[i].step == DataBaseStep::Execute ? 1 : 0;
    }
    return count;
}

Replay::Replay(DataBase& db, const std::vector<TraceStep>& steps, Transactions transactions)
    : db_(db), transactions_(transactions) {
    steps_.reserve(steps.size());
    for (const TraceStep& step : steps) {
        RowSet* rows = nullptr;
        const CatalogueCommand* command = FindCatalogueCommand(step.command);
        if (command != nullptr && command->kind == CommandKind::RowReturning) {
            rows = &db_.Recordset(step.command);
        }
        steps_.push_back({&step, rows});
    }
}

std::size_t Replay::Run(std::size_t first, std::size_t last) {
    const bool oneForAll = transactions_ == Transactions::OneForAll;
    if (oneForAll) {
        db_.BeginTrans();
    }
    std::size_t checksum = 0;
    for (std::size_t i = first; i < last && i < steps_.size(); ++i) {
        const TraceStep& step = *steps_[i].step;
        RowSet* rows = steps_[i].rows;
        switch (step.step) {
            case DataBaseStep::Execute:
                checksum += static_cast<std::size_t>(db_.Execute(step.command, step.args));
                break;
            case DataBaseStep::Eof:
                checksum += rows->Eof() ? 1 : 0;
                break;
            case DataBaseStep::Field:
                checksum += rows->Field(step.column).Raw().index();
                break;
            case DataBaseStep::MoveNext:
                rows->MoveNext();
                break;
            case DataBaseStep::MoveLast:
                rows->MoveLast();
                break;
            case DataBaseStep::Close:
                rows->Close();
                break;
            case DataBaseStep::BeginTrans:
                if (!oneForAll) {
                    db_.BeginTrans();
                }
                break;
            case DataBaseStep::CommitTrans:
                if (!oneForAll) {
                    db_.CommitTrans();
                }
                break;
            case DataBaseStep::RollbackTrans:
                if (!oneForAll) {
                    db_.RollbackTrans();
                }
                break;
            case DataBaseStep::BeginSavepoint:
                if (!oneForAll) {
                    db_.BeginSavepoint();
                }
                break;
            case DataBaseStep::ReleaseSavepoint:
                if (!oneForAll) {
                    db_.ReleaseSavepoint();
                }
                break;
            case DataBaseStep::RollbackToSavepoint:
                if (!oneForAll) {
                    db_.RollbackToSavepoint();
                }
                break;
        }
    }
    if (oneForAll) {
        db_.CommitTrans();
    }
    return checksum;
}

}  // namespace dbn::bench
