#pragma once

// What a call through one dial-by-name node runs on: the node's settings as
// the editor shows them, its prompts and targets with their descriptions,
// and the names of its directory.

#include "directory/directory_check.h"
#include "directory/search_settings.h"

#include <array>
#include <string>
#include <vector>

namespace dbn::directory {

// A node the call plays or continues at: its reference as the editor shows
// it ("MSG 45", "NOOP") and the referenced node's description.
struct CallPrompt {
    std::string reference;
    std::string description;

    // `MSG 45 "Please spell the last name"`, or the reference alone when
    // there is no description.
    std::string Text() const;

    bool operator==(const CallPrompt&) const = default;
};

// Where a call leaves the node.
enum class CallExit { ValidMatch, Abort, Star, Pound, Zero, Timeout, Invalid, ConfirmationExit };
inline constexpr std::size_t kCallExitCount = 8;

// "Valid Match", "Abort", "*", "#", "0", "Timeout", "Invalid", "Confirmation Exit".
std::string CallExitName(CallExit exit);

struct CallPlan {
    SearchSettings search;
    CallPrompt greeting;
    // The prompt of each stage of search.stages, in order.
    std::vector<CallPrompt> stagePrompts;
    // The confirmation: before the names, one row per offered position
    // (Name1, Name2, ...), after the names.
    CallPrompt beforeNames;
    std::vector<CallPrompt> namePrompts;
    CallPrompt afterNames;
    // The node each exit continues at, indexed by CallExit; the confirmation
    // exit is the exit prompt.
    std::array<CallPrompt, kCallExitCount> targets;
    int digitTimeout = 10;     // seconds
    int selectionTimeout = 5;  // seconds
    int retryLimit = 1;
    bool playName = true;
    std::vector<DirectoryName> names;

    bool operator==(const CallPlan&) const = default;

    const CallPrompt& Target(CallExit exit) const {
        return targets[static_cast<std::size_t>(exit)];
    }
    CallPrompt& Target(CallExit exit) { return targets[static_cast<std::size_t>(exit)]; }
};

// The prompts the method "Default Last Name" plays in place of the node's
// own stage and confirmation prompts, spoken in the node's languages
// ("English", "English and French").
CallPrompt DefaultPrompt(const std::string& what, const std::string& languages);

}  // namespace dbn::directory
