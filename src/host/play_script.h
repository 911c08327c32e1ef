#pragma once

// The line format of `dbn-node-editor play` scripts: one action a line, words
// separated by blanks, a word holding blanks in double quotes (inside them \"
// and \\ stand for " and \), blank lines and lines starting with # skipped.
// Parsing never throws, so any text can be fed to it.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn::host {

enum class Verb {
    Open,     // open CONFIG PARTITION NODE
    Answer,   // answer CODE
    Pick,     // pick CONTROL TEXT
    Type,     // type CONTROL TEXT
    Click,    // click CONTROL
    Row,      // row LISTVIEW KEY
    Focus,    // focus CONTROL
    Header,   // header LISTVIEW
    Scroll,   // scroll LISTVIEW
    Close,    // close
    Show,     // show NAME...
    Entries,  // entries LIST
    // simulate KEYS...: a call through the node under the form's current settings
    Simulate,
};

struct Action {
    Verb verb = Verb::Close;
    // The words after the verb.
    std::vector<std::string> operands;
    // Open: configuration, partition and node. Answer: the code in number[0].
    std::vector<long> numbers;
};

// The outcome of one line: nothing to do (blank or comment), an action, or
// the reason the line is not a valid action.
struct ParsedLine {
    std::optional<Action> action;
    std::string error;  // empty unless the line is invalid

    bool Skipped() const { return !action && error.empty(); }
};

// Splits a line into words. Answers std::nullopt and sets why when a quoted
// word is not closed.
std::optional<std::vector<std::string>> SplitWords(std::string_view line, std::string& why);

// The answer codes a script may queue: OK 1, Cancel 2, Yes 6, No 7 of a
// box; Yes 2, Yes to All 4, No 7, No to All 5, Cancel 3 of the confirmation
// dialog.
bool IsAnswerCode(long code);

// Parses one line (a trailing carriage return is ignored).
ParsedLine ParseLine(std::string_view line);

}  // namespace dbn::host
