// The server engine's news of changes: the history's channel, heard on the
// connection's socket.
#include "database/postgres_engine.h"
#include "database/schema_version.h"

namespace dbn::postgres {

int PostgresEngine::ListenForChanges() {
    Exec(std::string("LISTEN ") + kHistoryChannel, "watching for changes");
    return PQsocket(conn_.get());
}

bool PostgresEngine::ChangesCommitted() {
    if (PQconsumeInput(conn_.get()) == 0 || Lost()) {
        RaiseFailure(nullptr, "watching for changes");
    }
    bool heard = false;
    while (PGnotify* note = PQnotifies(conn_.get())) {
        heard = true;
        PQfreemem(note);
    }
    return heard;
}

}  // namespace dbn::postgres
