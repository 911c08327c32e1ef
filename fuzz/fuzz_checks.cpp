#include "fuzz_checks.h"

#include "database/sql_translation.h"
#include "form/gui.h"
#include "host/play_script.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <memory>

namespace dbn::fuzz {
namespace {

// Services for a form nobody sees: every box is noted, every question is
// answered "Cancel".
class SilentServices : public form::FormServices {
public:
    std::string errors;

    int MsgBox(const std::string& text, form::MsgBoxButtons, form::MsgBoxIcon,
               const std::string& title) override {
        if (title == "Error") {
            errors += text + "\n";
        }
        return form::kAnswerCancel;
    }
    long Confirm(const std::string&, const std::string&) override { return form::kConfirmCancel; }
    void SetBusyCursor(bool) override {}
    void DoEvents() override {}
    void ShowModal(form::GUI&) override {}
    void EndModal(form::GUI&) override {}
};

bool IsCanonicalNumber(const std::string& text) {
    return !text.empty() && text.size() <= 6 && std::all_of(text.begin(), text.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c));
    }) && (text == "0" || text[0] != '0');
}

std::string Quoted(const std::string& word) {
    std::string quoted = "\"";
    for (const char c : word) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + "\"";
}

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return upper;
}

bool HasParameterName(std::string_view text) {
    return UpperCase(text).find("GIVEN_") != std::string::npos;
}

}  // namespace

std::string CheckNumberClamp(std::string_view input) {
    // One form for every input: building one is far dearer than a check.
    static SilentServices services;
    static std::unique_ptr<form::GUI> gui = std::make_unique<form::GUI>(services);
    form::ListControl& list = gui->cmbGreetingNumber;

    const auto byte = [&](std::size_t i) {
        return i < input.size() ? static_cast<unsigned char>(input[i]) : 0u;
    };
    const auto mode = static_cast<dbn::form::NumberChangeMode>(byte(0) % 3);
    const bool visible = (byte(0) & 0x80) == 0;
    const int first = static_cast<int>(byte(1) % 4);
    const int count = static_cast<int>((byte(2) << 8 | byte(3)) % 1001);
    const std::string text(input.substr(std::min<std::size_t>(4, input.size())));

    list.Change = nullptr;  // the check calls the handler itself
    list.Clear();
    for (int n = first; n < first + count; ++n) {
        list.AddItem(std::to_string(n));
    }
    list.SetVisible(visible);
    list.SetText(text);
    gui->cmdApply.SetEnabled(false);
    services.errors.clear();

    gui->GenericNumber_Change(list, mode);
    const std::string clamped = list.Text();
    if (!services.errors.empty()) {
        return "error box: " + services.errors;
    }
    if (!gui->cmdApply.Enabled()) {
        return "Apply was not enabled";
    }
    if (!visible) {
        return clamped == list.Text() ? "" : "a hidden list was changed";
    }
    if (!IsCanonicalNumber(clamped)) {
        return "the text \"" + clamped + "\" is no number";
    }
    const int value = std::stoi(clamped);
    const int last = count == 0 ? 0 : first + count - 1;
    const int low = count == 0 ? 0 : first;
    if (value < low || value > last) {
        return clamped + " lies outside " + std::to_string(low) + ".." + std::to_string(last);
    }
    if (list.SelStart() != static_cast<int>(clamped.size())) {
        return "the caret is not after the number";
    }
    gui->GenericNumber_Change(list, mode);
    if (list.Text() != clamped) {
        return "clamping " + clamped + " again gave " + list.Text();
    }
    return "";
}

std::string CheckSqlTranslation(std::string_view input) {
    const TranslatedStatement once = TranslateToSqlite(input);
    const TranslatedStatement twice = TranslateToSqlite(input);
    if (once.sql != twice.sql || once.parameters != twice.parameters) {
        return "two translations of one text differ";
    }
    for (std::size_t i = 0; i < once.parameters.size(); ++i) {
        const std::string& name = once.parameters[i];
        if (UpperCase(name).rfind("GIVEN_", 0) != 0 || name.find('`') != std::string::npos) {
            return "\"" + name + "\" is no parameter name";
        }
        for (std::size_t j = 0; j < i; ++j) {
            if (UpperCase(once.parameters[j]) == UpperCase(name)) {
                return "the parameter " + name + " is listed twice";
            }
        }
    }
    const bool plain =
        input.find_first_of("'`") == std::string_view::npos && !HasParameterName(input);
    if (plain && once.sql != input) {
        return "a text without quotes or parameters was changed";
    }
    if (plain && !once.parameters.empty()) {
        return "a text without parameter names has parameters";
    }
    // The server's form finds the same parameters in the same order.
    if (TranslateToPostgres(input).parameters != once.parameters) {
        return "the server's translation numbers other parameters";
    }
    return "";
}

std::string CheckScriptLine(std::string_view input) {
    try {
        const host::ParsedLine parsed = host::ParseLine(input);
        if (parsed.action && !parsed.error.empty()) {
            return "a line is both an action and an error";
        }
        if (parsed.action) {
            const host::Action& action = *parsed.action;
            const std::size_t numbers = action.verb == host::Verb::Open     ? 3
                                        : action.verb == host::Verb::Answer ? 1
                                                                            : 0;
            if (action.numbers.size() != numbers) {
                return "the action carries " + std::to_string(action.numbers.size()) + " numbers";
            }
            // Only answers some box can give are queued.
            if (action.verb == host::Verb::Answer && !host::IsAnswerCode(action.numbers[0])) {
                return "the answer " + std::to_string(action.numbers[0]) + " was taken";
            }
        }
        // Every word, quoted and escaped, splits back into itself.
        std::string why;
        const auto words = host::SplitWords(input, why);
        if (!words) {
            return why.empty() ? "a line was refused without a reason" : "";
        }
        std::string joined;
        for (const std::string& word : *words) {
            joined += (joined.empty() ? "" : " ") + Quoted(word);
        }
        const auto again = host::SplitWords(joined, why);
        if (!again || *again != *words) {
            return "quoting the words and splitting them again changed them";
        }
    } catch (const std::exception& error) {
        return std::string("parsing threw: ") + error.what();
    }
    return "";
}

std::string RunFuzzCheck(std::string_view target, std::string_view input) {
    if (target == kNumberClampTarget) {
        return CheckNumberClamp(input);
    }
    if (target == kSqlTranslationTarget) {
        return CheckSqlTranslation(input);
    }
    if (target == kScriptLineTarget) {
        return CheckScriptLine(input);
    }
    return "no check is named " + std::string(target);
}

}  // namespace dbn::fuzz
