// The "copy" sub-command: copies the whole configuration from one database
// to another, either engine each (a site's file up to a server, a server's
// configuration down to a file).
#include "database/configuration_copy.h"
#include "database/database_target.h"
#include "host/host_command.h"

#include <iostream>

namespace dbn::host {
namespace {

constexpr const char* kCopyUsage = "copy FROM TO [--force]";

int RunCopy(std::vector<std::string> args) {
    bool force = false;
    std::vector<std::string> targets;
    for (const std::string& arg : args) {
        if (arg == "--force") {
            force = true;
        } else {
            targets.push_back(arg);
        }
    }
    if (targets.size() != 2) {
        std::cerr << "usage: dbn-node-editor " << kCopyUsage << "\n";
        return 2;
    }
    const std::vector<CopiedTable> tables =
        CopyConfiguration(ParseDatabaseTarget(targets[0]), ParseDatabaseTarget(targets[1]),
                          force ? ExistingDatabase::Replace : ExistingDatabase::Refuse);
    for (const CopiedTable& table : tables) {
        std::cout << table.name << " " << table.rows << "\n";
    }
    return 0;
}

const HostCommandRegistration kCopy(HostCommand{"copy", kCopyUsage, RunCopy});

}  // namespace
}  // namespace dbn::host
