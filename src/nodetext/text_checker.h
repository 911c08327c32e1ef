#pragma once
// The first pass over a node file's text, before any value is built.

#include "nodetext/text_form.h"

#include <optional>
#include <string_view>

namespace dbn::nodetext {

// Malformed JSON and numbers beyond the range of numbers named by line and
// column, nesting deeper than a node file has and a key given twice in one
// object named by their JSON path; the first problem found, or nothing.
std::optional<Problem> CheckText(std::string_view text);

}  // namespace dbn::nodetext
