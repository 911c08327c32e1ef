#pragma once

// A list view edited in place: its Edit and Default buttons, the picker pairs
// that float over the row being edited, and the edit mode. The actions list
// and the confirmation list are two instances; what differs between them is
// given to each.

#include "form/controls/list_control.h"
#include "form/controls/list_view.h"
#include "form/controls/simple_controls.h"

#include <functional>
#include <string>
#include <vector>

namespace dbn::form {

// A node-type picker and the node-number picker beside it.
struct PickerPair {
    ListControl* node;
    ListControl* number;
};

// What sets one edited list apart from the other.
struct EditedListShape {
    // The picker pairs. With one pair it edits every row; with more, the pair
    // at index i edits the row with key RowKey(i + 1).
    std::vector<PickerPair> pairs;
    // Width of the column naming a row; the pickers start where it ends,
    // over the "Command/Node" cell.
    int nameColumnWidth = 0;
    // Width of the "Command/Node" column.
    int targetColumnWidth = 0;
    // Whether vertical scrolling hides the pickers (rows move under them).
    bool scrollingHidesPickers = false;
};

class InPlaceEditedList {
public:
    static constexpr const char* kEditCaption = "Edit";
    static constexpr const char* kEditOffCaption = "Edit Off";

    InPlaceEditedList(ListView& list, Button& edit, Button& defaults, EditedListShape shape);

    ListView& List() noexcept { return list_; }
    const std::vector<PickerPair>& Pairs() const noexcept { return shape_.pairs; }
    bool ScrollingHidesPickers() const noexcept { return shape_.scrollingHidesPickers; }

    // The edit mode is on exactly while the Edit button reads "Edit Off".
    bool EditMode() const { return edit_.Caption() == kEditOffCaption; }
    // Edit mode off: Default enabled, the pickers hidden, the caption "Edit".
    void SwitchOff();
    // Edit mode on: Default disabled, the caption "Edit Off"; answers the
    // selected row, raising error 91 when there is none.
    ListItem& SwitchOn();

    // Report view with the seven columns, the row-editing display switches and
    // the small icons of imageList.
    void ResetColumns(const std::string& imageList);

    // Hides every picker, pair by pair, node picker first.
    void HidePickers();
    // The pair that edits row, or nullptr for a row no pair edits.
    const PickerPair* PairFor(const ListItem& row) const;
    // Places pair over row (the node picker over "Command/Node", the number
    // picker right of it, shown when it has entries) and shows the row's
    // target in it. A type the row may not use, or a number beyond the type's
    // list, is told through notify and hides the pair.
    void OpenPair(ListItem& row, const PickerPair& pair,
                  const std::function<bool(const std::string&)>& typeAvailable,
                  const std::function<void(const std::string&)>& notify);
    // Writes a picked node number into the selected, marked row: its target
    // text (the code that codeOf gives for the row's type ID) and its number
    // cell. Without such a row nothing is read or written.
    void WritePickedNumber(const std::string& number,
                           const std::function<std::string(const std::string&)>& codeOf);
    // Gives the focus to the first visible node picker, if any.
    void FocusVisiblePicker();

private:
    ListView& list_;
    Button& edit_;
    Button& defaults_;
    EditedListShape shape_;
};

}  // namespace dbn::form
