#pragma once
// Starting the toolkit for the commands that show windows.

#include <QApplication>

#include <memory>
#include <optional>
#include <string>

namespace dbn::host {

class CommandArgs;

// The message given when a window is asked for and there is no display.
inline constexpr const char* kNoDisplayMessage =
    "dbn-node-editor: no display; set DISPLAY or WAYLAND_DISPLAY, or use --screenshot or play";

// Picks the toolkit's platform: the display when there is one, the offscreen
// platform for a screenshot without one. Answers false (after printing
// kNoDisplayMessage) when a window must be shown and there is no display.
bool ChooseDisplay(bool screenshotOnly);

// The application object with the program's name, version and icon.
std::unique_ptr<QApplication> StartGuiApplication();

// The FILE of "--screenshot FILE", checked: it must end in ".png" and its
// folder must exist (UsageError otherwise). Empty when not given.
std::optional<std::string> ScreenshotFile(const CommandArgs& args);

}  // namespace dbn::host
