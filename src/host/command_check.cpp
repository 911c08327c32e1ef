// The "check" sub-command: the directory check of a stored dial-by-name node,
// as a text report or as one JSON document. Exit status 0 when callers can
// reach every name, 4 when some they cannot.
#include "database/database.h"
#include "directory/directory_report.h"
#include "host/host_command.h"
#include "session/directory_check.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>

namespace dbn::host {
namespace {

constexpr const char* kCheckUsage = "check [--data-root DIR] CONFIG PARTITION NODE [--json]";
constexpr int kSomeUnreachable = 4;

std::optional<std::int16_t> ParseNodeKey(const std::string& text) {
    std::int16_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return value;
}

int RunCheck(std::vector<std::string> args) {
    if (!TakeDataRootOption(args)) {
        return 2;
    }
    const auto json = std::find(args.begin(), args.end(), "--json");
    const bool asJson = json != args.end();
    if (asJson) {
        args.erase(json);
    }
    std::optional<std::int16_t> keys[3];
    bool valid = args.size() == 3;
    for (std::size_t i = 0; valid && i < 3; ++i) {
        keys[i] = ParseNodeKey(args[i]);
        valid = keys[i].has_value();
    }
    if (!valid) {
        std::cerr << "usage: dbn-node-editor " << kCheckUsage << "\n";
        return 2;
    }

    DataBase db;
    const directory::DirectoryReport report =
        session::CheckStoredNode(db, *keys[0], *keys[1], *keys[2]);
    std::cout << (asJson ? directory::ReportJson(report) : directory::ReportText(report));
    return report.ReachableCount() == report.Total() ? 0 : kSomeUnreachable;
}

const HostCommandRegistration kCheck(HostCommand{"check", kCheckUsage, RunCheck});

}  // namespace
}  // namespace dbn::host
