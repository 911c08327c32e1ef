#include "host/gui_application.h"

#include "host/host_command.h"

#include <QIcon>

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace dbn::host {
namespace {

bool IsSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

}  // namespace

bool ChooseDisplay(bool screenshotOnly) {
    if (IsSet("QT_QPA_PLATFORM") || IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY")) {
        return true;
    }
    if (screenshotOnly) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        return true;
    }
    std::cerr << kNoDisplayMessage << "\n";
    return false;
}

std::unique_ptr<QApplication> StartGuiApplication() {
    static int argc = 1;
    static char name[] = "dbn-node-editor";
    static char* argv[] = {name, nullptr};
    auto application = std::make_unique<QApplication>(argc, argv);
    QApplication::setApplicationName(QStringLiteral("dbn-node-editor"));
    QApplication::setApplicationDisplayName(QStringLiteral("Dial-by-Name Node Editor"));
    QApplication::setApplicationVersion(QStringLiteral(DBN_VERSION));
    QApplication::setDesktopFileName(QStringLiteral(DBN_APP_ID));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/" DBN_APP_ID ".png")));
    return application;
}

std::optional<std::string> ScreenshotFile(const CommandArgs& args) {
    std::optional<std::string> file = args.Value("screenshot");
    if (!file) {
        return std::nullopt;
    }
    const std::filesystem::path path(*file);
    const bool png = path.extension() == ".png";
    const std::filesystem::path folder =
        path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
    std::error_code error;
    const bool folderExists = std::filesystem::is_directory(folder, error);
    if (!png || !folderExists) {
        std::string problem = !png ? "must end in .png" : "";
        if (!folderExists) {
            problem += std::string(problem.empty() ? "" : " and ") + "names a folder \"" +
                       folder.string() + "\" that does not exist";
        }
        throw UsageError("--screenshot FILE " + problem + ", not \"" + *file + "\"");
    }
    return file;
}

}  // namespace dbn::host
