// Operations several handlers share: clamping a typed number, ending the
// lists' edit modes, the save question, emptying a list view, the two
// availability tests of node types and the check of the search settings.

#include "form/gui.h"

#include "core/component_factory.h"
#include "core/text_validator.h"
#include "form/controls/text_rules.h"
#include "form/list_rows.h"
#include "nodefields/node_fields.h"
#include "nodefields/save_rules.h"

#include <cctype>
#include <cstdint>
#include <string>
#include <vector>

namespace dbn::form {

namespace {

constexpr const char* kSaveQuestion = "Do you want to save changes?";
using nodefields::kLabelRefused;

constexpr std::int32_t kMethodDefaultLastName = 1;
constexpr std::int32_t kNoLanguageTag = 0;

bool IsDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// The leading number of a text (blanks skipped, an optional sign), 0 when it
// starts with none: how an entry of a number list is read.
long long LeadingNumber(const std::string& text) {
    std::size_t at = text.find_first_not_of(" \t");
    if (at == std::string::npos) {
        return 0;
    }
    const bool negative = text[at] == '-';
    if (text[at] == '+' || text[at] == '-') {
        ++at;
    }
    long long value = 0;
    for (; at < text.size() && IsDigit(text[at]) && value < 1'000'000'000LL; ++at) {
        value = value * 10 + (text[at] - '0');
    }
    return negative ? -value : value;
}

// An entry of a list read by its leading number; an entry that is not there,
// or that starts with no number, reads as 0. Never raises.
long long EntryNumberOrZero(const ListControl& list, int index) {
    return index >= 0 && index < list.ListCount() ? LeadingNumber(list.List(index)) : 0;
}

std::string UpperCase(std::string text) {
    for (char& c : text) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return text;
}

// The tag of the selected entry (error 381 when nothing is selected).
std::int32_t SelectedTag(const ListControl& list) {
    return list.ItemData(list.ListIndex());
}

}  // namespace

void GUI::GenericNumber_Change(ListControl& list, NumberChangeMode mode) {
    RunTrapped("GenericNumber_Change", [&] {
        EnableApply();
        if (!list.Visible()) {
            return;
        }
        const long long first = EntryNumberOrZero(list, 0);
        const long long last = EntryNumberOrZero(list, list.ListCount() - 1);
        long long value = 0;
        for (const char c : list.Text()) {
            if (!IsDigit(c)) {
                break;
            }
            const int digit = c - '0';
            value = value * 10 + digit;
            if (value > last || value < first) {
                value = (value - digit) / 10;
                break;
            }
        }
        if (value == 0) {
            value = first;
        }
        const std::string text = std::to_string(value);
        list.SetText(text);
        list.SetSelStart(CharacterCount(text));
        if (mode == NumberChangeMode::ActionsRow) {
            GenericActionsSectionNodeNumber_Click(list);
        } else if (mode == NumberChangeMode::ConfirmationRow) {
            cmbConfirmNumber_Click();
        }
    });
}

void GUI::LeaveEditModes(bool endActions, bool endConfirmation) {
    if (endActions && actionsList_.EditMode()) {
        cmdActionsEdit_Click();
    }
    if (endConfirmation && confirmationList_.EditMode()) {
        cmdConfirmEdit_Click();
    }
}

std::int16_t GUI::AskToSaveChanges() {
    if (!cmdApply.Enabled()) {
        return kAnswerNo;
    }
    auto answer = static_cast<std::int16_t>(services_.MsgBox(
        kSaveQuestion, MsgBoxButtons::YesNoCancel, MsgBoxIcon::Question, "Confirmation"));
    if (answer != kAnswerYes) {
        return answer;
    }
    // The same checks and save as Apply: a refusal, or a save that did not
    // commit, leaves the node dirty and the caller where it is.
    if (formBusinessRules_ == nullptr || !ApplyChanges()) {
        return kAnswerCancel;
    }
    return answer;
}

bool GUI::CheckLabel() {
    // The validator is created for this one question and released after it.
    const auto validator = CreateObjectAs<TextValidator>(kTextValidatorClass);
    if (validator->IsValidText(txtDescription.Text())) {
        return true;
    }
    ShowInformation(kLabelRefused);
    return false;
}

void GUI::ClearListItems(ListView& list) {
    list.ClearItems();
}

bool GUI::IsInstructionTypeAvailable(const std::string& name) {
    const std::string wanted = UpperCase(name);
    const bool messageVariant = wanted == "M_ON" || wanted == "M_OFF";
    KeyedCollection& unavailable = NotAvailableAllInstructionsNode();
    for (int i = 0; i < unavailable.Count(); ++i) {
        const std::string entry = UpperCase(unavailable.ItemAt(i));
        // The on/off variants of message nodes go with the message type.
        if (entry == wanted || (messageVariant && entry == "MSG")) {
            return false;
        }
    }
    return true;
}

bool GUI::IsPromptTypeAvailable(const std::string& name) {
    const std::string wanted = UpperCase(name);
    KeyedCollection& unavailable = NotAvailableMSGLISTNOOPNode();
    for (int i = 0; i < unavailable.Count(); ++i) {
        if (UpperCase(unavailable.ItemAt(i)) == wanted) {
            return false;
        }
    }
    return true;
}

bool GUI::ValidateBeforeSave() {
    if (SelectedTag(cmbMethod) == kMethodDefaultLastName) {
        const std::int32_t language1 = SelectedTag(cmbLanguage1);
        const std::int32_t language2 = SelectedTag(cmbLanguage2);
        if (language1 == kNoLanguageTag && language2 != kNoLanguageTag) {
            cmbLanguage1.SetListIndex(cmbLanguage2.ListIndex());
            cmbLanguage2.SetListIndex(0);
        } else if (language1 == kNoLanguageTag) {
            ShowInformation(nodefields::kNoLanguage);
            cmbLanguage1.SetFocus();
            return false;
        } else if (language1 == language2) {
            cmbLanguage2.SetListIndex(0);
        }
        return true;
    }
    // A match list's stored value by its shown name (-1 for none).
    auto mode = [](const ListControl& list, const char* column) -> std::int64_t {
        for (const auto& [stored, name] : nodefields::FieldOfColumn(column)->names) {
            if (name == list.Text()) {
                return stored;
            }
        }
        return -1;
    };
    const nodefields::SearchSettings settings{0,
                                              0,
                                              0,
                                              mode(cmbfirstMatch, "FirstMode"),
                                              mode(cmbsecondMatch, "SecondMode"),
                                              list_rows::ToInt16(cmbFirstMinDigits.Text()),
                                              list_rows::ToInt16(cmbFirstMaxDigits.Text()),
                                              list_rows::ToInt16(cmbSecondMinDigits.Text()),
                                              list_rows::ToInt16(cmbSecondMaxDigits.Text())};
    const std::vector<nodefields::RuleRefusal> refusals = nodefields::SearchRefusals(settings);
    if (refusals.empty()) {
        return true;
    }
    const std::string& path = refusals.front().path;
    ShowInformation(refusals.front().message);
    (path == "stages[1].mode"        ? cmbsecondMatch
     : path == "stages[0].minDigits" ? cmbFirstMinDigits
                                     : cmbSecondMinDigits)
        .SetFocus();
    return false;
}

}  // namespace dbn::form
