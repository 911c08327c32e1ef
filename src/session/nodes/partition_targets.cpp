#include "session/nodes/partition_targets.h"

#include "core/node_types.h"
#include "database/database.h"
#include "session/nodes/stored_values.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace dbn::session {

namespace {

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::vector<std::int16_t> RuleTypes(RowSet& rules) {
    std::vector<std::int16_t> types;
    for (; !rules.Eof(); rules.MoveNext()) {
        types.push_back(rules.Field("Child_Node_Type_ID").ToInt16());
    }
    return types;
}

}  // namespace

// Two batches whatever the number of node types: the type names with both
// rule sets, then every type's number limit.
PartitionTargets::PartitionTargets(DataBase& db, std::int16_t config, std::int16_t partition) {
    const std::string dbnType = CommandArg(node_type::kDialByName);
    std::vector<BatchAnswer> lists =
        db.ExecuteBatch({{"Get_Node_Names", {}},
                         {"Get_Node_Type_can_contain_nodes", {dbnType, "1"}},
                         {"Get_Node_Type_can_contain_nodes", {dbnType, "2"}}});
    std::vector<std::int16_t> typeIDs;
    for (RowSet& types = lists[0].rows; !types.Eof(); types.MoveNext()) {
        const std::int16_t id = types.Field("ID").ToInt16();
        idByCode_.emplace(Upper(types.Field("English_Name").ToText()), id);
        typeIDs.push_back(id);
    }
    std::vector<BatchStep> limitReads;
    for (const std::int16_t id : typeIDs) {
        limitReads.push_back(
            {"Get_Max_NodeNumber", {CommandArg(config), CommandArg(partition), CommandArg(id)}});
    }
    std::vector<BatchAnswer> limits =
        limitReads.empty() ? std::vector<BatchAnswer>{} : db.ExecuteBatch(limitReads);
    for (std::size_t i = 0; i < limits.size(); ++i) {
        RowSet& limit = limits[i].rows;
        if (!limit.Eof()) {
            limits_[typeIDs[i]] = limit.Field("Max_Number").ToInt32();
        }
    }
    // Prompts: the rule set's types, less those the partition allows no node of.
    for (const std::int16_t id : RuleTypes(lists[1].rows)) {
        const auto limit = Limit(id);
        if (!limit || *limit > 0) {
            promptTypes_.insert(id);
        }
    }
    // Instructions: as the pickers offer them; the message on/off types
    // without a limit of their own follow the message type's.
    std::int32_t messageLimit = 0;
    for (const std::int16_t id : RuleTypes(lists[2].rows)) {
        const auto limit = Limit(id);
        if (limit && *limit > 0) {
            instructionTypes_.insert(id);
            if (id == node_type::kMessage) {
                messageLimit = *limit;
            }
        } else if (limit) {
            if (id == node_type::kMessage) {
                messageLimit = 0;
            }
        } else if (!node_type::FollowsMessage(id) || messageLimit != 0) {
            instructionTypes_.insert(id);
        }
    }
}

std::optional<std::int16_t> PartitionTargets::TypeID(const std::string& code) const {
    auto found = idByCode_.find(Upper(code));
    if (found == idByCode_.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::optional<std::int32_t> PartitionTargets::Limit(std::int16_t typeID) const {
    auto found = limits_.find(typeID);
    if (found == limits_.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::int32_t PartitionTargets::DialByNameLimit() const {
    return Limit(node_type::kDialByName).value_or(0);
}

std::optional<std::pair<std::string, std::string>> PartitionTargets::Refusal(
    nodetext::TargetRole role, const nodetext::StoredRef& ref) const {
    const std::string code = nodetext::ValueText(ref.type);
    if (std::holds_alternative<std::monostate>(ref.type)) {
        return std::pair<std::string, std::string>{"", "a target is required"};
    }
    const std::optional<std::int16_t> id = TypeID(code);
    if (!id) {
        return std::pair<std::string, std::string>{".type", "\"" + code + "\" is not a node type"};
    }
    const bool prompt = role == nodetext::TargetRole::Prompt;
    if ((prompt ? promptTypes_ : instructionTypes_).count(*id) == 0) {
        return std::pair<std::string, std::string>{
            ".type", "\"" + code + "\" is not offered for " +
                         (prompt ? "a prompt" : "an action, timeout or invalid target") +
                         " in this partition"};
    }
    const std::int64_t number = nodetext::WholeOr(ref.number, -1);
    if (*id == node_type::kNoNumber || Upper(code) == "NOOP") {
        if (number != 0) {
            return std::pair<std::string, std::string>{
                ".number", code + " takes no number; it must be 0, not " + std::to_string(number)};
        }
        return std::nullopt;
    }
    const std::int16_t limitType = node_type::FollowsMessage(*id) ? node_type::kMessage : *id;
    const std::int32_t highest = Limit(limitType).value_or(32767);
    if (number < 1 || number > highest) {
        return std::pair<std::string, std::string>{
            ".number", std::to_string(number) + " is outside 1 to " + std::to_string(highest)};
    }
    return std::nullopt;
}

}  // namespace dbn::session
