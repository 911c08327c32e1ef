#pragma once

#include <QSize>

class QWidget;

namespace dbn::qt {

// The largest client area a window may take: its screen's available area
// less the window's frame (measured once shown, estimated before).
QSize AvailableClientSize(const QWidget& window);

// Keeps a top-level window within its screen's available area: its maximum
// size is bounded by it, and a window that is larger is made to fit.
void KeepOnScreen(QWidget& window);

}  // namespace dbn::qt
