// The "init" and "where" commands: create the configuration database, and
// tell where the editor looks for it.
#include "core/component_error.h"
#include "database/database_errors.h"
#include "database/database_setup.h"
#include "database/database_target.h"
#include "host/host_command.h"

#include <iostream>

namespace dbn::host {
namespace {

int RunInit(const CommandArgs& args) {
    const DatabaseTarget target = ResolveDatabaseTarget();
    std::optional<std::string> backup;
    try {
        backup = CreateConfigurationDatabase(
            target, !args.IsSet("empty"),
            args.IsSet("force") ? ExistingDatabase::Replace : ExistingDatabase::Refuse);
    } catch (const ComponentError& error) {
        if (error.Number() == kErrDatabaseInUse) {
            std::cerr << error.Description() << "\n";
            return kExitFailed;
        }
        if (error.Number() != kErrDatabaseExists) {
            throw;
        }
        std::cerr << "error: " << error.Description()
                  << " Use --force to replace it with a new one.\n";
        return kExitFailed;
    }
    if (backup) {
        std::cout << "The previous database was kept as " << *backup << "\n";
    }
    std::cout << DisplayName(target) << "\n";
    return kExitOk;
}

int RunWhere(const CommandArgs&) {
    std::cout << DisplayName(ResolveDatabaseTarget()) << "\n";
    return kExitOk;
}

HostCommand InitCommand() {
    HostCommand command;
    command.name = "init";
    command.summary = "create the configuration database with the demo nodes, and print its path";
    command.options = {{"empty", "", "create the tables without the demo content"},
                       {"force", "", "replace a database that already exists"}};
    command.exitCodes = {{1,
                          "the database exists (without --force), is in use by another "
                          "program, is not a regular file, or could not be written"}};
    command.run = RunInit;
    return command;
}

const HostCommandRegistration kInit(InitCommand());

HostCommand WhereCommand() {
    HostCommand command;
    command.name = "where";
    command.summary =
        "print the configuration database the editor opens (a server without its password)";
    command.run = RunWhere;
    return command;
}

const HostCommandRegistration kWhere(WhereCommand());

}  // namespace
}  // namespace dbn::host
