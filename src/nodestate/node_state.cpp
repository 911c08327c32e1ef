#include "nodestate/node_state.h"

#include <stdexcept>

namespace dbn::nodestate {

std::string ToJson(const NodeState& state) {
    // {"node":…,"details":…,"pool":…}, written part by part rather than as
    // one copied object: a save writes several of these.
    auto dump = [](const Json& part) {
        return part.dump(-1, ' ', false, Json::error_handler_t::replace);
    };
    std::string text = R"({"node":)";
    text += dump(state.node);
    text += R"(,"details":[)";
    for (std::size_t row = 0; row < state.details.size(); ++row) {
        if (row > 0) {
            text += ',';
        }
        text += dump(state.details[row]);
    }
    text += R"(],"pool":)";
    text += dump(state.pool);
    text += '}';
    return text;
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
