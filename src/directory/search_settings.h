#pragma once

#include <string>
#include <vector>

namespace dbn::directory {

// How a node searches its directory.
enum class SearchMethod { Custom, DefaultLastName };

// What a search stage compares the dialled digits with. The values are the
// tags the node stores (FirstMode, SecondMode).
enum class MatchMode { LastName = 1, FirstName = 2, BothNames = 3, Extension = 4 };

// One stage of a caller's search: its mode and how many digits the caller
// may dial.
struct SearchStage {
    MatchMode mode = MatchMode::LastName;
    int minDigits = 3;
    int maxDigits = 5;

    // Some number of digits lies between the minimum and the maximum.
    bool AllowsDigits() const noexcept { return maxDigits >= 1 && minDigits <= maxDigits; }

    bool operator==(const SearchStage&) const = default;
};

// The settings a check runs under: one or two stages, and how many matches
// a caller can pick from.
struct SearchSettings {
    SearchMethod method = SearchMethod::Custom;
    std::vector<SearchStage> stages;
    bool confirmation = true;
    int maxMatches = 5;

    // How many matches still let a caller pick one: Max Matches with
    // confirmation (at least 1), a single match without.
    int PickLimit() const noexcept;

    bool operator==(const SearchSettings&) const = default;
};

// Settings of a node whose method is "Custom". A second mode of 0 (None),
// an unknown one, or any second mode after "Both Names" or "Extension" (which
// allow none) gives a single stage.
SearchSettings CustomSearch(MatchMode firstMode, int firstMin, int firstMax, int secondMode,
                            int secondMin, int secondMax, bool confirmation, int maxMatches);

// "Default Last Name": a last-name search with the start values of the fixed
// lists, 3 to 5 digits, Confirmation "Yes" and Max Matches 5.
SearchSettings DefaultLastNameSearch();

// A stored first-match tag as a mode; anything outside 1..4 is "Last Name".
MatchMode MatchModeOfTag(int tag) noexcept;

// "Last Name", "First Name", "Both Names", "Extension".
std::string MatchModeName(MatchMode mode);
// "Custom", "Default Last Name".
std::string SearchMethodName(SearchMethod method);

// Why a stage takes no entry: "no number of digits is allowed (minimum 5,
// maximum 3)".
std::string NoDigitsAllowed(const SearchStage& stage);
// Why more matches than a caller can pick from end an entry: "more than the
// 5 that can be offered".
std::string TooManyMatches(const SearchSettings& settings);

}  // namespace dbn::directory
