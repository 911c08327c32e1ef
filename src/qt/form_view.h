#pragma once

#include "form/gui.h"
#include "qt/control_binding.h"
#include "qt/event_hook.h"
#include "qt/twips.h"

#include <QDialog>
#include <QScrollArea>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace dbn::qt {

// The window of a form: one widget per shown control of GUI::Controls(),
// placed in its container at the model's twips, kept in step with the model
// as it changes. Enter presses the default button, Esc the cancel button,
// Ctrl+S Apply, and the close box asks the form to unload; a refused unload
// keeps it open. The form's area scrolls inside a window that never exceeds
// the screen, with OK, Cancel and Apply kept in view; the part the form's
// width cuts off is out of reach, and while a save disables Frame1 the whole
// form is disabled.
class FormView : public QDialog {
public:
    explicit FormView(form::GUI& form, QWidget* parent = nullptr);
    ~FormView() override;

    form::GUI& Form() const noexcept { return form_; }
    const TwipsScale& Scale() const noexcept { return scale_; }

    // The widget of a control by the control's name, or nullptr.
    QWidget* WidgetOf(const std::string& name) const;
    template <class Widget>
    Widget* WidgetAs(const std::string& name) const {
        return qobject_cast<Widget*>(WidgetOf(name));
    }

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Build();
    void StackBySize();
    void SetTabOrder();
    void FollowWidth();
    void FollowFrame1();
    void FitToScreen();
    void KeepCommitButtonsInView();
    void ApplyShortcut();

    form::GUI& form_;
    TwipsScale scale_;
    std::vector<std::unique_ptr<ControlBinding>> bindings_;
    std::map<const form::Control*, QWidget*> widgets_;
    int formObserver_ = 0;
    int frame1Observer_ = 0;
    QScrollArea* scroll_ = nullptr;
    QWidget* content_ = nullptr;  // the form's client area, in the scroll area
    std::unique_ptr<EventHook> viewportResize_;
};

}  // namespace dbn::qt
