#include "qt/control_binding.h"

#include "form/controls/operator_input.h"

#include <QFocusEvent>
#include <QSignalBlocker>

#include <exception>
#include <iostream>

namespace dbn::qt {

namespace {

// Focus changes the operator makes; the others come from code, popups
// closing or the window being activated again, which the form never sees.
bool IsOperatorFocus(Qt::FocusReason reason) {
    return reason == Qt::MouseFocusReason || reason == Qt::TabFocusReason ||
           reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
}

}  // namespace

ControlBinding::ControlBinding(form::Control& control, QWidget& widget, const TwipsScale& scale)
    : control_(control), widget_(&widget), scale_(scale) {
    widget.setObjectName(QString::fromStdString(control.Name()));
    observer_ =
        control.Observe([this](form::Control&, form::ChangeAspect aspect) { OnChanged(aspect); });
}

ControlBinding::~ControlBinding() {
    control_.Unobserve(observer_);
}

void ControlBinding::SyncAll() {
    for (form::ChangeAspect aspect :
         {form::ChangeAspect::Entries, form::ChangeAspect::Columns, form::ChangeAspect::Rows,
          form::ChangeAspect::Selection, form::ChangeAspect::Text, form::ChangeAspect::Caption,
          form::ChangeAspect::Geometry, form::ChangeAspect::State}) {
        OnChanged(aspect);
    }
}

void ControlBinding::SetCutOff(bool cutOff) {
    if (cutOff_ == cutOff) {
        return;
    }
    cutOff_ = cutOff;
    OnChanged(form::ChangeAspect::State);
}

void ControlBinding::OnChanged(form::ChangeAspect aspect) {
    if (widget_ == nullptr) {
        return;
    }
    const QSignalBlocker blocker(widget_.data());
    Sync(aspect);
}

void ControlBinding::Sync(form::ChangeAspect aspect) {
    switch (aspect) {
        case form::ChangeAspect::State:
            widget_->setVisible(control_.Visible() && !cutOff_);
            widget_->setEnabled(control_.Enabled());
            break;
        case form::ChangeAspect::Geometry:
            widget_->setGeometry(scale_.ToPixels(control_.Bounds()));
            break;
        case form::ChangeAspect::Focus:
            if (control_.HasFocus() && !widget_->hasFocus()) {
                widget_->setFocus(Qt::OtherFocusReason);
            }
            break;
        default:
            break;
    }
}

void ControlBinding::Input(const std::function<bool()>& action) {
    bool accepted = false;
    receivingInput_ = true;
    try {
        accepted = action();
    } catch (const std::exception& error) {
        // Qt cannot carry an exception through its event loop; the form's
        // own traps report its errors, so this is a failure outside them.
        std::cerr << "error in " << control_.Name() << ": " << error.what() << "\n";
    }
    receivingInput_ = false;
    if (!accepted) {
        SyncAll();
    }
}

void ControlBinding::WatchFocus(QWidget& part) {
    Hook(part, QEvent::FocusIn, [this](QEvent& event) {
        const auto& focus = static_cast<QFocusEvent&>(event);
        if (IsOperatorFocus(focus.reason()) && !control_.HasFocus()) {
            Input([this] { return form::operator_input::Focus(control_); });
        }
        return false;
    });
}

void ControlBinding::Hook(QObject& target, QEvent::Type type,
                          std::function<bool(QEvent&)> handler) {
    hooks_.push_back(std::make_unique<EventHook>(target, type, std::move(handler)));
}

}  // namespace dbn::qt
