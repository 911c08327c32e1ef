#include "qt/wheel_guard.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QWheelEvent>
#include <QWidget>

namespace dbn::qt {

WheelGuard::WheelGuard(QWidget& widget) : QObject(&widget), widget_(widget) {
    if (widget.focusPolicy() == Qt::WheelFocus) {
        widget.setFocusPolicy(Qt::StrongFocus);
    }
    widget.installEventFilter(this);
}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event) {
    if (watched != &widget_ || event->type() != QEvent::Wheel || widget_.hasFocus()) {
        return QObject::eventFilter(watched, event);
    }
    for (QWidget* outer = widget_.parentWidget(); outer != nullptr; outer = outer->parentWidget()) {
        if (auto* area = qobject_cast<QAbstractScrollArea*>(outer)) {
            QApplication::sendEvent(area->viewport(), event);
            break;
        }
    }
    return true;
}

}  // namespace dbn::qt
