#pragma once

#include <optional>
#include <string>
#include <vector>

namespace dbn::form {

// Chooses the mnemonic letters of one window's captions, each used once:
// for every caption (in priority order: a caption earlier in the list keeps
// its letter when two compete) a letter or digit of its own, preferring
// the first letter of a word, then the others in order. A caption left
// without one when the window's captions share too few letters gets
// std::nullopt. Letters are answered in lower case.
std::vector<std::optional<char>> ChooseMnemonics(const std::vector<std::string>& captions);

// The caption with its mnemonic marked for the toolkit: '&' before the
// first occurrence of the letter (either case), other '&' doubled. Without
// a letter, or when the caption lacks it, only the doubling.
std::string MarkMnemonic(const std::string& caption, std::optional<char> letter);

}  // namespace dbn::form
