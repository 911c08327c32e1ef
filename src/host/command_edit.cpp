// The "edit" sub-command: opens the editor window on one node. With
// --screenshot it writes a picture of the loaded window instead and closes it
// without saving, answering every box on the way, so that it runs unattended.
#include "core/component_factory.h"
#include "form/gui.h"
#include "host/host_command.h"
#include "qt/form_view.h"
#include "qt/qt_form_services.h"
#include "session/business_rules.h"
#include "session/component_registration.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPixmap>

#include <charconv>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>

namespace dbn::host {
namespace {

constexpr const char* kEditUsage =
    "edit [--data-root DIR] [--database TARGET] [--screenshot FILE] CONFIG PARTITION NODE";

std::optional<std::int16_t> ParseKey(const std::string& text) {
    std::int16_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return value;
}

// Removes "--screenshot FILE" from args; false (after saying why) on a missing FILE.
bool TakeScreenshotOption(std::vector<std::string>& args, std::optional<std::string>& file) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--screenshot") {
            if (i + 1 >= args.size()) {
                std::cerr << "error: --screenshot needs a file name\n";
                return false;
            }
            file = args[i + 1];
            args.erase(args.begin() + static_cast<long>(i),
                       args.begin() + static_cast<long>(i) + 2);
            return true;
        }
    }
    return true;
}

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

int RunEdit(std::vector<std::string> args) {
    std::optional<std::string> screenshot;
    if (!TakeDataRootOption(args) || !TakeDatabaseOption(args) ||
        !TakeScreenshotOption(args, screenshot)) {
        return 2;
    }
    std::optional<std::int16_t> keys[3];
    bool valid = args.size() == 3;
    for (std::size_t i = 0; valid && i < 3; ++i) {
        keys[i] = ParseKey(args[i]);
        valid = keys[i].has_value();
    }
    if (!valid) {
        std::cerr << "usage: dbn-node-editor " << kEditUsage << "\n";
        return 2;
    }

    int argc = 1;
    char name[] = "dbn-node-editor";
    char* argv[] = {name, nullptr};
    QApplication application(argc, argv);

    qt::QtFormServices services;
    bool written = false;
    if (screenshot) {
        services.whenAsked = AnswerUnattended;
        services.whenShown = [&](form::GUI& form, qt::FormView& view) {
            written = view.grab().save(QString::fromStdString(*screenshot), "PNG");
            if (!written) {
                std::cerr << "error: cannot write " << *screenshot << "\n";
            }
            form.cmdApply.SetEnabled(false);
            form.Unload();
        };
    }
    RegisterEditorComponents(services);
    std::unique_ptr<Business_Rules> editor = CreateObjectAs<Business_Rules>(kBusinessRulesClass);
    editor->ShowNodeEditor(*keys[0], *keys[1], *keys[2]);
    if (screenshot && !written) {
        std::cerr << "error: no screenshot: the editor window was not shown\n";
        return 1;
    }
    return 0;
}

const HostCommandRegistration kEdit(HostCommand{"edit", kEditUsage, RunEdit});

}  // namespace
}  // namespace dbn::host
