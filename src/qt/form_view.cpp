#include "qt/form_view.h"

#include "form/controls/operator_input.h"
#include "qt/accessible_names.h"
#include "qt/binding_factory.h"
#include "qt/directory_check_window.h"
#include "qt/form_fonts.h"

#include <QCloseEvent>

#include <algorithm>
#include <exception>
#include <iostream>

namespace dbn::qt {

namespace {

// The control's rectangle on the form, through all its containers.
form::Rect OnForm(const form::Control& control) {
    form::Rect rect = control.Bounds();
    for (const form::Control* container = control.Container(); container != nullptr;
         container = container->Container()) {
        rect.left += container->Left();
        rect.top += container->Top();
    }
    return rect;
}

// Controls placed wholly beyond the form's client area are scratch controls
// that nobody ever sees.
bool OutsideClientArea(const form::Control& control) {
    const form::Rect rect = OnForm(control);
    return rect.left >= form::GUI::kClientWidth || rect.top >= form::GUI::kClientHeight;
}

int Area(const QWidget* widget) {
    return widget->width() * widget->height();
}

}  // namespace

FormView::FormView(form::GUI& form, QWidget* parent)
    : QDialog(parent), form_(form), scale_(ScreenDpi()) {
    setWindowTitle(QString::fromLatin1(form::GUI::kCaption));
    setFont(FormFont());
    setSizeGripEnabled(false);
    Build();
    NameControls(bindings_);
    StackBySize();
    SetTabOrder();
    FollowWidth();
    InstallDirectoryCheckKey(*this);
    formObserver_ = form.Observe([this](form::FormChange change) {
        if (change == form::FormChange::Width) {
            FollowWidth();
        }
    });
}

FormView::~FormView() {
    form_.Unobserve(formObserver_);
    // The bindings go first, while their widgets still exist.
    bindings_.clear();
}

void FormView::Build() {
    for (form::Control* control : form_.Controls()) {
        if (OutsideClientArea(*control)) {
            continue;
        }
        QWidget* parent = this;
        if (control->Container() != nullptr) {
            const auto found = widgets_.find(control->Container());
            if (found == widgets_.end()) {
                continue;  // its container is not shown either
            }
            parent = found->second;
        }
        std::unique_ptr<ControlBinding> binding = BindControl(*control, *parent, scale_);
        if (binding == nullptr) {
            continue;
        }
        widgets_[control] = binding->Widget();
        binding->SyncAll();
        bindings_.push_back(std::move(binding));
    }
}

// Where controls overlap, the smaller lies above the larger: frames drawn over
// another frame's area, and the in-place pickers over their list.
void FormView::StackBySize() {
    std::map<QWidget*, std::vector<QWidget*>> children;
    for (const auto& binding : bindings_) {
        QWidget* widget = binding->Widget();
        children[widget->parentWidget()].push_back(widget);
    }
    for (auto& [parent, siblings] : children) {
        std::stable_sort(siblings.begin(), siblings.end(),
                         [](QWidget* a, QWidget* b) { return Area(a) > Area(b); });
        for (QWidget* widget : siblings) {
            widget->raise();
        }
    }
}

void FormView::SetTabOrder() {
    std::vector<std::pair<int, QWidget*>> order;
    for (const auto& binding : bindings_) {
        order.emplace_back(binding->Control().TabIndex(), binding->Widget());
    }
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t i = 1; i < order.size(); ++i) {
        QWidget::setTabOrder(order[i - 1].second, order[i].second);
    }
}

void FormView::FollowWidth() {
    setFixedSize(scale_.ToPixels(form_.Width()), scale_.ToPixels(form_.Height()));
}

QWidget* FormView::WidgetOf(const std::string& name) const {
    const form::Control* control = form_.FindControl(name);
    const auto found = widgets_.find(control);
    return found == widgets_.end() ? nullptr : found->second;
}

void FormView::closeEvent(QCloseEvent* event) {
    if (!form_.IsLoaded()) {
        event->accept();
        return;
    }
    bool unloaded = false;
    try {
        unloaded = form_.Unload();
    } catch (const std::exception& error) {
        std::cerr << "error while closing: " << error.what() << "\n";
    }
    if (unloaded) {
        event->accept();
    } else {
        event->ignore();
    }
}

// Esc: the form's cancel button, when it can be pressed.
void FormView::reject() {
    for (form::Control* control : form_.Controls()) {
        auto* button = dynamic_cast<form::Button*>(control);
        if (button != nullptr && button->IsCancel()) {
            try {
                form::operator_input::Press(*button);
            } catch (const std::exception& error) {
                std::cerr << "error in " << button->Name() << ": " << error.what() << "\n";
            }
            return;
        }
    }
}

}  // namespace dbn::qt
