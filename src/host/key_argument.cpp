#include "host/key_argument.h"

#include "host/host_command.h"

#include <charconv>

namespace dbn::host {

std::int16_t KeyArgument(const std::string& name, const std::string& text) {
    std::int16_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || stop != end) {
        throw UsageError(name + " must be a whole number from -32768 to 32767, not \"" + text +
                         "\"");
    }
    return value;
}

NodeArguments NodeKeyArguments(const CommandArgs& args) {
    const std::vector<std::string>& positionals = args.Positionals();
    return {KeyArgument("CONFIG", positionals[0]), KeyArgument("PARTITION", positionals[1]),
            KeyArgument("NODE", positionals[2])};
}

std::vector<CommandArgument> NodeKeyHelp(bool node) {
    std::vector<CommandArgument> help = {
        {"CONFIG", "configuration ID, a whole number from -32768 to 32767"},
        {"PARTITION", "partition ID, a whole number from -32768 to 32767"}};
    if (node) {
        help.push_back({"NODE", "node number, a whole number from -32768 to 32767"});
    }
    return help;
}

std::optional<long> CountOption(const CommandArgs& args, const std::string& option) {
    const std::optional<std::string> text = args.Value(option);
    if (!text) {
        return std::nullopt;
    }
    long value = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
    if (error != std::errc() || end != text->data() + text->size() || value < 1) {
        throw UsageError("--" + option + " N must be a whole number from 1 up, not \"" + *text +
                         "\"");
    }
    return value;
}

}  // namespace dbn::host
