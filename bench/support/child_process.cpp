#include "support/child_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

extern char** environ;

namespace dbn::bench {
namespace {

// The file actions of one spawn, released however the spawn ends.
class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    posix_spawn_file_actions_t* Get() { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

ChildRun RunChild(const std::vector<std::string>& argv, const ChildOptions& options) {
    std::vector<std::string> arguments = argv;
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        environment.emplace_back(*entry);
    }
    environment.insert(environment.end(), options.environment.begin(), options.environment.end());
    std::vector<char*> argumentPointers = Pointers(arguments);
    std::vector<char*> environmentPointers = Pointers(environment);

    FileActions actions;
    const std::string input = options.standardInput.empty() ? "/dev/null" : options.standardInput;
    posix_spawn_file_actions_addopen(actions.Get(), STDIN_FILENO, input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(actions.Get(), STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(actions.Get(), STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int rc = posix_spawn(&child, argumentPointers[0], actions.Get(), nullptr,
                               argumentPointers.data(), environmentPointers.data());
    if (rc != 0) {
        throw std::runtime_error("cannot start " + argv.at(0) + ": " + std::strerror(rc));
    }
    int status = 0;
    rusage usage{};
    while (wait4(child, &status, 0, &usage) < 0) {
        if (errno != EINTR) {
            throw std::runtime_error("cannot wait for " + argv.at(0) + ": " + std::strerror(errno));
        }
    }
    ChildRun run;
    run.wallTime = std::chrono::steady_clock::now() - start;
    run.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.peakResidentKiB = usage.ru_maxrss;
    return run;
}

}  // namespace dbn::bench
