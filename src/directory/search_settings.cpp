#include "directory/search_settings.h"

#include <algorithm>

namespace dbn::directory {

int SearchSettings::PickLimit() const noexcept {
    return confirmation ? std::max(maxMatches, 1) : 1;
}

SearchSettings CustomSearch(MatchMode firstMode, int firstMin, int firstMax, int secondMode,
                            int secondMin, int secondMax, bool confirmation, int maxMatches) {
    SearchSettings settings;
    settings.method = SearchMethod::Custom;
    settings.stages.push_back({firstMode, firstMin, firstMax});
    const bool secondAllowed =
        firstMode == MatchMode::LastName || firstMode == MatchMode::FirstName;
    if (secondAllowed && (secondMode == 1 || secondMode == 2)) {
        settings.stages.push_back({static_cast<MatchMode>(secondMode), secondMin, secondMax});
    }
    settings.confirmation = confirmation;
    settings.maxMatches = maxMatches;
    return settings;
}

SearchSettings DefaultLastNameSearch() {
    SearchSettings settings;
    settings.method = SearchMethod::DefaultLastName;
    settings.stages.push_back({MatchMode::LastName, 3, 5});
    settings.confirmation = true;
    settings.maxMatches = 5;
    return settings;
}

MatchMode MatchModeOfTag(int tag) noexcept {
    return tag >= 1 && tag <= 4 ? static_cast<MatchMode>(tag) : MatchMode::LastName;
}

std::string MatchModeName(MatchMode mode) {
    switch (mode) {
        case MatchMode::LastName:
            return "Last Name";
        case MatchMode::FirstName:
            return "First Name";
        case MatchMode::BothNames:
            return "Both Names";
        case MatchMode::Extension:
            return "Extension";
    }
    return "Last Name";
}

std::string SearchMethodName(SearchMethod method) {
    return method == SearchMethod::DefaultLastName ? "Default Last Name" : "Custom";
}

std::string NoDigitsAllowed(const SearchStage& stage) {
    return "no number of digits is allowed (minimum " + std::to_string(stage.minDigits) +
           ", maximum " + std::to_string(stage.maxDigits) + ")";
}

std::string TooManyMatches(const SearchSettings& settings) {
    if (!settings.confirmation) {
        return "more than the single match that connects without confirmation";
    }
    return "more than the " + std::to_string(settings.PickLimit()) + " that can be offered";
}

}  // namespace dbn::directory
