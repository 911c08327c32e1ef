#pragma once

#include "form/gui.h"
#include "qt/control_binding.h"
#include "qt/twips.h"

#include <QDialog>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace dbn::qt {

// The window of a form: one widget per shown control of GUI::Controls(),
// placed in its container at the model's twips, kept in step with the model
// as it changes. Enter presses the default button, Esc the cancel button, and
// the close box asks the form to unload; a refused unload keeps it open.
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

private:
    void Build();
    void StackBySize();
    void SetTabOrder();
    void FollowWidth();

    form::GUI& form_;
    TwipsScale scale_;
    std::vector<std::unique_ptr<ControlBinding>> bindings_;
    std::map<const form::Control*, QWidget*> widgets_;
    int formObserver_ = 0;
};

}  // namespace dbn::qt
