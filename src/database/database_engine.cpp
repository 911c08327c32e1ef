#include "database/database_engine.h"

namespace dbn {

std::unique_ptr<DatabaseEngine> ConnectEngine(const DatabaseTarget& target,
                                              std::chrono::milliseconds lockTimeout,
                                              OpenMode mode) {
    if (target.IsServer()) {
        return ConnectPostgres(target.location, lockTimeout);
    }
    return ConnectSqlite(target.location, lockTimeout, mode);
}

}  // namespace dbn
