#pragma once

#include "form/controls/simple_controls.h"
#include "qt/control_binding.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <optional>

namespace dbn::qt {

// A text field as a line edit; every edit is one Type with the whole text.
class TextBinding : public ControlBinding {
public:
    TextBinding(form::TextField& field, QLineEdit& edit, const TwipsScale& scale);

protected:
    void Sync(form::ChangeAspect aspect) override;

private:
    form::TextField& field_;
    QLineEdit& edit_;
};

class LabelBinding : public ControlBinding {
public:
    LabelBinding(form::Label& label, QLabel& widget, const TwipsScale& scale);

    // Centres a one-line label on the text line of the field beside it,
    // from now on whenever either moves.
    void AlignWith(QWidget& field);
    // Underlines a letter of the caption, whose key then reaches its field.
    void SetMnemonic(std::optional<char> letter);

protected:
    void Sync(form::ChangeAspect aspect) override;

private:
    void CentreOnField();

    form::Label& label_;
    QLabel& widget_;
    QPointer<QWidget> field_;
    std::optional<char> mnemonic_;
};

// A button with its caption or its navigation picture; a click is a Press.
class ButtonBinding : public ControlBinding {
public:
    ButtonBinding(form::Button& button, QPushButton& widget, const TwipsScale& scale);

    // Underlines a letter of the caption, whatever the caption becomes.
    void SetMnemonic(std::optional<char> letter);

protected:
    void Sync(form::ChangeAspect aspect) override;

private:
    form::Button& button_;
    QPushButton& widget_;
    std::optional<char> mnemonic_;
};

// A frame: a group box with its caption, or a borderless container. The
// frame's own font (bold for a caption) is set on it alone; its children
// carry the form's font.
class FrameBinding : public ControlBinding {
public:
    FrameBinding(form::Frame& frame, QWidget& widget, const TwipsScale& scale);
};

// The status bar: a strip whose first panel shows the panel text.
class StatusBinding : public ControlBinding {
public:
    StatusBinding(form::StatusBar& bar, QFrame& strip, const TwipsScale& scale);

protected:
    void Sync(form::ChangeAspect aspect) override;

private:
    form::StatusBar& bar_;
    QLabel& panel_;
};

}  // namespace dbn::qt
