// The C entry point: an editor whose toolkit services are C callbacks.
#include "session/c_api.h"

#include "core/component_factory.h"
#include "database/data_location.h"
#include "form/controls/operator_input.h"
#include "form/gui.h"
#include "session/editor/business_rules.h"
#include "session/editor/component_registration.h"
#include "session/editor/confirmation_dialog.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

struct cvl_dbn_form {
    dbn::form::GUI* gui = nullptr;
};

namespace {

using dbn::form::GUI;
using dbn::form::MsgBoxButtons;
using dbn::form::MsgBoxIcon;

class CallbackServices : public dbn::form::FormServices {
public:
    explicit CallbackServices(const cvl_dbn_callbacks& callbacks) : callbacks_(callbacks) {}

    int MsgBox(const std::string& text, MsgBoxButtons buttons, MsgBoxIcon icon,
               const std::string& title) override {
        const int buttonCode =
            buttons == MsgBoxButtons::OK ? CVL_DBN_BUTTONS_OK : CVL_DBN_BUTTONS_YES_NO_CANCEL;
        int iconCode = CVL_DBN_ICON_INFORMATION;
        if (icon == MsgBoxIcon::Exclamation) {
            iconCode = CVL_DBN_ICON_EXCLAMATION;
        } else if (icon == MsgBoxIcon::Question) {
            iconCode = CVL_DBN_ICON_QUESTION;
        }
        if (title == "Error" && !shown_) {
            failedToStart_ = true;
        }
        return callbacks_.msg_box(callbacks_.user, text.c_str(), buttonCode, iconCode,
                                  title.c_str());
    }

    long Confirm(const std::string& text, const std::string& title) override {
        return callbacks_.confirm(callbacks_.user, text.c_str(), title.c_str());
    }

    void SetBusyCursor(bool busy) override {
        if (callbacks_.set_busy_cursor != nullptr) {
            callbacks_.set_busy_cursor(callbacks_.user, busy ? 1 : 0);
        }
    }

    void DoEvents() override {
        if (callbacks_.do_events != nullptr) {
            callbacks_.do_events(callbacks_.user);
        }
    }

    void ShowModal(GUI& form) override {
        shown_ = true;
        cvl_dbn_form handle{&form};
        if (callbacks_.run_modal != nullptr) {
            inModalRun_ = true;
            callbacks_.run_modal(callbacks_.user, &handle);
        }
        if (form.IsLoaded()) {
            // Abandoned: close without asking to save.
            form.DiscardChangesAndUnload();
        }
    }

    void EndModal(GUI&) override {
        // Only a modal run of the host ends: not a form unloaded unseen (a
        // missing node), nor one shown without run_modal.
        const bool ending = inModalRun_;
        inModalRun_ = false;
        if (ending && callbacks_.end_modal != nullptr) {
            callbacks_.end_modal(callbacks_.user);
        }
    }

    // Before a ShowNodeEditor call: nothing shown, nothing failed yet.
    void StartSession() noexcept {
        shown_ = false;
        inModalRun_ = false;
        failedToStart_ = false;
    }
    // The status cvl_dbn_show_node_editor answers for the call just ended.
    int SessionStatus() const noexcept {
        if (shown_) {
            return CVL_DBN_SHOWN;
        }
        return failedToStart_ ? CVL_DBN_NOT_STARTED : CVL_DBN_NOT_EDITABLE;
    }

private:
    cvl_dbn_callbacks callbacks_;
    bool shown_ = false;
    // Between run_modal's call and the form's end.
    bool inModalRun_ = false;
    // An "Error" box came before the form was shown: the editor could not start.
    bool failedToStart_ = false;
};

template <class T>
T* FindAs(const cvl_dbn_form* form, const char* name) {
    if (form == nullptr || form->gui == nullptr || name == nullptr || !form->gui->IsLoaded()) {
        return nullptr;
    }
    return dynamic_cast<T*>(form->gui->FindControl(name));
}

int Outcome(bool accepted) {
    return accepted ? 1 : 0;
}

// Runs an operator action; nothing thrown may cross into the C host.
template <class Action>
int Guarded(Action action) {
    try {
        return action();
    } catch (...) {
        return -1;
    }
}

// The services whose makers the component registry holds, so that a
// released editor never leaves makers behind that refer to it.
const dbn::form::FormServices* registeredServices = nullptr;

}  // namespace

struct cvl_dbn_editor {
    explicit cvl_dbn_editor(const cvl_dbn_callbacks& callbacks)
        : services(callbacks), rules(std::make_unique<dbn::Business_Rules>(services)) {}

    CallbackServices services;
    std::unique_ptr<dbn::Business_Rules> rules;
};

extern "C" {

cvl_dbn_editor* cvl_dbn_create(const cvl_dbn_callbacks* callbacks) {
    if (callbacks == nullptr || callbacks->msg_box == nullptr || callbacks->confirm == nullptr) {
        return nullptr;
    }
    try {
        return std::make_unique<cvl_dbn_editor>(*callbacks).release();
    } catch (...) {
        return nullptr;
    }
}

int cvl_dbn_show_node_editor(cvl_dbn_editor* editor, int16_t config_id, int16_t partition_id,
                             int16_t node_number) {
    if (editor == nullptr) {
        return CVL_DBN_NOT_STARTED;
    }
    try {
        // The editor creates its question dialog by name, for its own callbacks.
        dbn::RegisterEditorComponents(editor->services);
        registeredServices = &editor->services;
        editor->services.StartSession();
        editor->rules->ShowNodeEditor(config_id, partition_id, node_number);
        return editor->services.SessionStatus();
    } catch (...) {
        return CVL_DBN_NOT_STARTED;
    }
}

void cvl_dbn_release(cvl_dbn_editor* editor) {
    if (editor != nullptr && registeredServices == &editor->services) {
        dbn::UnregisterComponent(dbn::kBusinessRulesClass);
        dbn::UnregisterComponent(dbn::kConfirmationDialogClass);
        registeredServices = nullptr;
    }
    std::unique_ptr<cvl_dbn_editor> owned(editor);
}

void cvl_dbn_set_data_root(const char* dir) {
    dbn::SetDataRootOverride(dir == nullptr ? std::nullopt : std::optional<std::string>(dir));
}

int cvl_dbn_form_press(cvl_dbn_form* form, const char* button) {
    return Guarded([&] {
        auto* control = FindAs<dbn::form::Button>(form, button);
        return control == nullptr ? -1 : Outcome(dbn::form::operator_input::Press(*control));
    });
}

int cvl_dbn_form_pick(cvl_dbn_form* form, const char* list, const char* text) {
    return Guarded([&] {
        auto* control = FindAs<dbn::form::ListControl>(form, list);
        if (control == nullptr || text == nullptr) {
            return -1;
        }
        const int index = control->FindExactEntry(text);
        return index < 0 ? -1 : Outcome(dbn::form::operator_input::Pick(*control, index));
    });
}

int cvl_dbn_form_type(cvl_dbn_form* form, const char* control, const char* text) {
    return Guarded([&] {
        if (text == nullptr) {
            return -1;
        }
        if (auto* field = FindAs<dbn::form::TextField>(form, control)) {
            return Outcome(dbn::form::operator_input::Type(*field, text));
        }
        auto* list = FindAs<dbn::form::ListControl>(form, control);
        if (list == nullptr || !list->IsEditable()) {
            return -1;
        }
        return Outcome(dbn::form::operator_input::Type(*list, text));
    });
}

int cvl_dbn_form_close(cvl_dbn_form* form) {
    return Guarded([&] {
        if (form == nullptr || form->gui == nullptr || !form->gui->IsLoaded()) {
            return -1;
        }
        return Outcome(form->gui->Unload());
    });
}

int cvl_dbn_form_is_open(const cvl_dbn_form* form) {
    return form != nullptr && form->gui != nullptr && form->gui->IsLoaded() ? 1 : 0;
}

long cvl_dbn_form_text(const cvl_dbn_form* form, const char* control, char* buffer, size_t size) {
    std::string text;
    if (auto* list = FindAs<const dbn::form::ListControl>(form, control)) {
        text = list->Text();
    } else if (auto* field = FindAs<const dbn::form::TextField>(form, control)) {
        text = field->Text();
    } else if (auto* label = FindAs<const dbn::form::Label>(form, control)) {
        text = label->Caption();
    } else if (auto* button = FindAs<const dbn::form::Button>(form, control)) {
        text = button->Caption();
    } else {
        return -1;
    }
    if (buffer != nullptr && size > 0) {
        const std::size_t copied = std::min(size - 1, text.size());
        std::memcpy(buffer, text.data(), copied);
        buffer[copied] = '\0';
    }
    return static_cast<long>(text.size());
}

}  // extern "C"
