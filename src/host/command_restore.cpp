// The "restore" sub-command: writes back a dial-by-name node's state from
// its history as a new change.
#include "core/component_error.h"
#include "core/node_types.h"
#include "database/database.h"
#include "host/host_command.h"
#include "host/key_argument.h"
#include "session/history/node_restore.h"

#include <charconv>
#include <iostream>

namespace dbn::host {
namespace {

long EntryArgument(const std::string& text) {
    long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 1) {
        throw UsageError("ENTRY must be a history entry's number, not \"" + text + "\"");
    }
    return value;
}

int RunRestore(const CommandArgs& args) {
    const NodeArguments given = NodeKeyArguments(args);
    const session::NodeKey key{given.config, given.partition, node_type::kDialByName, given.node};
    const long entry = EntryArgument(args.Positionals()[3]);
    const bool before = args.IsSet("before");
    DataBase db;
    db.SetUncertainCommitText(
        "the restore may or may not have been written: dbn-node-editor "
        "history " +
        args.Positionals()[0] + " " + args.Positionals()[1] + " " + args.Positionals()[2] +
        " shows it as the newest entry if it was.");
    const session::RestoreResult result = session::RestoreNodeVersion(db, key, entry, before);
    const std::string node = "DBN " + std::to_string(key.number);
    std::cout << node << " was restored to the state " << (before ? "before" : "after") << " entry "
              << entry;
    if (result.entry > 0) {
        std::cout << " as entry " << result.entry;
    }
    std::cout << ".\n";
    if (!result.missing.empty()) {
        std::string names;
        for (const std::string& missing : result.missing) {
            names += (names.empty() ? "" : ", ") + missing;
        }
        std::cout << "These references point at nodes that do not exist: " << names << ".\n";
    }
    return kExitOk;
}

HostCommand RestoreCommand() {
    HostCommand command;
    command.name = "restore";
    command.summary =
        "write back a dial-by-name node's state after (or before) a history entry, as a new "
        "change";
    command.options = {{"before", "", "restore the state before the entry instead of after it"}};
    command.arguments = {{"CONFIG", "the configuration ID"},
                         {"PARTITION", "the partition ID"},
                         {"NODE", "the dial-by-name node's number"},
                         {"ENTRY", "the history entry's number (see history)"}};
    command.exitCodes = {{1,
                          "failed: an unknown entry, an entry of another node, a node that no "
                          "longer exists, or a database that cannot be written"}};
    command.run = RunRestore;
    return command;
}

const HostCommandRegistration kRestore(RestoreCommand());

}  // namespace
}  // namespace dbn::host
