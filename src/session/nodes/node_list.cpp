#include "session/nodes/node_list.h"

#include "core/component_error.h"
#include "core/node_types.h"
#include "database/database.h"
#include "session/nodes/node_templates.h"
#include "session/nodes/stored_values.h"
#include "session/nodes/transaction_scope.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <map>

namespace dbn::session {
namespace {

const std::string kDbnType = CommandArg(node_type::kDialByName);

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

// The references of a stored node in the order and with the keys the
// referenced-node check gathers them from the form showing it; a key is
// kept once.
class Gathering {
public:
    void Add(std::string key, std::string typeID, std::string number) {
        std::optional<RequiredNode> node =
            GatheredReference(std::move(key), std::move(typeID), std::move(number));
        if (!node) {
            return;
        }
        const std::string lowerKey = Lower(node->key);
        if (std::none_of(nodes_.begin(), nodes_.end(),
                         [&](const RequiredNode& kept) { return Lower(kept.key) == lowerKey; })) {
            nodes_.push_back(std::move(*node));
        }
    }
    // A picker pair: a stored number 0 leaves the number picker empty, and
    // an empty pair refers to no node.
    void AddPair(const StoredRef& ref) {
        if (ref.number != 0) {
            Add(ref.code + " " + CommandArg(ref.number), CommandArg(ref.typeID),
                CommandArg(ref.number));
        }
    }
    // A list row: its shown target, type ID and number.
    void AddRow(const StoredRef& ref) {
        Add(TargetText(ref), CommandArg(ref.typeID), CommandArg(ref.number));
    }

    const std::vector<RequiredNode>& Nodes() const noexcept { return nodes_; }

private:
    std::vector<RequiredNode> nodes_;
};

constexpr const char* kActionRoles[] = {"ValidMatch", "Abort", "Star", "Pound", "Zero"};

// The references of a node row and its prompt rows, as the referenced-node
// check gathers them from the form showing the node.
std::vector<RequiredNode> GatherTargets(const RowSet& node, const std::vector<StoredRef>& prompts) {
    Gathering gathering;
    gathering.AddPair(ReadRef(node, "Greeting"));
    const std::string directory = CommandArg(node.Field("DirectoryNodeNumber").ToInt16());
    gathering.Add("DIR " + directory, "16", directory);
    for (const char* role : kActionRoles) {
        gathering.AddRow(ReadRef(node, role));
    }
    // The prompts and error targets count for the custom method only; the
    // confirmation rows only when confirmation is on.
    if (node.Field("Method").ToInt16() == 0) {
        for (const char* role : {"FirstPrompt", "SecondPrompt", "Timeout", "Invalid"}) {
            gathering.AddPair(ReadRef(node, role));
        }
        const StoredRef exit = ReadRef(node, "ConfirmationExit");
        if (node.Field("Confirm").ToInt16() == 1) {
            const int maxMatch = node.Field("MaxMatch").ToInt16();
            gathering.AddRow(ReadRef(node, "BeforePrompt"));
            gathering.AddRow(ReadRef(node, "AfterPrompt"));
            // The form shows at most MaxMatch name rows (every row for 0 or below).
            for (std::size_t shown = 0;
                 shown < prompts.size() &&
                 (maxMatch <= 0 || shown < static_cast<std::size_t>(maxMatch));
                 ++shown) {
                gathering.AddRow(prompts[shown]);
            }
        }
        gathering.AddPair(exit);
    }
    return gathering.Nodes();
}

}  // namespace

std::vector<PartitionKey> NodeList::Partitions() {
    db_.Execute("Get_Partitions_With_Nodes", {kDbnType});
    RowSet& rows = db_.Recordset("Get_Partitions_With_Nodes");
    RowSetCloser closer(rows);
    std::vector<PartitionKey> partitions;
    for (; !rows.Eof(); rows.MoveNext()) {
        partitions.push_back({rows.Field("ConfigID").ToInt16(), rows.Field("PartID").ToInt16()});
    }
    return partitions;
}

std::vector<NodeListRow> NodeList::Nodes(PartitionKey where) {
    const std::string config = CommandArg(where.config);
    const std::string partition = CommandArg(where.partition);
    // The partition's nodes, its whole pool and every prompt row at once:
    // a fixed number of statements, whatever the number of nodes.
    std::vector<BatchAnswer> answers =
        db_.ExecuteBatch({{"Get_All_DBN_Nodes", {config, partition, kDbnType}},
                          {"Get_Partition_Pool", {config, partition}},
                          {"Get_Partition_DBN_Prompts", {config, partition}}});
    // Pool rows by type ID and number, with their modification times.
    std::map<std::pair<std::string, std::string>, std::string> pool;
    for (RowSet& rows = answers[1].rows; !rows.Eof(); rows.MoveNext()) {
        pool.emplace(
            std::pair{rows.Field("NodeTypeID").ToText(), rows.Field("NodeNumber").ToText()},
            rows.Field("DateModified").ToText());
    }
    std::map<std::int16_t, std::vector<StoredRef>> prompts;
    for (RowSet& rows = answers[2].rows; !rows.Eof(); rows.MoveNext()) {
        prompts[rows.Field("NodeMasterID").ToInt16()].push_back(ReadRef(rows, "Prompt"));
    }

    std::vector<NodeListRow> nodes;
    // Each node's search as the directory check reads it from the same row.
    std::vector<std::pair<directory::SearchSettings, std::int16_t>> searches;
    std::vector<BatchStep> directoryReads;
    for (RowSet& rows = answers[0].rows; !rows.Eof(); rows.MoveNext()) {
        NodeListRow row;
        row.number = rows.Field("NodeNumber").ToInt16();
        row.label = rows.Field("NodeDescription").ToText();
        row.method = rows.Field("Method").ToInt16() == 0 ? "Custom" : "Default Last Name";
        row.directory = rows.Field("DirectoryNodeNumber").ToInt16();
        row.isTemplate = row.number == 0;
        if (auto found = pool.find({kDbnType, CommandArg(row.number)}); found != pool.end()) {
            row.modified = found->second;
        }
        for (const RequiredNode& target : GatherTargets(rows, prompts[row.number])) {
            if (!pool.contains({LookedUpTypeID(target.typeID), target.number})) {
                ++row.missingTargets;
            }
        }
        searches.emplace_back(StoredSearchSettings(rows), StoredDirectoryNumber(rows));
        const std::string directory = CommandArg(searches.back().second);
        if (std::none_of(searches.begin(), searches.end() - 1,
                         [&](const auto& kept) { return kept.second == searches.back().second; })) {
            directoryReads.push_back(
                {"Get_DIR_Node",
                 {config, partition, directory, CommandArg(node_type::kDirectory)}});
            directoryReads.push_back({"Get_DIR_Names", {config, partition, directory}});
        }
        nodes.push_back(std::move(row));
    }
    // Every directory the nodes search, once, in one batch.
    ReadAheadScope readAhead(db_);
    db_.ReadAhead(directoryReads);
    std::map<std::int16_t, std::optional<std::vector<directory::DirectoryName>>> directories;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        NodeListRow& row = nodes[i];
        const auto& [settings, directoryNumber] = searches[i];
        auto [names, unread] = directories.try_emplace(directoryNumber);
        if (unread) {
            names->second = ReadDirectoryIfAny(where, directoryNumber);
        }
        if (names->second) {
            const directory::DirectoryReport report =
                directory::MakeDirectoryReport(where.config, where.partition, row.number,
                                               directoryNumber, settings, *names->second);
            row.reachable = ReachableCount{report.ReachableCount(), report.Total()};
        }
    }
    return nodes;
}

std::optional<std::vector<directory::DirectoryName>> NodeList::ReadDirectoryIfAny(
    PartitionKey where, std::int16_t directory) {
    try {
        return ReadDirectoryNames(db_, where.config, where.partition, directory);
    } catch (const ComponentError& error) {
        if (error.Number() != kErrDirectoryMissing) {
            throw;
        }
    }
    return std::nullopt;
}

std::string NodeList::WhyNoNodes() {
    db_.Execute("Get_Configured_Partitions", {});
    RowSet& rows = db_.Recordset("Get_Configured_Partitions");
    const bool configured = !rows.Eof();
    rows.Close();
    if (!configured) {
        return "This database holds no configuration yet.\n\n"
               "To try the editor, create the demo database with: dbn-node-editor init "
               "(add --force to replace this one).\n"
               "To bring in a configuration, copy it from another database with: "
               "dbn-node-editor copy FROM TO";
    }
    return "No partition of this database has a dial-by-name node.\n\n"
           "A new dial-by-name node is a copy of DBN 0 of its partition, the template, and "
           "no partition here has one. Bring in a configuration that has it with: "
           "dbn-node-editor copy FROM TO";
}

std::int16_t NodeList::HighestNodeNumber(PartitionKey where) {
    db_.Execute("Get_Max_NodeNumber",
                {CommandArg(where.config), CommandArg(where.partition), kDbnType});
    RowSet& limit = db_.Recordset("Get_Max_NodeNumber");
    RowSetCloser closer(limit);
    return limit.Eof() ? 0 : limit.Field("Max_Number").ToInt16();
}

bool NodeList::NodeRowExists(PartitionKey where, std::int16_t number) {
    db_.Execute("Get_DBN_Node", {CommandArg(where.config), CommandArg(where.partition),
                                 CommandArg(number), kDbnType});
    RowSet& node = db_.Recordset("Get_DBN_Node");
    RowSetCloser closer(node);
    return !node.Eof();
}

std::optional<std::string> NodeList::RefusalOfNewNode(PartitionKey where, std::string_view number) {
    const std::int16_t highest = HighestNodeNumber(where);
    const std::string range = "from 1 to " + CommandArg(highest);
    int value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (highest < 1) {
        return "The partition allows no dial-by-name nodes.";
    }
    if (number.empty() || error != std::errc() || end != number.data() + number.size() ||
        value < 1 || value > highest) {
        return "The node number must be a whole number " + range + ", not \"" +
               std::string(number) + "\".";
    }
    const auto node = static_cast<std::int16_t>(value);
    if (NodeRowExists(where, node) ||
        NodeExists(db_, where.config, where.partition, kDbnType, CommandArg(node))) {
        return "DBN " + CommandArg(node) + " exists already.";
    }
    if (!NodeRowExists(where, 0)) {
        return "There is no template node DBN 0 in this partition to copy.";
    }
    return std::nullopt;
}

void NodeList::CreateNode(PartitionKey where, std::int16_t number) {
    TransactionScope transaction(db_);
    CopyTemplateNode(db_, where.config, where.partition, "0", CommandArg(number), kDbnType);
    transaction.Commit();
}

std::vector<NodeListRow> FilterNodeRows(const std::vector<NodeListRow>& rows,
                                        std::string_view text) {
    const std::string wanted = Lower(text);
    std::vector<NodeListRow> kept;
    for (const NodeListRow& row : rows) {
        if (wanted.empty() || CommandArg(row.number).find(wanted) != std::string::npos ||
            Lower(row.label).find(wanted) != std::string::npos) {
            kept.push_back(row);
        }
    }
    return kept;
}

}  // namespace dbn::session
