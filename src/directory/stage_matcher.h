#pragma once

// The index a caller's search runs on, shared by the directory check and the
// call simulation: each name's keypad keys, and the keys of one stage sorted
// so that the names a digit prefix matches are found by two binary searches.

#include "directory/keypad_keys.h"
#include "directory/search_settings.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace dbn::directory {

struct DirectoryName;

using NameIndex = std::uint32_t;

struct NameKeys {
    KeypadKey last;
    KeypadKey first;
    KeypadKey extension;
};

// The keys of every name (in the order given) that some stage of the
// settings searches by; the others stay empty.
std::vector<NameKeys> MakeNameKeys(const SearchSettings& settings,
                                   const std::vector<DirectoryName>& names);

// The keys a mode compares the dialled digits with: one, or two for "Both Names".
struct ModeKeys {
    const KeypadKey* keys[2] = {nullptr, nullptr};
    int count = 0;

    std::span<const KeypadKey* const> All() const { return {keys, static_cast<size_t>(count)}; }
};

ModeKeys KeysOf(MatchMode mode, const NameKeys& name);

// How many leading digits of a key the index tells apart: more than any
// digit list offers.
inline constexpr std::size_t kIndexedDigits = 15;

// Leading digits packed into a number, four bits a digit from the top, each
// digit as 1 to 10 so that 0 marks the end: numeric order is the digits'
// order, and the keys that begin with a prefix form one range of numbers.
// Sorting and searching numbers keeps the index in one small block of memory.
std::uint64_t Packed(std::string_view digits);

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

    void Add(std::string_view digits, NameIndex name);
    void Sort();
    // The entries whose digits begin with prefix (1 to kIndexedDigits digits).
    std::span<const Entry> WithPrefix(std::string_view prefix) const;

private:
    std::vector<Entry> entries_;
};

// The names of a set that one stage's dialled digits match. With "Both
// Names" a name matches through either key and counts once: the names whose
// two keys share the dialled digits are kept aside and subtracted.
class StageMatcher {
public:
    StageMatcher(MatchMode mode, const std::vector<NameKeys>& keys,
                 std::span<const NameIndex> names);

    int Count(std::string_view digits) const;
    // The names the digits match, each once, in the names' order.
    std::vector<NameIndex> Matches(std::string_view digits) const;
    // The first `limit` names (in the names' order) the digits match, each once.
    std::vector<NameIndex> First(std::string_view digits, std::size_t limit) const;
    // Up to `limit` names the digits match other than `except`, each once.
    std::vector<NameIndex> Others(std::string_view digits, NameIndex except,
                                  std::size_t limit) const;

private:
    PrefixIndex keys_;
    PrefixIndex both_;
};

}  // namespace dbn::directory
