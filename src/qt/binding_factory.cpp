#include "qt/binding_factory.h"

#include "qt/form_fonts.h"
#include "qt/group_frame.h"
#include "qt/list_binding.h"
#include "qt/list_view_binding.h"
#include "qt/qt_children.h"
#include "qt/simple_bindings.h"

#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

namespace dbn::qt {

namespace {

// A child widget in the form's regular font.
template <class Widget>
Widget& MakeWidget(QWidget& parent) {
    auto& widget = MakeChild<Widget>(parent);
    if (widget.font() != FormFont()) {
        widget.setFont(FormFont());
    }
    return widget;
}

template <class Model>
Model& As(form::Control& control) {
    return static_cast<Model&>(control);
}

}  // namespace

std::unique_ptr<ControlBinding> BindControl(form::Control& control, QWidget& parent,
                                            const TwipsScale& scale) {
    switch (control.Kind()) {
        case form::ControlKind::ChoiceList:
        case form::ControlKind::EditableList:
            return std::make_unique<ListBinding>(As<form::ListControl>(control),
                                                 MakeWidget<QComboBox>(parent), scale);
        case form::ControlKind::TextField:
            return std::make_unique<TextBinding>(As<form::TextField>(control),
                                                 MakeWidget<QLineEdit>(parent), scale);
        case form::ControlKind::Label:
            return std::make_unique<LabelBinding>(As<form::Label>(control),
                                                  MakeWidget<QLabel>(parent), scale);
        case form::ControlKind::Button:
            return std::make_unique<ButtonBinding>(As<form::Button>(control),
                                                   MakeWidget<QPushButton>(parent), scale);
        case form::ControlKind::Frame: {
            auto& frame = As<form::Frame>(control);
            if (frame.Bordered()) {
                return std::make_unique<FrameBinding>(frame, MakeWidget<GroupFrame>(parent), scale);
            }
            auto& plain = MakeWidget<QFrame>(parent);
            plain.setFrameShape(QFrame::NoFrame);
            return std::make_unique<FrameBinding>(frame, plain, scale);
        }
        case form::ControlKind::ListView:
            return std::make_unique<ListViewBinding>(As<form::ListView>(control),
                                                     MakeWidget<QTreeWidget>(parent), scale);
        case form::ControlKind::StatusBar:
            return std::make_unique<StatusBinding>(As<form::StatusBar>(control),
                                                   MakeWidget<QFrame>(parent), scale);
        case form::ControlKind::PlainList:
        case form::ControlKind::ImageList:
            break;
    }
    return nullptr;
}

}  // namespace dbn::qt
