// Loading the custom-settings half of a node: match modes, error settings,
// the confirmation section with its prompt rows, the exit prompt and the
// play-name switch.
#include "session/editor/business_rules.h"

#include "form/error_trap.h"
#include "form/gui.h"
#include "session/editor/form_lists.h"
#include "session/nodes/node_templates.h"

namespace dbn {
namespace {

enum class Availability { Prompt, Instruction };

// Shows a stored target in a picker pair: "NOOP" (and a pending warning)
// when its type may not be used in the partition, else the stored type with
// its number matched against the refilled number list.
void ShowTarget(form::GUI& form, session::RangeNotes& notes, const RowSet& node,
                const std::string& role, form::ListControl& typeList, form::ListControl& numberList,
                Availability availability) {
    const std::string code = node.Field(role + "NodeType").ToText();
    const bool available = availability == Availability::Prompt
                               ? form.IsPromptTypeAvailable(code)
                               : form.IsInstructionTypeAvailable(code);
    if (!available) {
        typeList.SetText("NOOP");
        form.PendingWarning = session::MaxNumberWarning(code);
        return;
    }
    typeList.SetText(code);
    const std::int16_t number = node.Field(role + "NodeNumber").ToInt16();
    if (!session::SelectByEntryRange(numberList, number, -1)) {
        notes.Note(role + "NodeNumber", number, numberList);
    }
}

// The entry of cmbMaxMatches a stored MaxMatch selects: zero or below
// selects nothing; above the list's top "9" with confirmation on, nothing
// with it off.
int MaxMatchIndex(std::int64_t maxMatch, bool confirmation) {
    if (maxMatch <= 0 || (maxMatch > 9 && !confirmation)) {
        return -1;
    }
    return maxMatch > 9 ? 8 : static_cast<int>(maxMatch) - 1;
}

}  // namespace

bool Business_Rules::AssignCustomSettingsValues(RowSet& node, RowSet& prompts,
                                                session::TargetDescriptions& descriptions) {
    form::RunTrapped(services_, "AssignCustomSettingsValues", [&] {
        form::GUI& form = Form();
        // Stored settings are read whole, whatever their size: one beyond
        // every list's range is shown through the fallback and told.
        auto value = [&](const char* column) { return node.Field(column).ToInt64(); };
        // Selects by a range rule and notes a value shown through its fallback.
        auto inRange = [&](form::ListControl& list, const char* column, std::int32_t low,
                           std::int32_t high, int fallback) {
            if (!session::SelectInRange(list, session::Clamped(value(column)), low, high,
                                        fallback)) {
                rangeNotes_.Note(column, value(column), list);
            }
        };
        auto inEntries = [&](form::ListControl& list, const char* column, int fallback) {
            if (!session::SelectByEntryRange(list, session::Clamped(value(column)), fallback)) {
                rangeNotes_.Note(column, value(column), list);
            }
        };

        // First match; "Both Names" and "Extension" force the second to "None".
        inRange(form.cmbfirstMatch, "FirstMode", 1, 4, 0);
        inEntries(form.cmbFirstMinDigits, "FirstMinDigits", 2);
        inEntries(form.cmbFirstMaxDigits, "FirstMaxDigits", 4);
        ShowTarget(form, rangeNotes_, node, "FirstPrompt", form.cmbFirstMatchPrompt,
                   form.cmbFirstMatchPromptNumber, Availability::Prompt);

        // Second match; its handler sets defaults that the stored values replace.
        // Its index is the mode itself ("None" is 0).
        const std::int64_t secondMode = value("SecondMode");
        const bool secondValid = secondMode >= 0 && secondMode <= 2;
        form.cmbsecondMatch.SetListIndex(secondValid ? static_cast<int>(secondMode) : 0);
        if (!secondValid) {
            rangeNotes_.Note("SecondMode", secondMode, form.cmbsecondMatch);
        }
        inEntries(form.cmbSecondMinDigits, "SecondMinDigits", 0);
        inEntries(form.cmbSecondMaxDigits, "SecondMaxDigits", 4);
        ShowTarget(form, rangeNotes_, node, "SecondPrompt", form.cmbSecondMatchPrompt,
                   form.cmbSecondMatchPromptNumber, Availability::Prompt);

        // Error settings.
        ShowTarget(form, rangeNotes_, node, "Timeout", form.cmbTimeoutNode, form.cmbTimeoutNumber,
                   Availability::Instruction);
        ShowTarget(form, rangeNotes_, node, "Invalid", form.cmbInvalidNode, form.cmbInvalidNumber,
                   Availability::Instruction);
        inRange(form.cmbSelTimeOut, "SelectionTimeout", 1, 60, 4);
        inRange(form.cmbDigitTimeOut, "DigitTimeout", 1, 15, 9);
        inRange(form.cmbRetryLimit, "RetryLimit", 1, 5, 0);

        // Confirmation: the list ends with exactly the stored rows, so the
        // switch-on and number-of-matches handling add none, and rows set
        // aside for another node are dropped.
        form.ClearListItems(form.LVConfirm);
        form.ClearListItems(form.LVTemp);
        const std::int64_t confirm = value("Confirm");
        const std::int64_t maxMatch = value("MaxMatch");
        {
            form::GUI::ConfirmRowsGuard guard(form);
            // With confirmation off the disabled box shows the stored number
            // too (nothing when it lies outside the list), and switching the
            // section on starts from it.
            const bool on = confirm != 0;
            form.cmbConfirmation.SetListIndex(on ? 1 : 0);
            form.lblMaxMatches.SetEnabled(on);
            form.cmbMaxMatches.SetEnabled(on);
            form.cmbMaxMatches.SetListIndex(MaxMatchIndex(maxMatch, on));
            if (maxMatch < 1 || maxMatch > 9) {
                rangeNotes_.Note("MaxMatch", maxMatch, form.cmbMaxMatches);
            }
            if (confirm != 0 && confirm != 1) {
                rangeNotes_.Note("Confirm", confirm, form.cmbConfirmation);
            }
        }
        form.AsideNameRows().clear();
        if (confirm == 0 || confirm == 1) {
            // With confirmation on the rows are shown with their labels; with
            // it off they wait in LVTemp, as if set aside, and show their
            // labels when the section is switched on.
            const bool shown = confirm == 1;
            form::ListView& list = shown ? form.LVConfirm : form.LVTemp;
            const form::KeyedCollection& names = form.NodeNameCollection();
            auto addRow = [&](int position, const std::string& name,
                              const session::StoredRef& ref) {
                const std::string description = shown ? descriptions.Of(ref) : std::string();
                session::AddTargetRow(list, position, name, ref, description, names);
            };
            addRow(1, "Before Names", session::ReadRef(node, "BeforePrompt"));
            addRow(2, "After Names", session::ReadRef(node, "AfterPrompt"));

            // At most Max Matches name rows (every stored row for a stored
            // MaxMatch of 0 or below); the rest are set aside, unlooked-up.
            const int listed =
                shown
                    ? session::Clamped(maxMatch)
                    : static_cast<int>(session::WholeNumber(form.cmbMaxMatches.Text()).value_or(0));
            const std::int64_t stopAt = std::int64_t{listed} + 3;
            for (int position = 3; !prompts.Eof(); ++position, prompts.MoveNext()) {
                const std::string name =
                    "Name" + session::CommandArg(prompts.Field("PromptNumber").ToInt16());
                const session::StoredRef ref = session::ReadRef(prompts, "Prompt");
                if (position >= stopAt && listed > 0) {
                    form.AsideNameRows().push_back(session::TargetCells(name, ref, "", names));
                } else {
                    addRow(position, name, ref);
                }
            }
        }

        ShowTarget(form, rangeNotes_, node, "ConfirmationExit", form.cmbExitPromptNode,
                   form.cmbExitPromptNumber, Availability::Prompt);
        form.cmbPlayName.SetListIndex(value("PlayName") == 0 ? 0 : 1);
        if (value("PlayName") != 0 && value("PlayName") != 1) {
            rangeNotes_.Note("PlayName", value("PlayName"), form.cmbPlayName);
        }
    });
    return true;
}

}  // namespace dbn
