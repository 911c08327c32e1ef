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

int RunPlay(const std::vector<std::string>& arguments) {
    std::vector<std::string> args = arguments;
    if (!TakeDataRootOption(args) || !TakeDatabaseOption(args)) {
        return kRunScriptError;
    }
    if (args.size() != 1) {
        std::cerr << "usage: dbn-node-editor play [--data-root DIR] [--database TARGET] SCRIPT\n";
        return kRunScriptError;
    }
    std::vector<std::string> lines;
    if (args[0] == "-") {
        lines = ReadLines(std::cin);
    } else {
        std::ifstream file(args[0]);
        if (!file) {
            std::cerr << "error: cannot read " << args[0] << "\n";
            return kRunScriptError;
        }
        lines = ReadLines(file);
    }
    Player player(std::cout, std::cerr);
    return player.Run(std::move(lines));
}

const HostCommandRegistration registration{
    {"play", "play [--data-root DIR] [--database TARGET] SCRIPT", RunPlay},
};

}  // namespace
}  // namespace dbn::host
