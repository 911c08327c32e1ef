// The directory check as text, for the "check" command and the report window.
#include "directory/directory_report.h"

#include <algorithm>
#include <array>

namespace dbn::directory {
namespace {

// Characters of a UTF-8 text (continuation bytes do not count), for aligning columns.
std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

}  // namespace

std::vector<std::string> ReportHeading(const DirectoryReport& report) {
    const SearchSettings& settings = report.settings;
    std::vector<std::string> lines;
    lines.push_back("Directory check of DBN " + std::to_string(report.node) + " (configuration " +
                    std::to_string(report.config) + ", partition " +
                    std::to_string(report.partition) + "), directory DIR " +
                    std::to_string(report.directory));
    std::string method = "Method: " + SearchMethodName(settings.method);
    if (settings.method == SearchMethod::DefaultLastName) {
        method += ", checked as a last-name search with the start values of the fixed lists";
    }
    lines.push_back(method);
    for (std::size_t i = 0; i < settings.stages.size(); ++i) {
        const SearchStage& stage = settings.stages[i];
        lines.push_back((i == 0 ? "First stage: " : "Second stage: ") + MatchModeName(stage.mode) +
                        ", " + std::to_string(stage.minDigits) + " to " +
                        std::to_string(stage.maxDigits) + " digits");
    }
    lines.push_back(settings.confirmation
                        ? "Confirmation: Yes, Max Matches " + std::to_string(settings.maxMatches)
                        : "Confirmation: No, only a single match connects");
    return lines;
}

std::string ReportSummary(const DirectoryReport& report) {
    return std::to_string(report.ReachableCount()) + " of " + std::to_string(report.Total()) +
           " names reachable";
}

std::string ReportText(const DirectoryReport& report) {
    using Row = std::array<std::string, 6>;
    std::vector<Row> rows;
    rows.push_back({"#", "Last name", "First name", "Extension", "Verdict", "Reason"});
    for (std::size_t i = 0; i < report.names.size(); ++i) {
        const DirectoryName& name = report.names[i];
        const NameVerdict& verdict = report.verdicts[i];
        rows.push_back({std::to_string(name.sequence), name.lastName, name.firstName,
                        name.extension, VerdictName(verdict.verdict), verdict.reason});
    }
    std::array<std::size_t, 6> widths{};
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], Width(row[column]));
        }
    }

    std::string text;
    for (const std::string& line : ReportHeading(report)) {
        text += line + "\n";
    }
    text += "\n";
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += row[column];
            if (column + 1 < row.size()) {
                line += std::string(widths[column] - Width(row[column]) + 2, ' ');
            }
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    text += '\n';
    text += ReportSummary(report);
    text += '\n';
    return text;
}

}  // namespace dbn::directory
