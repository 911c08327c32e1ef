#include "nodetext/text_form.h"

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
// Longer texts are refused before anything reaches the database.
constexpr std::size_t kLongestLabel = 1000;
constexpr std::size_t kLongestTypeCode = 16;
constexpr std::size_t kMostPrompts = 99;
constexpr std::size_t kShownValue = 40;

const std::vector<std::pair<int, std::string>> kMethods = {{0, "Custom"}, {1, "Default Last Name"}};
const std::vector<std::pair<int, std::string>> kLanguages = {
    {0, "None"}, {1, "English"}, {2, "French"}};
const std::vector<std::pair<int, std::string>> kFirstModes = {
    {1, "Last Name"}, {2, "First Name"}, {3, "Both Names"}, {4, "Extension"}};
const std::vector<std::pair<int, std::string>> kSecondModes = {
    {0, "None"}, {1, "Last Name"}, {2, "First Name"}};

FieldRule Field(std::string pointer, FieldKind kind, std::string column) {
    FieldRule rule;
    rule.pointer = std::move(pointer);
    rule.kind = kind;
    rule.column = std::move(column);
    // "/stages/0/minDigits" reads "stages[0].minDigits".
    std::string path;
    std::size_t at = 1;
    while (at <= rule.pointer.size()) {
        const std::size_t next = std::min(rule.pointer.find('/', at), rule.pointer.size());
        const std::string segment = rule.pointer.substr(at, next - at);
        if (!segment.empty() && std::all_of(segment.begin(), segment.end(), ::isdigit)) {
            path += "[" + segment + "]";
        } else {
            path += (path.empty() ? "" : ".") + segment;
        }
        at = next + 1;
    }
    rule.path = path;
    return rule;
}

FieldRule Named(std::string pointer, std::string column,
                std::vector<std::pair<int, std::string>> names) {
    FieldRule rule = Field(std::move(pointer), FieldKind::Named, std::move(column));
    rule.names = std::move(names);
    return rule;
}

FieldRule Whole(std::string pointer, std::string column, int low, int high) {
    FieldRule rule = Field(std::move(pointer), FieldKind::Whole, std::move(column));
    rule.low = low;
    rule.high = high;
    return rule;
}

FieldRule Target(std::string pointer, std::string role, TargetRole targets) {
    FieldRule rule = Field(std::move(pointer), FieldKind::Target, std::move(role));
    rule.role = targets;
    return rule;
}

std::vector<FieldRule> MakeFields() {
    std::vector<FieldRule> fields = {
        Field("/label", FieldKind::Text, "NodeDescription"),
        Named("/method", "Method", kMethods),
        Whole("/directory", "DirectoryNodeNumber", 1, 99),
        Named("/languages/first", "FirstLanguage", kLanguages),
        Named("/languages/second", "SecondLanguage", kLanguages),
        Target("/greeting", "Greeting", TargetRole::Prompt),
        Target("/actions/Valid Match", "ValidMatch", TargetRole::Instruction),
        Target("/actions/Abort", "Abort", TargetRole::Instruction),
        Target("/actions/Star", "Star", TargetRole::Instruction),
        Target("/actions/Pound", "Pound", TargetRole::Instruction),
        Target("/actions/Zero", "Zero", TargetRole::Instruction),
    };
    const char* stages[] = {"First", "Second"};
    for (int stage = 0; stage < 2; ++stage) {
        const std::string at = "/stages/" + std::to_string(stage) + "/";
        const std::string name = stages[stage];
        fields.push_back(
            Named(at + "mode", name + "Mode", stage == 0 ? kFirstModes : kSecondModes));
        fields.push_back(Whole(at + "minDigits", name + "MinDigits", 1, 9));
        fields.push_back(Whole(at + "maxDigits", name + "MaxDigits", 1, 9));
        fields.push_back(Target(at + "prompt", name + "Prompt", TargetRole::Prompt));
    }
    fields.push_back(Target("/timeout", "Timeout", TargetRole::Instruction));
    fields.push_back(Target("/invalid", "Invalid", TargetRole::Instruction));
    fields.push_back(Whole("/digitTimeout", "DigitTimeout", 1, 15));
    fields.push_back(Whole("/selectionTimeout", "SelectionTimeout", 1, 60));
    fields.push_back(Whole("/retryLimit", "RetryLimit", 1, 5));
    fields.push_back(Field("/confirmation/enabled", FieldKind::Flag, "Confirm"));
    fields.push_back(Whole("/confirmation/maxMatches", "MaxMatch", 1, 9));
    fields.push_back(Target("/confirmation/beforeNames", "BeforePrompt", TargetRole::Prompt));
    fields.push_back(Target("/confirmation/afterNames", "AfterPrompt", TargetRole::Prompt));
    FieldRule prompts = Field("/confirmation/prompts", FieldKind::Prompts, "");
    prompts.role = TargetRole::Prompt;
    fields.push_back(prompts);
    fields.push_back(Target("/confirmation/exitPrompt", "ConfirmationExit", TargetRole::Prompt));
    fields.push_back(Field("/playName", FieldKind::Flag, "PlayName"));
    return fields;
}

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
        if (text.size() > longest) {
            Fail(path, "is " + std::to_string(text.size()) + " characters long; at most " +
                           std::to_string(longest) + " are allowed");
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
                if (auto value = Text(json, path, kLongestLabel)) {
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
                    std::string allowed;
                    for (const auto& entry : rule.names) {
                        allowed += (allowed.empty() ? "\"" : ", \"") + entry.second + "\"";
                    }
                    Fail(path, Shown(json) + " is not one of " + allowed);
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
        if (json["stored"].is_string()) {
            node.stored = json["stored"].get<std::string>();
        } else {
            reader.Fail("stored", "must be a text, not " + Shown(json["stored"]));
        }
    }
    for (const FieldRule& rule : Fields()) {
        reader.ReadField(rule, json[Json::json_pointer(rule.pointer)], node);
    }
    if (reader.Failed()) {
        return std::nullopt;
    }
    return node;
}

// Line and column (from 1) of a byte offset.
std::pair<std::size_t, std::size_t> LineAndColumn(std::string_view text, std::size_t offset) {
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return {line, column};
}

// The deepest nesting a node file has: the document, its list of nodes, a
// node, its confirmation, the list of prompts and one prompt.
constexpr std::size_t kDeepestNesting = 6;

// A first pass over the text before any value is built: malformed JSON and
// numbers beyond the range of numbers named by line and column, nesting
// deeper than a node file has and a key given twice in one object named by
// their JSON path. The first problem ends the pass.
class TextChecker {
public:
    explicit TextChecker(std::string_view text) : text_(text) {}

    std::optional<Problem> Check() {
        Json::sax_parse(text_.begin(), text_.end(), this);
        return problem_;
    }

    bool null() { return Element(); }
    bool boolean(bool) { return Element(); }
    bool number_integer(Json::number_integer_t) { return Element(); }
    bool number_unsigned(Json::number_unsigned_t) { return Element(); }
    bool number_float(Json::number_float_t, const Json::string_t&) { return Element(); }
    bool string(Json::string_t&) { return Element(); }
    bool binary(Json::binary_t&) { return Element(); }
    bool start_object(std::size_t) { return Open(false); }
    bool start_array(std::size_t) { return Open(true); }
    bool end_object() { return Close(); }
    bool end_array() { return Close(); }
    bool key(Json::string_t& key) {
        Frame& frame = frames_.back();
        if (!frame.keys.insert(key).second) {
            problem_ = Problem{Path(frames_.size() - 1), "the key \"" + key + "\" is given twice"};
            return false;
        }
        frame.key = key;
        return true;
    }
    bool parse_error(std::size_t position, const std::string& token,
                     const nlohmann::detail::exception& error) {
        // A number is named where it begins, any other error where reading
        // stopped.
        const bool number = dynamic_cast<const nlohmann::detail::out_of_range*>(&error) != nullptr;
        const std::size_t at = number && position >= token.size() ? position - token.size()
                               : position == 0                    ? 0
                                                                  : position - 1;
        const auto [line, column] = LineAndColumn(text_, at);
        std::string reason;
        if (number) {
            reason = "the number " + token + " is beyond the range of numbers";
        } else {
            // "[json.exception.parse_error.101] parse error at line 1, column 2: X" -> X
            reason = error.what();
            if (const std::size_t colon = reason.find(": "); colon != std::string::npos) {
                reason = reason.substr(colon + 2);
            }
            reason = "malformed JSON: " + reason;
        }
        problem_ = Problem{"", "line " + std::to_string(line) + ", column " +
                                   std::to_string(column) + ": " + reason};
        return false;
    }

private:
    struct Frame {
        bool array = false;
        std::size_t elements = 0;  // of an array, begun so far
        std::string key;           // of an object, the latest
        std::set<std::string> keys;
    };

    // The JSON path of the value being read inside the first `depth` frames.
    std::string Path(std::size_t depth) const {
        std::string path;
        for (std::size_t i = 0; i < depth; ++i) {
            const Frame& frame = frames_[i];
            path += frame.array ? "[" + std::to_string(frame.elements - 1) + "]"
                                : (path.empty() ? "" : ".") + frame.key;
        }
        return path;
    }
    bool Element() {
        if (!frames_.empty() && frames_.back().array) {
            ++frames_.back().elements;
        }
        return true;
    }
    bool Open(bool array) {
        Element();
        if (frames_.size() == kDeepestNesting) {
            problem_ = Problem{Path(frames_.size()), "is nested deeper than a node file goes (" +
                                                         std::to_string(kDeepestNesting) +
                                                         " levels of objects and lists)"};
            return false;
        }
        frames_.push_back({array, 0, {}, {}});
        return true;
    }
    bool Close() {
        frames_.pop_back();
        return true;
    }

    std::string_view text_;
    std::vector<Frame> frames_;
    std::optional<Problem> problem_;
};

std::optional<std::int64_t> DocumentKey(const Json& json, const char* key,
                                        std::vector<Problem>& problems) {
    NodeReader reader(problems, key);
    if (!json.contains(key)) {
        reader.Fail("", "is missing");
        return std::nullopt;
    }
    return reader.Whole(json[key], "");
}

}  // namespace

const std::vector<FieldRule>& Fields() {
    static const std::vector<FieldRule> fields = MakeFields();
    return fields;
}

namespace {

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
    if (std::optional<Problem> problem = TextChecker(text).Check()) {
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
