#pragma once

// The node types the editor relies on by ID. Their codes come from the
// database's node-type catalogue, except the dial-by-name node's own code,
// which the save writes.

#include <cstdint>

namespace dbn::node_type {

// The message type ("MSG"); new confirmation rows and the abort default point at it.
inline constexpr std::int16_t kMessage = 0;
// The transfer type, the valid-match default.
inline constexpr std::int16_t kTransfer = 4;
// The dial-by-name node this editor edits.
inline constexpr std::int16_t kDialByName = 15;
inline constexpr const char* kDialByNameCode = "DBN";
// The directory node a dial-by-name node searches.
inline constexpr std::int16_t kDirectory = 16;
inline constexpr const char* kDirectoryCode = "DIR";
// The type whose references carry no node number: shown by its code alone,
// stored with number 0.
inline constexpr std::int16_t kNoNumber = 814;
// A type never looked up as a referenced node whose missing number limit
// reads as kOpenRangeLimit.
inline constexpr std::int16_t kOpenRange = 816;
inline constexpr std::int16_t kOpenRangeLimit = 999;
// The two types that follow the message type (their nodes are message nodes).
inline constexpr std::int16_t kMessageOn = 817;
inline constexpr std::int16_t kMessageOff = 818;
// Another type never looked up as a referenced node.
inline constexpr std::int16_t kNeverLookedUp = 999;

// Whether a type follows the message type.
constexpr bool FollowsMessage(long type) {
    return type == kMessageOn || type == kMessageOff;
}

}  // namespace dbn::node_type
