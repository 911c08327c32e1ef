#pragma once
// The node list: what the program's main window shows and does without the
// toolkit. It reads the dial-by-name nodes of a partition with the counts of
// their missing targets, and creates a new node from the type's template.

#include "session/nodes/directory_check.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

class DataBase;

namespace session {

// A configuration and one of its partitions.
struct PartitionKey {
    std::int16_t config = 0;
    std::int16_t partition = 0;
    auto operator<=>(const PartitionKey&) const = default;
};

// One dial-by-name node as the list shows it.
struct NodeListRow {
    std::int16_t number = 0;
    std::string label;
    std::string method;  // "Custom" or "Default Last Name"
    std::int16_t directory = 0;
    std::string modified;  // the pool row's DateModified; "" when there is none
    // How many of the node's gathered references point at nodes that do not
    // exist, gathered as the referenced-node check gathers them.
    int missingTargets = 0;
    // How many names of the node's directory callers can reach, of how many;
    // nothing when the directory node does not exist.
    std::optional<ReachableCount> reachable;
    bool isTemplate = false;  // node 0
};

class NodeList {
public:
    explicit NodeList(DataBase& db) : db_(db) {}

    DataBase& Database() noexcept { return db_; }

    // The configurations and partitions that have dial-by-name nodes, in order.
    std::vector<PartitionKey> Partitions();

    // The partition's dial-by-name nodes by number, the template included.
    std::vector<NodeListRow> Nodes(PartitionKey where);

    // Why the database shows no dial-by-name node, and what to do about it.
    std::string WhyNoNodes();
    // The highest dial-by-name node number the partition allows (0: none).
    std::int16_t HighestNodeNumber(PartitionKey where);

    // Why a new node cannot take this number (the text an operator typed),
    // or nothing when it can.
    std::optional<std::string> RefusalOfNewNode(PartitionKey where, std::string_view number);

    // Creates dial-by-name node `number` by copying the template, node 0, in
    // one transaction. Check it first with RefusalOfNewNode.
    void CreateNode(PartitionKey where, std::int16_t number);

private:
    // The names of a directory node, or nothing when it does not exist.
    std::optional<std::vector<directory::DirectoryName>> ReadDirectoryIfAny(PartitionKey where,
                                                                            std::int16_t directory);
    bool NodeRowExists(PartitionKey where, std::int16_t number);

    DataBase& db_;
};

// The rows whose number or label contains the text (letter case ignored);
// every row for an empty text.
std::vector<NodeListRow> FilterNodeRows(const std::vector<NodeListRow>& rows,
                                        std::string_view text);

}  // namespace session
}  // namespace dbn
