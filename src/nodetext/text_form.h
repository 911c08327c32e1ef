#pragma once
// The text form of dial-by-name nodes: one JSON document per partition
// ("format": "dbn-nodes", version 1), written with its keys in a fixed order
// and two-space indentation so that the same nodes always give the same
// bytes, and read back with every problem named by its JSON path.

#include "nodefields/node_fields.h"
#include "nodetext/node_text.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dbn::nodetext {

using nodefields::FieldKind;
using nodefields::FieldRule;
using nodefields::Fields;
using nodefields::TargetRole;

// The fingerprint of a node's stored state: 16 hexadecimal digits over
// every field of its text form, its number and its modification time.
std::string Fingerprint(const TextNode& node);

// The document as text: the nodes in the order given (callers give them by
// number), each with its fingerprint; ends with a line break.
std::string DocumentText(const NodeDocument& document);

// A problem found in a file: the JSON path of the bad part ("" for the
// document as a whole) and the reason.
struct Problem {
    std::string path;
    std::string message;
};
// "nodes[3].label: must be a text" or the message alone without a path.
std::string ProblemText(const Problem& problem);

struct ReadResult {
    std::optional<NodeDocument> document;  // set when there are no problems
    std::vector<Problem> problems;
};

// Reads a document: malformed JSON is one problem naming its line and
// column; otherwise every wrong type, unknown field, out-of-range number and
// repeated node number is listed.
ReadResult ReadDocument(std::string_view text);

// A field whose text differs between two nodes, both values as JSON.
struct FieldChange {
    std::string path;
    std::string before;
    std::string after;
};
// The fields of the text form that differ, in the form's order.
std::vector<FieldChange> Changes(const TextNode& before, const TextNode& after);

// Whether the fields of the given path are among the changes.
bool Changed(const std::vector<FieldChange>& changes, std::string_view path);

}  // namespace dbn::nodetext
