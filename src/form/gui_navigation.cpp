// The record selector and the four buttons that step through the partition's
// dial-by-name nodes.

#include "form/gui.h"

#include "core/component_error.h"

#include <functional>

namespace dbn::form {

namespace {

// Where a navigation button moves the selector from index in a list of count
// entries, or the index itself when it stays.
using Move = std::function<int(int index, int count)>;

// The common steps of the four buttons: end the edit modes, offer to save,
// clear the mark, move the selector (its click loads the node) and record
// the node now shown.
void Navigate(GUI& gui, const Move& move) {
    gui.LeaveEditModes(true, true);
    if (gui.AskToSaveChanges() == kAnswerCancel) {
        return;
    }
    const bool unsaved = gui.cmdApply.Enabled();
    gui.cmdApply.SetEnabled(false);
    const int index = gui.cmbNode.ListIndex();
    const int target = move(index, gui.cmbNode.ListCount());
    if (target == index) {
        return;
    }
    gui.cmbNode.SetListIndex(target);
    if (gui.cmbNode.ListIndex() == index) {
        // The load failed and the selector went back: the form is as it was.
        gui.cmdApply.SetEnabled(unsaved);
        return;
    }
    gui.SetnodeNumber(static_cast<std::int16_t>(gui.cmbNode.ItemData(gui.cmbNode.ListIndex())));
}

}  // namespace

void GUI::cmdFirst_Click() {
    RunTrapped("cmdFirst_Click", [&] { Navigate(*this, [](int, int) { return 0; }); });
}

void GUI::cmdPrevious_Click() {
    RunTrapped("cmdPrevious_Click", [&] {
        Navigate(*this, [](int index, int) { return index != 0 ? index - 1 : index; });
    });
}

void GUI::cmdNext_Click() {
    RunTrapped("cmdNext_Click", [&] {
        Navigate(*this,
                 [](int index, int count) { return index != count - 1 ? index + 1 : index; });
    });
}

void GUI::cmdLast_Click() {
    RunTrapped("cmdLast_Click", [&] { Navigate(*this, [](int, int count) { return count - 1; }); });
}

void GUI::cmbNode_Click() {
    RunTrapped("cmbNode_Click", [&] {
        LeaveEditModes(true, true);
        const auto selected = static_cast<std::int16_t>(cmbNode.ItemData(cmbNode.ListIndex()));
        if (selected == nodeNumber()) {
            return;
        }
        if (AskToSaveChanges() != kAnswerCancel) {
            if (formBusinessRules_ == nullptr) {
                RaiseObjectNotSet();
            }
            formBusinessRules_->LoadData(selected);
            if (!formBusinessRules_->LoadFailed()) {
                cmdApply.SetEnabled(false);
                SetnodeNumber(selected);
                return;
            }
            // The database failed before the form changed: it stays on the
            // node shown, and so does the selector (below).
        }
        // Stay on the node shown: put the selector back on it (its click then
        // finds nothing to do).
        for (int i = 0; i < cmbNode.ListCount(); ++i) {
            if (cmbNode.ItemData(i) == nodeNumber()) {
                cmbNode.SetListIndex(i);
                return;
            }
        }
    });
}

}  // namespace dbn::form
