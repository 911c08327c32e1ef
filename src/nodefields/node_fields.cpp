#include "nodefields/node_fields.h"

#include <algorithm>
#include <cctype>

namespace dbn::nodefields {

namespace {

using Names = std::vector<std::pair<int, std::string>>;

const Names kMethods = {{0, "Custom"}, {1, "Default Last Name"}};
const Names kLanguages = {{0, "None"}, {1, "English"}, {2, "French"}};
const Names kFirstModes = {
    {1, "Last Name"}, {2, "First Name"}, {3, "Both Names"}, {4, "Extension"}};
const Names kSecondModes = {{0, "None"}, {1, "Last Name"}, {2, "First Name"}};
// A flag's stored values as the editor's lists name them.
const Names kNoYes = {{0, "No"}, {1, "Yes"}};

// "/stages/0/minDigits" reads "stages[0].minDigits".
std::string PathOf(const std::string& pointer) {
    std::string path;
    std::size_t at = 1;
    while (at <= pointer.size()) {
        const std::size_t next = std::min(pointer.find('/', at), pointer.size());
        const std::string segment = pointer.substr(at, next - at);
        if (!segment.empty() && std::all_of(segment.begin(), segment.end(), ::isdigit)) {
            path += "[" + segment + "]";
        } else {
            path += (path.empty() ? "" : ".") + segment;
        }
        at = next + 1;
    }
    return path;
}

FieldRule Field(std::string pointer, FieldKind kind, std::string column, Names names = {}) {
    FieldRule rule;
    rule.path = PathOf(pointer);
    rule.pointer = std::move(pointer);
    rule.kind = kind;
    rule.column = std::move(column);
    rule.history = rule.column;
    rule.names = std::move(names);
    return rule;
}

FieldRule Whole(std::string pointer, std::string column, int low, int high) {
    FieldRule rule = Field(std::move(pointer), FieldKind::Whole, std::move(column));
    rule.low = low;
    rule.high = high;
    return rule;
}

FieldRule Target(std::string pointer, std::string role, TargetRole targets,
                 std::string history = {}) {
    FieldRule rule = Field(std::move(pointer), FieldKind::Target, std::move(role));
    rule.role = targets;
    if (!history.empty()) {
        rule.history = std::move(history);
    }
    return rule;
}

std::vector<FieldRule> MakeFields() {
    std::vector<FieldRule> fields = {
        Field("/label", FieldKind::Text, "NodeDescription"),
        Field("/method", FieldKind::Named, "Method", kMethods),
        Whole("/directory", "DirectoryNodeNumber", 1, 99),
        Field("/languages/first", FieldKind::Named, "FirstLanguage", kLanguages),
        Field("/languages/second", FieldKind::Named, "SecondLanguage", kLanguages),
        Target("/greeting", "Greeting", TargetRole::Prompt),
        Target("/actions/Valid Match", "ValidMatch", TargetRole::Instruction, "Valid Match"),
        Target("/actions/Abort", "Abort", TargetRole::Instruction),
        Target("/actions/Star", "Star", TargetRole::Instruction, "*"),
        Target("/actions/Pound", "Pound", TargetRole::Instruction, "#"),
        Target("/actions/Zero", "Zero", TargetRole::Instruction, "0"),
    };
    const char* stages[] = {"First", "Second"};
    for (int stage = 0; stage < 2; ++stage) {
        const std::string at = "/stages/" + std::to_string(stage) + "/";
        const std::string name = stages[stage];
        fields.push_back(Field(at + "mode", FieldKind::Named, name + "Mode",
                               stage == 0 ? kFirstModes : kSecondModes));
        fields.push_back(Whole(at + "minDigits", name + "MinDigits", 1, 9));
        fields.push_back(Whole(at + "maxDigits", name + "MaxDigits", 1, 9));
        fields.push_back(Target(at + "prompt", name + "Prompt", TargetRole::Prompt));
    }
    fields.push_back(Target("/timeout", "Timeout", TargetRole::Instruction));
    fields.push_back(Target("/invalid", "Invalid", TargetRole::Instruction));
    fields.push_back(Whole("/digitTimeout", "DigitTimeout", 1, 15));
    fields.push_back(Whole("/selectionTimeout", "SelectionTimeout", 1, 60));
    fields.push_back(Whole("/retryLimit", "RetryLimit", 1, 5));
    fields.push_back(Field("/confirmation/enabled", FieldKind::Flag, "Confirm", kNoYes));
    fields.push_back(Whole("/confirmation/maxMatches", "MaxMatch", 1, 9));
    fields.push_back(
        Target("/confirmation/beforeNames", "BeforePrompt", TargetRole::Prompt, "Before Names"));
    fields.push_back(
        Target("/confirmation/afterNames", "AfterPrompt", TargetRole::Prompt, "After Names"));
    FieldRule prompts = Field("/confirmation/prompts", FieldKind::Prompts, "");
    prompts.role = TargetRole::Prompt;
    fields.push_back(prompts);
    fields.push_back(Target("/confirmation/exitPrompt", "ConfirmationExit", TargetRole::Prompt));
    fields.push_back(Field("/playName", FieldKind::Flag, "PlayName", kNoYes));
    return fields;
}

}  // namespace

const std::vector<FieldRule>& Fields() {
    static const std::vector<FieldRule> fields = MakeFields();
    return fields;
}

const FieldRule* FieldOfColumn(std::string_view column) {
    for (const FieldRule& rule : Fields()) {
        if (rule.column == column) {
            return &rule;
        }
    }
    return nullptr;
}

std::size_t CharacterCount(std::string_view text) {
    // Every byte but a UTF-8 continuation byte begins a character.
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

std::optional<std::string> LengthRefusal(std::string_view text, std::size_t longest) {
    const std::size_t length = CharacterCount(text);
    if (length <= longest) {
        return std::nullopt;
    }
    return "is " + std::to_string(length) + " characters long; at most " + std::to_string(longest) +
           " are allowed";
}

std::string NameList(const FieldRule& rule) {
    std::string allowed;
    for (const auto& entry : rule.names) {
        allowed += (allowed.empty() ? "\"" : ", \"") + entry.second + "\"";
    }
    return allowed;
}

std::optional<std::string> Refusal(const FieldRule& rule, std::optional<std::int64_t> number,
                                   std::string_view text) {
    switch (rule.kind) {
        case FieldKind::Text:
            return LengthRefusal(text, kLongestLabel);
        case FieldKind::Whole:
            if (!number || *number < rule.low || *number > rule.high) {
                return (number ? std::to_string(*number) : std::string("null")) + " is outside " +
                       std::to_string(rule.low) + " to " + std::to_string(rule.high);
            }
            return std::nullopt;
        case FieldKind::Named:
            if (!number ||
                std::none_of(rule.names.begin(), rule.names.end(),
                             [&](const auto& entry) { return entry.first == *number; })) {
                return "must be one of " + NameList(rule);
            }
            return std::nullopt;
        case FieldKind::Flag:
            if (!number || (*number != 0 && *number != 1)) {
                return std::string("must be true or false");
            }
            return std::nullopt;
        case FieldKind::Target:
        case FieldKind::Prompts:
            return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace dbn::nodefields
