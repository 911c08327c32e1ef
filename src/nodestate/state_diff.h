#pragma once

// What changed between two stored states of a node, field by field.

#include "nodestate/node_state.h"

#include <optional>
#include <string>
#include <vector>

namespace dbn::nodestate {

// One changed field: a column of the node row or of the pool row, by its
// stored name ("NodeDescription", "MaxMatch"), or a detail row as
// "Prompt N" whose values are the row's own columns (null when the row is
// missing on that side).
struct FieldChange {
    std::string field;
    Json before;
    Json after;

    bool operator==(const FieldChange&) const = default;
};

// The changed fields, node row columns first (in column order), then the
// detail rows by number, then pool columns the node row does not have. Key
// columns and the pool's modification time are not compared: an entry's own
// time says when. An absent state compares as an empty one.
std::vector<FieldChange> Diff(const std::optional<NodeState>& before,
                              const std::optional<NodeState>& after);

// The changes for people, one line each: `NodeDescription: "Sales" ->
// "Sales desk"`, `MaxMatch: 5 -> 3`, and a reference's three columns as one
// line named by its row ("Abort: MSG 3 -> MSG 12").
std::vector<std::string> ChangeLines(const std::vector<FieldChange>& changes,
                                     const std::optional<NodeState>& before,
                                     const std::optional<NodeState>& after);

// A stored value for people: texts in double quotes, numbers as they are,
// null as Null, a detail row as the reference it holds ("MSG 12").
std::string ValueText(const Json& value);

}  // namespace dbn::nodestate
