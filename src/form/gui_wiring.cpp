// Connects every control event of the form to its handler.

#include "form/gui.h"

#include <initializer_list>

namespace dbn::form {

void GUI::WireEvents() {
    // Record selector and navigation
    cmdFirst.Click = [this] { cmdFirst_Click(); };
    cmdPrevious.Click = [this] { cmdPrevious_Click(); };
    cmdNext.Click = [this] { cmdNext_Click(); };
    cmdLast.Click = [this] { cmdLast_Click(); };
    cmbNode.Click = [this] { cmbNode_Click(); };

    // Commit buttons
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] { cmdCancel_Click(); };
    cmdApply.Click = [this] { cmdApply_Click(); };

    txtDescription.Change = [this] { EnableApply(); };

    // The six pickers on the form: a type pick refills and lays out the pair;
    // a number pick only marks the node as changed.
    struct Pair {
        ListControl& node;
        ListControl& number;
    };
    for (const Pair& pair :
         {Pair{cmbGreetingNode, cmbGreetingNumber},
          Pair{cmbFirstMatchPrompt, cmbFirstMatchPromptNumber},
          Pair{cmbSecondMatchPrompt, cmbSecondMatchPromptNumber},
          Pair{cmbExitPromptNode, cmbExitPromptNumber}, Pair{cmbTimeoutNode, cmbTimeoutNumber},
          Pair{cmbInvalidNode, cmbInvalidNumber}}) {
        ListControl* node = &pair.node;
        ListControl* number = &pair.number;
        node->Click = [this, node, number] { HandleMSGLISTNOOPPromptBOX(*node, *number, false); };
        number->Click = [this] { EnableApply(); };
    }

    // The five pickers of the actions list: they rewrite the selected row.
    for (const auto& [node, number] : actionsList_.Pairs()) {
        node->Click = [this, node, number] { HandleMSGLISTNOOPPromptBOX(*node, *number, true); };
        number->Click = [this, number] { GenericActionsSectionNodeNumber_Click(*number); };
        number->Change = [this, number] {
            GenericNumber_Change(*number, NumberChangeMode::ActionsRow);
        };
    }

    // Plain selections that only mark the node as changed.
    for (ListControl* list : {&cmbDirectory, &cmbLanguage1, &cmbLanguage2, &cmbFirstMinDigits,
                              &cmbFirstMaxDigits, &cmbSecondMinDigits, &cmbSecondMaxDigits,
                              &cmbSelTimeOut, &cmbDigitTimeOut, &cmbRetryLimit, &cmbPlayName}) {
        list->Click = [this] { EnableApply(); };
    }

    // Typed numbers of the lists that write no row are clamped only.
    for (ListControl* list :
         {&cmbGreetingNumber, &cmbDirectory, &cmbFirstMinDigits, &cmbFirstMaxDigits,
          &cmbFirstMatchPromptNumber, &cmbSecondMinDigits, &cmbSecondMaxDigits,
          &cmbSecondMatchPromptNumber, &cmbTimeoutNumber, &cmbInvalidNumber, &cmbSelTimeOut,
          &cmbDigitTimeOut, &cmbRetryLimit, &cmbExitPromptNumber}) {
        list->Change = [this, list] { GenericNumber_Change(*list, NumberChangeMode::ClampOnly); };
    }

    // Search method and match settings
    cmbMethod.Click = [this] { cmbMethod_Click(); };
    cmbfirstMatch.Click = [this] { cmbfirstMatch_Click(); };
    cmbsecondMatch.Click = [this] { cmbsecondMatch_Click(); };

    // Actions list
    cmdActionsEdit.Click = [this] { cmdActionsEdit_Click(); };
    cmdActionsDefault.Click = [this] { cmdActionsDefault_Click(); };
    LVActions.ItemClick = [this](ListItem& item) { LVActions_ItemClick(item); };
    LVActions.MouseUp = [this] { LVActions_MouseUp(); };
    LVActions.GotFocus = [this] { LeaveEditModes(false, true); };

    // Confirmation list
    cmbConfirmation.Click = [this] { cmbConfirmation_Click(); };
    cmbMaxMatches.Click = [this] { cmbMaxMatches_Click(); };
    cmbMaxMatches.Change = [this] { cmbMaxMatches_Change(); };
    cmbConfirmNode.Click = [this] { cmbConfirmNode_Click(); };
    cmbConfirmNumber.Click = [this] { cmbConfirmNumber_Click(); };
    cmbConfirmNumber.Change = [this] {
        GenericNumber_Change(cmbConfirmNumber, NumberChangeMode::ConfirmationRow);
    };
    cmdConfirmEdit.Click = [this] { cmdConfirmEdit_Click(); };
    cmdConfirmDefault.Click = [this] { cmdConfirmDefault_Click(); };
    LVConfirm.ItemClick = [this](ListItem& item) { LVConfirm_ItemClick(item); };
    LVConfirm.MouseUp = [this] { LVConfirm_MouseUp(); };

    // Moving within the confirmation section keeps its edit mode.
    for (Control* control :
         std::initializer_list<Control*>{&LVConfirm, &cmbConfirmation, &cmbMaxMatches}) {
        control->GotFocus = [this] { LeaveEditModes(true, false); };
    }
    // Every other input control ends both edit modes. The in-place pickers
    // have no focus handler, so that focusing one keeps its list editing.
    for (Control* control : std::initializer_list<Control*>{&txtDescription,
                                                            &cmbGreetingNode,
                                                            &cmbGreetingNumber,
                                                            &cmbDirectory,
                                                            &cmbMethod,
                                                            &cmbLanguage1,
                                                            &cmbLanguage2,
                                                            &cmbfirstMatch,
                                                            &cmbFirstMinDigits,
                                                            &cmbFirstMaxDigits,
                                                            &cmbFirstMatchPrompt,
                                                            &cmbFirstMatchPromptNumber,
                                                            &cmbsecondMatch,
                                                            &cmbSecondMinDigits,
                                                            &cmbSecondMaxDigits,
                                                            &cmbSecondMatchPrompt,
                                                            &cmbSecondMatchPromptNumber,
                                                            &cmbTimeoutNode,
                                                            &cmbTimeoutNumber,
                                                            &cmbInvalidNode,
                                                            &cmbInvalidNumber,
                                                            &cmbSelTimeOut,
                                                            &cmbDigitTimeOut,
                                                            &cmbRetryLimit,
                                                            &cmbExitPromptNode,
                                                            &cmbExitPromptNumber,
                                                            &cmbPlayName}) {
        control->GotFocus = [this] { LeaveEditModes(true, true); };
    }

    // The list-view hook: header presses and scrolling hide the editors,
    // only while the hook is installed.
    for (ListView* list : {&LVActions, &LVConfirm}) {
        list->HeaderPressed = [this, list] {
            if (hooked_) {
                ListViewHookProc(*list, HookMessage::ParentNotify);
            }
        };
        list->Scrolled = [this, list] {
            if (hooked_) {
                ListViewHookProc(*list, HookMessage::VerticalScroll);
            }
        };
    }
}

}  // namespace dbn::form
