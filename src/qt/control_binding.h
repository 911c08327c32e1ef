#pragma once

#include "form/controls/control.h"
#include "qt/event_hook.h"
#include "qt/twips.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace dbn::qt {

// Mirrors one control of the form model in one widget. Every change of the
// model is written to the widget at once, with the widget's signals blocked so
// that nothing echoes back; the operator's input goes to the model only
// through the form's operator calls (Input).
class ControlBinding {
public:
    ControlBinding(form::Control& control, QWidget& widget, const TwipsScale& scale);
    virtual ~ControlBinding();
    ControlBinding(const ControlBinding&) = delete;
    ControlBinding& operator=(const ControlBinding&) = delete;

    form::Control& Control() const noexcept { return control_; }
    QWidget* Widget() const noexcept { return widget_; }

    // Writes every aspect of the control to the widget.
    void SyncAll();
    // A control cut off by the form's width is hidden whatever the model says,
    // so that no key, Tab, mnemonic or click reaches it unseen.
    void SetCutOff(bool cutOff);

protected:
    // Writes one aspect; the base handles State, Geometry and Focus.
    virtual void Sync(form::ChangeAspect aspect);

    // Runs one input of the operator. When the model refuses it (false), or
    // fails, the widget is written again from the model.
    void Input(const std::function<bool()>& action);
    // True while this binding's own input runs: the widget already shows
    // what the operator did, so its caret is left alone.
    bool ReceivingInput() const noexcept { return receivingInput_; }

    // Gives the focus to the control when the operator moves it onto this
    // widget (or onto part of it, such as a combo's edit field).
    void WatchFocus(QWidget& part);
    void Hook(QObject& target, QEvent::Type type, std::function<bool(QEvent&)> handler);

    // The context of the binding's signal connections: they end with it.
    QObject* Context() noexcept { return &context_; }
    const TwipsScale& Scale() const noexcept { return scale_; }

private:
    void OnChanged(form::ChangeAspect aspect);

    form::Control& control_;
    QPointer<QWidget> widget_;
    const TwipsScale& scale_;
    QObject context_;
    std::vector<std::unique_ptr<EventHook>> hooks_;
    int observer_ = 0;
    bool receivingInput_ = false;
    bool cutOff_ = false;
};

}  // namespace dbn::qt
