#pragma once

// Stored settings that loading showed through a fallback entry because their
// values lie outside the ranges the lists offer, and stored texts shown
// shortened; the operator is told about them once per load.

#include "form/controls/list_control.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dbn::session {

class RangeNotes {
public:
    void Clear() { notes_.clear(); }
    // Notes that the stored value of a Node_DBN column is shown by `shown`
    // through a fallback. The shown text is read when the message is made.
    void Note(std::string_view column, std::int64_t value, const form::ListControl& shown);
    // Notes that a stored text is shown shortened.
    void NoteText(std::string_view column, std::string stored, std::string shown);
    // "Stored settings of NODE outside their range are shown as: ITEM; ITEM.
    // They are kept as stored unless changed.", the items in the column
    // order of Node_DBN; empty when nothing was noted.
    std::string Message(const std::string& node) const;

private:
    struct Entry {
        int order;
        std::string column;
        std::int64_t value;
        const form::ListControl* shown;  // null for a text
        std::string storedText;
        std::string shownText;
    };
    std::vector<Entry> notes_;
};

}  // namespace dbn::session
