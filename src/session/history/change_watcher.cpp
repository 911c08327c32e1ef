#include "session/history/change_watcher.h"

#include "core/component_error.h"
#include "database/database_errors.h"

#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <utility>

namespace dbn::session {
namespace {

// "2026-11-25T14:02:07Z", as the history writes its times.
std::string IsoUtc(std::time_t time) {
    std::tm utc{};
    ::gmtime_r(&time, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

}  // namespace

ChangeWatcher::ChangeWatcher(const DatabaseTarget& target, std::optional<long> after)
    : target_(target) {
    Connect();
    if (active_) {
        last_ = after ? *after : LastHistoryEntry(*db_);
        pending_ = after.has_value();
    }
}

void ChangeWatcher::Connect() {
    auto db = std::make_unique<DataBase>(target_);
    identity_ = IdentityOfFile();
    active_ = db->KeepsHistory();
    // Listening first, so that a change committed meanwhile is not missed.
    socket_ = active_ ? db->ListenForChanges() : -1;
    db_ = std::move(db);
}

std::optional<ChangeWatcher::FileIdentity> ChangeWatcher::IdentityOfFile() const {
    struct stat status {};
    if (target_.IsServer() || ::stat(target_.location.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return FileIdentity{status.st_dev, status.st_ino};
}

std::vector<HistoryEntry> ChangeWatcher::EntriesAfterLast() {
    std::vector<HistoryEntry> entries = ReadHistoryAfter(*db_, last_);
    if (!entries.empty()) {
        last_ = entries.back().entry;
    }
    return entries;
}

bool ChangeWatcher::TryAgain() {
    const auto now = std::chrono::steady_clock::now();
    if (now < nextTry_) {
        return false;
    }
    nextTry_ = now + kRetryInterval;
    try {
        Connect();
    } catch (const ComponentError& error) {
        if (!IsDatabaseUnavailable(error.Number())) {
            throw;
        }
        return false;
    }
    lost_ = false;
    notice_ = "Connected to the configuration database again; changes made meanwhile follow.";
    return true;
}

std::vector<HistoryEntry> ChangeWatcher::EntriesOfReplacement() {
    // The new file's history is its own: its entries from the last moment
    // the old file was still seen on (to the second, so that none committed
    // in that second is missed). The file's own times change with every
    // write and cannot tell when it took the old one's place.
    const std::string since = IsoUtc(std::chrono::system_clock::to_time_t(oldFileSeen_));
    std::vector<HistoryEntry> entries = ReadHistoryAfter(*db_, 0);
    last_ = entries.empty() ? 0 : entries.back().entry;
    std::erase_if(entries, [&since](const HistoryEntry& entry) { return entry.time < since; });
    return entries;
}

std::vector<HistoryEntry> ChangeWatcher::NewChanges() {
    if (lost_) {
        if (!TryAgain() || !active_) {
            return {};
        }
        return EntriesAfterLast();
    }
    const auto now = std::chrono::system_clock::now();
    if (const std::optional<FileIdentity> identity = IdentityOfFile();
        identity_ && identity && identity != identity_) {
        Connect();
        notice_ = "The configuration database " + target_.location +
                  " was replaced by another file; watching the new one.";
        std::vector<HistoryEntry> entries =
            active_ ? EntriesOfReplacement() : std::vector<HistoryEntry>{};
        oldFileSeen_ = now;
        return entries;
    }
    oldFileSeen_ = now;
    if (!active_) {
        return {};
    }
    try {
        // Entries after the one given at the start are read at once.
        if (!db_->ChangesCommitted() && !std::exchange(pending_, false)) {
            return {};
        }
        return EntriesAfterLast();
    } catch (const ComponentError& error) {
        if (!IsDatabaseUnavailable(error.Number())) {
            throw;
        }
    }
    // Lost: tried again at once, then every few seconds.
    lost_ = true;
    socket_ = -1;
    notice_ = "The connection to the configuration database was lost; connecting again every " +
              std::to_string(kRetryInterval.count()) + " seconds.";
    nextTry_ = {};
    if (!TryAgain()) {
        return {};
    }
    notice_.reset();  // back at once: nothing to tell
    return active_ ? EntriesAfterLast() : std::vector<HistoryEntry>{};
}

std::optional<std::string> ChangeWatcher::TakeNotice() {
    return std::exchange(notice_, std::nullopt);
}

}  // namespace dbn::session
