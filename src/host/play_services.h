#pragma once

#include "form/form_services.h"

#include <deque>
#include <functional>
#include <iosfwd>
#include <string>

namespace dbn::host {

// Ends a scripted run with an exit status. Deliberately not a std::exception:
// the form's error traps must let it pass, so that a run can stop from inside
// any handler.
struct RunStopped {
    int status;
};

// Exit statuses of a scripted run.
inline constexpr int kRunCompleted = 0;
inline constexpr int kRunUnanswered = 1;
inline constexpr int kRunScriptError = 2;
// Ran to its end, but an "Error" box was shown, the database could not be
// opened, or the database refused a save.
inline constexpr int kRunFailed = 3;

// The form's services without a display: message boxes and the confirmation
// dialog print one line each and take their answers from a queue the script
// fills; the modal show hands over to whoever runs the script.
class PlayServices : public form::FormServices {
public:
    explicit PlayServices(std::ostream& out);

    // Queues the answer to the next question (a box with more than an OK
    // button, or a confirmation).
    void QueueAnswer(long code);
    std::size_t QueuedAnswers() const noexcept { return answers_.size(); }

    // Runs the operator's actions while a form is shown modally.
    std::function<void(form::GUI&)> runModal;
    // Told when a form has unloaded.
    std::function<void(form::GUI&)> endModal;

    int MsgBox(const std::string& text, form::MsgBoxButtons buttons, form::MsgBoxIcon icon,
               const std::string& title) override;
    long Confirm(const std::string& text, const std::string& title) override;
    // Nothing to show or process without a display.
    void SetBusyCursor(bool) override {}
    void DoEvents() override {}
    void ShowModal(form::GUI& form) override;
    void EndModal(form::GUI& form) override;
    void SaveRefused() override { failed_ = true; }
    // Printed after the next box's line as "details: ...".
    void SetNextBoxDetails(const std::string& details) override { nextDetails_ = details; }

    // An "Error" box was shown or a save was refused since the run began.
    bool Failed() const noexcept { return failed_; }

private:
    // Prints line with its answer, or stops the run when none is queued.
    long Answer(const std::string& line);

    std::ostream& out_;
    std::deque<long> answers_;
    bool failed_ = false;
    std::string nextDetails_;
};

// A shown text on one line: each CR LF becomes the two characters \n.
std::string OneLine(const std::string& text);

}  // namespace dbn::host
