#include "qt/simple_bindings.h"

#include "form/controls/operator_input.h"
#include "form/mnemonics.h"
#include "qt/focus_frame.h"
#include "qt/form_fonts.h"
#include "qt/group_frame.h"
#include "qt/navigation_pictures.h"
#include "qt/qt_children.h"

#include <algorithm>

namespace dbn::qt {

namespace {

// What a line edit takes when the model sets no limit.
constexpr int kUnlimitedLength = 32767;

QString ToQt(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

// ---- Text field -------------------------------------------------------------

TextBinding::TextBinding(form::TextField& field, QLineEdit& edit, const TwipsScale& scale)
    : ControlBinding(field, edit, scale), field_(field), edit_(edit) {
    edit.setMaxLength(field.MaxLength() > 0 ? field.MaxLength() : kUnlimitedLength);
    edit.setReadOnly(field.ReadOnly());
    // A read-only field is read, not visited: no Tab stop, no focus.
    if (field.ReadOnly()) {
        edit.setFocusPolicy(Qt::NoFocus);
    }
    WatchFocus(edit);
    QObject::connect(&edit, &QLineEdit::textEdited, Context(), [this](const QString& text) {
        Input([this, text] { return form::operator_input::Type(field_, text.toStdString()); });
    });
}

void TextBinding::Sync(form::ChangeAspect aspect) {
    if (aspect != form::ChangeAspect::Text) {
        ControlBinding::Sync(aspect);
        return;
    }
    const QString text = ToQt(field_.Text());
    if (edit_.text() != text) {
        edit_.setText(text);
    }
    if (ReceivingInput()) {
        return;
    }
    if (field_.SelLength() > 0) {
        edit_.setSelection(field_.SelStart(), field_.SelLength());
    } else {
        edit_.setCursorPosition(field_.SelStart());
    }
}

// ---- Label ------------------------------------------------------------------

LabelBinding::LabelBinding(form::Label& label, QLabel& widget, const TwipsScale& scale)
    : ControlBinding(label, widget, scale), label_(label), widget_(widget) {
    widget.setFont(FormFont(label.Font()));
    widget.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    widget.setTextFormat(Qt::PlainText);
}

void LabelBinding::Sync(form::ChangeAspect aspect) {
    if (aspect == form::ChangeAspect::Caption) {
        widget_.setText(mnemonic_ ? ToQt(form::MarkMnemonic(label_.Caption(), mnemonic_))
                                  : ToQt(label_.Caption()));
        return;
    }
    ControlBinding::Sync(aspect);
    // A label is never lower than its line of text, so that descenders are
    // not cut off where the platform's font is taller than the form's.
    if (aspect == form::ChangeAspect::Geometry) {
        const int lineHeight = widget_.fontMetrics().height();
        if (widget_.height() < lineHeight) {
            widget_.resize(widget_.width(), lineHeight);
        }
        CentreOnField();
    }
}

void LabelBinding::AlignWith(QWidget& field) {
    field_ = &field;
    Hook(field, QEvent::Move, [this](QEvent&) {
        CentreOnField();
        return false;
    });
    Hook(field, QEvent::Resize, [this](QEvent&) {
        CentreOnField();
        return false;
    });
    CentreOnField();
}

void LabelBinding::SetMnemonic(std::optional<char> letter) {
    mnemonic_ = letter;
    Sync(form::ChangeAspect::Caption);
}

void LabelBinding::CentreOnField() {
    if (field_ == nullptr) {
        return;
    }
    // The field draws its text in its vertical middle; the label takes the
    // field's top and height and draws its text in the middle too.
    const QRect model = Scale().ToPixels(label_.Bounds());
    widget_.setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    widget_.setGeometry(model.x(), field_->y(), model.width(), field_->height());
}

// ---- Button -----------------------------------------------------------------

ButtonBinding::ButtonBinding(form::Button& button, QPushButton& widget, const TwipsScale& scale)
    : ControlBinding(button, widget, scale), button_(button), widget_(widget) {
    if (button.Picture() != form::ButtonPicture::None) {
        widget.setIcon(NavigationPicture(button.Picture()));
        widget.setIconSize(kNavigationPictureSize);
    }
    widget.setDefault(button.IsDefault());
    // The focused button is framed: the default button looks otherwise alike.
    new FocusFrame(widget);  // owned by the button
    WatchFocus(widget);
    QObject::connect(&widget, &QPushButton::clicked, Context(),
                     [this] { Input([this] { return form::operator_input::Press(button_); }); });
}

void ButtonBinding::Sync(form::ChangeAspect aspect) {
    if (aspect == form::ChangeAspect::Caption) {
        widget_.setText(ToQt(form::MarkMnemonic(button_.Caption(), mnemonic_)));
        return;
    }
    ControlBinding::Sync(aspect);
}

void ButtonBinding::SetMnemonic(std::optional<char> letter) {
    mnemonic_ = letter;
    Sync(form::ChangeAspect::Caption);
}

// ---- Frame ------------------------------------------------------------------

FrameBinding::FrameBinding(form::Frame& frame, QWidget& widget, const TwipsScale& scale)
    : ControlBinding(frame, widget, scale) {
    if (auto* box = dynamic_cast<GroupFrame*>(&widget)) {
        box->SetTitle(ToQt(frame.Caption()));
        box->SetCaptionFont(FormFont(form::FontStyle::Bold));
    }
}

// ---- Status bar -------------------------------------------------------------

StatusBinding::StatusBinding(form::StatusBar& bar, QFrame& strip, const TwipsScale& scale)
    : ControlBinding(bar, strip, scale), bar_(bar), panel_(MakeChild<QLabel>(strip)) {
    strip.setFrameShape(QFrame::NoFrame);
    panel_.setFrameShape(QFrame::Panel);
    panel_.setFrameShadow(QFrame::Sunken);
    panel_.setTextFormat(Qt::PlainText);
    panel_.setFont(FormFont());
}

void StatusBinding::Sync(form::ChangeAspect aspect) {
    switch (aspect) {
        case form::ChangeAspect::Text:
            panel_.setText(ToQt(bar_.PanelText()));
            break;
        case form::ChangeAspect::Geometry: {
            ControlBinding::Sync(aspect);
            const int width = std::clamp(Scale().ToPixels(bar_.PanelWidth()), 0, Widget()->width());
            panel_.setGeometry(0, 0, width, Widget()->height());
            break;
        }
        default:
            ControlBinding::Sync(aspect);
            break;
    }
}

}  // namespace dbn::qt
