#include "support/statement_trace.h"

#include "database/command_catalogue.h"
#include "database/sql_translation.h"

#include <libpq-fe.h>

#include <map>
#include <stdexcept>
#include <variant>

namespace dbn::bench {

// A plain libpq connection that runs catalogue commands by their translated
// text and keeps each command's last result for the row-set reads.
class BareServerConnection {
public:
    explicit BareServerConnection(const std::string& conninfo)
        : conn_(PQconnectdb(conninfo.c_str())) {
        if (PQstatus(conn_) != CONNECTION_OK) {
            throw std::runtime_error(PQerrorMessage(conn_));
        }
    }
    ~BareServerConnection() {
        for (auto& [name, result] : results_) {
            PQclear(result.rows);
        }
        PQfinish(conn_);
    }

    long Execute(const TraceStep& step, long& roundTrips) {
        const CatalogueCommand* command = FindCatalogueCommand(step.command);
        if (!prepared_.contains(step.command)) {
            const std::string sql = TranslateToPostgres(command->text).sql;
            Check(PQprepare(conn_, step.command.c_str(), sql.c_str(), 0, nullptr), true);
            prepared_[step.command] = true;
            ++roundTrips;
        }
        std::vector<const char*> values;
        for (const std::string& arg : step.args) {
            values.push_back(arg.c_str());
        }
        ++roundTrips;
        PGresult* result =
            Check(PQexecPrepared(conn_, step.command.c_str(), static_cast<int>(values.size()),
                                 values.data(), nullptr, nullptr, 0),
                  false);
        if (command->kind == CommandKind::Action) {
            const long changed = std::atol(PQcmdTuples(result));
            PQclear(result);
            return changed;
        }
        Rows& rows = results_[step.command];
        PQclear(rows.rows);
        rows = {result, 0};
        return PQntuples(result);
    }

    void Exec(const char* sql, long& roundTrips) {
        ++roundTrips;
        PQclear(Check(PQexec(conn_, sql), false));
    }

    // The row-set reads of a command's last result.
    std::size_t Read(const TraceStep& step) {
        Rows& rows = results_[step.command];
        const int count = PQntuples(rows.rows);
        switch (step.step) {
            case DataBaseStep::Eof:
                return rows.position >= count ? 1 : 0;
            case DataBaseStep::Field:
                return PQgetlength(rows.rows, rows.position,
                                   PQfnumber(rows.rows, step.column.c_str()));
            case DataBaseStep::MoveNext:
                ++rows.position;
                return 0;
            case DataBaseStep::MoveLast:
                rows.position = count > 0 ? count - 1 : 0;
                return 0;
            default:
                rows.position = 0;
                return 0;
        }
    }

private:
    struct Rows {
        PGresult* rows = nullptr;
        int position = 0;
    };

    PGresult* Check(PGresult* result, bool clear) {
        const ExecStatusType status = PQresultStatus(result);
        if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
            const std::string message = PQresultErrorMessage(result);
            PQclear(result);
            throw std::runtime_error(message);
        }
        if (clear) {
            PQclear(result);
            return nullptr;
        }
        return result;
    }

    PGconn* conn_;
    std::map<std::string, bool, std::less<>> prepared_;
    std::map<std::string, Rows, std::less<>> results_;
};

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

Replay::~Replay() = default;

std::size_t Replay::RunOnServer(std::size_t first, std::size_t last) {
    // The statements the server engine sends for the transaction steps.
    static const std::map<DataBaseStep, const char*> kTransactionSql = {
        {DataBaseStep::BeginTrans, "BEGIN; SELECT pg_advisory_xact_lock(4473422)"},
        {DataBaseStep::CommitTrans, "COMMIT"},
        {DataBaseStep::RollbackTrans, "ROLLBACK"},
        {DataBaseStep::BeginSavepoint, "SAVEPOINT nested"},
        {DataBaseStep::ReleaseSavepoint, "RELEASE nested"},
        {DataBaseStep::RollbackToSavepoint, "ROLLBACK TO nested; RELEASE nested"},
    };
    if (!server_) {
        server_ = std::make_unique<BareServerConnection>(db_.Target().location);
    }
    const bool oneForAll = transactions_ == Transactions::OneForAll;
    if (oneForAll) {
        server_->Exec(kTransactionSql.at(DataBaseStep::BeginTrans), roundTrips_);
    }
    std::size_t checksum = 0;
    for (std::size_t i = first; i < last && i < steps_.size(); ++i) {
        const TraceStep& step = *steps_[i].step;
        if (step.step == DataBaseStep::Execute) {
            checksum += static_cast<std::size_t>(server_->Execute(step, roundTrips_));
        } else if (const auto sql = kTransactionSql.find(step.step); sql != kTransactionSql.end()) {
            if (!oneForAll) {
                server_->Exec(sql->second, roundTrips_);
            }
        } else {
            checksum += server_->Read(step);
        }
    }
    if (oneForAll) {
        server_->Exec("COMMIT", roundTrips_);
    }
    return checksum;
}

std::size_t Replay::Run(std::size_t first, std::size_t last) {
    roundTrips_ = 0;
    if (db_.Target().IsServer()) {
        return RunOnServer(first, last);
    }
    const bool oneForAll = transactions_ == Transactions::OneForAll;
    roundTrips_ += oneForAll ? 2 : 0;
    if (oneForAll) {
        db_.BeginTrans();
    }
    std::size_t checksum = 0;
    for (std::size_t i = first; i < last && i < steps_.size(); ++i) {
        const TraceStep& step = *steps_[i].step;
        RowSet* rows = steps_[i].rows;
        switch (step.step) {
            case DataBaseStep::Execute:
                ++roundTrips_;
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
                    ++roundTrips_;
                    db_.BeginTrans();
                }
                break;
            case DataBaseStep::CommitTrans:
                if (!oneForAll) {
                    ++roundTrips_;
                    db_.CommitTrans();
                }
                break;
            case DataBaseStep::RollbackTrans:
                if (!oneForAll) {
                    ++roundTrips_;
                    db_.RollbackTrans();
                }
                break;
            case DataBaseStep::BeginSavepoint:
                if (!oneForAll) {
                    ++roundTrips_;
                    db_.BeginSavepoint();
                }
                break;
            case DataBaseStep::ReleaseSavepoint:
                if (!oneForAll) {
                    ++roundTrips_;
                    db_.ReleaseSavepoint();
                }
                break;
            case DataBaseStep::RollbackToSavepoint:
                if (!oneForAll) {
                    ++roundTrips_;
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
