#include "nodetext/node_text.h"

namespace dbn::nodetext {

StoredRef RefColumns(const TextNode& node, const std::string& role) {
    auto column = [&](const char* suffix) {
        auto found = node.columns.find(role + suffix);
        return found == node.columns.end() ? Value{} : found->second;
    };
    return {column("NodeType"), column("NodeNumber"), column("NodeTypeID")};
}

void SetRefColumns(TextNode& node, const std::string& role, const StoredRef& ref) {
    node.columns[role + "NodeType"] = ref.type;
    node.columns[role + "NodeNumber"] = ref.number;
    node.columns[role + "NodeTypeID"] = ref.typeID;
}

std::string ValueText(const Value& value) {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return std::to_string(*number);
    }
    if (const auto* text = std::get_if<std::string>(&value)) {
        return *text;
    }
    return "";
}

std::int64_t WholeOr(const Value& value, std::int64_t fallback) {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return *number;
    }
    return fallback;
}

}  // namespace dbn::nodetext
