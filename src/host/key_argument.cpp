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

}  // namespace dbn::host
