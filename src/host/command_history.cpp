// The "history" sub-command: a node's changes, newest first, field by field.
#include "core/node_types.h"
#include "database/database.h"
#include "host/history_output.h"
#include "host/host_command.h"
#include "host/key_argument.h"
#include "session/nodes/node_history.h"

#include <iostream>

namespace dbn::host {
namespace {

int RunHistory(const CommandArgs& args) {
    const auto [config, partition, node] = NodeKeyArguments(args);
    const session::NodeKey key{config, partition, node_type::kDialByName, node};
    const std::optional<long> limit = CountOption(args, "limit");
    DataBase db;
    const std::vector<session::HistoryEntry> entries =
        session::ReadNodeHistoryChanges(db, key, limit);
    if (args.IsSet("json")) {
        nodestate::Json list = nodestate::Json::array();
        for (const session::HistoryEntry& entry : entries) {
            list.push_back(session::EntryJson(entry, false));
        }
        std::cout << list.dump(2, ' ', false, nodestate::Json::error_handler_t::replace) << "\n";
        return kExitOk;
    }
    for (const session::HistoryEntry& entry : entries) {
        PrintHistoryEntry(std::cout, entry);
    }
    return kExitOk;
}

HostCommand HistoryCommand() {
    HostCommand command;
    command.name = "history";
    command.summary = "list a dial-by-name node's changes, newest first, field by field";
    command.options = {{"json", "", "print the entries as a JSON array"},
                       {"limit", "N", "print only the newest N entries"}};
    command.arguments = {{"CONFIG", "the configuration ID"},
                         {"PARTITION", "the partition ID"},
                         {"NODE", "the dial-by-name node's number"}};
    command.run = RunHistory;
    return command;
}

const HostCommandRegistration kHistory(HistoryCommand());

}  // namespace
}  // namespace dbn::host
