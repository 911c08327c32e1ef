#pragma once

// The node history: one row per change of a node, written inside the
// change's own transaction, and read back for the history, restore and
// watch commands. A database that keeps no history (an older one opened
// read-only) is written nothing.

#include "nodestate/node_state.h"
#include "nodestate/state_diff.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

class DataBase;
struct BatchAnswer;
struct BatchStep;

namespace session {

struct NodeKey {
    std::int16_t config = 0;
    std::int16_t partition = 0;
    std::int16_t typeID = 0;
    std::int16_t number = 0;
};

enum class ChangeKind { Saved, Created, Restored };
// "saved", "created", "restored".
std::string_view KindName(ChangeKind kind);

// The program the history names: "dbn-node-editor 1.0.0" as the program
// sets it, or the host program's own name by default.
void SetHistoryProgram(std::string program);
std::string HistoryProgram();

// The node's whole stored state: a dial-by-name node's row, prompt rows and
// pool row; for other types the pool row. std::nullopt when the node has no
// row (for a dial-by-name node, no Node_DBN row).
std::optional<nodestate::NodeState> ReadNodeState(DataBase& db, const NodeKey& key);

// The reads of a node's state, to send in a batch, and its state from their
// answers (consecutive, from the first given).
std::vector<BatchStep> NodeStateReads(const NodeKey& key);
std::optional<nodestate::NodeState> NodeStateOf(const NodeKey& key, BatchAnswer* answers);

// A dial-by-name node's state from the answers of StoredStateReads, in
// order; std::nullopt when its Node_DBN row is gone.
std::optional<nodestate::NodeState> NodeStateOf(BatchAnswer& node, BatchAnswer& details,
                                                BatchAnswer& pool);

// Writes one history row for a change inside the caller's open transaction:
// the key, the node-type code, now (UTC), who (operating-system user and
// host, the database user on a server), the program and both states. The
// row travels with the transaction's next statements or its commit.
void WriteHistoryEntry(DataBase& db, const NodeKey& key, std::string_view typeCode, ChangeKind kind,
                       const std::optional<nodestate::NodeState>& before,
                       const std::optional<nodestate::NodeState>& after);
// The same with the states' JSON (nodestate::ToStoredJson) already made.
void WriteHistoryEntry(DataBase& db, const NodeKey& key, std::string_view typeCode, ChangeKind kind,
                       const std::optional<nodestate::NodeState>& before,
                       const std::optional<nodestate::NodeState>& after, std::string beforeJson,
                       std::string afterJson);

struct HistoryEntry {
    long entry = 0;
    NodeKey key;
    std::string typeCode;
    std::string time;  // ISO 8601, UTC
    std::string user;
    std::string host;
    std::string dbUser;
    std::string program;
    std::string kind;
    // What changed, as history --json shows it, and as lines for people.
    std::vector<nodestate::FieldChange> changes;
    std::vector<std::string> changeLines;
    // The states; left empty by ReadNodeHistoryChanges.
    std::optional<nodestate::NodeState> before;
    std::optional<nodestate::NodeState> after;
    // Set when part of the row cannot be read (malformed JSON): "entry 12
    // cannot be read: its state after is not a node state". Such an entry
    // has no changes and no states; the others are read as usual.
    std::string damage;
};

// The node's entries, newest first; at most limit of them when given.
std::vector<HistoryEntry> ReadNodeHistory(DataBase& db, const NodeKey& key,
                                          std::optional<long> limit);
// The same without the states, for a listing of any length.
std::vector<HistoryEntry> ReadNodeHistoryChanges(DataBase& db, const NodeKey& key,
                                                 std::optional<long> limit);
std::optional<HistoryEntry> ReadHistoryEntry(DataBase& db, long entry);
// Every entry after that one, oldest first.
std::vector<HistoryEntry> ReadHistoryAfter(DataBase& db, long entry);
// The newest entry's number; 0 when there is none.
long LastHistoryEntry(DataBase& db);

// How a node changed since it was loaded, for the question before saving
// over it: "Changed by alice on ws1 at 2026-11-25T14:02:07Z: MaxMatch: 5 ->
// 3; ...", who and when from its newest history entry when that entry left
// the node as it is now; "This node was changed outside this program; not
// in the history: ..." when no entry did (left out when the database keeps
// no history). The fields are those that differ between the loaded state
// and the current one.
std::string ChangeDetails(DataBase& db, const NodeKey& key, const std::string& loadedJson,
                          const nodestate::NodeState& current);

// "user@host", with the database user after a slash when it differs.
std::string WhoText(const HistoryEntry& entry);

// The entry as history --json shows it: entry, time, user, host, program,
// kind and changes; withKey adds configuration, partition, nodeType and node.
nodestate::Json EntryJson(const HistoryEntry& entry, bool withKey);

}  // namespace session
}  // namespace dbn
