// The command framework: the registry of commands, parsing each command's
// arguments with QCommandLineParser, --help, --version and the exit codes.
#include "database/data_location.h"
#include "database/database_target.h"
#include "database/temporary_files.h"
#include "host/host_command.h"
#include "session/nodes/node_history.h"

#include <QCommandLineParser>
#include <QStringList>

#include <algorithm>
#include <iostream>
#include <regex>

namespace dbn::host {
namespace {

constexpr const char* kProgram = "dbn-node-editor";
constexpr const char* kDefaultCommand = "browse";
// QCommandLineParser reads "-5" as an option; whole negative numbers are
// hidden behind this mark while parsing, so that "edit 1 2 -5" works.
const QString kNegativeMark = QStringLiteral("\x01");

std::vector<HostCommand>& Registry() {
    static std::vector<HostCommand> commands;
    return commands;
}

const HostCommand* FindCommand(const std::string& name) {
    for (const HostCommand& command : Registry()) {
        if (command.name == name) {
            return &command;
        }
    }
    return nullptr;
}

std::vector<CommandOption> AllOptions(const HostCommand& command) {
    std::vector<CommandOption> options = CommonOptions();
    options.insert(options.end(), command.options.begin(), command.options.end());
    return options;
}

std::string OptionText(const CommandOption& option) {
    return "--" + option.name + (option.valueName.empty() ? "" : " " + option.valueName);
}

void PrintColumns(std::ostream& out, const std::vector<std::pair<std::string, std::string>>& rows) {
    std::size_t width = 0;
    for (const auto& row : rows) {
        width = std::max(width, row.first.size());
    }
    for (const auto& [left, right] : rows) {
        out << "  " << left << std::string(width - left.size() + 2, ' ') << right << "\n";
    }
}

std::vector<std::pair<std::string, std::string>> SharedExitCodes() {
    return {{"0", "done"},
            {"1", "failed: the reason is on standard error"},
            {"2", "wrong arguments: the wrong one is named on standard error"}};
}

void PrintExitCodes(std::ostream& out, const std::vector<std::pair<int, std::string>>& own) {
    std::vector<std::pair<std::string, std::string>> rows = SharedExitCodes();
    for (const auto& [code, meaning] : own) {
        const std::string text = std::to_string(code);
        auto same = std::find_if(rows.begin(), rows.end(),
                                 [&](const auto& row) { return row.first == text; });
        if (same != rows.end()) {
            same->second = meaning;
        } else {
            rows.emplace_back(text, meaning);
        }
    }
    out << "exit codes:\n";
    PrintColumns(out, rows);
}

void PrintProgramHelp(std::ostream& out) {
    out << "usage: " << kProgram << " [COMMAND] [OPTIONS] [ARGUMENTS]\n"
        << "Edits the dial-by-name nodes of a call-flow configuration database.\n"
        << "Without a command it opens the node list (browse).\n\ncommands:\n";
    std::vector<std::pair<std::string, std::string>> rows;
    for (const HostCommand& command : Registry()) {
        rows.emplace_back(command.name, command.summary);
    }
    PrintColumns(out, rows);
    out << "\noptions:\n";
    PrintColumns(out, {{"--help", "show this help; COMMAND --help shows a command's help"},
                       {"--version", "print the program's name and version"}});
    out << "\n";
    PrintExitCodes(out, {});
}

void PrintCommandHelp(std::ostream& out, const HostCommand& command) {
    out << "usage: " << UsageLine(command) << "\n" << command.summary << "\n";
    if (!command.arguments.empty()) {
        out << "\narguments:\n";
        std::vector<std::pair<std::string, std::string>> rows;
        for (const CommandArgument& argument : command.arguments) {
            rows.emplace_back(argument.name, argument.description);
        }
        PrintColumns(out, rows);
    }
    out << "\noptions:\n";
    std::vector<std::pair<std::string, std::string>> rows;
    for (const CommandOption& option : AllOptions(command)) {
        rows.emplace_back(OptionText(option), option.description);
    }
    rows.emplace_back("--help", "show this help");
    PrintColumns(out, rows);
    out << "\n";
    PrintExitCodes(out, command.exitCodes);
}

QString Hidden(const std::string& arg) {
    static const std::regex negative("-[0-9]+");
    QString text = QString::fromStdString(arg);
    return std::regex_match(arg, negative) ? kNegativeMark + text : text;
}

std::string Shown(QString text) {
    if (text.startsWith(kNegativeMark)) {
        text.remove(0, kNegativeMark.size());
    }
    return text.toStdString();
}

// Parses a command's arguments; throws UsageError for a wrong one.
CommandArgs Parse(const HostCommand& command, const std::vector<std::string>& args,
                  bool& helpWanted) {
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const std::vector<CommandOption> options = AllOptions(command);
    for (const CommandOption& option : options) {
        parser.addOption(QCommandLineOption(QString::fromStdString(option.name),
                                            QString::fromStdString(option.description),
                                            QString::fromStdString(option.valueName)));
    }
    parser.addOption(QCommandLineOption(QStringList{QStringLiteral("h"), QStringLiteral("help")}));

    QStringList list{QString::fromLatin1(kProgram)};
    for (const std::string& arg : args) {
        list << Hidden(arg);
    }
    if (!parser.parse(list)) {
        throw UsageError(parser.errorText().toStdString());
    }
    helpWanted = parser.isSet(QStringLiteral("help"));

    std::map<std::string, std::string> values;
    std::vector<std::string> flags;
    for (const CommandOption& option : options) {
        const QString name = QString::fromStdString(option.name);
        if (!parser.isSet(name)) {
            continue;
        }
        if (option.valueName.empty()) {
            flags.push_back(option.name);
        } else {
            values[option.name] = Shown(parser.value(name));
        }
    }
    std::vector<std::string> positionals;
    for (const QString& positional : parser.positionalArguments()) {
        positionals.push_back(Shown(positional));
    }
    const auto required = static_cast<std::size_t>(
        std::count_if(command.arguments.begin(), command.arguments.end(),
                      [](const CommandArgument& argument) { return !argument.optional; }));
    const bool countFits =
        positionals.size() >= required &&
        (!command.moreArguments.empty() || positionals.size() <= command.arguments.size());
    if (!helpWanted && !countFits) {
        std::string names;
        for (const CommandArgument& argument : command.arguments) {
            names += (names.empty() ? "" : " ") + argument.name;
        }
        throw UsageError(command.arguments.empty()
                             ? command.name + " takes no arguments, not \"" + positionals.front() +
                                   "\""
                             : command.name + " needs " + names + "; usage: " + UsageLine(command));
    }
    return CommandArgs(std::move(values), std::move(flags), std::move(positionals));
}

// Applies the common options before the command runs.
void ApplyCommonOptions(const CommandArgs& args) {
    if (std::optional<std::string> root = args.Value("data-root")) {
        if (root->empty()) {
            throw UsageError("--data-root DIR must name a folder");
        }
        SetDataRootOverride(*root);
    }
    if (std::optional<std::string> target = args.Value("database")) {
        if (target->empty()) {
            throw UsageError("--database TARGET must name a server or an SQLite file");
        }
        SetDatabaseOverride(*target);
        // The command line is visible to every user of the machine.
        if (HasPassword(ParseDatabaseTarget(*target))) {
            std::cerr << "dbn-node-editor: warning: the password given in --database can be read "
                         "by other users of this machine in the process list; keep it in "
                         "~/.pgpass or PGPASSWORD instead.\n";
        }
    }
}

}  // namespace

CommandArgs::CommandArgs(std::map<std::string, std::string> values, std::vector<std::string> flags,
                         std::vector<std::string> positionals)
    : values_(std::move(values)), flags_(std::move(flags)), positionals_(std::move(positionals)) {}

bool CommandArgs::IsSet(const std::string& option) const {
    return values_.count(option) > 0 ||
           std::find(flags_.begin(), flags_.end(), option) != flags_.end();
}

std::optional<std::string> CommandArgs::Value(const std::string& option) const {
    auto found = values_.find(option);
    if (found == values_.end()) {
        return std::nullopt;
    }
    return found->second;
}

HostCommandRegistration::HostCommandRegistration(HostCommand command) {
    Registry().push_back(std::move(command));
}

const std::vector<HostCommand>& HostCommands() {
    return Registry();
}

const std::vector<CommandOption>& CommonOptions() {
    static const std::vector<CommandOption> options = {
        {"data-root", "DIR",
         "use DIR instead of the machine's application-data folder for this run"},
        {"database", "TARGET",
         "use TARGET, a PostgreSQL connection URI or key/value string or the path of an "
         "SQLite file, as the configuration database (overrides $DBN_DATABASE)"},
    };
    return options;
}

std::string UsageLine(const HostCommand& command) {
    std::string line = std::string(kProgram) + " " + command.name;
    for (const CommandOption& option : AllOptions(command)) {
        line += " [" + OptionText(option) + "]";
    }
    for (const CommandArgument& argument : command.arguments) {
        line += argument.optional ? " [" + argument.name + "]" : " " + argument.name;
    }
    if (!command.moreArguments.empty()) {
        line += " [" + command.moreArguments + "]";
    }
    return line;
}

int RunProgram(const std::vector<std::string>& args) {
    if (!args.empty() && (args[0] == "--help" || args[0] == "-h")) {
        PrintProgramHelp(std::cout);
        return kExitOk;
    }
    if (!args.empty() && args[0] == "--version") {
        std::cout << kProgram << " " << DBN_VERSION << "\n";
        return kExitOk;
    }
    session::SetHistoryProgram(std::string(kProgram) + " " + DBN_VERSION);
    std::vector<std::string> rest = args;
    std::string name = kDefaultCommand;
    if (!rest.empty() && !rest[0].starts_with("-")) {
        name = rest[0];
        rest.erase(rest.begin());
    }
    const HostCommand* command = FindCommand(name);
    if (command == nullptr) {
        std::cerr << kProgram << ": unknown command \"" << name << "\"; see " << kProgram
                  << " --help\n";
        return kExitUsage;
    }
    try {
        bool helpWanted = false;
        const CommandArgs parsed = Parse(*command, rest, helpWanted);
        if (helpWanted) {
            PrintCommandHelp(std::cout, *command);
            return kExitOk;
        }
        ApplyCommonOptions(parsed);
        SetDatabaseNoticeHandler(
            [](const std::string& text) { std::cerr << kProgram << ": " << text << "\n"; });
        return command->run(parsed);
    } catch (const UsageError& error) {
        std::cerr << kProgram << ": " << error.what() << "\n";
        return kExitUsage;
    }
}

}  // namespace dbn::host
