// The "export" sub-command: a partition's dial-by-name nodes, or the ones
// named, as one JSON document (the nodes' text form), on standard output or
// into a file.
#include "database/database.h"
#include "host/host_command.h"
#include "host/key_argument.h"
#include "nodetext/text_form.h"
#include "session/nodes/node_text_store.h"

#include <fstream>
#include <iostream>

namespace dbn::host {
namespace {

int RunExport(const CommandArgs& args) {
    const std::vector<std::string>& positionals = args.Positionals();
    const std::int16_t config = KeyArgument("CONFIG", positionals[0]);
    const std::int16_t partition = KeyArgument("PARTITION", positionals[1]);
    std::vector<std::int16_t> numbers;
    for (std::size_t i = 2; i < positionals.size(); ++i) {
        numbers.push_back(KeyArgument("NODE", positionals[i]));
    }
    const std::optional<std::string> output = args.Value("output");
    if (output && output->empty()) {
        throw UsageError("--output FILE must name a file");
    }

    DataBase db;
    const std::string text =
        nodetext::DocumentText(session::ExportNodes(db, config, partition, numbers));
    if (!output) {
        std::cout << text;
        return kExitOk;
    }
    std::ofstream file(*output, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (!file) {
        std::cerr << "dbn-node-editor: cannot write " << *output << "\n";
        return kExitFailed;
    }
    return kExitOk;
}

HostCommand ExportCommand() {
    HostCommand command;
    command.name = "export";
    command.summary = "write a partition's dial-by-name nodes as one JSON document";
    command.options = {{"output", "FILE", "write the document into FILE, not standard output"}};
    command.arguments = NodeKeyHelp(false);
    command.moreArguments = "NODE...";
    command.exitCodes = {{kExitFailed,
                          "failed: no database, a named node that does not exist, "
                          "or a file that cannot be written"}};
    command.run = RunExport;
    return command;
}

const HostCommandRegistration kExport(ExportCommand());

}  // namespace
}  // namespace dbn::host
