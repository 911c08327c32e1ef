#include "nodefields/node_schema.h"

#include "nodefields/node_fields.h"
#include "nodefields/text_limits.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace dbn::nodefields {

namespace {

using Json = nlohmann::ordered_json;

Json Ref(const char* name) {
    return Json{{"$ref", std::string("#/$defs/") + name}};
}

Json Definitions() {
    Json defs = Json::object();
    defs["whole"] = {{"type", "integer"}, {"minimum", -32768}, {"maximum", 32767}};
    defs["stored"] = {
        {"description",
         "A stored whole number as the column holds it, beyond the editor's ranges too."},
        {"type", "integer"},
        {"minimum", std::numeric_limits<std::int64_t>::min()},
        {"maximum", std::numeric_limits<std::int64_t>::max()}};
    defs["wholeOrNull"] = {{"anyOf", Json::array({Ref("stored"), {{"type", "null"}}})}};
    defs["named"] = {
        {"description", "A stored choice by its name, or the stored number when it has none."},
        {"anyOf", Json::array({{{"type", "string"}}, Ref("wholeOrNull")})}};
    defs["flag"] = {{"anyOf", Json::array({{{"type", "boolean"}}, Ref("wholeOrNull")})}};
    Json reference = {{"type", "object"},
                      {"required", Json::array({"type", "number"})},
                      {"additionalProperties", false},
                      {"properties",
                       {{"type", {{"type", "string"}, {"maxLength", kLongestTypeCode}}},
                        {"number", Ref("stored")}}}};
    defs["target"] = {{"description", "A referenced node by its type code and number, or null."},
                      {"anyOf", Json::array({{{"type", "null"}}, reference})}};
    return defs;
}

Json FieldSchema(const FieldRule& rule) {
    switch (rule.kind) {
        case FieldKind::Text:
            return {{"type", Json::array({"string", "null"})},
                    {"maxLength", kLongestStoredLabel},
                    {"description", "a save accepts at most " + std::to_string(kLongestLabel) +
                                        " characters; a longer stored label left as it is "
                                        "comes back unchanged"}};
        case FieldKind::Whole: {
            Json schema = Ref("wholeOrNull");
            schema["description"] = "the editor offers " + std::to_string(rule.low) + " to " +
                                    std::to_string(rule.high);
            return schema;
        }
        case FieldKind::Named: {
            Json schema = Ref("named");
            for (const auto& entry : rule.names) {
                schema["examples"].push_back(entry.second);
            }
            return schema;
        }
        case FieldKind::Flag:
            return Ref("flag");
        case FieldKind::Target:
            return Ref("target");
        case FieldKind::Prompts:
            return {{"type", "array"}, {"maxItems", kMostPrompts}, {"items", Ref("target")}};
    }
    return Json::object();
}

bool IsIndex(const std::string& segment) {
    return !segment.empty() && segment.find_first_not_of("0123456789") == std::string::npos;
}

// Places a field's schema at its pointer, making the objects and fixed
// lists on the way (with every key they get, so that no reference into
// them moves).
void Place(Json& container, const std::vector<std::string>& segments, std::size_t at, Json schema) {
    const std::string& segment = segments[at];
    const bool last = at + 1 == segments.size();
    Json* slot = nullptr;
    if (container["type"] == "array") {
        Json& items = container["prefixItems"];
        const std::size_t index = std::stoul(segment);
        while (items.size() <= index) {
            items.push_back(Json::object());
        }
        container["minItems"] = items.size();
        container["maxItems"] = items.size();
        slot = &items[index];
    } else {
        container["required"].push_back(segment);
        slot = &container["properties"][segment];
    }
    if (last) {
        *slot = std::move(schema);
        return;
    }
    if (slot->is_null() || slot->empty()) {
        *slot = IsIndex(segments[at + 1]) ? Json{{"type", "array"},
                                                 {"prefixItems", Json::array()},
                                                 {"minItems", 0},
                                                 {"maxItems", 0}}
                                          : Json{{"type", "object"},
                                                 {"required", Json::array()},
                                                 {"additionalProperties", false},
                                                 {"properties", Json::object()}};
    }
    Place(*slot, segments, at + 1, std::move(schema));
}

// Keeps each container's required list free of repeats.
void Dedupe(Json& schema) {
    if (!schema.is_object()) {
        return;
    }
    if (schema.contains("required")) {
        Json unique = Json::array();
        for (const Json& key : schema["required"]) {
            if (std::find(unique.begin(), unique.end(), key) == unique.end()) {
                unique.push_back(key);
            }
        }
        schema["required"] = unique;
    }
    for (auto& [key, value] : schema.items()) {
        if (value.is_object()) {
            Dedupe(value);
        } else if (value.is_array()) {
            for (Json& item : value) {
                Dedupe(item);
            }
        }
    }
}

Json NodeSchema() {
    Json node = {
        {"type", "object"},
        {"required", Json::array({"number"})},
        {"additionalProperties", false},
        {"properties",
         {{"number", {{"type", "integer"}, {"minimum", 0}, {"maximum", 32767}}},
          {"template",
           {{"type", "boolean"}, {"description", "true on node 0, the partition's template"}}}}}};
    for (const FieldRule& rule : Fields()) {
        std::vector<std::string> segments;
        std::size_t at = 1;
        while (at <= rule.pointer.size()) {
            const std::size_t next = std::min(rule.pointer.find('/', at), rule.pointer.size());
            segments.push_back(rule.pointer.substr(at, next - at));
            at = next + 1;
        }
        Place(node, segments, 0, FieldSchema(rule));
    }
    Dedupe(node);
    node["properties"]["modified"] = {{"type", Json::array({"string", "null"})},
                                      {"description", "shown only; apply ignores it"}};
    node["properties"]["stored"] = {
        {"type", "string"},
        {"pattern", "^[0-9a-f]{16}$"},
        {"description", "fingerprint of the stored state the node was exported from"}};
    return node;
}

}  // namespace

std::string NodeSchemaText() {
    Json schema = {
        {"$schema", "https://json-schema.org/draft/2020-12/schema"},
        {"$id", "https://dbnedit.org/schemas/dbn-nodes-1.json"},
        {"title", "Dial-by-name nodes as text"},
        {"description",
         "One partition's dial-by-name nodes as written by dbn-node-editor export and read by "
         "apply and diff. Stored values are written as stored: a value without a name is "
         "written as its number."},
        {"type", "object"},
        {"required", Json::array({"format", "version", "configuration", "partition", "nodes"})},
        {"additionalProperties", false},
        {"properties",
         {{"format", {{"const", "dbn-nodes"}}},
          {"version", {{"const", 1}}},
          {"configuration", Ref("whole")},
          {"partition", Ref("whole")},
          {"nodes", {{"type", "array"}, {"items", Ref("node")}}}}}};
    Json defs = Definitions();
    defs["node"] = NodeSchema();
    schema["$defs"] = std::move(defs);
    return schema.dump(2) + "\n";
}

}  // namespace dbn::nodefields
