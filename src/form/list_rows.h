#pragma once

// Shared pieces of the two list views of the form (actions and confirmation)
// and of their in-place pickers: the meaning of the row cells, reading numbers
// out of cell and list texts, and the rows' standard texts.

#include "form/controls/list_control.h"
#include "form/controls/list_view.h"

#include <cstdint>
#include <string>

namespace dbn::form::list_rows {

// Sub-item indexes of a row (the row's own text is its position).
inline constexpr int kName = 1;
inline constexpr int kCommandNode = 2;
inline constexpr int kLabel = 3;
inline constexpr int kNodeName = 4;
inline constexpr int kNodeTypeID = 5;
inline constexpr int kNodeNumber = 6;

// "1a", "2a", ... for the row at 1-based position.
std::string RowKey(int position);

// Whether text reads as a number (blanks around it, a sign, digits and an
// optional fraction).
bool IsNumeric(const std::string& text);
// The text as a whole number, rounded half to even. A text that is not a
// number raises error 13 "Type mismatch"; one beyond 32 bits raises error 6
// "Overflow".
long ToLong(const std::string& text);
// The same, limited to 16 bits (error 6 beyond).
std::int16_t ToInt16(const std::string& text);

// The node number held by a row.
long NodeNumberOf(const ListItem& row);

// The information text telling that a node type has no usable number.
std::string MaxNumberNotice(const std::string& code);

// The last entry of a number picker, or the empty text when it has none.
std::string LastEntry(const ListControl& number);
// Makes a number picker offer "1" up to highest, unless its last entry is
// already highest (then entries and selection stay).
void RefillNumbers(ListControl& number, const std::string& highest);

// Appends a row at 1-based position with its six cells.
ListItem& AddRow(ListView& list, int position, const std::string& name,
                 const std::string& commandNode, const std::string& label,
                 const std::string& nodeName, const std::string& typeId,
                 const std::string& nodeNumber);

// The six cells of a row, kept apart from any list.
struct RowCells {
    std::string name;
    std::string commandNode;
    std::string label;
    std::string nodeName;
    std::string typeId;
    std::string nodeNumber;
};
RowCells CellsOf(const ListItem& row);
// Appends a row with these cells at 1-based position.
ListItem& AddRow(ListView& list, int position, const RowCells& cells);

// Appends the rows of from to to, renumbered from 1 with keys "1a", "2a", ...
void CopyRows(const ListView& from, ListView& to);

}  // namespace dbn::form::list_rows
