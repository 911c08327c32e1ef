#include "qt/navigation_pictures.h"

#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace dbn::qt {

namespace {

// A triangle pointing left or right, centred on x, across the picture's
// middle rows.
QPolygonF Arrow(double x, bool pointsLeft) {
    constexpr double kHalfHeight = 4.5;
    constexpr double kDepth = 4.5;
    const double middle = kNavigationPictureSize.height() / 2.0;
    const double tip = pointsLeft ? x - kDepth / 2 : x + kDepth / 2;
    const double base = pointsLeft ? x + kDepth / 2 : x - kDepth / 2;
    return QPolygonF({QPointF(tip, middle), QPointF(base, middle - kHalfHeight),
                      QPointF(base, middle + kHalfHeight)});
}

void DrawBar(QPainter& painter, double x) {
    constexpr double kBarWidth = 1.5;
    constexpr double kHalfHeight = 4.5;
    const double middle = kNavigationPictureSize.height() / 2.0;
    painter.drawRect(QRectF(x, middle - kHalfHeight, kBarWidth, 2 * kHalfHeight));
}

}  // namespace

QIcon NavigationPicture(form::ButtonPicture picture) {
    if (picture == form::ButtonPicture::None) {
        return {};
    }
    QPixmap pixmap(kNavigationPictureSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);

    const double centre = kNavigationPictureSize.width() / 2.0;
    switch (picture) {
        case form::ButtonPicture::First:
            DrawBar(painter, centre - 4.0);
            painter.drawPolygon(Arrow(centre + 1.0, true));
            break;
        case form::ButtonPicture::Previous:
            painter.drawPolygon(Arrow(centre, true));
            break;
        case form::ButtonPicture::Next:
            painter.drawPolygon(Arrow(centre, false));
            break;
        case form::ButtonPicture::Last:
            painter.drawPolygon(Arrow(centre - 1.0, false));
            DrawBar(painter, centre + 2.5);
            break;
        case form::ButtonPicture::None:
            break;
    }
    painter.end();
    return QIcon(pixmap);
}

}  // namespace dbn::qt
