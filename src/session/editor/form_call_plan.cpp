// The plan of a simulated call, read from the editor form as it is now.
#include "core/node_types.h"
#include "form/gui.h"
#include "form/list_rows.h"
#include "session/editor/caller_simulation.h"
#include "session/editor/form_references.h"
#include "session/editor/form_values.h"
#include "session/nodes/directory_check.h"

#include <string>

namespace dbn::session {
namespace {

using directory::CallExit;
using directory::CallPrompt;

// A reference as the operator sees it ("MSG 12", the code alone for a type
// without numbers) with the referenced node's description.
CallPrompt PromptOf(form::GUI& form, const std::string& type, const std::string& number,
                    int typeID) {
    if (type.empty()) {
        return {"none", ""};
    }
    if (typeID == node_type::kNoNumber) {
        return {type, ""};
    }
    CallPrompt prompt{type + " " + number, ""};
    if (form::BusinessRulesLink* rules = form.FormBusinessRules()) {
        prompt.description =
            rules->NodeDescription(typeID, static_cast<std::int16_t>(WholeNumberOr0(number)))
                .value_or("");
    }
    return prompt;
}

CallPrompt PairPrompt(form::GUI& form, const form::ListControl& node,
                      const form::ListControl& number) {
    if (node.ListIndex() < 0) {
        return {"none", ""};
    }
    const int shownNumber = ShownNumber(number);
    return PromptOf(form, node.Text(), std::to_string(shownNumber), ShownTag(node, 0));
}

CallPrompt RowPrompt(form::GUI& form, const form::ListView& list, int position) {
    if (position >= list.ItemCount()) {
        return {"none", ""};
    }
    const form::ListItem& row = list.ItemAt(position);
    const std::string& typeID = row.SubItem(form::list_rows::kNodeTypeID);
    const std::string& number = row.SubItem(form::list_rows::kNodeNumber);
    return PromptOf(form, row.SubItem(form::list_rows::kNodeName),
                    std::to_string(WholeNumberOr0(number)), WholeNumberOr0(typeID));
}

// "English", "English and French".
std::string Languages(const form::GUI& form) {
    std::string text;
    for (const form::ListControl* list : {&form.cmbLanguage1, &form.cmbLanguage2}) {
        if (ShownTag(*list, 0) != 0 && list->Text() != text) {
            text += (text.empty() ? "" : " and ") + list->Text();
        }
    }
    return text.empty() ? "no language" : text;
}

}  // namespace

directory::CallPlan FormCallPlan(form::GUI& form) {
    return FormCallPlan(form, ReadFormDirectoryNames(form));
}

directory::CallPlan FormCallPlan(form::GUI& form, std::vector<directory::DirectoryName> names) {
    directory::CallPlan plan;
    plan.search = FormSearchSettings(form);
    plan.names = std::move(names);
    plan.greeting = PairPrompt(form, form.cmbGreetingNode, form.cmbGreetingNumber);
    const CallExit actions[] = {CallExit::ValidMatch, CallExit::Abort, CallExit::Star,
                                CallExit::Pound, CallExit::Zero};
    for (int row = 0; row < 5; ++row) {
        plan.Target(actions[row]) = RowPrompt(form, form.LVActions, row);
    }
    plan.Target(CallExit::Timeout) = PairPrompt(form, form.cmbTimeoutNode, form.cmbTimeoutNumber);
    plan.Target(CallExit::Invalid) = PairPrompt(form, form.cmbInvalidNode, form.cmbInvalidNumber);
    plan.Target(CallExit::ConfirmationExit) =
        PairPrompt(form, form.cmbExitPromptNode, form.cmbExitPromptNumber);
    plan.digitTimeout = ShownNumber(form.cmbDigitTimeOut);
    plan.selectionTimeout = ShownNumber(form.cmbSelTimeOut);
    plan.retryLimit = ShownNumber(form.cmbRetryLimit);
    plan.playName = ShownTag(form.cmbPlayName, 1) != 0;
    if (plan.search.method == directory::SearchMethod::DefaultLastName) {
        // The default search speaks prompts of its own, in the node's languages.
        const std::string languages = Languages(form);
        plan.stagePrompts = {directory::DefaultPrompt("spell the last name", languages)};
        plan.beforeNames = directory::DefaultPrompt("the matching names are", languages);
        plan.afterNames = directory::DefaultPrompt("press the key of the name", languages);
        for (int i = 1; i <= plan.search.maxMatches; ++i) {
            plan.namePrompts.push_back(
                directory::DefaultPrompt("for this name press " + std::to_string(i), languages));
        }
        return plan;
    }
    plan.stagePrompts.push_back(
        PairPrompt(form, form.cmbFirstMatchPrompt, form.cmbFirstMatchPromptNumber));
    if (plan.search.stages.size() > 1) {
        plan.stagePrompts.push_back(
            PairPrompt(form, form.cmbSecondMatchPrompt, form.cmbSecondMatchPromptNumber));
    }
    plan.beforeNames = RowPrompt(form, form.LVConfirm, 0);
    plan.afterNames = RowPrompt(form, form.LVConfirm, 1);
    for (int row = 2; row < form.LVConfirm.ItemCount(); ++row) {
        plan.namePrompts.push_back(RowPrompt(form, form.LVConfirm, row));
    }
    return plan;
}

}  // namespace dbn::session
