#pragma once

#include "directory/directory_check.h"
#include "directory/search_settings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dbn::directory {

// The directory check of one dial-by-name node: which node, which directory,
// the settings checked, and a verdict for every name of the directory.
struct DirectoryReport {
    std::int16_t config = 0;
    std::int16_t partition = 0;
    std::int16_t node = 0;
    std::int16_t directory = 0;
    SearchSettings settings;
    std::vector<DirectoryName> names;
    std::vector<NameVerdict> verdicts;  // one per name, same order

    int ReachableCount() const;
    int Total() const { return static_cast<int>(names.size()); }
};

// Runs the check of names under settings and keeps both in the report.
DirectoryReport MakeDirectoryReport(std::int16_t config, std::int16_t partition, std::int16_t node,
                                    std::int16_t directory, SearchSettings settings,
                                    std::vector<DirectoryName> names);

// The heading's lines: which node and directory, then the settings used
// ("Default Last Name" says it is checked as a last-name search).
std::vector<std::string> ReportHeading(const DirectoryReport& report);
// "N of M names reachable".
std::string ReportSummary(const DirectoryReport& report);

// The report as text: the heading, a table of one line per name (sequence,
// last name, first name, extension, verdict, reason), and the summary.
std::string ReportText(const DirectoryReport& report);

// The report as one JSON document (the shape other tools read).
std::string ReportJson(const DirectoryReport& report);

}  // namespace dbn::directory
