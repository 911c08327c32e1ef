#pragma once

// The whole stored state of one node: its row in the node type's table, its
// detail rows (a dial-by-name node's prompt rows) and its row in the general
// node pool, each a JSON object of column name to value as stored (numbers
// as numbers, Null as null), in the table's column order.

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn::nodestate {

using Json = nlohmann::ordered_json;

struct NodeState {
    Json node = Json::object();
    std::vector<Json> details;
    Json pool = nullptr;  // null when the node has no pool row

    bool operator==(const NodeState&) const = default;
};

// The state as one line of JSON: {"node":{…},"details":[…],"pool":{…}}.
// Texts keep their UTF-8 as it is; bytes that are not UTF-8 become U+FFFD.
std::string ToJson(const NodeState& state);

// Reads what ToJson wrote; raises std::invalid_argument for anything else.
NodeState FromJson(std::string_view text);

// ToJson of a state that may be absent (a node before it was created):
// empty text for none. FromStoredJson reads it back.
std::string ToStoredJson(const std::optional<NodeState>& state);
std::optional<NodeState> FromStoredJson(std::string_view text);

}  // namespace dbn::nodestate
