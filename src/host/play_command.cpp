// dbn-node-editor play: operates the editor from a script, without a display.
#include "host/host_command.h"
#include "host/play_runner.h"
#include "host/play_services.h"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace dbn::host {
namespace {

int RunPlay(const std::vector<std::string>& arguments) {
    std::vector<std::string> args = arguments;
    if (!TakeDataRootOption(args)) {
        return kRunScriptError;
    }
    if (args.size() != 1) {
        std::cerr << "usage: dbn-node-editor play [--data-root DIR] SCRIPT\n";
        return kRunScriptError;
    }
    Player player(std::cout, std::cerr);
    if (args[0] == "-") {
        return player.Run(std::cin);
    }
    std::error_code error;
    std::ifstream file;
    // A folder opens as a file but reads nothing: refuse it as unreadable.
    if (!std::filesystem::is_directory(args[0], error)) {
        file.open(args[0]);
    }
    if (!file.is_open() || !file) {
        std::cerr << "error: cannot read " << args[0] << "\n";
        return kRunScriptError;
    }
    return player.Run(file);
}

const HostCommandRegistration registration{
    {"play", "play [--data-root DIR] SCRIPT", RunPlay},
};

}  // namespace
}  // namespace dbn::host
