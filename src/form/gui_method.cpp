// The search method and the two match modes: which controls are usable,
// which values are forced, and the form width that shows or hides the
// custom settings.

#include "form/gui.h"
#include "form/list_rows.h"

#include <cstdint>
#include <initializer_list>
#include <optional>

namespace dbn::form {

namespace {

constexpr int kMethodCustom = 0;  // index of "Custom" in cmbMethod
constexpr std::int32_t kFirstBothNames = 3;
constexpr std::int32_t kFirstExtension = 4;
constexpr std::int32_t kSecondNone = 0;

// Forces a prompt picker to a type. A type the partition does not offer
// shows NOOP (no number) instead, and the pending notice names it.
void ForcePromptType(GUI& gui, ListControl& node, const std::string& code) {
    if (node.FindEntry(code) >= 0) {
        node.SetText(code);
        return;
    }
    gui.PendingWarning = list_rows::MaxNumberNotice(code);
    if (node.FindEntry("NOOP") >= 0) {
        node.SetText("NOOP");
    }
}

// The tag of the selected entry, or nothing selected.
std::optional<std::int32_t> SelectedTag(const ListControl& list) {
    if (list.ListIndex() < 0) {
        return std::nullopt;
    }
    return list.ItemData(list.ListIndex());
}

}  // namespace

void GUI::cmbMethod_Click() {
    const bool custom = cmbMethod.ListIndex() == kMethodCustom;
    // The languages belong to the default method only.
    fraLanguage.SetEnabled(!custom);
    lblLanguage1.SetEnabled(!custom);
    lblLanguage2.SetEnabled(!custom);
    cmbLanguage1.SetEnabled(!custom);
    cmbLanguage2.SetEnabled(!custom);
    // The custom section is the right-most part of the form: a narrower form
    // cuts it off.
    SetWidth(custom ? kCustomWidth : fraCustomSettings.Left());
    EnableApply();
}

void GUI::cmbfirstMatch_Click() {
    const std::optional<std::int32_t> first = SelectedTag(cmbfirstMatch);
    if (first == kFirstBothNames || first == kFirstExtension) {
        // No second match is possible after these modes.
        cmbsecondMatch.SetText("None");
        cmbSecondMinDigits.SetText("1");
        cmbSecondMaxDigits.SetText("5");
        ForcePromptType(*this, cmbSecondMatchPrompt, "MSG");
        for (Control* control : std::initializer_list<Control*>{
                 &cmbsecondMatch, &cmbSecondMinDigits, &cmbSecondMaxDigits, &cmbSecondMatchPrompt,
                 &cmbSecondMatchPromptNumber}) {
            control->SetEnabled(false);
        }
    } else if (SelectedTag(cmbsecondMatch) != kSecondNone) {
        for (Control* control : std::initializer_list<Control*>{
                 &cmbsecondMatch, &cmbSecondMinDigits, &cmbSecondMaxDigits, &cmbSecondMatchPrompt,
                 &cmbSecondMatchPromptNumber}) {
            control->SetEnabled(true);
        }
    } else {
        // With "None" the second limits and prompt stay as its handler left them.
        cmbsecondMatch.SetEnabled(true);
    }
    EnableApply();
}

void GUI::cmbsecondMatch_Click() {
    const bool none = SelectedTag(cmbsecondMatch) == kSecondNone;
    if (none) {
        cmbSecondMinDigits.SetText("1");
        cmbSecondMaxDigits.SetText("5");
        ForcePromptType(*this, cmbSecondMatchPrompt, "MSG");
    }
    for (Control* control :
         std::initializer_list<Control*>{&cmbSecondMinDigits, &cmbSecondMaxDigits,
                                         &cmbSecondMatchPrompt, &cmbSecondMatchPromptNumber}) {
        control->SetEnabled(!none);
    }
    EnableApply();
}

}  // namespace dbn::form
