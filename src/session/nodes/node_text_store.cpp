#include "session/nodes/node_text_store.h"

#include "core/component_error.h"
#include "core/node_types.h"
#include "database/database.h"
#include "nodetext/text_form.h"
#include "session/nodes/modification_time.h"
#include "session/nodes/stored_values.h"

#include <algorithm>
#include <cmath>

namespace dbn::session {

namespace {

using nodetext::TextNode;
using nodetext::Value;

const std::string kDbnType = CommandArg(node_type::kDialByName);
constexpr int kDefaultPromptCount = 9;
constexpr int kReservedColumns = 10;

Value StoredValue(const FieldValue& field) {
    const FieldValue::Storage& raw = field.Raw();
    if (const auto* number = std::get_if<std::int64_t>(&raw)) {
        return *number;
    }
    if (const auto* real = std::get_if<double>(&raw)) {
        return static_cast<std::int64_t>(std::llround(*real));
    }
    if (const auto* text = std::get_if<std::string>(&raw)) {
        return *text;
    }
    return Value{};
}

// The Node_DBN columns the text form shows and a write needs, by the names
// the text form uses (a server answers with its own letter case).
const std::vector<std::string>& StoredColumns() {
    static const std::vector<std::string> columns = [] {
        std::vector<std::string> names;
        for (const nodetext::FieldRule& rule : nodetext::Fields()) {
            if (rule.kind == nodetext::FieldKind::Target) {
                for (const char* suffix : {"NodeType", "NodeNumber", "NodeTypeID"}) {
                    names.push_back(rule.column + suffix);
                }
            } else if (rule.kind != nodetext::FieldKind::Prompts) {
                names.push_back(rule.column);
            }
        }
        return names;
    }();
    return columns;
}

// A column's value as a command argument; a Null number is written as 0.
std::string Argument(const TextNode& node, const std::string& column) {
    auto found = node.columns.find(column);
    if (found == node.columns.end() || std::holds_alternative<std::monostate>(found->second)) {
        return column.ends_with("NodeType") || column == "NodeDescription" ? "" : "0";
    }
    return nodetext::ValueText(found->second);
}

void AppendRef(std::vector<std::string>& args, const TextNode& node, const std::string& role) {
    for (const char* suffix : {"NodeType", "NodeNumber", "NodeTypeID"}) {
        args.push_back(Argument(node, role + suffix));
    }
}

}  // namespace

// One batch whatever the number of nodes: the nodes, the partition's pool
// (for the modification times) and its prompt rows.
std::vector<BatchStep> StoredNodeReads(std::int16_t config, std::int16_t partition) {
    const std::string configText = CommandArg(config);
    const std::string partitionText = CommandArg(partition);
    return {{"Get_All_DBN_Nodes", {configText, partitionText, kDbnType}},
            {"Get_Partition_Pool", {configText, partitionText}},
            {"Get_Partition_DBN_Prompts", {configText, partitionText}}};
}

std::map<std::int64_t, TextNode> ReadStoredNodes(
    DataBase& db, std::int16_t config, std::int16_t partition,
    const std::optional<std::vector<std::int16_t>>& only) {
    std::vector<BatchAnswer> answers = db.ExecuteBatch(StoredNodeReads(config, partition));
    return StoredNodesOf(answers.data(), only);
}

std::map<std::int64_t, TextNode> StoredNodesOf(
    BatchAnswer* answers, const std::optional<std::vector<std::int16_t>>& only) {
    std::map<std::int64_t, TextNode> nodes;
    for (RowSet& rows = answers[0].rows; !rows.Eof(); rows.MoveNext()) {
        TextNode node;
        node.number = rows.Field("NodeNumber").ToInt16();
        if (only && std::find(only->begin(), only->end(), node.number) == only->end()) {
            continue;
        }
        for (const std::string& column : StoredColumns()) {
            node.columns[column] = StoredValue(rows.Field(column));
        }
        nodes.emplace(node.number, std::move(node));
    }
    for (RowSet& rows = answers[1].rows; !rows.Eof(); rows.MoveNext()) {
        if (rows.Field("NodeTypeID").ToText() != kDbnType) {
            continue;
        }
        auto found = nodes.find(rows.Field("NodeNumber").ToInt16());
        if (found != nodes.end() &&
            std::holds_alternative<std::monostate>(found->second.modified)) {
            found->second.modified = StoredValue(rows.Field("DateModified"));
        }
    }
    for (RowSet& rows = answers[2].rows; !rows.Eof(); rows.MoveNext()) {
        auto found = nodes.find(rows.Field("NodeMasterID").ToInt16());
        if (found != nodes.end()) {
            found->second.prompts.push_back({StoredValue(rows.Field("PromptNodeType")),
                                             StoredValue(rows.Field("PromptNodeNumber")),
                                             StoredValue(rows.Field("PromptNodeTypeID"))});
        }
    }
    return nodes;
}

nodetext::NodeDocument ExportNodes(DataBase& db, std::int16_t config, std::int16_t partition,
                                   const std::vector<std::int16_t>& numbers) {
    std::map<std::int64_t, TextNode> nodes = ReadStoredNodes(
        db, config, partition,
        numbers.empty() ? std::nullopt : std::optional<std::vector<std::int16_t>>(numbers));
    for (const std::int16_t number : numbers) {
        if (nodes.count(number) == 0) {
            throw ComponentError(0, "export",
                                 "DBN " + CommandArg(number) + " does not exist in configuration " +
                                     CommandArg(config) + ", partition " + CommandArg(partition));
        }
    }
    nodetext::NodeDocument document;
    document.configuration = config;
    document.partition = partition;
    for (auto& [number, node] : nodes) {
        document.nodes.push_back(std::move(node));
    }
    return document;
}

namespace {

// The node's rows as a save writes them.
std::vector<BatchStep> WriteNodeSteps(std::int16_t config, std::int16_t partition,
                                      const TextNode& node, bool promptsChanged) {
    const std::string configText = CommandArg(config);
    const std::string partitionText = CommandArg(partition);
    const std::string number = std::to_string(node.number);
    const std::vector<std::string> keys{configText, partitionText, kDbnType, number};

    std::vector<std::string> part1;
    for (const char* column :
         {"NodeDescription", "Method", "DirectoryNodeNumber", "FirstLanguage", "SecondLanguage"}) {
        part1.push_back(Argument(node, column));
    }
    for (const char* role : {"Greeting", "ValidMatch", "Abort", "Star", "Pound", "Zero"}) {
        AppendRef(part1, node, role);
    }
    for (const std::string stage : {"First", "Second"}) {
        for (const char* column : {"Mode", "MinDigits", "MaxDigits"}) {
            part1.push_back(Argument(node, stage + column));
        }
        AppendRef(part1, node, stage + "Prompt");
    }
    part1.insert(part1.end(), keys.begin(), keys.end());

    std::vector<std::string> part2;
    AppendRef(part2, node, "Timeout");
    AppendRef(part2, node, "Invalid");
    for (const char* column :
         {"DigitTimeout", "SelectionTimeout", "RetryLimit", "Confirm", "MaxMatch", "PlayName"}) {
        part2.push_back(Argument(node, column));
    }
    for (const char* role : {"BeforePrompt", "AfterPrompt", "ConfirmationExit"}) {
        AppendRef(part2, node, role);
    }
    for (int reserved = 0; reserved < kReservedColumns; ++reserved) {
        part2.push_back("0");
    }
    part2.push_back(node_type::kDialByNameCode);
    part2.insert(part2.end(), keys.begin(), keys.end());

    std::vector<BatchStep> steps{{"Update_DBN_Node_Part1", part1},
                                 {"Update_DBN_Node_Part2", part2},
                                 {"Update_Node_General_Pool",
                                  {Argument(node, "NodeDescription"), CurrentModificationTime(),
                                   configText, partitionText, kDbnType, number}}};
    if (!promptsChanged) {
        return steps;
    }
    steps.push_back({"Delete_DBN_PromptsNode", {configText, partitionText, number}});
    int promptNumber = 0;
    auto add = [&](const std::string& type, const std::string& typeNumber,
                   const std::string& typeID) {
        steps.push_back({"Add_DBN_PromptsNode",
                         {configText, partitionText, std::to_string(++promptNumber), typeID,
                          typeNumber, number, type}});
    };
    for (const nodetext::StoredRef& prompt : node.prompts) {
        add(nodetext::ValueText(prompt.type), std::to_string(nodetext::WholeOr(prompt.number, 0)),
            std::to_string(nodetext::WholeOr(prompt.typeID, 0)));
    }
    while (promptNumber < kDefaultPromptCount) {
        add("MSG", "1", "0");
    }
    return steps;
}

}  // namespace

void WriteNodes(DataBase& db, std::int16_t config, std::int16_t partition,
                const std::vector<NodeWrite>& writes) {
    const bool history = db.KeepsHistory();
    auto keyOf = [&](const NodeWrite& write) {
        return NodeKey{config, partition, node_type::kDialByName,
                       static_cast<std::int16_t>(write.node->number)};
    };
    // Per node: its state before (unless created), its writes, its state after.
    std::vector<BatchStep> batch;
    std::vector<std::size_t> beforeAt;
    std::vector<std::size_t> afterAt;
    for (const NodeWrite& write : writes) {
        const NodeKey key = keyOf(write);
        auto addReads = [&](std::vector<std::size_t>& at) {
            at.push_back(batch.size());
            for (BatchStep& read : NodeStateReads(key)) {
                batch.push_back(std::move(read));
            }
        };
        if (history && write.kind != ChangeKind::Created) {
            addReads(beforeAt);
        } else {
            beforeAt.push_back(0);
        }
        for (BatchStep& step :
             WriteNodeSteps(config, partition, *write.node, write.promptsChanged)) {
            batch.push_back(std::move(step));
        }
        if (history) {
            addReads(afterAt);
        }
    }
    std::vector<BatchAnswer> answers = db.ExecuteBatch(batch);
    if (!history) {
        return;
    }
    for (std::size_t i = 0; i < writes.size(); ++i) {
        const NodeKey key = keyOf(writes[i]);
        const std::optional<nodestate::NodeState> before =
            writes[i].kind == ChangeKind::Created ? std::nullopt
                                                  : NodeStateOf(key, answers.data() + beforeAt[i]);
        WriteHistoryEntry(db, key, node_type::kDialByNameCode, writes[i].kind, before,
                          NodeStateOf(key, answers.data() + afterAt[i]));
    }
}

}  // namespace dbn::session
