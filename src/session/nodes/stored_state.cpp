#include "session/nodes/stored_state.h"

#include "core/node_types.h"
#include "session/nodes/node_history.h"
#include "session/nodes/stored_values.h"

namespace dbn::session {

std::vector<BatchStep> StoredStateReads(std::int16_t configID, std::int16_t partitionID,
                                        std::int16_t nodeNumber) {
    return {{"Get_DBN_Node",
             {CommandArg(configID), CommandArg(partitionID), CommandArg(nodeNumber),
              CommandArg(node_type::kDialByName)}},
            {"Get_DBN_PromptsNode",
             {CommandArg(configID), CommandArg(partitionID), CommandArg(nodeNumber)}},
            {"Get_Description",
             {CommandArg(configID), CommandArg(partitionID), CommandArg(node_type::kDialByName),
              CommandArg(nodeNumber)}}};
}

std::optional<std::string> ReadStoredState(DataBase& db, std::int16_t configID,
                                           std::int16_t partitionID, std::int16_t nodeNumber) {
    const std::optional<nodestate::NodeState> state =
        ReadNodeState(db, {configID, partitionID, node_type::kDialByName, nodeNumber});
    if (!state) {
        return std::nullopt;
    }
    return nodestate::ToJson(*state);
}

void LockStoredState(DataBase& db, std::int16_t configID, std::int16_t partitionID,
                     std::int16_t nodeNumber) {
    const std::int64_t config = configID;
    const std::int64_t partition = partitionID;
    const std::int64_t number = nodeNumber;
    const std::int64_t type = node_type::kDialByName;
    db.LockRows({
        {"Node_DBN",
         {{"ConfigID", config},
          {"PartID", partition},
          {"NodeTypeID", type},
          {"NodeNumber", number}}},
        {"Detail_DBN_Prompts",
         {{"ConfigID", config}, {"PartID", partition}, {"NodeMasterID", number}}},
        {"Node_General_Pool",
         {{"ConfigID", config},
          {"PartID", partition},
          {"NodeTypeID", type},
          {"NodeNumber", number}}},
    });
}

void LockPartitionNodes(DataBase& db, std::int16_t configID, std::int16_t partitionID) {
    const std::int64_t config = configID;
    const std::int64_t partition = partitionID;
    const std::int64_t type = node_type::kDialByName;
    db.LockRows({
        {"Node_DBN", {{"ConfigID", config}, {"PartID", partition}, {"NodeTypeID", type}}},
        {"Detail_DBN_Prompts", {{"ConfigID", config}, {"PartID", partition}}},
        {"Node_General_Pool", {{"ConfigID", config}, {"PartID", partition}, {"NodeTypeID", type}}},
    });
}

}  // namespace dbn::session
