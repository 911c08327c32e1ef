#pragma once

class QWidget;

namespace dbn::qt {

class FormView;

// The windows an operator opens beside the editor or the node list to look
// at a node (the directory check, Try as Caller).

// Escape and Ctrl+W close the window, as its close box does.
void CloseOnKeys(QWidget& window);

// Shows the window in front of the others, active and within its screen.
void BringToFront(QWidget& window);

// The editor window's tools: F7 checks the node on show in the directory
// check, F8 opens Try as Caller, both under the settings the form shows now;
// and a button for each under the actions list.
void InstallTools(FormView& view);

}  // namespace dbn::qt
