#include "qt/qt_form_services.h"
#include "qt/change_bar.h"

#include "form/gui.h"
#include "qt/form_view.h"

#include <QApplication>
#include <QEventLoop>
#include <QIcon>
#include <QPushButton>
#include <QTimer>

#include <utility>
#include <vector>

namespace dbn::qt {

namespace {

// The model writes line breaks as CR LF.
QString DialogText(const std::string& text) {
    QString shown = QString::fromStdString(text);
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return shown;
}

QMessageBox::Icon IconOf(form::MsgBoxIcon icon) {
    switch (icon) {
        case form::MsgBoxIcon::Exclamation:
            return QMessageBox::Warning;
        case form::MsgBoxIcon::Question:
            return QMessageBox::Question;
        case form::MsgBoxIcon::Information:
            break;
    }
    return QMessageBox::Information;
}

// Restores the view the services had when a modal show ends, on every path.
class ViewScope {
public:
    ViewScope(FormView*& current, FormView& view) : current_(current), previous_(current) {
        current_ = &view;
    }
    ~ViewScope() { current_ = previous_; }
    ViewScope(const ViewScope&) = delete;
    ViewScope& operator=(const ViewScope&) = delete;

private:
    FormView*& current_;
    FormView* previous_;
};

// The editor's boxes and its question about a missing node look alike: plain
// captions, no pictures on the buttons, whatever the platform's style adds to
// its standard buttons.
void PlainButtons(QMessageBox& box) {
    for (QAbstractButton* button : box.buttons()) {
        button->setIcon(QIcon());
    }
}

}  // namespace

QtFormServices::~QtFormServices() {
    SetBusyCursor(false);
}

void QtFormServices::Run(QMessageBox& box) {
    if (whenAsked) {
        QTimer::singleShot(0, &box, [this, &box] { whenAsked(box); });
    }
    box.exec();
}

int QtFormServices::MsgBox(const std::string& text, form::MsgBoxButtons buttons,
                           form::MsgBoxIcon icon, const std::string& title) {
    QMessageBox box(IconOf(icon), QString::fromStdString(title), DialogText(text),
                    QMessageBox::NoButton, view_);
    // Each button with its answer; the last one is Escape's.
    std::vector<std::pair<QAbstractButton*, int>> answers;
    switch (buttons) {
        case form::MsgBoxButtons::OK:
            answers.emplace_back(box.addButton(QMessageBox::Ok), form::kAnswerOK);
            break;
        case form::MsgBoxButtons::YesNoCancel:
            answers.emplace_back(box.addButton(QMessageBox::Yes), form::kAnswerYes);
            answers.emplace_back(box.addButton(QMessageBox::No), form::kAnswerNo);
            answers.emplace_back(box.addButton(QMessageBox::Cancel), form::kAnswerCancel);
            break;
        case form::MsgBoxButtons::SaveOverDiscardCancel:
            // Saving over another program's change is never what Enter does.
            answers.emplace_back(
                box.addButton(QStringLiteral("&Save Over It"), QMessageBox::AcceptRole),
                form::kAnswerYes);
            answers.emplace_back(
                box.addButton(QStringLiteral("&Discard My Changes"), QMessageBox::DestructiveRole),
                form::kAnswerNo);
            answers.emplace_back(box.addButton(QMessageBox::Cancel), form::kAnswerCancel);
            box.setDefaultButton(static_cast<QPushButton*>(answers.back().first));
            break;
    }
    box.setEscapeButton(answers.back().first);
    if (!nextDetails_.empty()) {
        box.setDetailedText(QString::fromStdString(std::exchange(nextDetails_, std::string())));
    }
    PlainButtons(box);
    Run(box);
    for (const auto& [button, code] : answers) {
        if (box.clickedButton() == button) {
            return code;
        }
    }
    return answers.back().second;
}

long QtFormServices::Confirm(const std::string& text, const std::string& title) {
    QMessageBox box(QMessageBox::Question, QString::fromStdString(title), DialogText(text),
                    QMessageBox::NoButton, view_);
    // Captions with their mnemonics: Y, A, N and O; Cancel is Escape.
    const std::pair<const char*, long> choices[] = {{"&Yes", form::kConfirmYes},
                                                    {"Yes to &All", form::kConfirmYesToAll},
                                                    {"&No", form::kConfirmNo},
                                                    {"N&o to All", form::kConfirmNoToAll},
                                                    {"Cancel", form::kConfirmCancel}};
    std::vector<std::pair<QAbstractButton*, long>> answers;
    for (const auto& [caption, code] : choices) {
        const QMessageBox::ButtonRole role =
            code == form::kConfirmCancel ? QMessageBox::RejectRole : QMessageBox::AcceptRole;
        answers.emplace_back(box.addButton(QString::fromLatin1(caption), role), code);
    }
    // Closing the dialog is its cancel.
    box.setEscapeButton(answers.back().first);
    PlainButtons(box);
    Run(box);
    for (const auto& [button, code] : answers) {
        if (box.clickedButton() == button) {
            return code;
        }
    }
    return form::kConfirmCancel;
}

void QtFormServices::SetBusyCursor(bool busy) {
    if (busy == busy_) {
        return;
    }
    busy_ = busy;
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QApplication::restoreOverrideCursor();
    }
}

void QtFormServices::DoEvents() {
    // Lets the status text paint during a save. The operator's input (clicks,
    // keys, the close box) waits until the save is over: a close handled now
    // would unload the form under the running save.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void QtFormServices::ShowModal(form::GUI& form) {
    FormView view(form);
    const ViewScope scope(view_, view);
    ChangeBar::Attach(view, form);
    if (whenShown) {
        QTimer::singleShot(0, &view, [this, &form, &view] {
            whenShown(form, view);
            if (form.IsLoaded()) {
                Abandon(form);
            }
        });
    }
    view.exec();
}

void QtFormServices::EndModal(form::GUI& form) {
    if (view_ != nullptr && &view_->Form() == &form) {
        view_->done(QDialog::Accepted);
    }
}

void QtFormServices::Abandon(form::GUI& form) {
    form.DiscardChangesAndUnload();
    if (view_ != nullptr && view_->isVisible()) {
        view_->done(QDialog::Rejected);
    }
}

}  // namespace dbn::qt
