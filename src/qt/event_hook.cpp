#include "qt/event_hook.h"

namespace dbn::qt {

EventHook::EventHook(QObject& target, QEvent::Type type, std::function<bool(QEvent&)> handler)
    : target_(&target), type_(type), handler_(std::move(handler)) {
    target.installEventFilter(this);
}

bool EventHook::eventFilter(QObject* watched, QEvent* event) {
    if (watched == target_ && event->type() == type_ && handler_) {
        return handler_(*event);
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace dbn::qt
