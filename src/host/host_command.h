#pragma once
// The program's command framework. Each command declares, in its own file,
// its name, a one-line summary, its own options and its positional
// arguments, and registers itself with a static HostCommandRegistration:
//
//   HostCommand WhereCommand() {
//       HostCommand command;
//       command.name = "where";
//       command.summary = "print the path of the configuration database";
//       command.run = RunWhere;  // int RunWhere(const CommandArgs&)
//       return command;
//   }
//   const HostCommandRegistration kWhere(WhereCommand());
//
// The options every command takes (CommonOptions(): --data-root) are
// declared once and applied before a command runs; --help is answered by the
// framework. Arguments are parsed with QCommandLineParser; a command reports
// a wrong argument by throwing UsageError, which prints
// "dbn-node-editor: MESSAGE" and exits with kExitUsage.

#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace dbn::host {

// Exit statuses shared by every command.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

// An option: "--NAME VALUE" when valueName is set, else a flag "--NAME".
struct CommandOption {
    std::string name;
    std::string valueName;
    std::string description;  // one line
};

// A positional argument; required unless optional (optional ones come last).
struct CommandArgument {
    std::string name;
    std::string description;  // one line
    bool optional = false;
};

// What a command was given: option values and positional arguments.
class CommandArgs {
public:
    CommandArgs(std::map<std::string, std::string> values, std::vector<std::string> flags,
                std::vector<std::string> positionals);

    bool IsSet(const std::string& option) const;
    std::optional<std::string> Value(const std::string& option) const;
    const std::vector<std::string>& Positionals() const noexcept { return positionals_; }

private:
    std::map<std::string, std::string> values_;
    std::vector<std::string> flags_;
    std::vector<std::string> positionals_;
};

struct HostCommand {
    std::string name;
    std::string summary;  // one line, starting in lower case
    std::vector<CommandOption> options;
    std::vector<CommandArgument> arguments;
    // Further optional arguments after the declared ones ("NODE..."); none
    // are taken when empty.
    std::string moreArguments;
    // Exit statuses beyond the shared ones, or replacing their meaning.
    std::vector<std::pair<int, std::string>> exitCodes;
    std::function<int(const CommandArgs&)> run;
};

// A wrong argument, named in the message ("NODE must be ...").
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct HostCommandRegistration {
    explicit HostCommandRegistration(HostCommand command);
};

const std::vector<HostCommand>& HostCommands();

// The options every command takes, declared once.
const std::vector<CommandOption>& CommonOptions();

// The one-line usage of a command, common options included.
std::string UsageLine(const HostCommand& command);

// Runs the program on its arguments (without the program name); answers the
// exit status. No command runs "browse".
int RunProgram(const std::vector<std::string>& args);

}  // namespace dbn::host
