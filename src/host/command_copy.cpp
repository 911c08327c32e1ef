// The "copy" sub-command: copies the whole configuration from one database
// to another, either engine each (a site's file up to a server, a server's
// configuration down to a file).
#include "database/configuration_copy.h"
#include "database/database_target.h"
#include "host/host_command.h"

#include <iostream>

namespace dbn::host {
namespace {

int RunCopy(const CommandArgs& args) {
    const std::vector<CopiedTable> tables = CopyConfiguration(
        ParseDatabaseTarget(args.Positionals()[0]), ParseDatabaseTarget(args.Positionals()[1]),
        args.IsSet("force") ? ExistingDatabase::Replace : ExistingDatabase::Refuse);
    for (const CopiedTable& table : tables) {
        std::cout << table.name << " " << table.rows << "\n";
    }
    return kExitOk;
}

HostCommand CopyCommand() {
    HostCommand command;
    command.name = "copy";
    command.summary =
        "copy the whole configuration from one database to another, in one "
        "transaction on the target";
    command.options = {{"force", "", "replace a target that already holds configuration rows"}};
    command.arguments = {
        {"FROM", "the source: a PostgreSQL URI or key/value string, or an SQLite file"},
        {"TO", "the target: a PostgreSQL URI or key/value string, or an SQLite file"}};
    command.exitCodes = {{1,
                          "failed: a source or target that cannot be used, or a target "
                          "holding configuration rows without --force"}};
    command.run = RunCopy;
    return command;
}

const HostCommandRegistration kCopy(CopyCommand());

}  // namespace
}  // namespace dbn::host
