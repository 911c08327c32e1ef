#pragma once

#include "form/form_services.h"

#include <QMessageBox>

#include <functional>

namespace dbn::qt {

class FormView;

// The form's services on Qt Widgets: message boxes, the question whether to
// create a missing node, the busy cursor, pending events, and the modal show
// of a form in its own window.
class QtFormServices : public form::FormServices {
public:
    QtFormServices() = default;
    ~QtFormServices() override;
    QtFormServices(const QtFormServices&) = delete;
    QtFormServices& operator=(const QtFormServices&) = delete;

    // Sees every message box and question dialog once it is open, before a
    // person could answer it; it may answer by clicking one of its buttons.
    // Lets tests and unattended runs go on without a person.
    std::function<void(QMessageBox&)> whenAsked;
    // Runs once a form's window is shown. When it returns with the form still
    // loaded, the show is abandoned: unsaved changes are dropped and the form
    // unloads without asking.
    std::function<void(form::GUI&, FormView&)> whenShown;

    int MsgBox(const std::string& text, form::MsgBoxButtons buttons, form::MsgBoxIcon icon,
               const std::string& title) override;
    long Confirm(const std::string& text, const std::string& title) override;
    // Shown behind the next box's "Show Details..." button.
    void SetNextBoxDetails(const std::string& details) override { nextDetails_ = details; }
    void SetBusyCursor(bool busy) override;
    void DoEvents() override;
    void ShowModal(form::GUI& form) override;
    void EndModal(form::GUI& form) override;

    // The window of the form on show, or nullptr.
    FormView* ShownView() const noexcept { return view_; }
    bool BusyCursorShown() const noexcept { return busy_; }

private:
    // Runs a dialog modally over the form's window, after whenAsked.
    void Run(QMessageBox& box);
    void Abandon(form::GUI& form);

    FormView* view_ = nullptr;
    bool busy_ = false;
    std::string nextDetails_;
};

}  // namespace dbn::qt
