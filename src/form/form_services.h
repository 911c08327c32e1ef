#pragma once

#include <string>

namespace dbn::form {

class GUI;

// SaveOverDiscardCancel: the question whether to save over another
// program's change, answered as YesNoCancel (Yes saves over it, No drops
// the edits); Cancel is its default.
enum class MsgBoxButtons { OK, YesNoCancel, SaveOverDiscardCancel };
enum class MsgBoxIcon { Information, Exclamation, Question };

// Message-box answer codes.
inline constexpr int kAnswerOK = 1;
inline constexpr int kAnswerCancel = 2;
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;

// Confirmation-dialog answer codes (creation of a missing node).
inline constexpr long kConfirmYes = 2;
inline constexpr long kConfirmCancel = 3;  // stop: create nothing more, save nothing
inline constexpr long kConfirmYesToAll = 4;
inline constexpr long kConfirmNoToAll = 5;  // create nothing more, the save goes on
inline constexpr long kConfirmNo = 7;

// Everything the form and the session ask of the user-interface toolkit. The
// Qt window, the scripted player and the tests each implement it, so every
// modal question goes through this one seam.
class FormServices {
public:
    virtual ~FormServices() = default;

    // Shows a message box and answers the button chosen (kAnswer*).
    virtual int MsgBox(const std::string& text, MsgBoxButtons buttons, MsgBoxIcon icon,
                       const std::string& title) = 0;
    // Details the next MsgBox shows besides its text (one line, may be
    // long); hosts without room for them drop them.
    virtual void SetNextBoxDetails(const std::string& details) { (void)details; }
    // Asks whether to create a missing node: "Yes" (2), "Yes to All" (4),
    // "No" (7), "No to All" (5), "Cancel" (3); closing the dialog answers 3.
    virtual long Confirm(const std::string& text, const std::string& title) = 0;
    // Shows or ends the busy cursor.
    virtual void SetBusyCursor(bool busy) = 0;
    // Lets the toolkit process pending events once.
    virtual void DoEvents() = 0;
    // Shows the form modally; returns when EndModal has been called for it.
    virtual void ShowModal(GUI& form) = 0;
    // The form has unloaded: ends its modal show (if any) and hides it.
    virtual void EndModal(GUI& form) = 0;
    // A save was refused by the database without an "Error" box (its node
    // was gone); told after the operator has been. Hosts that report
    // failures by an exit status count it.
    virtual void SaveRefused() {}
};

}  // namespace dbn::form
