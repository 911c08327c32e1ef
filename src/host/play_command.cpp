// dbn-node-editor play: operates the editor from a script, without a display.
#include "host/host_command.h"
#include "host/play_runner.h"
#include "host/play_services.h"

#include <fstream>
#include <iostream>

namespace dbn::host {
namespace {

std::vector<std::string> ReadLines(std::istream& in) {
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(in, line)) {
        lines.push_back(line);
    }
    return lines;
}

int RunPlay(const CommandArgs& args) {
    const std::string& script = args.Positionals()[0];
    std::vector<std::string> lines;
    if (script == "-") {
        lines = ReadLines(std::cin);
    } else {
        std::ifstream file(script);
        if (!file) {
            std::cerr << "error: cannot read " << script << "\n";
            return kRunScriptError;
        }
        lines = ReadLines(file);
    }
    Player player(std::cout, std::cerr);
    return player.Run(std::move(lines));
}

HostCommand PlayCommand() {
    HostCommand command;
    command.name = "play";
    command.summary = "operate the editor from a script of operator actions, without a display";
    command.arguments = {{"SCRIPT", "the script file, one action a line; - reads standard input"}};
    command.exitCodes = {
        {kRunCompleted, "the script ran to its end"},
        {kRunUnanswered, "a box asked a question that the script did not answer"},
        {kRunScriptError, "a script error: wrong line, control or entry, or no SCRIPT"}};
    command.run = RunPlay;
    return command;
}

const HostCommandRegistration kPlay(PlayCommand());

}  // namespace
}  // namespace dbn::host
