// dbn-node-editor play: operates the editor from a script, without a display.
#include "host/host_command.h"
#include "host/play_runner.h"
#include "host/play_services.h"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace dbn::host {
namespace {

int RunPlay(const CommandArgs& args) {
    const std::string& script = args.Positionals()[0];
    Player player(std::cout, std::cerr);
    if (script == "-") {
        return player.Run(std::cin);
    }
    std::error_code error;
    std::ifstream file;
    // A folder opens as a file but reads nothing: refuse it as unreadable.
    if (!std::filesystem::is_directory(script, error)) {
        file.open(script);
    }
    if (!file.is_open() || !file) {
        std::cerr << "error: cannot read " << script << "\n";
        return kRunScriptError;
    }
    return player.Run(file);
}

HostCommand PlayCommand() {
    HostCommand command;
    command.name = "play";
    command.summary = "operate the editor from a script of operator actions, without a display";
    command.arguments = {{"SCRIPT", "the script file, one action a line; - reads standard input"}};
    command.exitCodes = {{kRunCompleted,
                          "the script ran to its end, no \"Error\" box was shown and every save "
                          "asked for committed or was declined by an answer"},
                         {kRunUnanswered, "a box asked a question that the script did not answer"},
                         {kRunScriptError,
                          "a script error: wrong line, control, entry or answer, or a SCRIPT "
                          "that cannot be read"},
                         {kRunFailed,
                          "the script ran to its end, but an \"Error\" box was shown, the database "
                          "could not be opened or the database refused a save"}};
    command.run = RunPlay;
    return command;
}

const HostCommandRegistration kPlay(PlayCommand());

}  // namespace
}  // namespace dbn::host
