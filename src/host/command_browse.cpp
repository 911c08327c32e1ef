// The "browse" command, also run when no command is given: the node list,
// the program's main window. With --screenshot it writes a picture of the
// list instead and closes it.
#include "core/component_factory.h"
#include "database/database.h"
#include "database/database_target.h"
#include "host/gui_application.h"
#include "host/host_command.h"
#include "qt/missing_database_offer.h"
#include "qt/node_list_window.h"
#include "qt/qt_form_services.h"
#include "session/editor/business_rules.h"
#include "session/editor/component_registration.h"

#include <filesystem>
#include <iostream>

namespace dbn::host {
namespace {

int RunBrowse(const CommandArgs& args) {
    const std::optional<std::string> screenshot = ScreenshotFile(args);
    if (!ChooseDisplay(screenshot.has_value())) {
        return kExitFailed;
    }
    const std::unique_ptr<QApplication> application = StartGuiApplication();
    const DatabaseTarget target = ResolveDatabaseTarget();
    const std::string path = DisplayName(target);
    if (!target.IsServer() && !std::filesystem::exists(target.location)) {
        if (screenshot) {
            std::cerr << "dbn-node-editor: there is no configuration database at " << path
                      << "; create one with: dbn-node-editor init\n";
            return kExitFailed;
        }
        if (!qt::OfferToCreateDatabase(path)) {
            return kExitFailed;
        }
    }

    qt::QtFormServices services;
    RegisterEditorComponents(services);
    auto openNode = [](session::PartitionKey where, std::int16_t number) {
        std::unique_ptr<Business_Rules> editor =
            CreateObjectAs<Business_Rules>(kBusinessRulesClass);
        editor->ShowNodeEditor(where.config, where.partition, number);
    };
    DataBase db;
    qt::NodeListWindow window(db, path, openNode);
    window.show();
    if (screenshot) {
        if (!window.grab().save(QString::fromStdString(*screenshot), "PNG")) {
            std::cerr << "dbn-node-editor: cannot write " << *screenshot << "\n";
            return kExitFailed;
        }
        return kExitOk;
    }
    return QApplication::exec() == 0 ? kExitOk : kExitFailed;
}

HostCommand BrowseCommand() {
    HostCommand command;
    command.name = "browse";
    command.summary = "open the node list: every dial-by-name node of a partition (the default)";
    command.options = {
        {"screenshot", "FILE", "write a picture of the node list to FILE (.png) and quit"}};
    command.exitCodes = {
        {1, "failed: no display, no database, or the screenshot could not be written"}};
    command.run = RunBrowse;
    return command;
}

const HostCommandRegistration kBrowse(BrowseCommand());

}  // namespace
}  // namespace dbn::host
