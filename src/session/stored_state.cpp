#include "session/stored_state.h"

#include "core/node_types.h"
#include "session/node_history.h"

namespace dbn::session {

std::optional<std::string> ReadStoredState(DataBase& db, std::int16_t configID,
                                           std::int16_t partitionID, std::int16_t nodeNumber) {
    const std::optional<nodestate::NodeState> state =
        ReadNodeState(db, {configID, partitionID, node_type::kDialByName, nodeNumber});
    if (!state) {
        return std::nullopt;
    }
    return nodestate::ToJson(*state);
}

}  // namespace dbn::session
