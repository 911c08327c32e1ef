#include "directory/directory_check.h"

#include "directory/keypad_keys.h"

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

using NameIndex = std::uint32_t;

struct NameKeys {
    KeypadKey last;
    KeypadKey first;
    KeypadKey extension;
};

// The keys a mode compares the dialled digits with: one, or two for "Both Names".
struct ModeKeys {
    const KeypadKey* keys[2] = {nullptr, nullptr};
    int count = 0;

    std::span<const KeypadKey* const> All() const { return {keys, static_cast<size_t>(count)}; }
};

ModeKeys KeysOf(MatchMode mode, const NameKeys& name) {
    switch (mode) {
        case MatchMode::LastName:
            return {{&name.last, nullptr}, 1};
        case MatchMode::FirstName:
            return {{&name.first, nullptr}, 1};
        case MatchMode::BothNames:
            return {{&name.last, &name.first}, 2};
        case MatchMode::Extension:
            return {{&name.extension, nullptr}, 1};
    }
    return {{&name.last, nullptr}, 1};
}

// How many leading digits of a key the check tells apart: more than any
// digit list offers.
constexpr std::size_t kIndexedDigits = 15;

// Leading digits packed into a number, four bits a digit from the top, each
// digit as 1 to 10 so that 0 marks the end: numeric order is the digits'
// order, and the keys that begin with a prefix form one range of numbers.
// Sorting and searching numbers keeps the index in one small block of memory.
std::uint64_t Packed(std::string_view digits) {
    std::uint64_t packed = 0;
    const std::size_t length = std::min(digits.size(), kIndexedDigits);
    for (std::size_t i = 0; i < length; ++i) {
        packed |= static_cast<std::uint64_t>(digits[i] - '0' + 1) << (60 - 4 * i);
    }
    return packed;
}

// Keys in digit order, searched by prefix in O(log n).
class PrefixIndex {
public:
    struct Entry {
        std::uint64_t digits = 0;
        NameIndex name = 0;

        bool operator<(const Entry& other) const {
            return digits != other.digits ? digits < other.digits : name < other.name;
        }
    };

    void Add(std::string_view digits, NameIndex name) {
        if (!digits.empty()) {
            entries_.push_back({Packed(digits), name});
        }
    }
    void Sort() { std::sort(entries_.begin(), entries_.end()); }

    // The entries whose digits begin with prefix (1 to kIndexedDigits digits).
    std::span<const Entry> WithPrefix(std::string_view prefix) const {
        const std::uint64_t low = Packed(prefix);
        const std::size_t length = std::min(prefix.size(), kIndexedDigits);
        const std::uint64_t high = low | ((std::uint64_t{1} << (64 - 4 * length)) - 1);
        const auto first = std::lower_bound(
            entries_.begin(), entries_.end(), low,
            [](const Entry& entry, std::uint64_t value) { return entry.digits < value; });
        const auto last = std::upper_bound(
            first, entries_.end(), high,
            [](std::uint64_t value, const Entry& entry) { return value < entry.digits; });
        return {first, last};
    }

private:
    std::vector<Entry> entries_;
};

// The names of a set that one stage's dialled digits match. With "Both
// Names" a name matches through either key and counts once: the names whose
// two keys share the dialled digits are kept aside and subtracted.
class StageMatcher {
public:
    StageMatcher(MatchMode mode, const std::vector<NameKeys>& keys,
                 std::span<const NameIndex> names) {
        for (NameIndex name : names) {
            const ModeKeys modeKeys = KeysOf(mode, keys[name]);
            for (const KeypadKey* key : modeKeys.All()) {
                keys_.Add(key->digits, name);
            }
            if (modeKeys.count == 2) {
                const std::string_view a = modeKeys.keys[0]->digits;
                const std::string_view b = modeKeys.keys[1]->digits;
                const auto common =
                    std::mismatch(a.begin(), a.begin() + std::min(a.size(), b.size()), b.begin());
                both_.Add(a.substr(0, static_cast<std::size_t>(common.first - a.begin())), name);
            }
        }
        keys_.Sort();
        both_.Sort();
    }

    int Count(std::string_view digits) const {
        return static_cast<int>(keys_.WithPrefix(digits).size() - both_.WithPrefix(digits).size());
    }

    // The names the digits match, each once, in key order.
    std::vector<NameIndex> Matches(std::string_view digits) const {
        std::vector<NameIndex> names;
        for (const PrefixIndex::Entry& entry : keys_.WithPrefix(digits)) {
            names.push_back(entry.name);
        }
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
        return names;
    }

    // Up to `limit` names the digits match other than `except`, each once.
    std::vector<NameIndex> Others(std::string_view digits, NameIndex except,
                                  std::size_t limit) const {
        std::vector<NameIndex> names;
        for (const PrefixIndex::Entry& entry : keys_.WithPrefix(digits)) {
            if (names.size() == limit) {
                break;
            }
            if (entry.name != except &&
                std::find(names.begin(), names.end(), entry.name) == names.end()) {
                names.push_back(entry.name);
            }
        }
        return names;
    }

private:
    PrefixIndex keys_;
    PrefixIndex both_;
};

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
    if (stage.maxDigits < 1 || stage.minDigits > stage.maxDigits) {
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
    if (stage.maxDigits < 1 || stage.minDigits > stage.maxDigits) {
        return "no number of digits is allowed (minimum " + std::to_string(stage.minDigits) +
               ", maximum " + std::to_string(stage.maxDigits) + ")";
    }
    std::string keysText;
    for (const KeypadKey* key : present) {
        keysText +=
            (keysText.empty() ? "" : " and ") + Spelled(stage.mode, *key, key->digits.size());
    }
    return keysText + (present.size() > 1 ? " are" : " is") + " shorter than the minimum of " +
           std::to_string(stage.minDigits) + " digits";
}

std::string TooMany(const SearchSettings& settings) {
    if (!settings.confirmation) {
        return "more than the single match that connects without confirmation";
    }
    return "more than the " + std::to_string(settings.PickLimit()) + " that can be offered";
}

std::string OneOf(int matches) {
    return matches > 1 ? ", one of " + std::to_string(matches) + " matches" : "";
}

std::string DisplayName(const DirectoryName& name) {
    std::string text = name.firstName;
    if (!name.lastName.empty()) {
        text += (text.empty() ? "" : " ") + name.lastName;
    }
    return text.empty() ? std::string("#").append(std::to_string(name.sequence)) : text;
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
        : settings_(settings), names_(names) {
        // Only the keys some stage searches by are made.
        bool last = false;
        bool first = false;
        bool extension = false;
        for (const SearchStage& stage : settings.stages) {
            last = last || stage.mode == MatchMode::LastName || stage.mode == MatchMode::BothNames;
            first =
                first || stage.mode == MatchMode::FirstName || stage.mode == MatchMode::BothNames;
            extension = extension || stage.mode == MatchMode::Extension;
        }
        KeypadSpeller speller;
        keys_.resize(names.size());
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (last) {
                keys_[i].last = speller.NameKey(names[i].lastName);
            }
            if (first) {
                keys_[i].first = speller.NameKey(names[i].firstName);
            }
            if (extension) {
                keys_[i].extension = ExtensionKey(names[i].extension);
            }
        }
    }

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
                         TooMany(settings_) +
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
                         " of them, " + TooMany(settings_) +
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
