#pragma once
// Stored dial-by-name nodes as their text form: reading a partition's nodes
// as they are stored, and writing one node's text form back.

#include "database/database.h"
#include "nodetext/node_text.h"
#include "session/nodes/node_history.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace dbn {

namespace session {

// The partition's dial-by-name nodes by number, the template (node 0) too,
// each with its prompt rows and modification time. With `only` given, just
// those numbers (the ones that exist).
std::map<std::int64_t, nodetext::TextNode> ReadStoredNodes(
    DataBase& db, std::int16_t config, std::int16_t partition,
    const std::optional<std::vector<std::int16_t>>& only = std::nullopt);

// The same in two halves: the reads, to send in a batch with others, and
// the nodes from their three answers (consecutive, from the first given).
std::vector<BatchStep> StoredNodeReads(std::int16_t config, std::int16_t partition);
std::map<std::int64_t, nodetext::TextNode> StoredNodesOf(
    BatchAnswer* answers, const std::optional<std::vector<std::int16_t>>& only = std::nullopt);

// The export of a partition: every node, or the numbers named (each must
// exist; the first missing one is named in a ComponentError).
nodetext::NodeDocument ExportNodes(DataBase& db, std::int16_t config, std::int16_t partition,
                                   const std::vector<std::int16_t>& numbers = {});

// Writes nodes as a save does: each one's Node_DBN row in two statements, its
// pool row's description and modification time and, when they changed, its
// prompt rows (padded with message node 1 up to prompt 9). Every reference's
// type ID must be set. The one place a written node passes through: the
// nodes travel in one batch whatever their number, with each one's state
// before and after, and each gets a history row of its kind (a created
// node's has no state before) that travels with the commit.
struct NodeWrite {
    const nodetext::TextNode* node = nullptr;
    bool promptsChanged = false;
    ChangeKind kind = ChangeKind::Saved;
};
void WriteNodes(DataBase& db, std::int16_t config, std::int16_t partition,
                const std::vector<NodeWrite>& writes);

}  // namespace session
}  // namespace dbn
