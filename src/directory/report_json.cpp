// The directory check as one JSON document. Its shape is fixed: other tools
// read it.
#include "directory/directory_report.h"

#include <nlohmann/json.hpp>

namespace dbn::directory {

std::string ReportJson(const DirectoryReport& report) {
    using Json = nlohmann::ordered_json;
    const SearchSettings& settings = report.settings;

    Json stages = Json::array();
    for (const SearchStage& stage : settings.stages) {
        stages.push_back({{"mode", MatchModeName(stage.mode)},
                          {"min", stage.minDigits},
                          {"max", stage.maxDigits}});
    }
    Json names = Json::array();
    for (std::size_t i = 0; i < report.names.size(); ++i) {
        const DirectoryName& name = report.names[i];
        const NameVerdict& verdict = report.verdicts[i];
        names.push_back({{"sequence", name.sequence},
                         {"last_name", name.lastName},
                         {"first_name", name.firstName},
                         {"extension", name.extension},
                         {"reachable", verdict.Reachable()},
                         {"verdict", VerdictName(verdict.verdict)},
                         {"digits", verdict.digits},
                         {"matches", verdict.matches},
                         {"reason", verdict.reason}});
    }
    const Json document = {{"config", report.config},
                           {"partition", report.partition},
                           {"node", report.node},
                           {"directory", report.directory},
                           {"settings",
                            {{"method", SearchMethodName(settings.method)},
                             {"stages", std::move(stages)},
                             {"confirmation", settings.confirmation},
                             {"max_matches", settings.maxMatches}}},
                           {"names", std::move(names)},
                           {"reachable", report.ReachableCount()},
                           {"total", report.Total()}};
    // Stored names are not checked for valid UTF-8: bad bytes become U+FFFD
    // instead of failing the whole report.
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace dbn::directory
