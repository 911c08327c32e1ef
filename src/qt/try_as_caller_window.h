#pragma once

#include "session/editor/caller_trial.h"

#include <QWidget>

#include <memory>
#include <vector>

class QLabel;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace dbn::form {
class Control;
class GUI;
}  // namespace dbn::form

namespace dbn::qt {

class FormView;

// "Try as Caller": a call through the node on show, under the settings the
// form shows now, saved or not. A keypad (0 to 9, * and #, and Silence for a
// time-out), the keyboard's digits, * and # working as the keypad, the
// transcript growing as the call proceeds, the current matches, and Restart.
// A change in the editor starts the call again. Escape and Ctrl+W close it.
class TryAsCallerWindow : public QWidget {
    Q_OBJECT

public:
    static constexpr const char* kTitle = "Try as Caller";

    TryAsCallerWindow(form::GUI& form, QWidget* parent = nullptr);
    ~TryAsCallerWindow() override;

    // Answers a keypad key ('0'-'9', '*', '#') or, with '\0', silence.
    void Press(char key);
    // Starts the call again on the form's settings as they are now.
    void Restart();
    // Starts the call again only when the form's settings changed.
    void FollowForm();

    QString Transcript() const;
    QStringList Matches() const;
    QString State() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* MakeKeypad();
    void ShowCall();
    void WatchForm();

    form::GUI& form_;
    session::CallerTrial trial_;
    QPlainTextEdit* transcript_;
    QListWidget* matches_;
    QLabel* state_;
    std::vector<std::pair<form::Control*, int>> observers_;  // watched, with observer ids
    int formObserver_ = 0;
    bool refreshPending_ = false;
};

// Shows the view's one "Try as Caller" window (made on first use), its call
// started again on the form's settings as they are now.
TryAsCallerWindow& ShowTryAsCaller(FormView& view);

}  // namespace dbn::qt
