#include "nodestate/state_diff.h"

#include "nodefields/node_fields.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace dbn::nodestate {
namespace {

// Columns that say which node or row this is, not what it holds.
bool IsKeyColumn(std::string_view name) {
    static constexpr std::array<std::string_view, 7> keys{
        "ConfigID",     "PartID",       "NodeTypeID", "NodeNumber",
        "NodeMasterID", "PromptNumber", "SequenceNo"};
    return std::find(keys.begin(), keys.end(), name) != keys.end();
}

const Json& Field(const Json& row, const std::string& name) {
    static const Json none;
    if (!row.is_object()) {
        return none;
    }
    const auto found = row.find(name);
    return found == row.end() ? none : *found;
}

// Every column name of two rows: the first row's order, then the second's
// additions.
std::vector<std::string> ColumnsOf(const Json& first, const Json& second) {
    std::vector<std::string> names;
    std::set<std::string> seen;
    for (const Json* row : {&first, &second}) {
        if (!row->is_object()) {
            continue;
        }
        for (const auto& item : row->items()) {
            if (seen.insert(item.key()).second) {
                names.push_back(item.key());
            }
        }
    }
    return names;
}

// True for two rows with the same columns in the same order (the usual
// case), which are then compared side by side instead of column by name.
bool SameColumns(const Json& first, const Json& second) {
    if (!first.is_object() || !second.is_object() || first.size() != second.size()) {
        return false;
    }
    for (auto x = first.begin(), y = second.begin(); x != first.end(); ++x, ++y) {
        if (x.key() != y.key()) {
            return false;
        }
    }
    return true;
}

// A detail row's number: its PromptNumber or SequenceNo, else its position.
long RowNumber(const Json& row, std::size_t position) {
    for (const char* column : {"PromptNumber", "SequenceNo"}) {
        const Json& value = Field(row, column);
        if (value.is_number_integer()) {
            return value.get<long>();
        }
    }
    return static_cast<long>(position) + 1;
}

// A detail row without the columns that place it.
Json Contents(const Json& row) {
    Json kept = Json::object();
    for (const auto& item : row.items()) {
        if (!IsKeyColumn(item.key())) {
            kept[item.key()] = item.value();
        }
    }
    return kept;
}

std::map<long, Json> NumberedDetails(const std::optional<NodeState>& state) {
    std::map<long, Json> rows;
    if (state) {
        for (std::size_t i = 0; i < state->details.size(); ++i) {
            rows[RowNumber(state->details[i], i)] = Contents(state->details[i]);
        }
    }
    return rows;
}

// The changes of the detail rows, matched by their numbers.
void AddDetailChanges(std::vector<FieldChange>& changes, const std::optional<NodeState>& before,
                      const std::optional<NodeState>& after) {
    const std::map<long, Json> wasRows = NumberedDetails(before);
    const std::map<long, Json> nowRows = NumberedDetails(after);
    std::set<long> numbers;
    for (const auto* rows : {&wasRows, &nowRows}) {
        for (const auto& entry : *rows) {
            numbers.insert(entry.first);
        }
    }
    for (long number : numbers) {
        const auto was = wasRows.find(number);
        const auto now = nowRows.find(number);
        const Json wasRow = was == wasRows.end() ? Json() : was->second;
        const Json nowRow = now == nowRows.end() ? Json() : now->second;
        if (wasRow != nowRow) {
            changes.push_back({"Prompt " + std::to_string(number), wasRow, nowRow});
        }
    }
}

const NodeState& OrEmpty(const std::optional<NodeState>& state) {
    static const NodeState empty;
    return state ? *state : empty;
}

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() > end.size() && text.substr(text.size() - end.size()) == end;
}

// The reference a column belongs to: "Abort" for AbortNodeType,
// AbortNodeNumber and AbortNodeTypeID, when the row has AbortNodeType.
std::optional<std::string> ReferenceRole(const std::string& column, const Json& a, const Json& b) {
    for (std::string_view end : {"NodeTypeID", "NodeType", "NodeNumber"}) {
        if (EndsWith(column, end)) {
            const std::string role = column.substr(0, column.size() - end.size());
            const std::string typeColumn = role + "NodeType";
            if (!Field(a, typeColumn).is_null() || !Field(b, typeColumn).is_null() ||
                (a.is_object() && a.contains(typeColumn)) ||
                (b.is_object() && b.contains(typeColumn))) {
                return role;
            }
        }
    }
    return std::nullopt;
}

// How the history names a reference: the editor's name of its row.
std::string RowName(const std::string& role) {
    const nodefields::FieldRule* rule = nodefields::FieldOfColumn(role);
    return rule != nullptr ? rule->history : role;
}

std::string Plain(const Json& value) {
    return value.is_string() ? value.get<std::string>()
                             : value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string ReferenceText(const Json& row, const std::string& role) {
    const Json& type = Field(row, role + "NodeType");
    const Json& number = Field(row, role + "NodeNumber");
    if (type.is_null() && number.is_null()) {
        return "Null";
    }
    return Plain(type) + " " + Plain(number);
}

}  // namespace

std::vector<FieldChange> Diff(const std::optional<NodeState>& before,
                              const std::optional<NodeState>& after) {
    const NodeState& a = OrEmpty(before);
    const NodeState& b = OrEmpty(after);
    std::vector<FieldChange> changes;
    if (SameColumns(a.node, b.node)) {
        for (auto was = a.node.begin(), now = b.node.begin(); was != a.node.end(); ++was, ++now) {
            if (!IsKeyColumn(was.key()) && *was != *now) {
                changes.push_back({was.key(), *was, *now});
            }
        }
    } else {
        for (const std::string& column : ColumnsOf(a.node, b.node)) {
            const Json& was = Field(a.node, column);
            const Json& now = Field(b.node, column);
            if (!IsKeyColumn(column) && was != now) {
                changes.push_back({column, was, now});
            }
        }
    }
    // Detail rows equal side by side (a save that left them as they were)
    // hold no change; otherwise they are matched by their numbers.
    if (a.details != b.details) {
        AddDetailChanges(changes, before, after);
    }
    for (const std::string& column : ColumnsOf(a.pool, b.pool)) {
        const bool inNodeRow = (a.node.contains(column) || b.node.contains(column));
        if (IsKeyColumn(column) || inNodeRow || column == "DateModified") {
            continue;
        }
        const Json& was = Field(a.pool, column);
        const Json& now = Field(b.pool, column);
        if (was != now) {
            changes.push_back({column, was, now});
        }
    }
    return changes;
}

std::vector<std::string> ChangeLines(const std::vector<FieldChange>& changes,
                                     const std::optional<NodeState>& before,
                                     const std::optional<NodeState>& after) {
    const Json& a = OrEmpty(before).node;
    const Json& b = OrEmpty(after).node;
    std::vector<std::string> lines;
    std::set<std::string> roles;
    for (const FieldChange& change : changes) {
        const bool nodeColumn = a.contains(change.field) || b.contains(change.field);
        const std::optional<std::string> role =
            nodeColumn ? ReferenceRole(change.field, a, b) : std::nullopt;
        if (!role) {
            lines.push_back(change.field + ": " + ValueText(change.before) + " -> " +
                            ValueText(change.after));
        } else if (roles.insert(*role).second) {
            lines.push_back(RowName(*role) + ": " + ReferenceText(a, *role) + " -> " +
                            ReferenceText(b, *role));
        }
    }
    return lines;
}

std::string ValueText(const Json& value) {
    if (value.is_null()) {
        return "Null";
    }
    if (value.is_object()) {
        for (const auto& item : value.items()) {
            if (EndsWith(item.key(), "NodeType")) {
                const std::string role = item.key().substr(0, item.key().size() - 8);
                return ReferenceText(value, role);
            }
        }
    }
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace dbn::nodestate
