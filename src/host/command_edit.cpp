// The "edit" command: opens the editor window on one node. With --screenshot
// it writes a picture of the loaded window instead and closes it without
// saving, answering every box on the way, so that it runs unattended.
#include "core/component_factory.h"
#include "form/gui.h"
#include "host/gui_application.h"
#include "host/host_command.h"
#include "host/key_argument.h"
#include "qt/form_view.h"
#include "qt/qt_form_services.h"
#include "session/editor/business_rules.h"
#include "session/editor/component_registration.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPixmap>

#include <iostream>
#include <string>

namespace dbn::host {
namespace {

// Prints a box to standard error and answers it: OK, or Cancel where it asks.
void AnswerUnattended(QMessageBox& box) {
    QAbstractButton* answer = box.button(QMessageBox::Ok);
    if (answer == nullptr) {
        answer = box.escapeButton();
    }
    std::cerr << "box " << box.windowTitle().toStdString() << ": "
              << box.text().replace('\n', QStringLiteral("\\n")).toStdString() << " => "
              << (answer != nullptr ? answer->text().remove('&').toStdString() : "closed") << "\n";
    if (answer != nullptr) {
        answer->click();
    } else {
        box.reject();
    }
}

int RunEdit(const CommandArgs& args) {
    const std::optional<std::string> screenshot = ScreenshotFile(args);
    const auto [config, partition, node] = NodeKeyArguments(args);
    if (!ChooseDisplay(screenshot.has_value())) {
        return kExitFailed;
    }
    const std::unique_ptr<QApplication> application = StartGuiApplication();

    qt::QtFormServices services;
    bool written = false;
    if (screenshot) {
        services.whenAsked = AnswerUnattended;
        services.whenShown = [&](form::GUI& form, qt::FormView& view) {
            written = view.grab().save(QString::fromStdString(*screenshot), "PNG");
            if (!written) {
                std::cerr << "dbn-node-editor: cannot write " << *screenshot << "\n";
            }
            form.DiscardChangesAndUnload();
        };
    }
    RegisterEditorComponents(services);
    std::unique_ptr<Business_Rules> editor = CreateObjectAs<Business_Rules>(kBusinessRulesClass);
    editor->ShowNodeEditor(config, partition, node);
    // The database could not be opened: its one box has said why.
    if (editor->DatabaseUnavailable()) {
        return kExitFailed;
    }
    // The node does not exist or was refused: its box has said why.
    if (!editor->NodeShown()) {
        return kExitFailed;
    }
    if (screenshot && !written) {
        std::cerr << "dbn-node-editor: no screenshot: the editor window was not shown\n";
        return kExitFailed;
    }
    return kExitOk;
}

HostCommand EditCommand() {
    HostCommand command;
    command.name = "edit";
    command.summary = "open the editor window on one dial-by-name node";
    command.options = {
        {"screenshot", "FILE",
         "write a picture of the loaded window to FILE (.png) and close it unsaved"}};
    command.arguments = NodeKeyHelp();
    command.exitCodes = {
        {1,
         "failed: no display, no database, no such node, or the screenshot could not be "
         "written"}};
    command.run = RunEdit;
    return command;
}

const HostCommandRegistration kEdit(EditCommand());

}  // namespace
}  // namespace dbn::host
