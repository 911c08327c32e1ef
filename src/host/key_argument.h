#pragma once

#include "host/host_command.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dbn::host {

// A configuration, partition or node number given on the command line: a
// whole number from -32768 to 32767. Anything else throws UsageError naming
// the argument: NODE must be a whole number from -32768 to 32767, not "70000".
std::int16_t KeyArgument(const std::string& name, const std::string& text);

// A node named by the arguments CONFIG PARTITION NODE, the first three.
struct NodeArguments {
    std::int16_t config = 0;
    std::int16_t partition = 0;
    std::int16_t node = 0;
};
NodeArguments NodeKeyArguments(const CommandArgs& args);

// The help of CONFIG and PARTITION, and of NODE when `node`.
std::vector<CommandArgument> NodeKeyHelp(bool node = true);

// The value of an option such as --limit N, when given: a whole number from 1
// up. Anything else throws UsageError: --limit N must be a whole number from 1
// up, not "0".
std::optional<long> CountOption(const CommandArgs& args, const std::string& option);

}  // namespace dbn::host
