#include "qt/tool_window.h"

#include "qt/form_view.h"
#include "qt/screen_fit.h"

#include <QShortcut>
#include <QWidget>

namespace dbn::qt {

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

void InstallToolKey(FormView& view, const QKeySequence& key, std::function<void()> open) {
    auto* shortcut = new QShortcut(key, &view);  // owned by the view
    shortcut->setContext(Qt::WindowShortcut);
    QObject::connect(shortcut, &QShortcut::activated, &view, std::move(open));
}

}  // namespace dbn::qt
