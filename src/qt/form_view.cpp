#include "qt/form_view.h"

#include "form/controls/operator_input.h"
#include "qt/accessible_names.h"
#include "qt/binding_factory.h"
#include "qt/directory_check_window.h"
#include "qt/form_fonts.h"
#include "qt/screen_fit.h"
#include "qt/try_as_caller_window.h"

#include <QCloseEvent>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

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

// The shift that brings rect inside bounds along one axis, where it fits.
int ShiftInto(int start, int length, int boundsStart, int boundsLength) {
    if (start + length > boundsStart + boundsLength) {
        return boundsStart + boundsLength - (start + length);
    }
    return start < boundsStart ? boundsStart - start : 0;
}

}  // namespace

FormView::FormView(form::GUI& form, QWidget* parent)
    : QDialog(parent), form_(form), scale_(ScreenDpi()) {
    setWindowTitle(QString::fromStdString(form.Title()));
    setFont(FormFont());
    setSizeGripEnabled(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    scroll_ = new QScrollArea(this);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(false);
    scroll_->setFocusPolicy(Qt::NoFocus);
    content_ = new QWidget;
    scroll_->setWidget(content_);
    layout->addWidget(scroll_);
    for (QScrollBar* bar : {scroll_->horizontalScrollBar(), scroll_->verticalScrollBar()}) {
        connect(bar, &QScrollBar::valueChanged, this, [this] { KeepCommitButtonsInView(); });
    }
    viewportResize_ =
        std::make_unique<EventHook>(*scroll_->viewport(), QEvent::Resize, [this](QEvent&) {
            KeepCommitButtonsInView();
            return false;
        });
    Build();
    NameControls(bindings_);
    StackBySize();
    SetTabOrder();
    FollowWidth();
    InstallDirectoryCheckKey(*this);
    InstallCallerTools(*this);
    ApplyShortcut();
    formObserver_ = form.Observe([this](form::FormChange change) {
        if (change == form::FormChange::Width) {
            FollowWidth();
        } else if (change == form::FormChange::Title) {
            setWindowTitle(QString::fromStdString(form_.Title()));
        }
    });
    frame1Observer_ = form.Frame1.Observe([this](form::Control&, form::ChangeAspect aspect) {
        if (aspect == form::ChangeAspect::State) {
            FollowFrame1();
        }
    });
    FollowFrame1();
}

FormView::~FormView() {
    form_.Unobserve(formObserver_);
    form_.Frame1.Unobserve(frame1Observer_);
    // The bindings go first, while their widgets still exist.
    bindings_.clear();
}

void FormView::Build() {
    for (form::Control* control : form_.Controls()) {
        if (OutsideClientArea(*control)) {
            continue;
        }
        QWidget* parent = content_;
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
    const QSize full(scale_.ToPixels(form_.Width()), scale_.ToPixels(form_.Height()));
    content_->setFixedSize(full);
    // What the width cuts off is hidden, not merely out of sight.
    for (const auto& binding : bindings_) {
        const form::Control& control = binding->Control();
        if (control.Container() == nullptr) {
            binding->SetCutOff(OnForm(control).left >= form_.Width());
        }
    }
    FitToScreen();
    KeepCommitButtonsInView();
}

// The window grows no larger than the form, nor than the screen.
void FormView::FitToScreen() {
    const QSize fitting = content_->size().boundedTo(AvailableClientSize(*this));
    setMaximumSize(fitting);
    resize(fitting);
}

// A save disables Frame1; the language frame, the DIR box and the custom
// section beside it go with it.
void FormView::FollowFrame1() {
    content_->setEnabled(form_.Frame1.Enabled());
}

// OK, Cancel and Apply move, as one group, into the part of the form the
// window shows; where the whole form shows, they stay where the form has them.
void FormView::KeepCommitButtonsInView() {
    std::vector<std::pair<QWidget*, QRect>> buttons;
    QRect group;
    for (const form::Control* control : {static_cast<const form::Control*>(&form_.cmdOK),
                                         static_cast<const form::Control*>(&form_.cmdCancel),
                                         static_cast<const form::Control*>(&form_.cmdApply)}) {
        QWidget* widget = WidgetOf(control->Name());
        if (widget == nullptr) {
            continue;
        }
        const QRect natural = scale_.ToPixels(control->Bounds());
        buttons.emplace_back(widget, natural);
        group = group.united(natural);
    }
    if (buttons.empty()) {
        return;
    }
    const QPoint origin = buttons.front().first->parentWidget()->mapTo(content_, QPoint(0, 0));
    const QRect shown(
        QPoint(scroll_->horizontalScrollBar()->value(), scroll_->verticalScrollBar()->value()) -
            origin,
        scroll_->viewport()->size());
    const int dx = ShiftInto(group.left(), group.width(), shown.left(), shown.width());
    const int dy = ShiftInto(group.top(), group.height(), shown.top(), shown.height());
    for (auto& [widget, natural] : buttons) {
        widget->setGeometry(natural.translated(dx, dy));
        widget->raise();
    }
}

void FormView::ApplyShortcut() {
    auto* save = new QShortcut(QKeySequence::Save, this);
    connect(save, &QShortcut::activated, this, [this] {
        if (!form_.cmdApply.Enabled() || !form_.cmdApply.Visible()) {
            return;
        }
        try {
            form::operator_input::Press(form_.cmdApply);
        } catch (const std::exception& error) {
            std::cerr << "error in cmdApply: " << error.what() << "\n";
        }
    });
}

void FormView::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // Now that the frame is known, the window keeps within the screen.
    FitToScreen();
    // The editor opens at the node's label.
    if (QWidget* label = WidgetOf(form_.txtDescription.Name());
        label != nullptr && label->isEnabled()) {
        label->setFocus(Qt::OtherFocusReason);
    }
}

void FormView::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    KeepCommitButtonsInView();
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
