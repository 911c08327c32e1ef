#include "qt/group_frame.h"

#include <QPainter>
#include <QStyle>

namespace dbn::qt {

namespace {
// Where the caption starts, and the gap kept clear around it.
constexpr int kCaptionLeft = 6;
constexpr int kCaptionPadding = 2;
}  // namespace

GroupFrame::GroupFrame(QWidget* parent) : QFrame(parent) {}

void GroupFrame::SetTitle(const QString& title) {
    title_ = title;
    update();
}

void GroupFrame::SetCaptionFont(const QFont& font) {
    captionFont_ = font;
    update();
}

void GroupFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QFontMetrics metrics(captionFont_);
    const int lineY = title_.isEmpty() ? 0 : metrics.height() / 2;

    // An etched border: a shadow line with a light line inside and below it.
    const QRect border = rect().adjusted(0, lineY, -2, -2);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(border);
    painter.setPen(palette().color(QPalette::Light));
    painter.drawRect(border.translated(1, 1));

    if (title_.isEmpty()) {
        return;
    }
    const QRect caption(kCaptionLeft, 0, metrics.horizontalAdvance(title_) + 2 * kCaptionPadding,
                        metrics.height());
    painter.fillRect(caption, palette().color(backgroundRole()));
    painter.setFont(captionFont_);
    style()->drawItemText(&painter, caption, Qt::AlignCenter, palette(), isEnabled(), title_,
                          QPalette::WindowText);
}

}  // namespace dbn::qt
