#include "database/temporary_files.h"

#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <map>
#include <mutex>
#include <system_error>

namespace dbn::detail {
namespace {

namespace fs = std::filesystem;

constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};
constexpr std::size_t kSlots = 8;
constexpr std::size_t kPathMax = 4096;

// The guarded paths, readable from a signal handler: a fixed table of
// buffers, each marked in use once its text is complete.
struct Slot {
    volatile sig_atomic_t used = 0;
    char path[kPathMax] = {};
    char journal[kPathMax + 8] = {};
};
std::array<Slot, kSlots> slots;
std::mutex slotsMutex;

extern "C" void RemoveOnSignal(int signal) {
    for (Slot& slot : slots) {
        if (slot.used != 0) {
            ::unlink(slot.path);
            ::unlink(slot.journal);
        }
    }
    // End the process as the signal would have.
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void InstallHandlers() {
    static std::once_flag installed;
    std::call_once(installed, [] {
        for (const int signal : kSignals) {
            struct sigaction action {};
            struct sigaction previous {};
            ::sigaction(signal, nullptr, &previous);
            // A signal the process ignores stays ignored.
            if (previous.sa_handler == SIG_IGN) {
                continue;
            }
            action.sa_handler = RemoveOnSignal;
            ::sigemptyset(&action.sa_mask);
            ::sigaction(signal, &action, nullptr);
        }
    });
}

bool ProcessExists(long pid) {
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

}  // namespace

TemporaryFileGuard::TemporaryFileGuard(const std::string& path) {
    if (path.size() >= kPathMax) {
        return;
    }
    InstallHandlers();
    const std::lock_guard<std::mutex> lock(slotsMutex);
    for (std::size_t i = 0; i < kSlots; ++i) {
        if (slots[i].used == 0) {
            std::memcpy(slots[i].path, path.c_str(), path.size() + 1);
            const std::string journal = path + "-journal";
            std::memcpy(slots[i].journal, journal.c_str(), journal.size() + 1);
            slots[i].used = 1;
            slot_ = static_cast<int>(i);
            return;
        }
    }
}

TemporaryFileGuard::~TemporaryFileGuard() {
    if (slot_ >= 0) {
        const std::lock_guard<std::mutex> lock(slotsMutex);
        slots[static_cast<std::size_t>(slot_)].used = 0;
    }
}

std::vector<std::string> RemoveStaleTemporaries(const std::string& target) {
    const fs::path path(target);
    const std::string prefix = path.filename().string() + ".new-";
    std::error_code error;
    std::map<long, std::vector<fs::path>> stale;
    for (const fs::directory_entry& entry :
         fs::directory_iterator(path.parent_path().empty() ? "." : path.parent_path(), error)) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with(prefix)) {
            continue;
        }
        std::string_view rest = std::string_view(name).substr(prefix.size());
        if (rest.ends_with("-journal")) {
            rest.remove_suffix(8);
        }
        long pid = 0;
        const auto [end, failed] = std::from_chars(rest.data(), rest.data() + rest.size(), pid);
        if (failed != std::errc() || end != rest.data() + rest.size() || pid <= 0 ||
            ProcessExists(pid)) {
            continue;
        }
        stale[pid].push_back(entry.path());
    }
    std::vector<std::string> told;
    for (const auto& [pid, files] : stale) {
        for (const fs::path& file : files) {
            fs::remove(file, error);
        }
        told.push_back("removed " + (path.string() + ".new-" + std::to_string(pid)) +
                       (files.size() > 1 ? " and its journal" : "") +
                       ", left by an interrupted run (process " + std::to_string(pid) +
                       ", which no longer exists)");
    }
    return told;
}

}  // namespace dbn::detail

namespace dbn {
namespace {

std::function<void(const std::string&)>& NoticeHandler() {
    static std::function<void(const std::string&)> handler;
    return handler;
}

}  // namespace

void SetDatabaseNoticeHandler(std::function<void(const std::string&)> handler) {
    NoticeHandler() = std::move(handler);
}

void DatabaseNotice(const std::string& text) {
    if (NoticeHandler()) {
        NoticeHandler()(text);
    }
}

}  // namespace dbn
