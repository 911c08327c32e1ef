// The report of a directory check as text and as the JSON document other
// tools read.
#include "directory/directory_report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace dbn::directory {
namespace {

DirectoryReport SmallReport(SearchSettings settings) {
    return MakeDirectoryReport(1, 2, 5, 3, std::move(settings),
                               {{1, "Smith", "Anna", "2101"},
                                {2, "Smith", "Bob", "2102"},
                                {4, "Müller", "Jörg", "2104"},
                                {7, "Li", "Wei", ""}});
}

TEST(DirectoryReport, TextHasHeadingOneLinePerNameAndSummary) {
    const DirectoryReport report =
        SmallReport(CustomSearch(MatchMode::LastName, 3, 5, 2, 1, 4, false, 5));
    EXPECT_EQ(ReportText(report),
              "Directory check of DBN 5 (configuration 1, partition 2), directory DIR 3\n"
              "Method: Custom\n"
              "First stage: Last Name, 3 to 5 digits\n"
              "Second stage: First Name, 1 to 4 digits\n"
              "Confirmation: No, only a single match connects\n"
              "\n"
              "#  Last name  First name  Extension  Verdict       Reason\n"
              "1  Smith      Anna        2101       second stage  SMITH -> 76484 leaves 2 names; "
              "then ANNA -> 2662\n"
              "2  Smith      Bob         2102       second stage  SMITH -> 76484 leaves 2 names; "
              "then BOB -> 262\n"
              "4  Müller     Jörg        2104       direct        MULLE -> 68553\n"
              "7  Li         Wei                    unreachable   LI -> 54 is shorter than the "
              "minimum of 3 digits\n"
              "\n"
              "3 of 4 names reachable\n");
}

TEST(DirectoryReport, HeadingOfTheDefaultMethodSaysHowItIsChecked) {
    const std::vector<std::string> heading = ReportHeading(SmallReport(DefaultLastNameSearch()));
    ASSERT_EQ(heading.size(), 4u);
    EXPECT_EQ(heading[1],
              "Method: Default Last Name, checked as a last-name search with the start values of "
              "the fixed lists");
    EXPECT_EQ(heading[2], "First stage: Last Name, 3 to 5 digits");
    EXPECT_EQ(heading[3], "Confirmation: Yes, Max Matches 5");
}

TEST(DirectoryReport, JsonDocumentHasTheFixedShape) {
    const DirectoryReport report = SmallReport(DefaultLastNameSearch());
    const auto json = nlohmann::ordered_json::parse(ReportJson(report));
    const auto expected = nlohmann::ordered_json::parse(R"({
      "config": 1, "partition": 2, "node": 5, "directory": 3,
      "settings": {"method": "Default Last Name",
                   "stages": [{"mode": "Last Name", "min": 3, "max": 5}],
                   "confirmation": true, "max_matches": 5},
      "names": [
        {"sequence": 1, "last_name": "Smith", "first_name": "Anna", "extension": "2101",
         "reachable": true, "verdict": "among", "digits": "76484", "matches": 2,
         "reason": "SMITH -> 76484, one of 2 matches"},
        {"sequence": 2, "last_name": "Smith", "first_name": "Bob", "extension": "2102",
         "reachable": true, "verdict": "among", "digits": "76484", "matches": 2,
         "reason": "SMITH -> 76484, one of 2 matches"},
        {"sequence": 4, "last_name": "Müller", "first_name": "Jörg", "extension": "2104",
         "reachable": true, "verdict": "direct", "digits": "68553", "matches": 1,
         "reason": "MULLE -> 68553"},
        {"sequence": 7, "last_name": "Li", "first_name": "Wei", "extension": "",
         "reachable": false, "verdict": "unreachable", "digits": "", "matches": 0,
         "reason": "LI -> 54 is shorter than the minimum of 3 digits"}],
      "reachable": 3, "total": 4})");
    EXPECT_EQ(json, expected) << json.dump(2);
    // The keys come in the documented order.
    std::vector<std::string> keys;
    for (const auto& [key, value] : json.items()) {
        keys.push_back(key);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"config", "partition", "node", "directory",
                                              "settings", "names", "reachable", "total"}));
}

TEST(DirectoryReport, EmptyDirectoryAndUndecodableNames) {
    const DirectoryReport empty = MakeDirectoryReport(1, 1, 1, 1, DefaultLastNameSearch(), {});
    EXPECT_EQ(ReportSummary(empty), "0 of 0 names reachable");
    const auto json = nlohmann::json::parse(ReportJson(empty));
    EXPECT_TRUE(json["names"].empty());
    EXPECT_EQ(json["total"], 0);

    // Bytes that are no UTF-8 neither stop the check nor the document.
    const DirectoryReport broken =
        MakeDirectoryReport(1, 1, 1, 1, DefaultLastNameSearch(), {{1, "Sm\xffith", "\xc3", "1"}});
    EXPECT_EQ(nlohmann::json::parse(ReportJson(broken))["names"][0]["digits"], "76484");
}

}  // namespace
}  // namespace dbn::directory
