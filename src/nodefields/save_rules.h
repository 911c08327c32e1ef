#pragma once
// The rules a save of a dial-by-name node checks across fields, with their
// messages: the editor's save and apply both ask them, so that a refusal
// reads the same on either path.

#include <cstdint>
#include <string>
#include <vector>

namespace dbn::nodefields {

inline constexpr const char* kLabelRefused =
    "Double quotes and continuous single quotes are not allowed in the Label field";
inline constexpr const char* kNoLanguage = "Please select a language in Language 1";
inline constexpr const char* kSameMatch =
    "Second Match must be different from the First Match.  Please select another option in "
    "Second Match.";
inline constexpr const char* kMinAboveMax =
    "Min Digits value must be less than or equal to Max Digits value.";

// The stored values the search rules read.
struct SearchSettings {
    std::int64_t method = 0;
    std::int64_t firstLanguage = 0;
    std::int64_t secondLanguage = 0;
    std::int64_t firstMode = 0;
    std::int64_t secondMode = 0;
    std::int64_t firstMinDigits = 0;
    std::int64_t firstMaxDigits = 0;
    std::int64_t secondMinDigits = 0;
    std::int64_t secondMaxDigits = 0;
};

// A broken rule: the field it names (as the text form's path), its message
// and the fields it reads (a rule is checked when one of them changed).
struct RuleRefusal {
    std::string path;
    std::string message;
    std::vector<std::string> reads;
};

// The broken search rules, in the order the editor asks them (it shows the
// first). The languages are read as the save leaves them.
std::vector<RuleRefusal> SearchRefusals(const SearchSettings& settings);

}  // namespace dbn::nodefields
