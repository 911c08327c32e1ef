#pragma once

#include <QKeySequence>

#include <functional>

class QWidget;

namespace dbn::qt {

class FormView;

// The windows an operator opens beside the editor or the node list to look
// at a node (the directory check, Try as Caller).

// Escape and Ctrl+W close the window, as its close box does.
void CloseOnKeys(QWidget& window);

// Shows the window in front of the others, active and within its screen.
void BringToFront(QWidget& window);

// A key of the editor window, wherever the focus is in it, that opens a tool.
void InstallToolKey(FormView& view, const QKeySequence& key, std::function<void()> open);

}  // namespace dbn::qt
