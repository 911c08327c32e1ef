#pragma once

// Runs a program as a child process and reports what it cost: the wall time
// from the start to its exit and its peak resident memory.

#include <chrono>
#include <string>
#include <vector>

namespace dbn::bench {

struct ChildRun {
    int exitStatus = -1;  // the exit code, or -1 when it did not exit normally
    std::chrono::nanoseconds wallTime{0};
    long peakResidentKiB = 0;
};

struct ChildOptions {
    // Extra environment entries, "NAME=value", on top of this process's own.
    std::vector<std::string> environment;
    // A file read as the child's standard input (empty: /dev/null).
    std::string standardInput;
};

// Starts argv[0] with argv, its standard output and error going to /dev/null,
// and waits for it. Throws std::runtime_error when it cannot be started.
ChildRun RunChild(const std::vector<std::string>& argv, const ChildOptions& options = {});

}  // namespace dbn::bench
