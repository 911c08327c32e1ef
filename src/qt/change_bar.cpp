#include "qt/change_bar.h"

#include "core/component_error.h"
#include "form/gui.h"
#include "qt/form_view.h"
#include "qt/live_watch.h"
#include "session/business_rules.h"
#include "session/change_watcher.h"
#include "session/editor_changes.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include <array>

namespace dbn::qt {
namespace {

constexpr int kBarHeight = 30;
const std::array<const char*, 3> kButtons{"cmdOK", "cmdCancel", "cmdApply"};

}  // namespace

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
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    label_ = new QLabel(this);
    layout->addWidget(label_, 1);
    auto* show = new QPushButton(QStringLiteral("Show Changes"), this);
    auto* reload = new QPushButton(QStringLiteral("Reload"), this);
    show->setAutoDefault(false);
    reload->setAutoDefault(false);
    layout->addWidget(show);
    layout->addWidget(reload);
    connect(show, &QPushButton::clicked, this,
            [this] { QMessageBox::information(&view_, QStringLiteral("Information"), details_); });
    connect(reload, &QPushButton::clicked, this, [this] { Reload(); });
    hide();
    live_ = new LiveWatch(
        std::move(watcher), this,
        [this](const std::vector<session::HistoryEntry>& entries) { ShowEntries(entries); },
        [this](const std::string& notice) { ShowNotice(QString::fromStdString(notice)); });
}

ChangeBar::~ChangeBar() = default;

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
    return isVisible() || shift_ > 0 ? label_->text() : QString();
}

QString ChangeBar::Details() const {
    return details_;
}

void ChangeBar::ShowBar(const QString& text, const QString& details) {
    label_->setText(text);
    details_ = details;
    if (shift_ == 0) {
        // Room above the buttons: the window grows and the buttons move down.
        int top = view_.height();
        for (const char* name : kButtons) {
            if (QWidget* button = view_.WidgetOf(name)) {
                top = std::min(top, button->y());
            }
        }
        shift_ = kBarHeight;
        for (const char* name : kButtons) {
            if (QWidget* button = view_.WidgetOf(name)) {
                button->move(button->x(), button->y() + shift_);
            }
        }
        view_.setFixedSize(view_.width(), view_.height() + shift_);
        setGeometry(6, top, view_.width() - 12, kBarHeight - 4);
    }
    show();
    raise();
}

void ChangeBar::HideBar() {
    if (shift_ == 0) {
        return;
    }
    hide();
    for (const char* name : kButtons) {
        if (QWidget* button = view_.WidgetOf(name)) {
            button->move(button->x(), button->y() - shift_);
        }
    }
    view_.setFixedSize(view_.width(), view_.height() - shift_);
    shift_ = 0;
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
