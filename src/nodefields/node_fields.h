#pragma once
// The stored fields of a dial-by-name node, declared once: where each is
// stored, how the text form and the history name it, what kind of value it
// holds and which values a save accepts.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dbn::nodefields {

enum class FieldKind { Text, Whole, Named, Flag, Target, Prompts };
// Which targets a reference may name: prompts (greeting, match and
// confirmation prompts) or instructions (actions, timeout, invalid).
enum class TargetRole { None, Prompt, Instruction };

// One field of a node and where it is stored.
struct FieldRule {
    std::string pointer;  // JSON pointer inside the node: "/stages/0/minDigits"
    std::string path;     // as messages and the history name it: "stages[0].minDigits"
    FieldKind kind = FieldKind::Whole;
    std::string column;  // the column; a target's role prefix ("Greeting")
    // As the history names it: the column, or a reference by the editor's
    // name of its row ("Valid Match", "*").
    std::string history;
    // Named: the stored values and the names they read as.
    std::vector<std::pair<int, std::string>> names;
    // Whole: the values the editor offers (none when low > high).
    int low = 1;
    int high = 0;
    TargetRole role = TargetRole::None;
};

// Every field of a node, in the order the text form writes them.
const std::vector<FieldRule>& Fields();
// The field stored in `column`, or null.
const FieldRule* FieldOfColumn(std::string_view column);

// The label's longest text a save writes, in characters.
inline constexpr std::size_t kLongestLabel = 30;
// The longest label a file may carry: a stored label beyond kLongestLabel
// that the file leaves as it is comes back unchanged.
inline constexpr std::size_t kLongestStoredLabel = 1000;

// The characters (UTF-8 code points) of a text.
std::size_t CharacterCount(std::string_view text);

// Why a save refuses the value of a changed field, or nothing. `number` is
// the stored number (none for null), `text` a label's text.
std::optional<std::string> Refusal(const FieldRule& rule, std::optional<std::int64_t> number,
                                   std::string_view text = {});

// The names of a choice list as messages list them: "\"Custom\", \"Default Last Name\"".
std::string NameList(const FieldRule& rule);

// A text of at most `longest` characters, or why not.
std::optional<std::string> LengthRefusal(std::string_view text, std::size_t longest);

}  // namespace dbn::nodefields
