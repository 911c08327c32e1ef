#pragma once

#include <functional>
#include <string>
#include <vector>

namespace dbn::host {

// A sub-command of dbn-node-editor ("init", "where", "copy", "play", "edit").
// Each command's file registers itself with a static HostCommandRegistration.
struct HostCommand {
    std::string name;
    std::string usage;  // one line, e.g. "play [--data-root DIR] SCRIPT"
    // Arguments after the command name; answers the exit status.
    std::function<int(const std::vector<std::string>&)> run;
};

const std::vector<HostCommand>& HostCommands();

struct HostCommandRegistration {
    explicit HostCommandRegistration(HostCommand command);
};

// Removes "--data-root DIR" from args and, when present, makes DIR the data
// root of this run. Answers false (after printing why) on a missing DIR.
bool TakeDataRootOption(std::vector<std::string>& args);

// Removes "--database TARGET" from args and, when present, makes TARGET (a
// server connection string or an SQLite file) the database of this run,
// ahead of $DBN_DATABASE and the derived file. Answers false (after printing
// why) on a missing TARGET.
bool TakeDatabaseOption(std::vector<std::string>& args);

}  // namespace dbn::host
