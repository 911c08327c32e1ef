// The "check" sub-command: the directory check of a stored dial-by-name node,
// as a text report or as one JSON document. Exit status 0 when callers can
// reach every name, 4 when some they cannot.
#include "database/database.h"
#include "directory/directory_report.h"
#include "host/host_command.h"
#include "host/key_argument.h"
#include "session/nodes/directory_check.h"

#include <cstdint>
#include <iostream>

namespace dbn::host {
namespace {

constexpr int kSomeUnreachable = 4;

int RunCheck(const CommandArgs& args) {
    const auto [config, partition, node] = NodeKeyArguments(args);

    DataBase db;
    std::string shownAs;
    const directory::DirectoryReport report =
        session::CheckStoredNode(db, config, partition, node, &shownAs);
    if (!shownAs.empty()) {
        std::cerr << "dbn-node-editor: " << shownAs << "\n";
    }
    std::cout << (args.IsSet("json") ? directory::ReportJson(report)
                                     : directory::ReportText(report));
    return report.ReachableCount() == report.Total() ? kExitOk : kSomeUnreachable;
}

HostCommand CheckCommand() {
    HostCommand command;
    command.name = "check";
    command.summary = "tell for every name in a node's directory whether callers can reach it";
    command.options = {{"json", "", "print the report as one JSON document"}};
    command.arguments = NodeKeyHelp();
    command.exitCodes = {{kExitOk, "every name of the directory is reachable"},
                         {kExitFailed, "failed: no database, no such node or directory"},
                         {kSomeUnreachable, "some names of the directory are unreachable"}};
    command.run = RunCheck;
    return command;
}

const HostCommandRegistration kCheck(CheckCommand());

}  // namespace
}  // namespace dbn::host
