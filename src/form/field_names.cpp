#include "form/field_names.h"

#include <array>
#include <utility>

namespace dbn::form {
namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 56> kNames{{
    {"cmdFirst", "First"},
    {"cmdPrevious", "Previous"},
    {"cmbNode", "Node"},
    {"cmdNext", "Next"},
    {"cmdLast", "Last"},
    {"txtDescription", "Label"},
    {"cmbGreetingNode", "Greeting type"},
    {"cmbGreetingNumber", "Greeting number"},
    {"txtDIR", "Directory type"},
    {"cmbDirectory", "Directory number"},
    {"cmbMethod", "Method"},
    {"cmbLanguage1", "Language 1"},
    {"cmbLanguage2", "Language 2"},
    {"LVActions", "Actions"},
    {"cmbValidMatchNode", "Valid Match type"},
    {"cmbValidMatchNumber", "Valid Match number"},
    {"cmbAbortNode", "Abort type"},
    {"cmbAbortNumber", "Abort number"},
    {"cmbStarNode", "Star key type"},
    {"cmbStarNumber", "Star key number"},
    {"cmbPoundNode", "Pound key type"},
    {"cmbPoundNumber", "Pound key number"},
    {"cmbZeroNode", "Zero key type"},
    {"cmbZeroNumber", "Zero key number"},
    {"cmdActionsEdit", "Actions: Edit"},
    {"cmdActionsDefault", "Actions: Default"},
    {"cmbfirstMatch", "First match"},
    {"cmbFirstMinDigits", "First match minimum digits"},
    {"cmbFirstMaxDigits", "First match maximum digits"},
    {"cmbFirstMatchPrompt", "First match prompt type"},
    {"cmbFirstMatchPromptNumber", "First match prompt number"},
    {"cmbsecondMatch", "Second match"},
    {"cmbSecondMinDigits", "Second match minimum digits"},
    {"cmbSecondMaxDigits", "Second match maximum digits"},
    {"cmbSecondMatchPrompt", "Second match prompt type"},
    {"cmbSecondMatchPromptNumber", "Second match prompt number"},
    {"cmbTimeoutNode", "Timeout type"},
    {"cmbTimeoutNumber", "Timeout number"},
    {"cmbInvalidNode", "Invalid type"},
    {"cmbInvalidNumber", "Invalid number"},
    {"cmbSelTimeOut", "Selection time out in seconds"},
    {"cmbDigitTimeOut", "Digit time out in seconds"},
    {"cmbRetryLimit", "Retry limit"},
    {"cmbConfirmation", "Confirmation"},
    {"cmbMaxMatches", "Max matches"},
    {"LVConfirm", "Confirmation prompts"},
    {"cmbConfirmNode", "Confirmation prompt type"},
    {"cmbConfirmNumber", "Confirmation prompt number"},
    {"cmdConfirmEdit", "Confirmation: Edit"},
    {"cmdConfirmDefault", "Confirmation: Default"},
    {"cmbExitPromptNode", "Exit prompt type"},
    {"cmbExitPromptNumber", "Exit prompt number"},
    {"cmbPlayName", "Play name"},
    {"cmdOK", "OK"},
    {"cmdCancel", "Cancel"},
    {"cmdApply", "Apply"},
}};

}  // namespace

std::optional<std::string> FieldName(std::string_view control) {
    for (const auto& [name, field] : kNames) {
        if (name == control) {
            return std::string(field);
        }
    }
    return std::nullopt;
}

}  // namespace dbn::form
