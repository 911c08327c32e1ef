#pragma once
// One dial-by-name node as its stored columns, in the shape the text form
// needs: the Node_DBN columns it shows, the prompt rows in order and the
// pool row's modification time. Values stay as stored (Null, a whole number
// or a text), so that a value the editor would replace by a fallback is
// written back unchanged.

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace dbn::nodetext {

// A stored value: Null, a whole number or a text.
using Value = std::variant<std::monostate, std::int64_t, std::string>;

// A reference to another node: type code, number and type ID. The text form
// names the type by its code only; typeID is Null for a reference read from
// a file until the session resolves it.
struct StoredRef {
    Value type;
    Value number;
    Value typeID;
};

struct TextNode {
    std::int64_t number = 0;
    // Node_DBN columns by name; references as their three columns.
    std::map<std::string, Value> columns;
    // Detail_DBN_Prompts rows in prompt-number order.
    std::vector<StoredRef> prompts;
    // Node_General_Pool's DateModified; shown, never written back.
    Value modified;
    // The fingerprint of the stored state the text was made from; empty
    // when a file leaves it out.
    std::string stored;
};

// One exported partition.
struct NodeDocument {
    std::int64_t configuration = 0;
    std::int64_t partition = 0;
    std::vector<TextNode> nodes;
};

// The three columns of a reference whose names begin with the role's name.
StoredRef RefColumns(const TextNode& node, const std::string& role);
void SetRefColumns(TextNode& node, const std::string& role, const StoredRef& ref);

// The value as command text: a number in decimal, a text as it is, Null as
// the empty text.
std::string ValueText(const Value& value);

// Decimal text with the whole number, or nothing.
std::int64_t WholeOr(const Value& value, std::int64_t fallback);

}  // namespace dbn::nodetext
