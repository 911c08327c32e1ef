// The "watch" sub-command: prints each change of a node as it is committed,
// by any program on any workstation. It outlives a server restart or
// failover and a replaced file, telling each once on standard error.
#include "database/database.h"
#include "database/database_target.h"
#include "host/history_output.h"
#include "host/host_command.h"
#include "host/key_argument.h"
#include "session/history/change_watcher.h"

#include <poll.h>

#include <charconv>
#include <chrono>
#include <iostream>
#include <thread>
#include <utility>
#include <vector>

namespace dbn::host {
namespace {

// How often a file is asked whether another program committed a change.
constexpr std::chrono::milliseconds kFileCheck{200};

// Waits until another program may have committed a change: the server's
// announcement on the socket, or the file's change (or the time to connect
// again) seen on a short timer.
void AwaitChange(int socket) {
    if (socket >= 0) {
        pollfd wanted{socket, POLLIN, 0};
        ::poll(&wanted, 1, -1);
    } else {
        std::this_thread::sleep_for(kFileCheck);
    }
}

// --after ENTRY: a history entry's number, 0 for the first one on.
std::optional<long> AfterOption(const CommandArgs& args) {
    const std::optional<std::string> text = args.Value("after");
    if (!text) {
        return std::nullopt;
    }
    long value = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
    if (error != std::errc() || end != text->data() + text->size() || value < 0) {
        throw UsageError("--after ENTRY must be a history entry's number, not \"" + *text + "\"");
    }
    return value;
}

int RunWatch(const CommandArgs& args) {
    const auto& positionals = args.Positionals();
    if (positionals.size() == 1) {
        throw UsageError("watch needs both CONFIG and PARTITION, or neither");
    }
    std::optional<std::pair<std::int16_t, std::int16_t>> where;
    if (positionals.size() == 2) {
        where.emplace(KeyArgument("CONFIG", positionals[0]),
                      KeyArgument("PARTITION", positionals[1]));
    }
    const std::optional<long> count = CountOption(args, "count");
    const bool json = args.IsSet("json");
    session::ChangeWatcher watcher(ResolveDatabaseTarget(), AfterOption(args));
    if (!watcher.Active()) {
        std::cerr << "dbn-node-editor: the configuration database keeps no history; there is "
                     "nothing to watch.\n";
        return kExitFailed;
    }
    long printed = 0;
    // Entries after --after are printed at once.
    bool first = args.Value("after").has_value();
    while (!count || printed < *count) {
        if (!std::exchange(first, false)) {
            AwaitChange(watcher.Socket());
        }
        std::vector<session::HistoryEntry> entries = watcher.NewChanges();
        if (const std::optional<std::string> notice = watcher.TakeNotice()) {
            std::cerr << "dbn-node-editor: " << *notice << "\n";
        }
        for (const session::HistoryEntry& entry : entries) {
            if (where &&
                (entry.key.config != where->first || entry.key.partition != where->second)) {
                continue;
            }
            if (json) {
                std::cout << session::EntryJson(entry, true)
                                 .dump(-1, ' ', false, nodestate::Json::error_handler_t::replace)
                          << "\n";
            } else {
                PrintChangeLine(std::cout, entry);
            }
            std::cout.flush();
            if (count && ++printed >= *count) {
                break;
            }
        }
    }
    return kExitOk;
}

HostCommand WatchCommand() {
    HostCommand command;
    command.name = "watch";
    command.summary = "print each change of a node as it is committed, until interrupted";
    command.options = {{"json", "", "print each change as one JSON object per line"},
                       {"count", "N", "stop after N changes"},
                       {"after", "ENTRY", "first print the changes after this history entry"}};
    command.arguments = {{"CONFIG", "only changes in this configuration", true},
                         {"PARTITION", "only changes in this partition", true}};
    command.exitCodes = {{1, "failed: no database, or one that keeps no history"}};
    command.run = RunWatch;
    return command;
}

const HostCommandRegistration kWatch(WatchCommand());

}  // namespace
}  // namespace dbn::host
