#pragma once

// The stored fields of a dial-by-name node as the form shows them, and the
// values a save writes: the form's for every field the operator changed since
// the load or the last save, the stored ones for the rest, whatever the form
// shows for them.

#include "session/editor/form_references.h"

#include <string>
#include <utility>
#include <vector>

namespace dbn::form {
class GUI;
class ListView;
}  // namespace dbn::form

namespace dbn::session {

// The stand-in for a prompt the confirmation list does not hold: message node 1.
inline const StoredNodeRef kDefaultPrompt{"MSG", "1", "0"};

// The confirmation rows a save stores: the list's while the section is on,
// the rows set aside in LVTemp while it is off.
const form::ListView& ListedPrompts(form::GUI& gui);

struct SavedFields {
    // Column and value, in the order of the two statements that write the
    // node's row (without the reserved columns, NodeType and the keys).
    std::vector<std::pair<std::string, std::string>> part1;
    std::vector<std::pair<std::string, std::string>> part2;
    // The name prompts are written from the form (else they stay as stored).
    bool promptsChanged = false;
    // Some value differs from the stored one; when none does, a save writes
    // nothing.
    bool anyChanged = false;
};

// The values a save writes. Reading a field the form cannot give (a list
// without a selection where a tag is read, a list short of rows) raises.
SavedFields FieldsToSave(form::GUI& gui);

// A node a save refers to, as the referenced-node check names it ("MSG 5").
struct SavedReference {
    std::string key;
    std::string typeID;
    std::string number;
};

// The nodes the values of FieldsToSave refer to, in the check's order: the
// greeting, the directory and the actions; for the custom method the prompts
// and error targets, the confirmation rows when confirmation is on (the name
// rows the form lists), and the exit prompt. A picker pair stored as node 0
// refers to none.
std::vector<SavedReference> ReferencesToSave(form::GUI& gui);

// True when a save would change some stored value.
bool FormChanged(form::GUI& gui);

// Notes how every field looks now, right after a load, and forgets which
// controls the operator changed.
void NoteShownFields(form::GUI& gui);

// After a save: the values written become the stored ones, then as after a load.
void NoteSavedFields(form::GUI& gui);

}  // namespace dbn::session
