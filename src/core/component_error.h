#pragma once

#include <stdexcept>
#include <string>

namespace dbn {

// The source text that errors raised by the component itself carry.
inline constexpr const char* kComponentSource = "CVL_DBN_Node";

// An error as the component reports it: a number, the source that raised it
// and a description. Every layer raises this type, so that the error traps of
// the operations can show any failure in one format.
class ComponentError : public std::runtime_error {
public:
    ComponentError(long number, std::string source, std::string description);

    long Number() const noexcept { return number_; }
    const std::string& Source() const noexcept { return source_; }
    const std::string& Description() const noexcept { return description_; }

private:
    long number_;
    std::string source_;
    std::string description_;
};

// Raises an error of the component's own source.
[[noreturn]] void RaiseError(long number, std::string description);

// The errors the component raises in several places, by what went wrong.
// Error 91: an object (a collection, a selected row) is not there.
[[noreturn]] void RaiseObjectNotSet();
// Error 13: a text that should read as a number does not.
[[noreturn]] void RaiseTypeMismatch();
// Error 6: a number does not fit its type.
[[noreturn]] void RaiseOverflow();

}  // namespace dbn
