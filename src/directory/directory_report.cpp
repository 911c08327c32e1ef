#include "directory/directory_report.h"

#include <algorithm>

namespace dbn::directory {

int DirectoryReport::ReachableCount() const {
    return static_cast<int>(std::count_if(verdicts.begin(), verdicts.end(),
                                          [](const NameVerdict& v) { return v.Reachable(); }));
}

DirectoryReport MakeDirectoryReport(std::int16_t config, std::int16_t partition, std::int16_t node,
                                    std::int16_t directory, SearchSettings settings,
                                    std::vector<DirectoryName> names) {
    DirectoryReport report{config,           partition, node, directory, std::move(settings),
                           std::move(names), {}};
    report.verdicts = CheckDirectory(report.settings, report.names);
    return report;
}

}  // namespace dbn::directory
