#include "directory/directory_check.h"

#include "directory/keypad_keys.h"
#include "directory/stage_matcher.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>

namespace dbn::directory {
namespace {

// How many of the names that share a name's digits its reason names.
constexpr std::size_t kNamedAtMost = 5;

// What a caller dials for a name in one stage: the longest allowed prefix of
// one of its keys, the one that leaves the fewest matches.
struct Dial {
    const KeypadKey* key = nullptr;
    std::size_t length = 0;
    int matches = 0;

    std::string_view Digits() const { return std::string_view(key->digits).substr(0, length); }
};

std::optional<Dial> BestDial(const SearchStage& stage, const StageMatcher& matcher,
                             const ModeKeys& keys) {
    std::optional<Dial> best;
    if (!stage.AllowsDigits()) {
        return best;
    }
    for (const KeypadKey* key : keys.All()) {
        const std::size_t size = key->digits.size();
        if (size == 0 || size < static_cast<std::size_t>(std::max(stage.minDigits, 1))) {
            continue;
        }
        const auto maxDigits = std::min(static_cast<std::size_t>(stage.maxDigits), kIndexedDigits);
        Dial dial{key, std::min(size, maxDigits), 0};
        dial.matches = matcher.Count(dial.Digits());
        if (!best || dial.matches < best->matches) {
            best = dial;
        }
    }
    return best;
}

// "SMITH -> 76484": the letters behind the digits dialled, then the digits;
// an extension is its digits alone.
std::string Spelled(MatchMode mode, const KeypadKey& key, std::size_t length) {
    const std::string digits = key.digits.substr(0, length);
    if (mode == MatchMode::Extension) {
        return digits;
    }
    return key.letters.substr(0, length) + " -> " + digits;
}

std::string Spelled(MatchMode mode, const Dial& dial) {
    return Spelled(mode, *dial.key, dial.length);
}

// Why no digits of a stage lead to a name at all.
std::string NoDialReason(const SearchStage& stage, const ModeKeys& keys) {
    std::vector<const KeypadKey*> present;
    for (const KeypadKey* key : keys.All()) {
        if (!key->digits.empty()) {
            present.push_back(key);
        }
    }
    if (present.empty()) {
        switch (stage.mode) {
            case MatchMode::LastName:
                return "the last name has no letters";
            case MatchMode::FirstName:
                return "the first name has no letters";
            case MatchMode::BothNames:
                return "neither name has letters";
            case MatchMode::Extension:
                return "no extension";
        }
    }
    if (!stage.AllowsDigits()) {
        return NoDigitsAllowed(stage);
    }
    std::string keysText;
    for (const KeypadKey* key : present) {
        keysText +=
            (keysText.empty() ? "" : " and ") + Spelled(stage.mode, *key, key->digits.size());
    }
    return keysText + (present.size() > 1 ? " are" : " is") + " shorter than the minimum of " +
           std::to_string(stage.minDigits) + " digits";
}

std::string OneOf(int matches) {
    return matches > 1 ? ", one of " + std::to_string(matches) + " matches" : "";
}

// "shared with Anna Smith, Bob Smith and 3 more".
std::string SharedWith(const std::vector<DirectoryName>& names,
                       const std::vector<NameIndex>& others, int total) {
    std::string text = "; shared with ";
    for (std::size_t i = 0; i < others.size(); ++i) {
        text += (i ? ", " : "") + DisplayName(names[others[i]]);
    }
    const int rest = total - static_cast<int>(others.size());
    if (rest > 0) {
        text += " and " + std::to_string(rest) + " more";
    }
    return text;
}

class DirectoryCheck {
public:
    DirectoryCheck(const SearchSettings& settings, const std::vector<DirectoryName>& names)
        : settings_(settings), names_(names), keys_(MakeNameKeys(settings, names)) {}

    std::vector<NameVerdict> Run() {
        std::vector<NameVerdict> verdicts(names_.size());
        if (settings_.stages.empty()) {
            return verdicts;
        }
        std::vector<NameIndex> everyone(names_.size());
        for (std::size_t i = 0; i < everyone.size(); ++i) {
            everyone[i] = static_cast<NameIndex>(i);
        }
        const SearchStage& stage = settings_.stages.front();
        firstStage_ = std::make_unique<StageMatcher>(stage.mode, keys_, everyone);
        for (NameIndex name : everyone) {
            verdicts[name] = Judge(stage, *firstStage_, name);
        }
        return verdicts;
    }

private:
    NameVerdict Judge(const SearchStage& stage, const StageMatcher& matcher, NameIndex name) {
        NameVerdict verdict;
        const ModeKeys keys = KeysOf(stage.mode, keys_[name]);
        const std::optional<Dial> dial = BestDial(stage, matcher, keys);
        if (!dial) {
            verdict.reason = NoDialReason(stage, keys);
            return verdict;
        }
        const std::string dialled = Spelled(stage.mode, *dial);
        if (dial->matches <= settings_.PickLimit()) {
            verdict.verdict = dial->matches == 1 ? Verdict::Direct : Verdict::Among;
            verdict.digits = dial->Digits();
            verdict.matches = dial->matches;
            verdict.reason = dialled + OneOf(dial->matches);
            return verdict;
        }
        if (settings_.stages.size() > 1) {
            return JudgeSecondStage(*dial, dialled, name);
        }
        verdict.reason = dialled + " matches " + std::to_string(dial->matches) + " names, " +
                         TooManyMatches(settings_) +
                         SharedWith(names_, matcher.Others(dial->Digits(), name, kNamedAtMost),
                                    dial->matches - 1);
        return verdict;
    }

    // The first stage left too many: the second searches those matches.
    NameVerdict JudgeSecondStage(const Dial& first, const std::string& dialled, NameIndex name) {
        NameVerdict verdict;
        const SearchStage& stage = settings_.stages[1];
        const StageMatcher& matcher = SecondStageOf(first.Digits());
        const ModeKeys keys = KeysOf(stage.mode, keys_[name]);
        const std::string leaves =
            dialled + " leaves " + std::to_string(first.matches) + " names; then ";
        const std::optional<Dial> dial = BestDial(stage, matcher, keys);
        if (!dial) {
            verdict.reason = leaves + NoDialReason(stage, keys);
            return verdict;
        }
        const std::string then = Spelled(stage.mode, *dial);
        if (dial->matches <= settings_.PickLimit()) {
            verdict.verdict = Verdict::SecondStage;
            verdict.digits = first.Digits();
            verdict.matches = first.matches;
            verdict.reason = leaves + then + OneOf(dial->matches);
            return verdict;
        }
        verdict.reason = leaves + then + " matches " + std::to_string(dial->matches) +
                         " of them, " + TooManyMatches(settings_) +
                         SharedWith(names_, matcher.Others(dial->Digits(), name, kNamedAtMost),
                                    dial->matches - 1);
        return verdict;
    }

    // The second stage's matcher over the names that the first stage's
    // digits leave, made once per distinct digits.
    const StageMatcher& SecondStageOf(std::string_view firstDigits) {
        const std::uint64_t packed = Packed(firstDigits);
        auto found = secondStages_.find(packed);
        if (found == secondStages_.end()) {
            const std::vector<NameIndex> left = firstStage_->Matches(firstDigits);
            found = secondStages_
                        .emplace(packed, std::make_unique<StageMatcher>(settings_.stages[1].mode,
                                                                        keys_, left))
                        .first;
        }
        return *found->second;
    }

    const SearchSettings& settings_;
    const std::vector<DirectoryName>& names_;
    std::vector<NameKeys> keys_;
    std::unique_ptr<StageMatcher> firstStage_;
    // Keyed by the first stage's digits, packed (they are never longer than
    // the index tells apart).
    std::unordered_map<std::uint64_t, std::unique_ptr<StageMatcher>> secondStages_;
};

}  // namespace

std::string DisplayName(const DirectoryName& name) {
    std::string text = name.firstName;
    if (!name.lastName.empty()) {
        text += (text.empty() ? "" : " ") + name.lastName;
    }
    return text.empty() ? std::string("#").append(std::to_string(name.sequence)) : text;
}

std::string VerdictName(Verdict verdict) {
    switch (verdict) {
        case Verdict::Direct:
            return "direct";
        case Verdict::Among:
            return "among";
        case Verdict::SecondStage:
            return "second stage";
        case Verdict::Unreachable:
            return "unreachable";
    }
    return "unreachable";
}

std::vector<NameVerdict> CheckDirectory(const SearchSettings& settings,
                                        const std::vector<DirectoryName>& names) {
    return DirectoryCheck(settings, names).Run();
}

}  // namespace dbn::directory
