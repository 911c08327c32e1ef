#include "host/play_script.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <limits>

namespace dbn::host {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

struct VerbInfo {
    std::string_view word;
    Verb verb;
    std::string_view usage;  // the operands, for the error text
    int minOperands;
    int maxOperands;  // -1: no limit
};

constexpr std::array<VerbInfo, 13> kVerbs{{
    {"open", Verb::Open, "CONFIG PARTITION NODE", 3, 3},
    {"answer", Verb::Answer, "CODE", 1, 1},
    {"pick", Verb::Pick, "CONTROL TEXT", 2, 2},
    {"type", Verb::Type, "CONTROL TEXT", 2, 2},
    {"click", Verb::Click, "CONTROL", 1, 1},
    {"row", Verb::Row, "LISTVIEW KEY", 2, 2},
    {"focus", Verb::Focus, "CONTROL", 1, 1},
    {"header", Verb::Header, "LISTVIEW", 1, 1},
    {"scroll", Verb::Scroll, "LISTVIEW", 1, 1},
    {"close", Verb::Close, "", 0, 0},
    {"show", Verb::Show, "NAME...", 1, -1},
    {"entries", Verb::Entries, "LIST", 1, 1},
    {"simulate", Verb::Simulate, "KEYS...", 1, -1},
}};

const VerbInfo* FindVerb(std::string_view word) {
    for (const VerbInfo& info : kVerbs) {
        if (info.word == word) {
            return &info;
        }
    }
    return nullptr;
}

// Reads a whole word as a decimal integer within [low, high].
std::optional<long> ReadNumber(const std::string& word, long low, long high, std::string& why) {
    long value = 0;
    const char* end = word.data() + word.size();
    auto [last, status] = std::from_chars(word.data(), end, value);
    if (word.empty() || status == std::errc::invalid_argument || last != end) {
        why = "\"" + word + "\" is not a number";
        return std::nullopt;
    }
    if (status == std::errc::result_out_of_range || value < low || value > high) {
        why = "\"" + word + "\" is out of range";
        return std::nullopt;
    }
    return value;
}

ParsedLine Invalid(std::string why) {
    ParsedLine parsed;
    parsed.error = std::move(why);
    return parsed;
}

}  // namespace

std::optional<std::vector<std::string>> SplitWords(std::string_view line, std::string& why) {
    std::vector<std::string> words;
    std::size_t i = 0;
    while (true) {
        while (i < line.size() && IsBlank(line[i])) {
            ++i;
        }
        if (i == line.size()) {
            return words;
        }
        std::string word;
        bool quoted = false;
        for (; i < line.size() && (quoted || !IsBlank(line[i])); ++i) {
            const char c = line[i];
            if (c == '"') {
                quoted = !quoted;
            } else if (quoted && c == '\\' && i + 1 < line.size() &&
                       (line[i + 1] == '"' || line[i + 1] == '\\')) {
                word += line[++i];
            } else {
                // Any other backslash stands for itself.
                word += c;
            }
        }
        if (quoted) {
            why = "unclosed quote";
            return std::nullopt;
        }
        words.push_back(std::move(word));
    }
}

bool IsAnswerCode(long code) {
    return code >= 1 && code <= 7;
}

ParsedLine ParseLine(std::string_view line) {
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos || line[first] == '#') {
        return {};
    }
    std::string why;
    std::optional<std::vector<std::string>> words = SplitWords(line, why);
    if (!words) {
        return Invalid(why);
    }
    const VerbInfo* info = FindVerb((*words)[0]);
    if (info == nullptr) {
        return Invalid("unknown action \"" + (*words)[0] + "\"");
    }
    Action action;
    action.verb = info->verb;
    action.operands.assign(words->begin() + 1, words->end());
    const int count = static_cast<int>(action.operands.size());
    if (count < info->minOperands || (info->maxOperands >= 0 && count > info->maxOperands)) {
        std::string usage = std::string(info->word);
        if (!info->usage.empty()) {
            usage += " " + std::string(info->usage);
        }
        return Invalid("usage: " + usage);
    }
    if (action.verb == Verb::Open) {
        for (const std::string& word : action.operands) {
            std::optional<long> number = ReadNumber(word, std::numeric_limits<std::int16_t>::min(),
                                                    std::numeric_limits<std::int16_t>::max(), why);
            if (!number) {
                return Invalid(why);
            }
            action.numbers.push_back(*number);
        }
    } else if (action.verb == Verb::Answer) {
        std::optional<long> code =
            ReadNumber(action.operands[0], std::numeric_limits<std::int32_t>::min(),
                       std::numeric_limits<std::int32_t>::max(), why);
        if (!code) {
            return Invalid(why);
        }
        // Only codes that some box or the confirmation dialog can return.
        if (!IsAnswerCode(*code)) {
            return Invalid("answer takes 1, 2, 3, 4, 5, 6 or 7, not " + action.operands[0]);
        }
        action.numbers.push_back(*code);
    }
    ParsedLine parsed;
    parsed.action = std::move(action);
    return parsed;
}

}  // namespace dbn::host
