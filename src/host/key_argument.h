#pragma once

#include <cstdint>
#include <string>

namespace dbn::host {

// A configuration, partition or node number given on the command line: a
// whole number from -32768 to 32767. Anything else throws UsageError naming
// the argument: NODE must be a whole number from -32768 to 32767, not "70000".
std::int16_t KeyArgument(const std::string& name, const std::string& text);

}  // namespace dbn::host
