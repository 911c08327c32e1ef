#include "qt/focus_frame.h"

#include <QEvent>
#include <QPainter>

namespace dbn::qt {

namespace {

constexpr int kFrameWidth = 2;

}  // namespace

FocusFrame::FocusFrame(QWidget& view) : QWidget(&view), view_(view) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    setGeometry(view.rect());
    setVisible(view.hasFocus());
    view.installEventFilter(this);
}

bool FocusFrame::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &view_) {
        switch (event->type()) {
            case QEvent::FocusIn:
                setGeometry(view_.rect());
                show();
                raise();
                break;
            case QEvent::FocusOut:
                hide();
                break;
            case QEvent::Resize:
                setGeometry(view_.rect());
                break;
            default:
                break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FocusFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QPen pen(palette().color(QPalette::Active, QPalette::Highlight));
    pen.setWidth(kFrameWidth);
    pen.setJoinStyle(Qt::MiterJoin);
    painter.setPen(pen);
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

}  // namespace dbn::qt
