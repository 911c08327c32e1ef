#include "qt/screen_fit.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace dbn::qt {

namespace {

// A title bar and borders, for a window whose frame is not known yet.
constexpr QSize kEstimatedFrame(16, 40);

}  // namespace

QSize AvailableClientSize(const QWidget& window) {
    const QScreen* screen = window.screen();
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen == nullptr) {
        return {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
    }
    // Platforms without a window manager draw no frame at all.
    const QString platform = QGuiApplication::platformName();
    if (platform == QStringLiteral("offscreen") || platform == QStringLiteral("minimal")) {
        return screen->availableGeometry().size();
    }
    QSize frame = window.frameGeometry().size() - window.size();
    if (!window.isVisible() || frame.isEmpty()) {
        frame = frame.expandedTo(kEstimatedFrame);
    }
    return (screen->availableGeometry().size() - frame).expandedTo(QSize(1, 1));
}

void KeepOnScreen(QWidget& window) {
    const QSize available = AvailableClientSize(window);
    window.setMaximumSize(window.maximumSize().boundedTo(available));
    if (window.width() > available.width() || window.height() > available.height()) {
        window.resize(window.size().boundedTo(available));
    }
}

}  // namespace dbn::qt
