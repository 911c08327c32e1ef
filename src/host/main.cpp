// dbn-node-editor: creates, inspects, scripts and edits the dial-by-name
// nodes of a configuration database.
#include "host/host_command.h"

#include "core/component_error.h"
#include "database/data_location.h"
#include "database/database_target.h"

#include <iostream>

namespace dbn::host {
namespace {

std::vector<HostCommand>& Registry() {
    static std::vector<HostCommand> commands;
    return commands;
}

void PrintUsage(std::ostream& out) {
    out << "usage:\n";
    for (const HostCommand& command : Registry()) {
        out << "  dbn-node-editor " << command.usage << "\n";
    }
}

}  // namespace

const std::vector<HostCommand>& HostCommands() {
    return Registry();
}

HostCommandRegistration::HostCommandRegistration(HostCommand command) {
    Registry().push_back(std::move(command));
}

bool TakeDataRootOption(std::vector<std::string>& args) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--data-root") {
            if (i + 1 >= args.size()) {
                std::cerr << "error: --data-root needs a folder\n";
                return false;
            }
            SetDataRootOverride(args[i + 1]);
            args.erase(args.begin() + static_cast<long>(i),
                       args.begin() + static_cast<long>(i) + 2);
            return true;
        }
    }
    return true;
}

bool TakeDatabaseOption(std::vector<std::string>& args) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--database") {
            if (i + 1 >= args.size()) {
                std::cerr << "error: --database needs a target (a server URI, key/value "
                             "connection string or SQLite file)\n";
                return false;
            }
            SetDatabaseOverride(args[i + 1]);
            args.erase(args.begin() + static_cast<long>(i),
                       args.begin() + static_cast<long>(i) + 2);
            return true;
        }
    }
    return true;
}

}  // namespace dbn::host

int main(int argc, char** argv) {
    using namespace dbn::host;
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty() || args[0] == "--help" || args[0] == "-h") {
        PrintUsage(args.empty() ? std::cerr : std::cout);
        return args.empty() ? 2 : 0;
    }
    for (const HostCommand& command : HostCommands()) {
        if (command.name == args[0]) {
            args.erase(args.begin());
            try {
                return command.run(args);
            } catch (const dbn::ComponentError& error) {
                std::cerr << "error: " << error.Description() << "\n";
                return 1;
            } catch (const std::exception& error) {
                std::cerr << "error: " << error.what() << "\n";
                return 1;
            }
        }
    }
    std::cerr << "unknown command: " << args[0] << "\n";
    PrintUsage(std::cerr);
    return 2;
}
