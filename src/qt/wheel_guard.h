#pragma once

#include <QObject>

class QWidget;

namespace dbn::qt {

// Lets a list or number box take wheel turns only while it has the focus:
// otherwise the turn scrolls the scroll area around it (or nothing), so that
// the wheel never changes a value the operator did not click into. The
// guard belongs to the widget; a wheel turn no longer gives it the focus.
class WheelGuard : public QObject {
public:
    explicit WheelGuard(QWidget& widget);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& widget_;
};

}  // namespace dbn::qt
