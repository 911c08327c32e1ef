#include "qt/twips.h"

#include <QGuiApplication>
#include <QScreen>

#include <cmath>

namespace dbn::qt {

namespace {
constexpr double kTwipsPerInch = 1440.0;
constexpr double kFallbackDpi = 96.0;
}  // namespace

int TwipsScale::ToPixels(int twips) const {
    return static_cast<int>(std::lround(twips * dpi_ / kTwipsPerInch));
}

int TwipsScale::ToTwips(int pixels) const {
    return static_cast<int>(std::lround(pixels * kTwipsPerInch / dpi_));
}

QRect TwipsScale::ToPixels(const form::Rect& rect) const {
    const int left = ToPixels(rect.left);
    const int top = ToPixels(rect.top);
    const int right = ToPixels(rect.left + rect.width);
    const int bottom = ToPixels(rect.top + rect.height);
    return QRect(left, top, right - left, bottom - top);
}

double ScreenDpi() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->logicalDotsPerInch() : kFallbackDpi;
}

}  // namespace dbn::qt
