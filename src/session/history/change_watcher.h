#pragma once
// Hears the changes of nodes committed by other programs: on a server the
// history's announcements (LISTEN), on a file the file's change counter.
// Either way the new history entries are read by their numbers only, never
// by reading whole tables. A server that restarts or fails over is connected
// to again every few seconds, and a file replaced by another one (init or
// copy --force) is opened again; the entries committed meanwhile are then
// read by number, so that none is missed.

#include "database/database.h"
#include "session/nodes/node_history.h"

#include <sys/types.h>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dbn::session {

class ChangeWatcher {
public:
    // How long the watcher waits between two tries to connect again.
    static constexpr std::chrono::seconds kRetryInterval{3};

    // Watches the database target on a connection of its own, from the
    // newest entry on, or from the one after `after` when given.
    explicit ChangeWatcher(const DatabaseTarget& target, std::optional<long> after = std::nullopt);

    // False when the database keeps no history: nothing will be heard.
    bool Active() const noexcept { return active_; }
    // The socket that becomes readable when a change is announced, or -1
    // when NewChanges must be asked on a short timer instead (a file, or a
    // server that is being connected to again). It changes when the watcher
    // connects again.
    int Socket() const noexcept { return socket_; }
    // The entries committed since the last call (oldest first); empty when
    // nothing changed. Cheap when nothing did. A lost connection is noticed
    // here and made again from here, one try every kRetryInterval.
    std::vector<HistoryEntry> NewChanges();
    // What the operator is told once: the connection lost, made again, or
    // the file replaced; std::nullopt when there is nothing new to tell.
    std::optional<std::string> TakeNotice();
    // The newest entry reported so far.
    long LastEntry() const noexcept { return last_; }

private:
    struct FileIdentity {
        dev_t device = 0;
        ino_t inode = 0;
        bool operator==(const FileIdentity&) const = default;
    };
    void Connect();
    std::optional<FileIdentity> IdentityOfFile() const;
    std::vector<HistoryEntry> EntriesAfterLast();
    // Connects again once the retry time has come; answers whether it did.
    bool TryAgain();
    // The entries of a file that replaced the watched one, written after the
    // replacement.
    std::vector<HistoryEntry> EntriesOfReplacement();

    DatabaseTarget target_;
    std::unique_ptr<DataBase> db_;
    bool active_ = false;
    int socket_ = -1;
    long last_ = 0;
    std::optional<FileIdentity> identity_;
    // When the file on show was last seen to be the one watched.
    std::chrono::system_clock::time_point oldFileSeen_ = std::chrono::system_clock::now();
    bool lost_ = false;
    bool pending_ = false;  // entries after the given one not yet read
    std::chrono::steady_clock::time_point nextTry_{};
    std::optional<std::string> notice_;
};

}  // namespace dbn::session
