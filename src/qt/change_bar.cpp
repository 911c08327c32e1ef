#include "qt/change_bar.h"

#include "core/component_error.h"
#include "form/gui.h"
#include "qt/focus_frame.h"
#include "qt/form_view.h"
#include "qt/live_watch.h"
#include "session/editor/business_rules.h"
#include "session/editor/editor_changes.h"
#include "session/history/change_watcher.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace dbn::qt {

ChangeBar* ChangeBar::Attach(FormView& view, form::GUI& form) {
    auto* rules = dynamic_cast<Business_Rules*>(form.FormBusinessRules());
    if (rules == nullptr) {
        return nullptr;
    }
    std::unique_ptr<session::ChangeWatcher> watcher;
    try {
        watcher = std::make_unique<session::ChangeWatcher>(rules->Db().Target());
    } catch (const ComponentError&) {
        return nullptr;
    }
    if (!watcher->Active()) {
        return nullptr;
    }
    return new ChangeBar(view, form, std::move(watcher));  // owned by view
}

ChangeBar::ChangeBar(FormView& view, form::GUI& form,
                     std::unique_ptr<session::ChangeWatcher> watcher)
    : QFrame(&view), view_(view), form_(form) {
    setObjectName(QStringLiteral("changeBar"));
    setAccessibleName(QStringLiteral("Changed by another program"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(255, 244, 200));
    setPalette(colours);
    // The sentence wraps where the window is narrow; the buttons go below it.
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    label_ = new QLabel(this);
    label_->setWordWrap(true);
    label_->setTextFormat(Qt::PlainText);
    layout->addWidget(label_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto* show = new QPushButton(view.MnemonicText(kShowChanges), this);
    auto* reload = new QPushButton(view.MnemonicText(kReload), this);
    show->setAccessibleName(QString::fromLatin1(kShowChanges));
    reload->setAccessibleName(QString::fromLatin1(kReload));
    for (QPushButton* button : {show, reload}) {
        // A click leaves the focus in the form; Tab still reaches them.
        button->setAutoDefault(false);
        button->setFocusPolicy(Qt::TabFocus);
        new FocusFrame(*button);  // owned by the button
        buttons->addWidget(button);
    }
    layout->addLayout(buttons);
    connect(show, &QPushButton::clicked, this,
            [this] { QMessageBox::information(&view_, QStringLiteral("Information"), details_); });
    connect(reload, &QPushButton::clicked, this, [this] { Reload(); });
    hide();
    view.AddBar(*this);
    // A load or a save shows the node as stored: the heard change is in it.
    formObserver_ = form.Observe([this](form::FormChange change) {
        if (change == form::FormChange::Title) {
            HideBar();
        }
    });
    live_ = new LiveWatch(
        std::move(watcher), this,
        [this](const std::vector<session::HistoryEntry>& entries) { ShowEntries(entries); },
        [this](const std::string& notice) { ShowNotice(QString::fromStdString(notice)); });
}

ChangeBar::~ChangeBar() {
    form_.Unobserve(formObserver_);
}

void ChangeBar::TakeChanges() {
    live_->Check();
}

void ChangeBar::ShowNotice(const QString& notice) {
    if (!form_.IsLoaded()) {
        return;
    }
    // Beside a change already shown, else on its own.
    ShowBar(Text().isEmpty() ? notice : Text() + QStringLiteral(" ") + notice, details_);
}

void ChangeBar::ShowEntries(const std::vector<session::HistoryEntry>& entries) {
    if (!form_.IsLoaded()) {
        return;
    }
    for (const session::HistoryEntry& entry : entries) {
        if (const std::optional<std::string> text = session::ChangeBarText(form_, entry)) {
            ShowBar(QString::fromStdString(*text),
                    QString::fromStdString(session::ChangeBarDetails(form_, entry)));
        }
    }
}

QString ChangeBar::Text() const {
    return isHidden() ? QString() : label_->text();
}

QString ChangeBar::Details() const {
    return details_;
}

void ChangeBar::ShowBar(const QString& text, const QString& details) {
    label_->setText(text);
    details_ = details;
    if (isHidden()) {
        show();
        view_.FitToScreen();
    }
}

void ChangeBar::HideBar() {
    if (isHidden()) {
        return;
    }
    const bool hadFocus = isAncestorOf(view_.focusWidget());
    hide();
    view_.FitToScreen();
    if (hadFocus) {
        view_.RestoreFormFocus();
    }
}

void ChangeBar::Reload() {
    auto* rules = dynamic_cast<Business_Rules*>(form_.FormBusinessRules());
    if (rules != nullptr && form_.IsLoaded()) {
        rules->LoadData(form_.nodeNumber());
        if (rules->LoadFailed()) {
            return;  // the form is as it was, the bar too: Reload can be tried again
        }
        form_.cmdApply.SetEnabled(false);
    }
    HideBar();
}

}  // namespace dbn::qt
