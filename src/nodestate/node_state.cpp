#include "nodestate/node_state.h"

#include <algorithm>
#include <stdexcept>

namespace dbn::nodestate {

namespace {

// True for a text that JSON writes as it stands: ASCII without quotes,
// backslashes or control characters.
bool PlainText(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x20 && byte < 0x80 && c != '"' && c != '\\';
    });
}

void AppendJson(std::string& out, const Json& value);

void AppendText(std::string& out, const std::string& text) {
    if (PlainText(text)) {
        out += '"';
        out += text;
        out += '"';
    } else {
        out += Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
    }
}

// Appends value exactly as the library's dump writes it: the usual values
// (plain texts, whole numbers, null) directly, the rest through the library.
void AppendJson(std::string& out, const Json& value) {
    switch (value.type()) {
        case Json::value_t::null:
            out += "null";
            return;
        case Json::value_t::number_integer:
            out += std::to_string(value.get_ref<const Json::number_integer_t&>());
            return;
        case Json::value_t::number_unsigned:
            out += std::to_string(value.get_ref<const Json::number_unsigned_t&>());
            return;
        case Json::value_t::string:
            AppendText(out, value.get_ref<const std::string&>());
            return;
        case Json::value_t::object: {
            out += '{';
            bool first = true;
            for (const auto& [key, member] : value.get_ref<const Json::object_t&>()) {
                if (!first) {
                    out += ',';
                }
                first = false;
                AppendText(out, key);
                out += ':';
                AppendJson(out, member);
            }
            out += '}';
            return;
        }
        case Json::value_t::array: {
            out += '[';
            bool first = true;
            for (const Json& item : value) {
                if (!first) {
                    out += ',';
                }
                first = false;
                AppendJson(out, item);
            }
            out += ']';
            return;
        }
        default:
            out += value.dump(-1, ' ', false, Json::error_handler_t::replace);
            return;
    }
}

}  // namespace

std::string ToJson(const NodeState& state) {
    // {"node":…,"details":…,"pool":…}, written part by part rather than as
    // one copied object: a save writes several of these.
    std::string text;
    text.reserve(2048);
    text += R"({"node":)";
    AppendJson(text, state.node);
    text += R"(,"details":[)";
    for (std::size_t row = 0; row < state.details.size(); ++row) {
        if (row > 0) {
            text += ',';
        }
        AppendJson(text, state.details[row]);
    }
    text += R"(],"pool":)";
    AppendJson(text, state.pool);
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
