#include "nodestate/node_state.h"

#include <stdexcept>

namespace dbn::nodestate {

std::string ToJson(const NodeState& state) {
    Json whole = Json::object();
    whole["node"] = state.node;
    whole["details"] = state.details;
    whole["pool"] = state.pool;
    return whole.dump(-1, ' ', false, Json::error_handler_t::replace);
}

NodeState FromJson(std::string_view text) {
    Json whole;
    try {
        whole = Json::parse(text);
    } catch (const Json::exception& failure) {
        throw std::invalid_argument(std::string("not a node state: ") + failure.what());
    }
    if (!whole.is_object() || !whole.contains("node") || !whole["node"].is_object() ||
        !whole.contains("details") || !whole["details"].is_array()) {
        throw std::invalid_argument("not a node state");
    }
    NodeState state;
    state.node = whole["node"];
    for (const Json& row : whole["details"]) {
        if (!row.is_object()) {
            throw std::invalid_argument("not a node state");
        }
        state.details.push_back(row);
    }
    state.pool = whole.value("pool", Json());
    return state;
}

std::string ToStoredJson(const std::optional<NodeState>& state) {
    return state ? ToJson(*state) : std::string();
}

std::optional<NodeState> FromStoredJson(std::string_view text) {
    if (text.empty()) {
        return std::nullopt;
    }
    return FromJson(text);
}

}  // namespace dbn::nodestate
