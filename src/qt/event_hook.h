#pragma once

#include <QEvent>
#include <QObject>

#include <functional>

namespace dbn::qt {

// Watches one kind of event of a widget and hands it to a function. The
// event goes on to the widget unless the function answers true. Deleting the
// hook stops the watching.
class EventHook : public QObject {
public:
    EventHook(QObject& target, QEvent::Type type, std::function<bool(QEvent&)> handler);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QObject* target_;
    QEvent::Type type_;
    std::function<bool(QEvent&)> handler_;
};

}  // namespace dbn::qt
