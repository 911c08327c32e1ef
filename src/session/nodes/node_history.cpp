#include "session/nodes/node_history.h"

#include "core/node_types.h"
#include "database/database.h"
#include "database/schema_model.h"
#include "nodestate/state_diff.h"
#include "session/nodes/stored_state.h"
#include "session/nodes/stored_values.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <stdexcept>

namespace dbn::session {
namespace {

using nodestate::Json;
using nodestate::NodeState;

Json ValueJson(const FieldValue& value) {
    return std::visit(
        [](const auto& v) -> Json {
            using V = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<V, std::monostate>) {
                return nullptr;
            } else {
                return v;
            }
        },
        value.Raw());
}

// The schema's spelling of a row set's column names (a server answers them in
// lower case). A table is read with the same columns again and again, so the
// last spelling of each table is kept.
const std::vector<std::string>& SchemaSpelling(const char* tableName,
                                               const std::vector<std::string>& columns) {
    struct Spelling {
        std::string table;
        std::vector<std::string> columns;
        std::vector<std::string> names;
    };
    thread_local std::vector<Spelling> known;
    auto spelling = std::find_if(known.begin(), known.end(),
                                 [&](const Spelling& s) { return s.table == tableName; });
    if (spelling == known.end()) {
        spelling = known.insert(known.end(), {tableName, {}, {}});
    } else if (spelling->columns == columns) {
        return spelling->names;
    }
    const SchemaTable* table = FindSchemaTable(tableName);
    spelling->columns = columns;
    spelling->names.clear();
    for (const std::string& column : columns) {
        const SchemaColumn* schemaColumn = table != nullptr ? table->Column(column) : nullptr;
        spelling->names.push_back(schemaColumn != nullptr ? schemaColumn->name : column);
    }
    return spelling->names;
}

// Every row of a command's row set as JSON objects, closing it. Columns are
// named as the schema spells them.
std::vector<Json> RowsJson(RowSet& rows, const char* tableName) {
    RowSetCloser closer(rows);
    const std::vector<std::string>& names = SchemaSpelling(tableName, rows.Columns());
    std::vector<Json> out;
    out.reserve(rows.RowCount());
    for (; !rows.Eof(); rows.MoveNext()) {
        const std::vector<FieldValue>& values = rows.CurrentRow();
        Json row = Json::object();
        // Column names are unique: each is appended without looking for it.
        auto& members = row.get_ref<Json::object_t&>();
        members.reserve(names.size());
        for (std::size_t i = 0; i < names.size(); ++i) {
            members.Json::object_t::Container::emplace_back(names[i], ValueJson(values[i]));
        }
        out.push_back(std::move(row));
    }
    rows.Close();
    return out;
}

std::mutex& ProgramMutex() {
    static std::mutex mutex;
    return mutex;
}

std::string& Program() {
    static std::string program = program_invocation_short_name;
    return program;
}

std::string OsUser() {
    if (const passwd* entry = getpwuid(geteuid()); entry != nullptr && entry->pw_name != nullptr) {
        return entry->pw_name;
    }
    const char* user = std::getenv("USER");
    return user != nullptr ? user : std::to_string(geteuid());
}

std::string HostName() {
    char name[HOST_NAME_MAX + 1] = {};
    if (gethostname(name, sizeof name - 1) != 0) {
        return "";
    }
    return name;
}

std::string UtcNow() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm utc{};
    gmtime_r(&now, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

// The changes as history --json shows them.
Json ChangesJson(const std::vector<nodestate::FieldChange>& changes) {
    Json out = Json::array();
    for (const nodestate::FieldChange& change : changes) {
        out.push_back(
            Json{{"field", change.field}, {"before", change.before}, {"after", change.after}});
    }
    return out;
}

HistoryEntry EntryOf(RowSet& rows, bool withStates) {
    HistoryEntry entry;
    entry.entry = static_cast<long>(std::stoll(rows.Field("EntryID").ToText()));
    entry.key = {rows.Field("ConfigID").ToInt16(), rows.Field("PartID").ToInt16(),
                 rows.Field("NodeTypeID").ToInt16(), rows.Field("NodeNumber").ToInt16()};
    entry.typeCode = rows.Field("NodeType").ToText();
    entry.time = rows.Field("ChangedAt").ToText();
    entry.user = rows.Field("OsUser").ToText();
    entry.host = rows.Field("Host").ToText();
    entry.dbUser = rows.Field("DbUser").ToText();
    entry.program = rows.Field("Program").ToText();
    entry.kind = rows.Field("Kind").ToText();
    // A malformed part is named in the entry's own words; the library's
    // message is not shown.
    const char* part = "its list of changes is not valid";
    try {
        const Json changes = Json::parse(rows.Field("Changes").ToText());
        if (!changes.is_array()) {
            throw std::invalid_argument("not a list");
        }
        for (const Json& change : changes) {
            entry.changes.push_back(
                {change.at("field").get<std::string>(), change.at("before"), change.at("after")});
        }
        if (withStates) {
            part = "its state before is not a node state";
            entry.before = nodestate::FromStoredJson(rows.Field("StateBefore").ToText());
            part = "its state after is not a node state";
            entry.after = nodestate::FromStoredJson(rows.Field("StateAfter").ToText());
        }
    } catch (const std::exception&) {
        entry.changes.clear();
        entry.before.reset();
        entry.after.reset();
        entry.damage = "entry " + std::to_string(entry.entry) + " cannot be read: " + part;
        return entry;
    }
    const std::string lines = rows.Field("ChangeText").ToText();
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', at), lines.size());
        entry.changeLines.push_back(lines.substr(at, end - at));
        at = end + 1;
    }
    return entry;
}

std::vector<HistoryEntry> Entries(DataBase& db, std::string_view command, bool withStates) {
    RowSet& rows = db.Recordset(command);
    RowSetCloser closer(rows);
    std::vector<HistoryEntry> entries;
    for (; !rows.Eof(); rows.MoveNext()) {
        entries.push_back(EntryOf(rows, withStates));
    }
    rows.Close();
    return entries;
}

std::vector<std::string> KeyArgs(const NodeKey& key) {
    return {CommandArg(key.config), CommandArg(key.partition), CommandArg(key.typeID),
            CommandArg(key.number)};
}

// A node's entries, newest first, read by one of the two node-history
// commands (with or without the states).
std::vector<HistoryEntry> NodeEntries(DataBase& db, std::string_view command, const NodeKey& key,
                                      std::optional<long> limit, bool withStates) {
    if (!db.KeepsHistory()) {
        return {};
    }
    std::vector<std::string> args = KeyArgs(key);
    args.push_back(std::to_string(limit.value_or(LONG_MAX)));
    db.Execute(command, args);
    return Entries(db, command, withStates);
}

}  // namespace

std::string_view KindName(ChangeKind kind) {
    switch (kind) {
        case ChangeKind::Saved:
            return "saved";
        case ChangeKind::Created:
            return "created";
        case ChangeKind::Restored:
            break;
    }
    return "restored";
}

void SetHistoryProgram(std::string program) {
    std::lock_guard lock(ProgramMutex());
    Program() = std::move(program);
}

std::string HistoryProgram() {
    std::lock_guard lock(ProgramMutex());
    return Program();
}

std::optional<NodeState> ReadNodeState(DataBase& db, const NodeKey& key) {
    NodeState state;
    const std::string config = CommandArg(key.config);
    const std::string partition = CommandArg(key.partition);
    const std::string number = CommandArg(key.number);
    // A dial-by-name node's three reads travel as one batch unless they were
    // read ahead.
    std::optional<ReadAheadScope> readAhead;
    if (key.typeID == node_type::kDialByName && !db.HasReadAhead()) {
        readAhead.emplace(db);
        db.ReadAhead(StoredStateReads(key.config, key.partition, key.number));
    }
    if (key.typeID == node_type::kDialByName) {
        db.Execute("Get_DBN_Node", {config, partition, number, CommandArg(key.typeID)});
        std::vector<Json> node = RowsJson(db.Recordset("Get_DBN_Node"), "Node_DBN");
        if (node.empty()) {
            return std::nullopt;
        }
        state.node = std::move(node.front());
        db.Execute("Get_DBN_PromptsNode", {config, partition, number});
        state.details = RowsJson(db.Recordset("Get_DBN_PromptsNode"), "Detail_DBN_Prompts");
    }
    db.Execute("Get_Description", {config, partition, CommandArg(key.typeID), number});
    std::vector<Json> pool = RowsJson(db.Recordset("Get_Description"), "Node_General_Pool");
    if (!pool.empty()) {
        state.pool = std::move(pool.front());
    } else if (key.typeID != node_type::kDialByName) {
        return std::nullopt;
    }
    return state;
}

std::optional<NodeState> NodeStateOf(BatchAnswer& node, BatchAnswer& details, BatchAnswer& pool) {
    std::vector<Json> nodeRows = RowsJson(node.rows, "Node_DBN");
    std::vector<Json> detailRows = RowsJson(details.rows, "Detail_DBN_Prompts");
    std::vector<Json> poolRows = RowsJson(pool.rows, "Node_General_Pool");
    if (nodeRows.empty()) {
        return std::nullopt;
    }
    NodeState state;
    state.node = std::move(nodeRows.front());
    state.details = std::move(detailRows);
    if (!poolRows.empty()) {
        state.pool = std::move(poolRows.front());
    }
    return state;
}

std::vector<BatchStep> NodeStateReads(const NodeKey& key) {
    if (key.typeID == node_type::kDialByName) {
        return StoredStateReads(key.config, key.partition, key.number);
    }
    return {{"Get_Description", KeyArgs(key)}};
}

std::optional<NodeState> NodeStateOf(const NodeKey& key, BatchAnswer* answers) {
    if (key.typeID == node_type::kDialByName) {
        return NodeStateOf(answers[0], answers[1], answers[2]);
    }
    std::vector<Json> pool = RowsJson(answers[0].rows, "Node_General_Pool");
    if (pool.empty()) {
        return std::nullopt;
    }
    NodeState state;
    state.pool = std::move(pool.front());
    return state;
}

void WriteHistoryEntry(DataBase& db, const NodeKey& key, std::string_view typeCode, ChangeKind kind,
                       const std::optional<NodeState>& before,
                       const std::optional<NodeState>& after) {
    WriteHistoryEntry(db, key, typeCode, kind, before, after, nodestate::ToStoredJson(before),
                      nodestate::ToStoredJson(after));
}

void WriteHistoryEntry(DataBase& db, const NodeKey& key, std::string_view typeCode, ChangeKind kind,
                       const std::optional<NodeState>& before,
                       const std::optional<NodeState>& after, std::string beforeJson,
                       std::string afterJson) {
    if (!db.KeepsHistory()) {
        return;
    }
    std::vector<std::string> args = KeyArgs(key);
    args.emplace_back(typeCode);
    args.push_back(UtcNow());
    args.push_back(OsUser());
    args.push_back(HostName());
    args.push_back(db.UserName());
    args.push_back(HistoryProgram());
    args.emplace_back(KindName(kind));
    // What changed is kept beside the states, so that a listing need not
    // compare them again.
    const std::vector<nodestate::FieldChange> changes = nodestate::Diff(before, after);
    args.push_back(ChangesJson(changes).dump(-1, ' ', false, Json::error_handler_t::replace));
    std::string lines;
    for (const std::string& line : nodestate::ChangeLines(changes, before, after)) {
        lines += line + "\n";
    }
    args.push_back(std::move(lines));
    args.push_back(std::move(beforeJson));
    args.push_back(std::move(afterJson));
    db.QueueWrite({"Add_Node_History", std::move(args)});
}

std::vector<HistoryEntry> ReadNodeHistory(DataBase& db, const NodeKey& key,
                                          std::optional<long> limit) {
    return NodeEntries(db, "Get_Node_History", key, limit, true);
}

std::vector<HistoryEntry> ReadNodeHistoryChanges(DataBase& db, const NodeKey& key,
                                                 std::optional<long> limit) {
    return NodeEntries(db, "Get_Node_History_Changes", key, limit, false);
}

std::optional<HistoryEntry> ReadHistoryEntry(DataBase& db, long entry) {
    if (!db.KeepsHistory()) {
        return std::nullopt;
    }
    db.Execute("Get_History_Entry", {std::to_string(entry)});
    std::vector<HistoryEntry> found = Entries(db, "Get_History_Entry", true);
    if (found.empty()) {
        return std::nullopt;
    }
    return std::move(found.front());
}

std::vector<HistoryEntry> ReadHistoryAfter(DataBase& db, long entry) {
    if (!db.KeepsHistory()) {
        return {};
    }
    db.Execute("Get_History_After", {std::to_string(entry)});
    return Entries(db, "Get_History_After", true);
}

long LastHistoryEntry(DataBase& db) {
    if (!db.KeepsHistory()) {
        return 0;
    }
    db.Execute("Get_Last_History_Entry");
    RowSet& rows = db.Recordset("Get_Last_History_Entry");
    RowSetCloser closer(rows);
    const long last = rows.Eof() ? 0
                                 : static_cast<long>(std::stoll(
                                       std::string("0").append(rows.Field("LastEntry").ToText())));
    rows.Close();
    return last;
}

std::string ChangeDetails(DataBase& db, const NodeKey& key, const std::string& loadedJson,
                          const NodeState& current) {
    std::optional<NodeState> loaded;
    try {
        loaded = nodestate::FromJson(loadedJson);
    } catch (const std::invalid_argument&) {
        // Loaded before this program kept states as JSON: no fields to name.
    }
    // The newest entry names the change only when it left the node as it
    // is now; else the change was made by a program that writes no history.
    std::string details = "Changed";
    if (db.KeepsHistory()) {
        const std::vector<HistoryEntry> newest = ReadNodeHistory(db, key, 1);
        if (!newest.empty() && newest[0].after == current) {
            details += " by " + newest[0].user + " on " + newest[0].host + " at " + newest[0].time;
        } else {
            details = "This node was changed outside this program; not in the history";
        }
    }
    std::string fields;
    if (loaded) {
        const auto changes = nodestate::Diff(loaded, current);
        for (const std::string& line : nodestate::ChangeLines(changes, loaded, current)) {
            fields += (fields.empty() ? "" : "; ") + line;
        }
    }
    return details + (fields.empty() ? "." : ": " + fields);
}

std::string WhoText(const HistoryEntry& entry) {
    std::string who = entry.user + "@" + entry.host;
    if (!entry.dbUser.empty() && entry.dbUser != entry.user) {
        who += "/" + entry.dbUser;
    }
    return who;
}

Json EntryJson(const HistoryEntry& entry, bool withKey) {
    Json out = Json::object();
    out["entry"] = entry.entry;
    if (withKey) {
        out["configuration"] = entry.key.config;
        out["partition"] = entry.key.partition;
        out["nodeType"] = entry.typeCode;
        out["node"] = entry.key.number;
    }
    out["time"] = entry.time;
    out["user"] = entry.user;
    out["host"] = entry.host;
    out["program"] = entry.program;
    out["kind"] = entry.kind;
    out["changes"] = ChangesJson(entry.changes);
    if (!entry.damage.empty()) {
        out["error"] = entry.damage;
    }
    return out;
}

}  // namespace dbn::session
