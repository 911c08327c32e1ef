#include "session/nodes/node_templates.h"
#include "session/nodes/node_history.h"

#include "core/component_error.h"
#include "core/node_types.h"
#include "database/database.h"
#include "session/nodes/modification_time.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <vector>

namespace dbn::session {
namespace {

constexpr const char* kMessageTypeID = "0";

// The type ID as a number, when the text holds one.
std::optional<long> TypeNumber(std::string_view text) {
    long value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

// Types whose references carry no node to look up.
bool IsNeverGathered(std::string_view typeID) {
    std::optional<long> type = TypeNumber(typeID);
    return type == node_type::kNoNumber || type == node_type::kOpenRange ||
           type == node_type::kNeverLookedUp;
}

// Types that follow the message type.
bool FollowsMessageType(std::string_view typeID) {
    std::optional<long> type = TypeNumber(typeID);
    return type && node_type::FollowsMessage(*type);
}

// How a node of one type is copied: the commands after the node row's own
// copy (detail rows), all taking new number, configuration, partition and
// template number. The message type's copy takes a sound-file name as well.
struct CopyPlan {
    std::string_view typeID;
    bool message = false;
    std::vector<const char*> commands;
};

const std::vector<CopyPlan>& CopyPlans() {
    static const std::vector<CopyPlan> plans = {
        {"0", true, {}},
        {"817", true, {}},
        {"818", true, {}},
        {"1", false, {"Duplicate_CMD_NODE", "Duplicate_Detail_CMD_NODE"}},
        {"2", false, {"Duplicate_TIME_Node", "Duplicate_Detail_TIME_Node"}},
        {"3", false, {"Duplicate_DATE_Node", "Duplicate_Detail_DATE_Node"}},
        {"4", false, {"Duplicate_XFER_Node"}},
        {"6",
         false,
         {"Duplicate_DTMF_Node", "Duplicate_DetailPrompts_DTMF_Node",
          "Duplicate_DetailActions_DTMF_Node"}},
        {"7",
         false,
         {"Duplicate_VOX_Node", "Duplicate_DetailPrompts_VOX_Node",
          "Duplicate_DetailActions_VOX_Node"}},
        {"8", false, {"Duplicate_LIST_Node", "Duplicate_Detail_LIST_Node"}},
        {"9",
         false,
         {"Duplicate_AUTO_Node", "Duplicate_DetailPrompts_AUTO_Node",
          "Duplicate_DetailActions_AUTO_Node"}},
        {"12", false, {"Duplicate_PAAS_Node", "Duplicate_Detail_PAAS_Node"}},
        {"13", false, {"Duplicate_TABLE_Node", "Duplicate_DetailActions_TABLE_Node"}},
        {"15", false, {"Duplicate_DBN_Node", "Duplicate_DetailPrompts_DBN_Node"}},
        {"16", false, {"Duplicate_DIR_Node", "Duplicate_Detail_DIR_Node"}},
    };
    return plans;
}

const CopyPlan* FindCopyPlan(std::string_view typeID) {
    for (const CopyPlan& plan : CopyPlans()) {
        if (plan.typeID == typeID) {
            return &plan;
        }
    }
    return nullptr;
}

// "P" + partition (two digits at least) + "M" + node number (three digits at
// least) + ".wav".
std::string SoundFileName(std::int16_t partition, const std::string& number) {
    std::optional<long> value = TypeNumber(number);
    if (!value) {
        RaiseTypeMismatch();
    }
    std::array<char, 48> name{};
    int length = std::snprintf(name.data(), name.size(), "P%02dM%03ld.wav",
                               static_cast<int>(partition), *value);
    return std::string(name.data(), static_cast<std::size_t>(length));
}

// The created node's key, when its type ID and number are whole numbers.
std::optional<NodeKey> CreatedKey(std::int16_t config, std::int16_t partition,
                                  const std::string& typeID, const std::string& number) {
    const std::optional<long> type = TypeNumber(typeID);
    const std::optional<long> node = TypeNumber(number);
    if (!type || !node) {
        return std::nullopt;
    }
    return NodeKey{config, partition, static_cast<std::int16_t>(*type),
                   static_cast<std::int16_t>(*node)};
}

// The created node's history entry: its copied state as "after".
void RecordCreatedNode(DataBase& db, const NodeKey& key,
                       const std::optional<nodestate::NodeState>& after) {
    std::string code;
    if (after && after->pool.is_object() && after->pool.contains("NodeType") &&
        after->pool["NodeType"].is_string()) {
        code = after->pool["NodeType"].get<std::string>();
    }
    WriteHistoryEntry(db, key, code, ChangeKind::Created, std::nullopt, after);
}

}  // namespace

std::optional<RequiredNode> GatheredReference(std::string key, std::string typeID,
                                              std::string number) {
    if (IsNeverGathered(typeID)) {
        return std::nullopt;
    }
    if (FollowsMessageType(typeID)) {
        typeID = std::string(kMessageTypeID);
        key = "MSG " + number;
    }
    return RequiredNode{std::move(key), std::move(typeID), std::move(number)};
}

std::vector<BatchStep> ExistenceReads(std::int16_t config, std::int16_t partition,
                                      const std::vector<RequiredNode>& nodes) {
    std::vector<BatchStep> reads;
    for (const RequiredNode& node : nodes) {
        reads.push_back({"Get_Description",
                         {std::to_string(config), std::to_string(partition),
                          LookedUpTypeID(node.typeID), node.number}});
    }
    return reads;
}

bool NodeExists(DataBase& db, std::int16_t config, std::int16_t partition, std::string typeID,
                const std::string& number) {
    if (FollowsMessageType(typeID)) {
        typeID = std::string(kMessageTypeID);
    }
    db.Execute("Get_Description",
               {std::to_string(config), std::to_string(partition), typeID, number});
    RowSet& found = db.Recordset("Get_Description");
    const bool exists = !found.Eof();
    found.Close();
    return exists;
}

std::string LookedUpTypeID(std::string typeID) {
    return FollowsMessageType(typeID) ? std::string(kMessageTypeID) : typeID;
}

std::optional<long> WholeNumber(std::string_view text) {
    return TypeNumber(text);
}

bool CanCopyNodeType(std::string_view typeID) {
    return FindCopyPlan(typeID) != nullptr;
}

bool CopyTemplateNode(DataBase& db, std::int16_t config, std::int16_t partition,
                      const std::string& templateNumber, const std::string& newNumber,
                      std::string typeID, bool recordCreation) {
    return CopyTemplateNodes(db, config, partition,
                             {{templateNumber, newNumber, std::move(typeID)}}, recordCreation)
        .front();
}

std::vector<bool> CopyTemplateNodes(DataBase& db, std::int16_t config, std::int16_t partition,
                                    const std::vector<TemplateCopy>& copies, bool recordCreation) {
    const std::string configText = std::to_string(config);
    const std::string partitionText = std::to_string(partition);
    const bool history = recordCreation && db.KeepsHistory();
    // Where each copy's answers start in the batch, which of them tells
    // whether the node row was copied, and the created node's key when its
    // state is read back for the history row.
    struct Placed {
        const CopyPlan* plan = nullptr;
        std::size_t nodeRow = 0;
        std::size_t stateAt = 0;
        std::optional<NodeKey> created;
    };
    std::vector<Placed> placed;
    std::vector<BatchStep> batch;
    for (const TemplateCopy& copy : copies) {
        Placed& at = placed.emplace_back();
        at.plan = FindCopyPlan(copy.typeID);
        if (at.plan == nullptr) {
            continue;
        }
        const std::string typeID = at.plan->message ? kMessageTypeID : copy.typeID;
        // Its first command copies the node row.
        at.nodeRow = batch.size() + (at.plan->message && !at.plan->commands.empty() ? 1 : 0);
        if (at.plan->message) {
            batch.push_back({"Duplicate_MSG_NODE",
                             {copy.newNumber, SoundFileName(partition, copy.newNumber), configText,
                              partitionText, copy.templateNumber}});
        }
        for (const char* command : at.plan->commands) {
            batch.push_back(
                {command, {copy.newNumber, configText, partitionText, copy.templateNumber}});
        }
        batch.push_back({"Duplicate_Node_In_General_Pool",
                         {copy.newNumber, CurrentModificationTime(), configText, partitionText,
                          copy.templateNumber, typeID}});
        // The copied state, for the history row, is read in the same batch.
        if (history) {
            at.created = CreatedKey(config, partition, typeID, copy.newNumber);
        }
        at.stateAt = batch.size();
        if (at.created) {
            for (BatchStep& read : NodeStateReads(*at.created)) {
                batch.push_back(std::move(read));
            }
        }
    }
    std::vector<BatchAnswer> answers = db.ExecuteBatch(batch);
    std::vector<bool> made;
    for (const Placed& at : placed) {
        // A template without a node row in its type's table creates nothing.
        made.push_back(at.plan != nullptr && answers[at.nodeRow].count != 0);
        if (made.back() && at.created) {
            RecordCreatedNode(db, *at.created,
                              NodeStateOf(*at.created, answers.data() + at.stateAt));
        }
    }
    return made;
}

}  // namespace dbn::session
