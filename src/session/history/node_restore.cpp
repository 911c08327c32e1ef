#include "session/history/node_restore.h"

#include "core/component_error.h"
#include "core/node_types.h"
#include "database/database.h"
#include "database/schema_model.h"
#include "session/nodes/modification_time.h"
#include "session/nodes/node_templates.h"
#include "session/nodes/stored_state.h"
#include "session/nodes/stored_values.h"
#include "session/nodes/transaction_scope.h"

#include <algorithm>
#include <set>

namespace dbn::session {
namespace {

using nodestate::Json;
using nodestate::NodeState;

constexpr long kErrRestore = 4040;
constexpr const char* kSource = "Restore";

[[noreturn]] void Refuse(const std::string& why) {
    throw ComponentError(kErrRestore, kSource, why + " Nothing was restored.");
}

std::string NodeText(const NodeKey& key) {
    return std::string(node_type::kDialByNameCode) + " " + std::to_string(key.number);
}

// A stored value as the statements take it: its text, Null as empty.
std::string Arg(const Json& row, const std::string& column) {
    const auto found = row.find(column);
    if (found == row.end() || found->is_null()) {
        return "";
    }
    return found->is_string() ? found->get<std::string>() : found->dump();
}

std::vector<std::string> KeyArgs(const NodeKey& key) {
    return {CommandArg(key.config), CommandArg(key.partition), CommandArg(key.typeID),
            CommandArg(key.number)};
}

// Node_DBN's columns in schema order without the four keys: NodeType, then
// the ones Update_DBN_Node_Part1 sets, then those of Part2.
std::vector<std::string> ValueColumns() {
    std::vector<std::string> columns;
    const SchemaTable* table = FindSchemaTable("Node_DBN");
    for (const SchemaColumn& column : table->columns) {
        if (!column.inPrimaryKey) {
            columns.push_back(column.name);
        }
    }
    return columns;
}

void WriteNodeRow(DataBase& db, const NodeKey& key, const Json& node) {
    const std::vector<std::string> columns = ValueColumns();
    const auto split = std::find(columns.begin(), columns.end(), "TimeoutNodeType");
    std::vector<std::string> part1;
    for (auto column = columns.begin() + 1; column != split; ++column) {
        part1.push_back(Arg(node, *column));
    }
    std::vector<std::string> part2;
    for (auto column = split; column != columns.end(); ++column) {
        part2.push_back(Arg(node, *column));
    }
    part2.push_back(Arg(node, columns.front()));
    for (const std::string& keyArg : KeyArgs(key)) {
        part1.push_back(keyArg);
        part2.push_back(keyArg);
    }
    db.Execute("Update_DBN_Node_Part1", part1);
    db.Execute("Update_DBN_Node_Part2", part2);
}

void WritePrompts(DataBase& db, const NodeKey& key, const std::vector<Json>& prompts) {
    const std::string config = CommandArg(key.config);
    const std::string partition = CommandArg(key.partition);
    const std::string number = CommandArg(key.number);
    db.Execute("Delete_DBN_PromptsNode", {config, partition, number});
    for (const Json& prompt : prompts) {
        db.Execute("Add_DBN_PromptsNode",
                   {config, partition, Arg(prompt, "PromptNumber"), Arg(prompt, "PromptNodeTypeID"),
                    Arg(prompt, "PromptNodeNumber"), number, Arg(prompt, "PromptNodeType")});
    }
}

// The references of a state whose nodes do not exist, as "MSG 12".
std::vector<std::string> MissingReferences(DataBase& db, const NodeKey& key,
                                           const NodeState& state) {
    std::vector<std::string> missing;
    std::set<std::string> seen;
    auto check = [&](const Json& row, const std::string& role) {
        const std::string code = Arg(row, role + "NodeType");
        const std::string number = Arg(row, role + "NodeNumber");
        std::optional<RequiredNode> node =
            GatheredReference(code + " " + number, Arg(row, role + "NodeTypeID"), number);
        if (!node || !seen.insert(node->key).second) {
            return;
        }
        if (!NodeExists(db, key.config, key.partition, node->typeID, node->number)) {
            missing.push_back(node->key);
        }
    };
    for (const auto& item : state.node.items()) {
        const std::string& column = item.key();
        constexpr std::string_view kEnd = "NodeTypeID";
        if (column.size() > kEnd.size() && column.ends_with(kEnd)) {
            check(state.node, column.substr(0, column.size() - kEnd.size()));
        }
    }
    for (const Json& prompt : state.details) {
        check(prompt, "Prompt");
    }
    return missing;
}

}  // namespace

RestoreResult RestoreNodeVersion(DataBase& db, const NodeKey& key, long entry, bool before) {
    if (key.typeID != node_type::kDialByName) {
        Refuse("Only dial-by-name nodes can be restored.");
    }
    const std::optional<HistoryEntry> found = ReadHistoryEntry(db, entry);
    if (!found) {
        Refuse("There is no history entry " + std::to_string(entry) + ".");
    }
    if (!found->damage.empty()) {
        Refuse("History " + found->damage + ".");
    }
    const NodeKey& of = found->key;
    if (of.typeID != node_type::kDialByName) {
        Refuse("History entry " + std::to_string(entry) + " is of a " + found->typeCode +
               " node; only dial-by-name nodes can be restored.");
    }
    if (of.config != key.config || of.partition != key.partition || of.typeID != key.typeID ||
        of.number != key.number) {
        Refuse("History entry " + std::to_string(entry) + " is not of " + NodeText(key) + ".");
    }
    const std::optional<NodeState>& wanted = before ? found->before : found->after;
    if (!wanted || wanted->node.empty()) {
        Refuse("History entry " + std::to_string(entry) + " holds no state " +
               (before ? "before" : "after") + " its change.");
    }
    TransactionScope transaction(db);
    // The state replaced is read under the node's row locks: a change
    // another program commits meanwhile is waited for, and kept as the new
    // entry's state before.
    LockStoredState(db, key.config, key.partition, key.number);
    const std::optional<NodeState> current = ReadNodeState(db, key);
    if (!current) {
        Refuse(NodeText(key) + " no longer exists in the configuration database.");
    }
    WriteNodeRow(db, key, wanted->node);
    WritePrompts(db, key, wanted->details);
    const Json description = wanted->pool.is_object() ? wanted->pool : wanted->node;
    db.Execute(
        "Update_Node_General_Pool",
        {Arg(description, "NodeDescription"), CurrentModificationTime(), CommandArg(key.config),
         CommandArg(key.partition), CommandArg(key.typeID), CommandArg(key.number)});
    const std::optional<NodeState> after = ReadNodeState(db, key);
    WriteHistoryEntry(db, key, node_type::kDialByNameCode, ChangeKind::Restored, current, after);
    RestoreResult result;
    result.missing = MissingReferences(db, key, *after);
    result.entry = LastHistoryEntry(db);
    transaction.Commit();
    return result;
}

}  // namespace dbn::session
