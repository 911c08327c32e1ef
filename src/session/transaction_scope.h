#pragma once

#include "database/database.h"

#include <exception>

namespace dbn {

// One unit of work on a DataBase: begun on construction, rolled back on
// destruction unless committed. Inside a transaction already begun by a
// caller it joins that one and leaves committing to its owner.
class TransactionScope {
public:
    explicit TransactionScope(DataBase& db) : db_(db), owner_(!db.InTransaction()) {
        if (owner_) {
            db_.BeginTrans();
        }
    }
    ~TransactionScope() { Rollback(); }
    TransactionScope(const TransactionScope&) = delete;
    TransactionScope& operator=(const TransactionScope&) = delete;

    void Commit() {
        if (owner_ && db_.InTransaction()) {
            db_.CommitTrans();
        }
        owner_ = false;
    }

    void Rollback() noexcept {
        if (owner_ && db_.InTransaction()) {
            try {
                db_.RollbackTrans();
            } catch (const std::exception&) {
                // The connection has already ended the transaction itself.
            }
        }
        owner_ = false;
    }

private:
    DataBase& db_;
    bool owner_;
};

}  // namespace dbn
