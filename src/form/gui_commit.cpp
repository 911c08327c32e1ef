// OK, Cancel and Apply, and the unsaved-changes mark (cmdApply's enabled state).

#include "form/gui.h"

#include "core/component_error.h"
#include "form/controls/text_rules.h"

namespace dbn::form {

void GUI::EnableApply() {
    cmdApply.SetEnabled(true);
}

void GUI::ForgetOperatorChanges() {
    for (Control* control : controls_) {
        control->SetChangedByOperator(false);
    }
}

bool GUI::ApplyChanges() {
    if (!ValidateBeforeSave()) {
        return false;
    }
    if (!CheckLabel()) {
        // Hand the label back to the operator, wholly selected.
        txtDescription.SetSelStart(0);
        txtDescription.SetSelLength(CharacterCount(txtDescription.Text()));
        txtDescription.SetFocus();
        return false;
    }
    if (formBusinessRules_ == nullptr) {
        RaiseObjectNotSet();
    }
    // Only a save that committed clears the mark: a failed save must not
    // look saved.
    if (!formBusinessRules_->SaveChanges(nodeNumber())) {
        return false;
    }
    cmdApply.SetEnabled(false);
    return true;
}

void GUI::cmdApply_Click() {
    RunTrapped("cmdApply_Click", [&] {
        LeaveEditModes(true, true);
        ApplyChanges();
    });
}

void GUI::cmdOK_Click() {
    RunTrapped("cmdOK_Click", [&] {
        LeaveEditModes(true, true);
        // A save that did not happen (refused, failed, or answered No or
        // Cancel after a change by another program) keeps the form open.
        bool saved = true;
        if (cmdApply.Enabled()) {
            RunTrapped("cmdApply_Click", [&] { saved = ApplyChanges(); });
            saved = saved && !cmdApply.Enabled();
        }
        if (saved) {
            Unload();
        }
    });
}

void GUI::cmdCancel_Click() {
    RunTrapped("cmdCancel_Click", [&] {
        LeaveEditModes(true, true);
        if (!ValidateBeforeSave()) {
            return;
        }
        if (AskToSaveChanges() == kAnswerCancel) {
            return;
        }
        DiscardChangesAndUnload();
    });
}

bool GUI::DiscardChangesAndUnload() {
    cmdApply.SetEnabled(false);
    return Unload();
}

}  // namespace dbn::form
