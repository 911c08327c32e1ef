#pragma once

#include "database/database.h"

#include <exception>

namespace dbn {

// One unit of work on a DataBase: begun on construction, rolled back on
// destruction unless committed. Inside a transaction already begun by a
// caller it is a savepoint of that one: rolling it back undoes its own work
// only, and committing it leaves the rest to the transaction's owner.
class TransactionScope {
public:
    explicit TransactionScope(DataBase& db) : db_(db), nested_(db.InTransaction()) {
        if (nested_) {
            db_.BeginSavepoint();
        } else {
            db_.BeginTrans();
        }
        active_ = true;
    }
    ~TransactionScope() { Rollback(); }
    TransactionScope(const TransactionScope&) = delete;
    TransactionScope& operator=(const TransactionScope&) = delete;

    void Commit() {
        if (active_ && db_.InTransaction()) {
            if (nested_) {
                db_.ReleaseSavepoint();
            } else {
                db_.CommitTrans();
            }
        }
        active_ = false;
    }

    void Rollback() noexcept {
        if (active_ && db_.InTransaction()) {
            try {
                if (nested_) {
                    db_.RollbackToSavepoint();
                } else {
                    db_.RollbackTrans();
                }
            } catch (const std::exception&) {
                // The connection has already ended the transaction itself.
            }
        }
        active_ = false;
    }

private:
    DataBase& db_;
    bool nested_;
    bool active_ = false;
};

}  // namespace dbn
