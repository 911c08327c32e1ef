#include "nodefields/save_rules.h"

namespace dbn::nodefields {

std::vector<RuleRefusal> SearchRefusals(const SearchSettings& s) {
    std::vector<RuleRefusal> refusals;
    if (s.method != 0) {
        if (s.firstLanguage == 0 && s.secondLanguage == 0) {
            refusals.push_back({"languages.first",
                                kNoLanguage,
                                {"method", "languages.first", "languages.second"}});
        }
        return refusals;
    }
    // The two lists share the names "Last Name" and "First Name" only.
    if (s.firstMode == s.secondMode && (s.firstMode == 1 || s.firstMode == 2)) {
        refusals.push_back(
            {"stages[1].mode", kSameMatch, {"method", "stages[0].mode", "stages[1].mode"}});
    }
    if (s.firstMinDigits > s.firstMaxDigits) {
        refusals.push_back({"stages[0].minDigits",
                            kMinAboveMax,
                            {"method", "stages[0].minDigits", "stages[0].maxDigits"}});
    }
    if (s.secondMode != 0 && s.secondMinDigits > s.secondMaxDigits) {
        refusals.push_back(
            {"stages[1].minDigits",
             kMinAboveMax,
             {"method", "stages[1].mode", "stages[1].minDigits", "stages[1].maxDigits"}});
    }
    return refusals;
}

}  // namespace dbn::nodefields
