#include "qt/form_view.h"

#include "form/controls/operator_input.h"
#include "qt/accessible_combo.h"
#include "qt/accessible_names.h"
#include "qt/binding_factory.h"
#include "qt/change_bar.h"
#include "qt/directory_check_window.h"
#include "qt/form_fonts.h"
#include "qt/screen_fit.h"
#include "qt/tool_window.h"
#include "qt/try_as_caller_window.h"

#include <QApplication>
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

// The space kept above the buttons in their strip and below the form's
// lowest control.
constexpr int kStripMarginTwips = 120;

bool IsCommitButton(const form::GUI& form, const form::Control& control) {
    return &control == &form.cmdOK || &control == &form.cmdCancel || &control == &form.cmdApply;
}

}  // namespace

FormView::FormView(form::GUI& form, QWidget* parent)
    : QDialog(parent), form_(form), scale_(ScreenDpi()) {
    NameComboBoxesByField();
    // Before Apply's widget follows the control: Apply disabled under the
    // focus (by a save, or one that had nothing to write) hands the focus
    // back to the operator's control rather than on to the next one.
    applyObserver_ = form.cmdApply.Observe([this](form::Control&, form::ChangeAspect aspect) {
        QWidget* apply = WidgetOf(form_.cmdApply.Name());
        if (aspect == form::ChangeAspect::State && !form_.cmdApply.Enabled() && apply != nullptr &&
            focusWidget() == apply) {
            RestoreFormFocus();
        }
    });
    setWindowTitle(QString::fromStdString(form.Title()));
    setFont(FormFont());
    setSizeGripEnabled(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    scroll_ = new QScrollArea(this);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(false);
    scroll_->setFocusPolicy(Qt::NoFocus);
    content_ = new QWidget;
    scroll_->setWidget(content_);
    layout->addWidget(scroll_, 1);
    strip_ = new QWidget(this);
    stripPlane_ = new QWidget(strip_);
    layout->addWidget(strip_);
    Build();
    BuildButtonStrip();
    // The captions outside the form: the bar's buttons, and last (F7 and F8
    // open them too) the two tools'.
    std::vector<std::string> captions{ChangeBar::kShowChanges, ChangeBar::kReload};
    const std::vector<std::string> tools{DirectoryCheckWindow::kTitle, TryAsCallerWindow::kTitle};
    const std::vector<QString> marked = NameControls(bindings_, captions, tools);
    captions.insert(captions.end(), tools.begin(), tools.end());
    for (std::size_t i = 0; i < captions.size(); ++i) {
        otherMnemonics_[captions[i]] = marked[i];
    }
    StackBySize();
    SetTabOrder();
    FollowWidth();
    InstallTools(*this);
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
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { NoteFocus(now); });
}

FormView::~FormView() {
    // The child widgets lose their focus as QWidget's destructor deletes
    // them, after this one: the window must not hear that any more.
    disconnect(qApp, &QApplication::focusChanged, this, nullptr);
    form_.Unobserve(formObserver_);
    form_.Frame1.Unobserve(frame1Observer_);
    form_.cmdApply.Unobserve(applyObserver_);
    form_.StatusBar1.Unobserve(statusObserver_);
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

// OK, Cancel, Apply and the status bar move from the form into the strip
// below it. The strip's plane keeps the form's coordinates, shifted up so
// that the strip begins a margin above the buttons.
void FormView::BuildButtonStrip() {
    const int top = scale_.ToPixels(form_.cmdOK.Top() - kStripMarginTwips);
    stripPlane_->setGeometry(0, -top, scale_.ToPixels(form::GUI::kClientWidth),
                             scale_.ToPixels(form_.Height()));
    for (const auto& binding : bindings_) {
        const form::Control& control = binding->Control();
        if (IsCommitButton(form_, control) || &control == &form_.StatusBar1) {
            binding->Widget()->setParent(stripPlane_);
            binding->SyncAll();
        }
    }
    FollowStatusBar();
    statusObserver_ = form_.StatusBar1.Observe([this](form::Control&, form::ChangeAspect aspect) {
        if (aspect == form::ChangeAspect::State) {
            FollowStatusBar();
        }
    });
}

// The strip ends below the buttons while the status bar is hidden, and takes
// the status bar in while a save shows its progress there; the form above
// gives up that height rather than the window growing.
void FormView::FollowStatusBar() {
    const int top = scale_.ToPixels(form_.cmdOK.Top() - kStripMarginTwips);
    const int bottom = form_.StatusBar1.Visible()
                           ? form_.Height()
                           : form_.cmdOK.Top() + form_.cmdOK.Height() + kStripMarginTwips;
    strip_->setFixedHeight(scale_.ToPixels(bottom) - top);
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
    // What the width cuts off is hidden, not merely out of sight.
    for (const auto& binding : bindings_) {
        const form::Control& control = binding->Control();
        if (control.Container() == nullptr) {
            binding->SetCutOff(OnForm(control).left >= form_.Width());
        }
    }
    content_->setFixedSize(scale_.ToPixels(form_.Width()),
                           scale_.ToPixels(FormHeightAboveButtons()));
    FitToScreen();
}

// Down to the lowest shown control beside the buttons' strip, and a margin.
int FormView::FormHeightAboveButtons() const {
    int bottom = 0;
    for (const auto& binding : bindings_) {
        const form::Control& control = binding->Control();
        const form::Control* container = control.Container();
        if (&control == &form_.Frame1 || &control == &form_.StatusBar1 ||
            IsCommitButton(form_, control) ||
            (container != nullptr && container != &form_.Frame1) || !control.Visible() ||
            OnForm(control).left >= form_.Width()) {
            continue;
        }
        bottom = std::max(bottom, OnForm(control).top + control.Height());
    }
    return std::max(bottom, reservedBottom_) + kStripMarginTwips;
}

void FormView::ReserveFormHeight(int bottomTwips) {
    reservedBottom_ = std::max(reservedBottom_, bottomTwips);
    FollowWidth();
}

// The strip and, while it shows, the bar with its text wrapped to the width.
int FormView::BelowForm(int width) const {
    int height = strip_->height();
    if (bar_ != nullptr && !bar_->isHidden()) {
        height +=
            bar_->hasHeightForWidth() ? bar_->heightForWidth(width) : bar_->sizeHint().height();
    }
    return height;
}

void FormView::AddBar(QWidget& bar) {
    bar_ = &bar;
    static_cast<QVBoxLayout*>(layout())->insertWidget(1, &bar);
}

// The window grows no larger than the form with the strip below it, nor
// than the screen. A scroll bar the form needs in one direction is added to
// the other, so that a form that fits in width never scrolls sideways.
void FormView::FitToScreen() {
    const QSize available = AvailableClientSize(*this);
    const QSize form = content_->size();
    int width = form.width();
    const bool vertical =
        form.height() + BelowForm(std::min(width, available.width())) > available.height();
    if (vertical) {
        width += scroll_->verticalScrollBar()->sizeHint().width();
    }
    const bool horizontal = width > available.width();
    scroll_->setHorizontalScrollBarPolicy(horizontal ? Qt::ScrollBarAsNeeded
                                                     : Qt::ScrollBarAlwaysOff);
    width = std::min(width, available.width());
    int height = form.height() + BelowForm(width);
    if (horizontal) {
        height += scroll_->horizontalScrollBar()->sizeHint().height();
    }
    height = std::min(height, available.height());
    setMaximumSize(width, height);
    resize(width, height);
}

// A save disables Frame1; the language frame, the DIR box, the custom
// section beside it and the buttons go with it.
void FormView::FollowFrame1() {
    const bool enabled = form_.Frame1.Enabled();
    content_->setEnabled(enabled);
    strip_->setEnabled(enabled);
    if (enabled && !formEnabled_) {
        // Back in the control the operator was in, before OK or Apply took
        // the focus: Apply, disabled by the save, would hand it on.
        RestoreFormFocus();
    }
    formEnabled_ = enabled;
}

// The strip holds OK, Cancel and Apply; the bar its own buttons.
void FormView::NoteFocus(QWidget* now) {
    if (now == nullptr || !isAncestorOf(now) || strip_->isAncestorOf(now) ||
        (bar_ != nullptr && bar_->isAncestorOf(now))) {
        return;
    }
    lastFocus_ = now;
}

void FormView::RestoreFormFocus() {
    if (lastFocus_ != nullptr && lastFocus_->isVisible() && lastFocus_->isEnabled()) {
        lastFocus_->setFocus(Qt::OtherFocusReason);
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

QString FormView::MnemonicText(const std::string& caption) const {
    const auto found = otherMnemonics_.find(caption);
    return found == otherMnemonics_.end() ? QString::fromStdString(caption) : found->second;
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

// Esc: the form's cancel button, when it can be pressed. A key presses it
// without taking the focus there: when the window stays open (Cancel at the
// save question), the operator is still in the control Esc was pressed in.
void FormView::reject() {
    for (form::Control* control : form_.Controls()) {
        auto* button = dynamic_cast<form::Button*>(control);
        if (button != nullptr && button->IsCancel()) {
            const QPointer<QWidget> before = focusWidget();
            try {
                form::operator_input::Press(*button);
            } catch (const std::exception& error) {
                std::cerr << "error in " << button->Name() << ": " << error.what() << "\n";
            }
            QWidget* pressed = WidgetOf(button->Name());
            if (before != nullptr && before != pressed && focusWidget() == pressed &&
                before->isVisible() && before->isEnabled()) {
                before->setFocus(Qt::OtherFocusReason);
            }
            return;
        }
    }
}

}  // namespace dbn::qt
