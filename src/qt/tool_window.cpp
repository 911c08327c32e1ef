#include "qt/tool_window.h"

#include "form/gui.h"
#include "qt/directory_check_window.h"
#include "qt/form_view.h"
#include "qt/screen_fit.h"
#include "qt/try_as_caller_window.h"

#include <QPushButton>
#include <QShortcut>
#include <QWidget>

#include <iterator>

namespace dbn::qt {
namespace {

struct Tool {
    const char* caption;
    const char* tip;
    Qt::Key key;
    void (*run)(FormView& view);
};

const Tool kTools[] = {
    {DirectoryCheckWindow::kTitle, "Who callers can reach (F7)", Qt::Key_F7,
     [](FormView& view) { ShowDirectoryCheck(view); }},
    {TryAsCallerWindow::kTitle, "Dial this node as a caller (F8)", Qt::Key_F8,
     [](FormView& view) { ShowTryAsCaller(view); }},
};

}  // namespace

void CloseOnKeys(QWidget& window) {
    for (const QKeySequence& keys :
         {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)}) {
        auto* shortcut = new QShortcut(keys, &window);  // owned by the window
        shortcut->setContext(Qt::WindowShortcut);
        QObject::connect(shortcut, &QShortcut::activated, &window, &QWidget::close);
    }
}

void BringToFront(QWidget& window) {
    window.show();
    KeepOnScreen(window);
    window.raise();
    window.activateWindow();
}

void InstallTools(FormView& view) {
    // Each tool's key, wherever the focus is in the window.
    for (const Tool& tool : kTools) {
        auto* shortcut = new QShortcut(QKeySequence(tool.key), &view);  // owned by the view
        shortcut->setContext(Qt::WindowShortcut);
        QObject::connect(shortcut, &QShortcut::activated, &view,
                         [&view, &tool] { tool.run(view); });
    }

    // Two buttons side by side below the actions frame, inside the form's
    // scrolling area, which keeps room for them.
    QWidget* ok = view.WidgetOf("cmdOK");
    if (ok == nullptr) {
        return;
    }
    const form::GUI& form = view.Form();
    const int gap = 120;
    const int top = form.fraActions.Top() + form.fraActions.Height() + gap;
    const int height = form.cmdOK.Height();
    // Under the actions list, over its width.
    const int left = form.fraActions.Left() + form.LVActions.Left();
    const int width = (form.LVActions.Width() - gap) / 2;
    // In the tab order after the form's controls, before OK; their mnemonics
    // are chosen with the window's, and F7 and F8 open them too.
    QWidget* previous = ok->previousInFocusChain();
    for (std::size_t i = 0; i < std::size(kTools); ++i) {
        const Tool& tool = kTools[i];
        auto* button = new QPushButton(view.MnemonicText(tool.caption), &view.FormArea());
        button->setObjectName(QString::fromUtf8(tool.caption));
        button->setAccessibleName(QString::fromUtf8(tool.caption));
        button->setToolTip(QString::fromUtf8(tool.tip));
        button->setAutoDefault(false);
        const int x = left + static_cast<int>(i) * (width + gap);
        button->setGeometry(view.Scale().ToPixels(form::Rect{x, top, width, height}));
        QWidget::setTabOrder(previous, button);
        previous = button;
        QObject::connect(button, &QPushButton::clicked, &view, [&view, &tool] { tool.run(view); });
        button->show();
    }
    view.ReserveFormHeight(top + height);
}

}  // namespace dbn::qt
