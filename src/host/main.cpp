// dbn-node-editor: lists, creates, inspects, scripts and edits the
// dial-by-name nodes of a configuration database.
#include "core/component_error.h"
#include "host/host_command.h"

#include <QString>
#include <QtGlobal>

#include <cstdlib>
#include <iostream>

namespace {

// The toolkit's own warnings ("QStandardPaths: XDG_RUNTIME_DIR not set", font
// and platform notes) mean nothing to an operator; only its fatal and
// critical messages reach standard error, unless DBN_QT_MESSAGES is set.
void QuietToolkitMessages(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg || std::getenv("DBN_QT_MESSAGES") != nullptr) {
        std::cerr << message.toStdString() << "\n";
    }
}

}  // namespace

int main(int argc, char** argv) {
    qInstallMessageHandler(QuietToolkitMessages);
    const std::vector<std::string> args(argv + 1, argv + argc);
    try {
        return dbn::host::RunProgram(args);
    } catch (const dbn::ComponentError& error) {
        std::cerr << "dbn-node-editor: " << error.Description() << "\n";
    } catch (const std::exception& error) {
        std::cerr << "dbn-node-editor: " << error.what() << "\n";
    }
    return dbn::host::kExitFailed;
}
