// The "apply" and "diff" sub-commands: a JSON document of nodes (as
// "export" writes it) compared with the stored nodes, checked as a save
// checks them and, for apply, written in one transaction.
#include "database/database.h"
#include "host/host_command.h"
#include "nodetext/text_form.h"
#include "session/nodes/apply_nodes.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace dbn::host {
namespace {

// A node file is far smaller; anything larger is refused unread.
constexpr std::uintmax_t kLargestFile = 64u * 1024 * 1024;

// Why the path cannot be a node file, told before anything is read from it
// (a device may never end), or std::nullopt.
std::optional<std::string> Unfit(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (error || !fs::exists(status)) {
        return "cannot be read";
    }
    if (fs::is_directory(status)) {
        return "is a folder, not a file";
    }
    if (fs::is_character_file(status) || fs::is_block_file(status) || fs::is_socket(status)) {
        return "is a device, not a file";
    }
    if (fs::is_regular_file(status) && fs::file_size(path, error) > kLargestFile) {
        return "is larger than 64 MB, far larger than a file of nodes";
    }
    return std::nullopt;
}

// Reads and checks the file; prints its problems and answers nothing when
// it cannot be applied.
std::optional<nodetext::NodeDocument> ReadFile(const std::string& path) {
    std::optional<std::string> unfit = Unfit(path);
    std::string text;
    if (!unfit) {
        // A pipe has no size to ask: it is read until it passes the limit.
        std::ifstream file(path, std::ios::binary);
        std::array<char, 65536> buffer{};
        while (file && text.size() <= kLargestFile) {
            file.read(buffer.data(), buffer.size());
            text.append(buffer.data(), static_cast<std::size_t>(file.gcount()));
        }
        if (file.bad() || (!file.eof() && text.size() <= kLargestFile)) {
            unfit = "cannot be read";
        } else if (text.size() > kLargestFile) {
            unfit = "is larger than 64 MB, far larger than a file of nodes";
        }
    }
    if (unfit) {
        std::cerr << "dbn-node-editor: " << path << ": " << *unfit << "\n";
        return std::nullopt;
    }
    nodetext::ReadResult read = nodetext::ReadDocument(text);
    for (const nodetext::Problem& problem : read.problems) {
        std::cerr << "dbn-node-editor: " << path << ": " << nodetext::ProblemText(problem) << "\n";
    }
    return std::move(read.document);
}

int Run(const CommandArgs& args, bool diff) {
    const std::string& path = args.Positionals()[0];
    const std::optional<nodetext::NodeDocument> document = ReadFile(path);
    if (!document) {
        return kExitFailed;
    }
    session::ApplyOptions options;
    options.dryRun = diff || args.IsSet("dry-run");
    options.force = args.IsSet("force");
    options.createMissing = args.IsSet("create-missing");

    DataBase db;
    db.SetUncertainCommitText("the changes of " + path +
                              " may or may not have been written: dbn-node-editor diff " + path +
                              " shows which of them are stored.");
    const session::ApplyResult result = session::ApplyNodes(db, *document, options);
    if (!result.problems.empty()) {
        for (const nodetext::Problem& problem : result.problems) {
            std::cerr << "dbn-node-editor: " << path << ": " << nodetext::ProblemText(problem)
                      << "\n";
        }
        std::cerr << "dbn-node-editor: " << path << ": refused; nothing was written\n";
        return kExitFailed;
    }
    std::cout << session::ApplyReportText(
        result, options.dryRun ? session::ApplyReport::DryRun : session::ApplyReport::Written,
        diff);
    return kExitOk;
}

const std::vector<CommandOption> kSharedOptions = {
    {"force", "", "write nodes that were changed in the database since the export"},
    {"create-missing", "", "create referenced nodes that do not exist from their type's template"}};
const std::vector<CommandArgument> kFile = {
    {"FILE", "a JSON document of dial-by-name nodes, as export writes it"}};
const std::vector<std::pair<int, std::string>> kExitCodes = {
    {kExitOk, "done: every node is listed with what changed"},
    {kExitFailed, "refused or failed: the problems are on standard error; nothing was written"}};

HostCommand ApplyCommand() {
    HostCommand command;
    command.name = "apply";
    command.summary =
        "write the nodes of a JSON document that differ from the stored ones, after "
        "checking them as a save does";
    command.options = kSharedOptions;
    command.options.insert(command.options.begin(),
                           {"dry-run", "", "check and compare only; write nothing"});
    command.arguments = kFile;
    command.exitCodes = kExitCodes;
    command.run = [](const CommandArgs& args) { return Run(args, false); };
    return command;
}

HostCommand DiffCommand() {
    HostCommand command;
    command.name = "diff";
    command.summary =
        "show field by field how a JSON document of nodes differs from the stored nodes";
    command.options = kSharedOptions;
    command.arguments = kFile;
    command.exitCodes = kExitCodes;
    command.run = [](const CommandArgs& args) { return Run(args, true); };
    return command;
}

const HostCommandRegistration kApply(ApplyCommand());
const HostCommandRegistration kDiff(DiffCommand());

}  // namespace
}  // namespace dbn::host
