#pragma once

#include "form/gui.h"
#include "qt/control_binding.h"
#include "qt/twips.h"

#include <QDialog>
#include <QPointer>
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
// the screen; OK, Cancel, Apply and the status bar sit in a strip of their
// own below it, always in view, with room above them for a bar (AddBar).
// The part the form's width cuts off is out of reach, and while a save
// disables Frame1 the whole form is disabled; once it is enabled again the
// focus returns to the control the operator was in.
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

    // A caption of the window outside the form (the bar's buttons and the
    // tools' beside OK) with its mnemonic, chosen with the form's.
    QString MnemonicText(const std::string& caption) const;
    // Places a bar in its own row between the form and the buttons; the bar
    // shows and hides itself, calling FitToScreen after each.
    void AddBar(QWidget& bar);
    // Sizes the window to the form, the bar and the buttons, within the screen.
    void FitToScreen();
    // Gives the focus back to the last control of the form the operator was
    // in (not OK, Cancel or Apply), when it is shown and enabled.
    void RestoreFormFocus();

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;
    void showEvent(QShowEvent* event) override;

private:
    void Build();
    void StackBySize();
    void SetTabOrder();
    void FollowWidth();
    void FollowFrame1();
    void BuildButtonStrip();
    int FormHeightAboveButtons() const;
    int BelowForm(int width) const;
    void ApplyShortcut();
    void NoteFocus(QWidget* now);

    form::GUI& form_;
    TwipsScale scale_;
    std::vector<std::unique_ptr<ControlBinding>> bindings_;
    std::map<const form::Control*, QWidget*> widgets_;
    int formObserver_ = 0;
    int frame1Observer_ = 0;
    int applyObserver_ = 0;
    QScrollArea* scroll_ = nullptr;
    QWidget* content_ = nullptr;  // the form's client area, in the scroll area
    // The strip below the form: its plane holds OK, Cancel, Apply and the
    // status bar at their places on the form, moved up to the strip's top.
    QWidget* strip_ = nullptr;
    QWidget* stripPlane_ = nullptr;
    QPointer<QWidget> bar_;
    QPointer<QWidget> lastFocus_;
    std::map<std::string, QString> otherMnemonics_;
    bool formEnabled_ = true;
};

}  // namespace dbn::qt
