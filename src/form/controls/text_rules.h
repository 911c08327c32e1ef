#pragma once

#include <string>
#include <string_view>

namespace dbn::form {

// Whole-text equality ignoring the case of ASCII letters.
bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept;

// Number of characters in a UTF-8 text (continuation bytes are not counted).
int CharacterCount(std::string_view text) noexcept;

// The first count characters of a UTF-8 text (all of it when shorter).
std::string FirstCharacters(std::string_view text, int count);

}  // namespace dbn::form
