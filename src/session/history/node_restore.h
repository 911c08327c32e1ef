#pragma once

// Writes back a dial-by-name node's state from its history: the state after
// (or before) one entry, as a new change of kind "restored", in one
// transaction.

#include "session/nodes/node_history.h"

#include <string>
#include <vector>

namespace dbn::session {

struct RestoreResult {
    long entry = 0;  // the new history entry; 0 when the database keeps none
    // "MSG 12": references of the restored state to nodes that do not exist.
    std::vector<std::string> missing;
};

// Raises ComponentError, writing nothing, for a node type other than
// dial-by-name, an unknown entry, an entry of another node, an entry
// without that state (the "before" of a creation) or a node that no
// longer exists.
RestoreResult RestoreNodeVersion(DataBase& db, const NodeKey& key, long entry, bool before);

}  // namespace dbn::session
