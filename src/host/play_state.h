#pragma once

// The lines `show` and `entries` print. Texts are written as they are, quotes
// and backslashes included: the lines are for reading and comparing, not for
// parsing back.

#include <optional>
#include <string>
#include <vector>

namespace dbn::form {
class Control;
class GUI;
}  // namespace dbn::form

namespace dbn::host {

// The state of a control, one or more lines; std::nullopt for a kind that has
// no state to show (plain and image lists).
std::optional<std::vector<std::string>> DescribeControl(const form::Control& control);

// The form's own line.
std::string DescribeForm(const form::GUI& form);

// A list's entries on one line; std::nullopt for a control without entries.
std::optional<std::string> DescribeEntries(const form::Control& control);

}  // namespace dbn::host
