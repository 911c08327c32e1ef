// The "simulate" sub-command: a call through a stored dial-by-name node, key
// by key. The events come from --keys, or from standard input one a line,
// each step printed as soon as it is answered, so that a person can type a
// call at a terminal.
#include "core/component_error.h"
#include "directory/call_simulation.h"
#include "host/host_command.h"
#include "host/key_argument.h"
#include "session/editor/caller_simulation.h"

#include <iostream>
#include <string>

namespace dbn::host {
namespace {

// The call did not reach an exit before the events ran out.
constexpr const char* kNotLeft = "dbn-node-editor: the events ended before the call left the node";

void Print(const directory::CallStep& step, bool json) {
    std::cout << (json ? directory::StepJson(step) + "\n" : directory::StepText(step))
              << std::flush;
}

int RunSimulate(const CommandArgs& args) {
    const auto [config, partition, node] = NodeKeyArguments(args);
    const bool json = args.IsSet("json");
    std::optional<std::vector<directory::CallEvent>> keys;
    if (const std::optional<std::string> text = args.Value("keys")) {
        std::string why;
        keys = directory::ParseCallEvents(*text, why);
        if (!keys) {
            throw UsageError("--keys: " + why);
        }
    }

    directory::CallSimulator simulator(session::StoredCallPlan(config, partition, node));
    Print(simulator.Start(), json);
    if (keys) {
        for (const directory::CallEvent& event : *keys) {
            if (simulator.Ended()) {
                break;
            }
            Print(simulator.Answer(event), json);
        }
    } else {
        std::string line;
        while (!simulator.Ended() && std::getline(std::cin, line)) {
            const auto first = line.find_first_not_of(" \t\r");
            if (first == std::string::npos) {
                continue;
            }
            const std::string word = line.substr(first, line.find_last_not_of(" \t\r") - first + 1);
            if (const std::optional<directory::CallEvent> event = directory::ParseCallEvent(word)) {
                Print(simulator.Answer(*event), json);
            } else {
                std::cerr << "dbn-node-editor: " << directory::NotACallEvent(word) << "\n";
            }
        }
    }
    if (!simulator.Ended()) {
        std::cerr << kNotLeft << "\n";
        return kExitFailed;
    }
    return kExitOk;
}

HostCommand SimulateCommand() {
    HostCommand command;
    command.name = "simulate";
    command.summary = "call a dial-by-name node as a caller would, key by key";
    command.options = {
        {"keys", "EVENTS",
         "the caller's events, blank-separated: keys 0-9, * and #, and silence for a time-out; "
         "without it they are read from standard input, one a line"},
        {"json", "", "print each step as one JSON object on a line"}};
    command.arguments = NodeKeyHelp();
    command.exitCodes = {{kExitOk, "the call reached an exit of the node"},
                         {kExitFailed,
                          "failed: no database, no such node or directory, or the events ended "
                          "before the call left the node"}};
    command.run = RunSimulate;
    return command;
}

const HostCommandRegistration kSimulate(SimulateCommand());

}  // namespace
}  // namespace dbn::host
