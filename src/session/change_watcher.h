#pragma once
// Hears the changes of nodes committed by other programs: on a server the
// history's announcements (LISTEN), on a file the file's change counter.
// Either way the new history entries are read by their numbers only, never
// by reading whole tables.

#include "database/database.h"
#include "session/node_history.h"

#include <vector>

namespace dbn::session {

class ChangeWatcher {
public:
    // Watches the database target on a connection of its own.
    explicit ChangeWatcher(const DatabaseTarget& target);

    // False when the database keeps no history: nothing will be heard.
    bool Active() const noexcept { return active_; }
    // The socket that becomes readable when a change is announced, or -1
    // when NewChanges must be asked on a short timer instead.
    int Socket() const noexcept { return socket_; }
    // The entries committed since the last call (oldest first); empty when
    // nothing changed. Cheap when nothing did.
    std::vector<HistoryEntry> NewChanges();

private:
    DataBase db_;
    bool active_ = false;
    int socket_ = -1;
    long last_ = 0;
};

}  // namespace dbn::session
