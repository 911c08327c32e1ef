// The "init" and "where" sub-commands: create the configuration database, and
// tell where the editor looks for it.
#include "core/component_error.h"
#include "database/database_errors.h"
#include "database/database_setup.h"
#include "database/database_target.h"
#include "host/host_command.h"

#include <iostream>

namespace dbn::host {
namespace {

constexpr const char* kInitUsage = "init [--data-root DIR] [--database TARGET] [--empty] [--force]";
constexpr const char* kWhereUsage = "where [--data-root DIR] [--database TARGET]";

int RunInit(std::vector<std::string> args) {
    if (!TakeDataRootOption(args) || !TakeDatabaseOption(args)) {
        return 2;
    }
    bool empty = false;
    bool force = false;
    for (const std::string& arg : args) {
        if (arg == "--empty") {
            empty = true;
        } else if (arg == "--force") {
            force = true;
        } else {
            std::cerr << "init: unexpected argument: " << arg << "\nusage: dbn-node-editor "
                      << kInitUsage << "\n";
            return 2;
        }
    }
    const DatabaseTarget target = ResolveDatabaseTarget();
    std::optional<std::string> backup;
    try {
        backup = CreateConfigurationDatabase(
            target, !empty, force ? ExistingDatabase::Replace : ExistingDatabase::Refuse);
    } catch (const ComponentError& error) {
        if (error.Number() == kErrDatabaseInUse) {
            std::cerr << error.Description() << "\n";
            return 1;
        }
        if (error.Number() != kErrDatabaseExists) {
            throw;
        }
        std::cerr << "error: " << error.Description()
                  << " Use --force to replace it with a new one.\n";
        return 1;
    }
    if (backup) {
        std::cout << "The previous database was kept as " << *backup << "\n";
    }
    std::cout << DisplayName(target) << "\n";
    return 0;
}

int RunWhere(std::vector<std::string> args) {
    if (!TakeDataRootOption(args) || !TakeDatabaseOption(args)) {
        return 2;
    }
    if (!args.empty()) {
        std::cerr << "where: unexpected argument: " << args.front() << "\nusage: dbn-node-editor "
                  << kWhereUsage << "\n";
        return 2;
    }
    std::cout << DisplayName(ResolveDatabaseTarget()) << "\n";
    return 0;
}

const HostCommandRegistration kInit(HostCommand{"init", kInitUsage, RunInit});
const HostCommandRegistration kWhere(HostCommand{"where", kWhereUsage, RunWhere});

}  // namespace
}  // namespace dbn::host
