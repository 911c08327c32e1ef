#pragma once

#include "form/controls/control.h"

#include <QRect>

namespace dbn::qt {

// Converts the form's twips (1/1440 inch) to pixels at a logical DPI and back.
class TwipsScale {
public:
    explicit TwipsScale(double dpi) : dpi_(dpi) {}

    double Dpi() const noexcept { return dpi_; }
    int ToPixels(int twips) const;
    int ToTwips(int pixels) const;
    // Left and top are converted as points, the width and height as the
    // distance to the converted right and bottom edges, so that controls that
    // touch in twips touch in pixels too.
    QRect ToPixels(const form::Rect& rect) const;

private:
    double dpi_;
};

// The logical DPI of the primary screen (96 when there is none).
double ScreenDpi();

}  // namespace dbn::qt
