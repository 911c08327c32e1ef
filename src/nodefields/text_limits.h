#pragma once
// Limits of a node's text form that the reader checks and the schema states.

#include <cstddef>

namespace dbn::nodefields {

// A reference's longest type code.
inline constexpr std::size_t kLongestTypeCode = 16;
// The most confirmation prompts a node holds.
inline constexpr std::size_t kMostPrompts = 99;

}  // namespace dbn::nodefields
