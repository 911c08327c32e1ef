#include "session/change_watcher.h"

namespace dbn::session {

ChangeWatcher::ChangeWatcher(const DatabaseTarget& target) : db_(target) {
    active_ = db_.KeepsHistory();
    if (active_) {
        // Listening first, so that a change committed meanwhile is not missed.
        socket_ = db_.ListenForChanges();
        last_ = LastHistoryEntry(db_);
    }
}

std::vector<HistoryEntry> ChangeWatcher::NewChanges() {
    if (!active_ || !db_.ChangesCommitted()) {
        return {};
    }
    std::vector<HistoryEntry> entries = ReadHistoryAfter(db_, last_);
    if (!entries.empty()) {
        last_ = entries.back().entry;
    }
    return entries;
}

}  // namespace dbn::session
