#pragma once

// Checks that run one arbitrary input through a public operation and say
// what went wrong, or nothing. The fuzz targets here feed them generated
// inputs; the reliability tests replay the kept corpus, so that every input
// a fuzzer ever broke the code with stays a regression test.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace dbn::fuzz {

// The fuzz targets by name, each the folder of its corpus under fuzz/corpus/.
inline constexpr const char* kNumberClampTarget = "number_clamp";
inline constexpr const char* kSqlTranslationTarget = "sql_translation";
inline constexpr const char* kScriptLineTarget = "script_line";

// Typing into a number list: the first bytes choose the handler's mode, the
// list's visibility and its entries, the rest is the typed text. The text
// must end as a number between the first and the last entry, and clamping it
// again must change nothing.
std::string CheckNumberClamp(std::string_view input);

// Translating a statement: the same text gives the same result, every
// parameter is a distinct Given_ name, and a text without quotes, grave
// accents or parameter names comes back unchanged.
std::string CheckSqlTranslation(std::string_view input);

// Parsing a play-script line never throws and gives an action, an error or
// nothing; an answer is one of the codes a box can return; the words of the
// line, quoted and joined again, split back into the same words.
std::string CheckScriptLine(std::string_view input);

// Runs the check of a target by name; an unknown name is itself a failure.
std::string RunFuzzCheck(std::string_view target, std::string_view input);

}  // namespace dbn::fuzz
