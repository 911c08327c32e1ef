#include "nodetext/text_form.h"

#include "nodefields/text_limits.h"
#include "nodetext/text_checker.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <limits>
#include <map>
#include <set>

namespace dbn::nodetext {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFormat = "dbn-nodes";
constexpr int kVersion = 1;
using nodefields::kLongestTypeCode;
using nodefields::kMostPrompts;
constexpr std::size_t kShownValue = 40;

Json ValueJson(const Value& value) {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return *number;
    }
    if (const auto* text = std::get_if<std::string>(&value)) {
        return *text;
    }
    return nullptr;
}

Json RefJson(const StoredRef& ref) {
    if (std::holds_alternative<std::monostate>(ref.type)) {
        return nullptr;
    }
    Json json = Json::object();
    json["type"] = ValueJson(ref.type);
    json["number"] = ValueJson(ref.number);
    return json;
}

Json FieldJson(const FieldRule& rule, const TextNode& node) {
    auto column = [&]() -> Value {
        auto found = node.columns.find(rule.column);
        return found == node.columns.end() ? Value{} : found->second;
    };
    switch (rule.kind) {
        case FieldKind::Text:
        case FieldKind::Whole:
            return ValueJson(column());
        case FieldKind::Named: {
            const Value value = column();
            if (const auto* number = std::get_if<std::int64_t>(&value)) {
                for (const auto& [stored, name] : rule.names) {
                    if (stored == *number) {
                        return name;
                    }
                }
            }
            return ValueJson(value);
        }
        case FieldKind::Flag: {
            const Value value = column();
            if (const auto* number = std::get_if<std::int64_t>(&value);
                number != nullptr && (*number == 0 || *number == 1)) {
                return *number == 1;
            }
            return ValueJson(value);
        }
        case FieldKind::Target:
            return RefJson(RefColumns(node, rule.column));
        case FieldKind::Prompts: {
            Json list = Json::array();
            for (const StoredRef& prompt : node.prompts) {
                list.push_back(RefJson(prompt));
            }
            return list;
        }
    }
    return nullptr;
}

// The node without its fingerprint.
Json NodeJson(const TextNode& node) {
    Json json = Json::object();
    json["number"] = node.number;
    if (node.number == 0) {
        json["template"] = true;
    }
    for (const FieldRule& rule : Fields()) {
        json[Json::json_pointer(rule.pointer)] = FieldJson(rule, node);
    }
    json["modified"] = ValueJson(node.modified);
    return json;
}

std::string Dump(const Json& json, int indent = -1) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

std::string Shown(const Json& value) {
    std::string text = Dump(value);
    if (text.size() > kShownValue) {
        text = text.substr(0, kShownValue) + "...";
    }
    return text;
}

// ---- Reading -------------------------------------------------------------

class NodeReader {
public:
    NodeReader(std::vector<Problem>& problems, std::string prefix)
        : problems_(problems), prefix_(std::move(prefix)) {}

    void Fail(const std::string& path, const std::string& message) {
        problems_.push_back({prefix_ + (path.empty() ? "" : "." + path), message});
        failed_ = true;
    }
    bool Failed() const { return failed_; }

    // A key (a node, configuration or partition number): 16 bits.
    std::optional<std::int64_t> Whole(const Json& json, const std::string& path) {
        return WholeIn(json, path, -32768, 32767);
    }

    // A stored value: whatever a column holds, so that a value beyond what
    // the editor offers comes back unchanged; a changed one is checked
    // against the field's range when it is applied.
    std::optional<std::int64_t> StoredWhole(const Json& json, const std::string& path) {
        return WholeIn(json, path, std::numeric_limits<std::int64_t>::min(),
                       std::numeric_limits<std::int64_t>::max());
    }

    std::optional<std::int64_t> WholeIn(const Json& json, const std::string& path, std::int64_t low,
                                        std::int64_t high) {
        if (json.is_number_integer()) {
            const bool fits =
                json.is_number_unsigned()
                    ? json.get<std::uint64_t>() <= static_cast<std::uint64_t>(high)
                    : json.get<std::int64_t>() >= low && json.get<std::int64_t>() <= high;
            if (fits) {
                return json.get<std::int64_t>();
            }
            Fail(path, Shown(json) + " is outside " + std::to_string(low) + " to " +
                           std::to_string(high));
            return std::nullopt;
        }
        Fail(path, "must be a whole number, not " + Shown(json));
        return std::nullopt;
    }

    std::optional<Value> Text(const Json& json, const std::string& path, std::size_t longest) {
        if (json.is_null()) {
            return Value{};
        }
        if (!json.is_string()) {
            Fail(path, "must be a text, not " + Shown(json));
            return std::nullopt;
        }
        const auto& text = json.get_ref<const std::string&>();
        if (auto refusal = nodefields::LengthRefusal(text, longest)) {
            Fail(path, *refusal);
            return std::nullopt;
        }
        return Value{text};
    }

    std::optional<Value> Number(const Json& json, const std::string& path) {
        if (json.is_null()) {
            return Value{};
        }
        if (auto number = StoredWhole(json, path)) {
            return Value{*number};
        }
        return std::nullopt;
    }

    std::optional<StoredRef> Ref(const Json& json, const std::string& path) {
        if (json.is_null()) {
            return StoredRef{};
        }
        if (!json.is_object()) {
            Fail(path, "must be {\"type\": CODE, \"number\": N} or null, not " + Shown(json));
            return std::nullopt;
        }
        bool good = true;
        for (const auto& [key, value] : json.items()) {
            if (key != "type" && key != "number") {
                Fail(path + "." + key, "unknown field");
                good = false;
            }
        }
        if (!json.contains("type") || !json.contains("number")) {
            Fail(path, "must have both \"type\" and \"number\"");
            return std::nullopt;
        }
        StoredRef ref;
        if (!json["type"].is_string()) {
            Fail(path + ".type", "must be a node-type code, not " + Shown(json["type"]));
            good = false;
        } else if (auto type = Text(json["type"], path + ".type", kLongestTypeCode)) {
            ref.type = *type;
        } else {
            good = false;
        }
        if (auto number = StoredWhole(json["number"], path + ".number")) {
            ref.number = *number;
        } else {
            good = false;
        }
        return good ? std::optional<StoredRef>(ref) : std::nullopt;
    }

    void ReadField(const FieldRule& rule, const Json& json, TextNode& node) {
        const std::string& path = rule.path;
        switch (rule.kind) {
            case FieldKind::Text:
                if (auto value = Text(json, path, nodefields::kLongestStoredLabel)) {
                    node.columns[rule.column] = *value;
                }
                return;
            case FieldKind::Whole:
                if (auto value = Number(json, path)) {
                    node.columns[rule.column] = *value;
                }
                return;
            case FieldKind::Named:
                if (json.is_string()) {
                    for (const auto& [stored, name] : rule.names) {
                        if (name == json.get_ref<const std::string&>()) {
                            node.columns[rule.column] = std::int64_t{stored};
                            return;
                        }
                    }
                    Fail(path, Shown(json) + " is not one of " + nodefields::NameList(rule));
                } else if (auto value = Number(json, path)) {
                    node.columns[rule.column] = *value;
                }
                return;
            case FieldKind::Flag:
                if (json.is_boolean()) {
                    node.columns[rule.column] = std::int64_t{json.get<bool>() ? 1 : 0};
                } else if (auto value = Number(json, path)) {
                    node.columns[rule.column] = *value;
                }
                return;
            case FieldKind::Target:
                if (auto ref = Ref(json, path)) {
                    SetRefColumns(node, rule.column, *ref);
                }
                return;
            case FieldKind::Prompts:
                if (!json.is_array()) {
                    Fail(path, "must be a list of prompts, not " + Shown(json));
                    return;
                }
                if (json.size() > kMostPrompts) {
                    Fail(path, "holds " + std::to_string(json.size()) + " prompts; at most " +
                                   std::to_string(kMostPrompts) + " are allowed");
                    return;
                }
                for (std::size_t i = 0; i < json.size(); ++i) {
                    if (auto ref = Ref(json[i], path + "[" + std::to_string(i) + "]")) {
                        node.prompts.push_back(*ref);
                    }
                }
                return;
        }
    }

private:
    std::vector<Problem>& problems_;
    std::string prefix_;
    bool failed_ = false;
};

// The shape of a node: every object and array the text form has, with its
// leaves marked, to find unknown fields and misplaced containers.
const Json& NodeShape() {
    static const Json shape = [] {
        Json json = Json::object();
        for (const char* leaf : {"/number", "/template", "/modified", "/stored"}) {
            json[Json::json_pointer(leaf)] = "leaf";
        }
        for (const FieldRule& rule : Fields()) {
            json[Json::json_pointer(rule.pointer)] = "leaf";
        }
        return json;
    }();
    return shape;
}

void CheckShape(NodeReader& reader, const Json& json, const Json& shape, const std::string& path) {
    if (shape.is_object()) {
        if (!json.is_object()) {
            reader.Fail(path, "must be an object, not " + Shown(json));
            return;
        }
        for (const auto& [key, value] : json.items()) {
            const std::string inner = path.empty() ? key : path + "." + key;
            if (!shape.contains(key)) {
                reader.Fail(inner, "unknown field");
            } else {
                CheckShape(reader, value, shape[key], inner);
            }
        }
        for (const auto& [key, value] : shape.items()) {
            const bool optional =
                path.empty() && (key == "template" || key == "modified" || key == "stored");
            if (!optional && !json.contains(key)) {
                reader.Fail(path.empty() ? key : path + "." + key, "is missing");
            }
        }
    } else if (shape.is_array()) {
        if (!json.is_array() || json.size() != shape.size()) {
            reader.Fail(path, "must be a list of " + std::to_string(shape.size()) + " objects");
            return;
        }
        for (std::size_t i = 0; i < json.size(); ++i) {
            CheckShape(reader, json[i], shape[i], path + "[" + std::to_string(i) + "]");
        }
    }
}

// A fingerprint as the text form writes it: 16 lower-case hexadecimal digits.
bool IsFingerprint(const Json& json) {
    if (!json.is_string()) {
        return false;
    }
    const auto& text = json.get_ref<const std::string&>();
    return text.size() == 16 && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

std::optional<TextNode> ReadNode(const Json& json, std::vector<Problem>& problems,
                                 const std::string& prefix) {
    NodeReader reader(problems, prefix);
    CheckShape(reader, json, NodeShape(), "");
    if (reader.Failed()) {
        return std::nullopt;
    }
    TextNode node;
    if (auto number = reader.Whole(json["number"], "number")) {
        if (*number < 0) {
            reader.Fail("number", std::to_string(*number) + " is not a node number");
        }
        node.number = *number;
    }
    if (json.contains("template") && json["template"] != (node.number == 0)) {
        reader.Fail("template", "only node 0 is the template, and it is marked true");
    }
    if (json.contains("stored")) {
        if (IsFingerprint(json["stored"])) {
            node.stored = json["stored"].get<std::string>();
        } else {
            reader.Fail("stored", "must be 16 hexadecimal digits, not " + Shown(json["stored"]));
        }
    }
    // Shown only and never applied, but of the type the text form writes.
    if (json.contains("modified") && !json["modified"].is_string() && !json["modified"].is_null()) {
        reader.Fail("modified", "must be a text or null, not " + Shown(json["modified"]));
    }
    for (const FieldRule& rule : Fields()) {
        reader.ReadField(rule, json[Json::json_pointer(rule.pointer)], node);
    }
    if (reader.Failed()) {
        return std::nullopt;
    }
    return node;
}

std::optional<std::int64_t> DocumentKey(const Json& json, const char* key,
                                        std::vector<Problem>& problems) {
    NodeReader reader(problems, key);
    if (!json.contains(key)) {
        reader.Fail("", "is missing");
        return std::nullopt;
    }
    return reader.Whole(json[key], "");
}

// FNV-1a, 64 bits, over the node's compact JSON: stable across runs,
// machines and engines.
std::string FingerprintOf(const Json& nodeJson) {
    std::uint64_t hash = 14695981039346656037ull;
    for (const unsigned char c : Dump(nodeJson)) {
        hash ^= c;
        hash *= 1099511628211ull;
    }
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

}  // namespace

std::string Fingerprint(const TextNode& node) {
    return FingerprintOf(NodeJson(node));
}

std::string DocumentText(const NodeDocument& document) {
    Json json = Json::object();
    json["format"] = kFormat;
    json["version"] = kVersion;
    json["configuration"] = document.configuration;
    json["partition"] = document.partition;
    json["nodes"] = Json::array();
    for (const TextNode& node : document.nodes) {
        Json entry = NodeJson(node);
        entry["stored"] = FingerprintOf(entry);
        json["nodes"].push_back(std::move(entry));
    }
    return Dump(json, 2) + "\n";
}

std::string ProblemText(const Problem& problem) {
    return problem.path.empty() ? problem.message : problem.path + ": " + problem.message;
}

ReadResult ReadDocument(std::string_view text) {
    ReadResult result;
    if (std::optional<Problem> problem = CheckText(text)) {
        result.problems.push_back(std::move(*problem));
        return result;
    }
    Json json = Json::parse(text.begin(), text.end());
    std::vector<Problem>& problems = result.problems;
    if (!json.is_object()) {
        problems.push_back({"", "the document must be a JSON object"});
        return result;
    }
    for (const auto& [key, value] : json.items()) {
        if (key != "format" && key != "version" && key != "configuration" && key != "partition" &&
            key != "nodes") {
            problems.push_back({key, "unknown field"});
        }
    }
    if (json.value("format", Json()) != kFormat) {
        problems.push_back({"format", "must be \"dbn-nodes\""});
    }
    if (json.value("version", Json()) != kVersion) {
        problems.push_back({"version", "must be 1"});
    }
    NodeDocument document;
    const auto configuration = DocumentKey(json, "configuration", problems);
    const auto partition = DocumentKey(json, "partition", problems);
    if (!json.contains("nodes") || !json["nodes"].is_array()) {
        problems.push_back({"nodes", "must be a list of nodes"});
        return result;
    }
    std::map<std::int64_t, std::size_t> seen;
    const Json& nodes = json["nodes"];
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const std::string prefix = "nodes[" + std::to_string(i) + "]";
        std::optional<TextNode> node = ReadNode(nodes[i], problems, prefix);
        if (!node) {
            continue;
        }
        auto [at, fresh] = seen.emplace(node->number, i);
        if (!fresh) {
            problems.push_back({prefix + ".number", std::to_string(node->number) +
                                                        " is already the number of nodes[" +
                                                        std::to_string(at->second) + "]"});
            continue;
        }
        document.nodes.push_back(std::move(*node));
    }
    if (problems.empty() && configuration && partition) {
        document.configuration = *configuration;
        document.partition = *partition;
        result.document = std::move(document);
    }
    return result;
}

std::vector<FieldChange> Changes(const TextNode& before, const TextNode& after) {
    std::vector<FieldChange> changes;
    for (const FieldRule& rule : Fields()) {
        const Json old = FieldJson(rule, before);
        const Json now = FieldJson(rule, after);
        if (old != now) {
            changes.push_back({rule.path, Dump(old), Dump(now)});
        }
    }
    return changes;
}

bool Changed(const std::vector<FieldChange>& changes, std::string_view path) {
    return std::any_of(changes.begin(), changes.end(),
                       [&](const FieldChange& change) { return change.path == path; });
}

}  // namespace dbn::nodetext
