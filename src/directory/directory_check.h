#pragma once

#include "directory/search_settings.h"

#include <string>
#include <vector>

namespace dbn::directory {

// One name of a directory node, as stored.
struct DirectoryName {
    int sequence = 0;
    std::string lastName;
    std::string firstName;
    std::string extension;

    bool operator==(const DirectoryName&) const = default;
};

// "Grace Adams", or "#3" (its sequence number) for a name without letters.
std::string DisplayName(const DirectoryName& name);

// How a caller reaches a name, if at all.
enum class Verdict { Direct, Among, SecondStage, Unreachable };

// "direct", "among", "second stage", "unreachable".
std::string VerdictName(Verdict verdict);

// The check's answer for one name.
struct NameVerdict {
    Verdict verdict = Verdict::Unreachable;
    // The digits a caller dials in the first stage; empty when unreachable.
    std::string digits;
    // How many names those digits leave; 0 when unreachable.
    int matches = 0;
    // Why, in words: the letters and digits dialled, or what stands in the way.
    std::string reason;

    bool Reachable() const noexcept { return verdict != Verdict::Unreachable; }
};

// Answers, for every name (in the order given), whether some digit sequence
// the settings allow leads to a set of matches small enough to pick it from.
// Works from sorted keys: O(n log n) in the number of names.
std::vector<NameVerdict> CheckDirectory(const SearchSettings& settings,
                                        const std::vector<DirectoryName>& names);

}  // namespace dbn::directory
