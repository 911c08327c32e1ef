// The "init" and "where" commands: create the configuration database, and
// tell where the editor looks for it.
#include "core/component_error.h"
#include "database/database.h"
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
            args.IsSet("force") ? ExistingDatabase::Replace : ExistingDatabase::Refuse,
            args.Value("backup"));
    } catch (const ComponentError& error) {
        if (error.Number() == kErrDatabaseInUse) {
            std::cerr << "dbn-node-editor: " << error.Description() << "\n";
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
        if (target.IsServer()) {
            std::cout << "To put it back: dbn-node-editor copy '" << *backup << "' '"
                      << DisplayName(target) << "' --force\n";
        }
    }
    std::cout << DisplayName(target) << "\n";
    return kExitOk;
}

int RunWhere(const CommandArgs&) {
    const DatabaseTarget target = ResolveDatabaseTarget();
    std::cout << DisplayName(target) << "\n";
    // A database that can be opened but not changed says so.
    try {
        DataBase db(target);
        db.Execute("Get_Node_Names");
        db.Recordset("Get_Node_Names").Close();
        if (const std::optional<std::string> notice = db.ReadOnlyNotice()) {
            std::cout << notice->substr(notice->find(" is open read-only") + 4) << "\n";
        }
    } catch (const ComponentError&) {
        // Where it is, is all that is asked.
    }
    return kExitOk;
}

HostCommand InitCommand() {
    HostCommand command;
    command.name = "init";
    command.summary = "create the configuration database with the demo nodes, and print its path";
    command.options = {{"empty", "", "create the tables without the demo content"},
                       {"force", "", "replace a database that already exists"},
                       {"backup", "FILE",
                        "with --force on a server: the SQLite file that keeps the replaced "
                        "configuration (default: NewDB-YYYYMMDD-HHMMSS.bak.mdb in the "
                        "database folder)"}};
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
