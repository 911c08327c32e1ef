#include "directory/stage_matcher.h"

#include "directory/directory_check.h"

#include <algorithm>

namespace dbn::directory {

std::vector<NameKeys> MakeNameKeys(const SearchSettings& settings,
                                   const std::vector<DirectoryName>& names) {
    // Only the keys some stage searches by are made.
    bool last = false;
    bool first = false;
    bool extension = false;
    for (const SearchStage& stage : settings.stages) {
        last = last || stage.mode == MatchMode::LastName || stage.mode == MatchMode::BothNames;
        first = first || stage.mode == MatchMode::FirstName || stage.mode == MatchMode::BothNames;
        extension = extension || stage.mode == MatchMode::Extension;
    }
    KeypadSpeller speller;
    std::vector<NameKeys> keys(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (last) {
            keys[i].last = speller.NameKey(names[i].lastName);
        }
        if (first) {
            keys[i].first = speller.NameKey(names[i].firstName);
        }
        if (extension) {
            keys[i].extension = ExtensionKey(names[i].extension);
        }
    }
    return keys;
}

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

std::uint64_t Packed(std::string_view digits) {
    std::uint64_t packed = 0;
    const std::size_t length = std::min(digits.size(), kIndexedDigits);
    for (std::size_t i = 0; i < length; ++i) {
        packed |= static_cast<std::uint64_t>(digits[i] - '0' + 1) << (60 - 4 * i);
    }
    return packed;
}

void PrefixIndex::Add(std::string_view digits, NameIndex name) {
    if (!digits.empty()) {
        entries_.push_back({Packed(digits), name});
    }
}

void PrefixIndex::Sort() {
    std::sort(entries_.begin(), entries_.end());
}

std::span<const PrefixIndex::Entry> PrefixIndex::WithPrefix(std::string_view prefix) const {
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

StageMatcher::StageMatcher(MatchMode mode, const std::vector<NameKeys>& keys,
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

int StageMatcher::Count(std::string_view digits) const {
    return static_cast<int>(keys_.WithPrefix(digits).size() - both_.WithPrefix(digits).size());
}

std::vector<NameIndex> StageMatcher::Matches(std::string_view digits) const {
    std::vector<NameIndex> names;
    for (const PrefixIndex::Entry& entry : keys_.WithPrefix(digits)) {
        names.push_back(entry.name);
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::vector<NameIndex> StageMatcher::First(std::string_view digits, std::size_t limit) const {
    // The smallest indexes seen so far, kept sorted: a pass over the matches
    // without sorting them all.
    std::vector<NameIndex> names;
    if (limit == 0) {
        return names;
    }
    for (const PrefixIndex::Entry& entry : keys_.WithPrefix(digits)) {
        if (names.size() == limit && entry.name >= names.back()) {
            continue;
        }
        const auto at = std::lower_bound(names.begin(), names.end(), entry.name);
        if (at != names.end() && *at == entry.name) {
            continue;
        }
        names.insert(at, entry.name);
        if (names.size() > limit) {
            names.pop_back();
        }
    }
    return names;
}

std::vector<NameIndex> StageMatcher::Others(std::string_view digits, NameIndex except,
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

}  // namespace dbn::directory
