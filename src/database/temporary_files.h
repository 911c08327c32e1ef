#pragma once

// The files a copy or an init writes beside its target before renaming them
// into place (NAME.new-PID and its journal): removed when the process is
// interrupted (SIGINT, SIGTERM, SIGHUP), and, when a killed run left them,
// by the next run that writes the same target.

#include <functional>
#include <string>
#include <vector>

namespace dbn::detail {

// Removes path and its journal if the process is interrupted while the
// guard lives; the signal then ends the process as it would have.
class TemporaryFileGuard {
public:
    explicit TemporaryFileGuard(const std::string& path);
    ~TemporaryFileGuard();
    TemporaryFileGuard(const TemporaryFileGuard&) = delete;
    TemporaryFileGuard& operator=(const TemporaryFileGuard&) = delete;

private:
    int slot_ = -1;
};

// Removes the NAME.new-PID files (and journals) beside target whose process
// no longer exists; answers one line for each run whose files were removed.
std::vector<std::string> RemoveStaleTemporaries(const std::string& target);

}  // namespace dbn::detail

namespace dbn {

// Where the database layer's notices go (a command prints them on standard
// error); none by default.
void SetDatabaseNoticeHandler(std::function<void(const std::string&)> handler);
void DatabaseNotice(const std::string& text);

}  // namespace dbn
