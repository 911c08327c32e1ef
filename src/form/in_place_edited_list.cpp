#include "form/in_place_edited_list.h"
#include "core/node_types.h"

#include "core/component_error.h"
#include "form/in_place_pickers.h"
#include "form/list_rows.h"

namespace dbn::form {

namespace rows = list_rows;

InPlaceEditedList::InPlaceEditedList(ListView& list, Button& edit, Button& defaults,
                                     EditedListShape shape)
    : list_(list), edit_(edit), defaults_(defaults), shape_(std::move(shape)) {}

void InPlaceEditedList::SwitchOff() {
    defaults_.SetEnabled(true);
    HidePickers();
    edit_.SetCaption(kEditCaption);
}

ListItem& InPlaceEditedList::SwitchOn() {
    defaults_.SetEnabled(false);
    edit_.SetCaption(kEditOffCaption);
    const ListItem* selected = list_.SelectedItem();
    if (selected == nullptr) {
        RaiseObjectNotSet();
    }
    return list_.ItemAt(selected->Index());
}

void InPlaceEditedList::ResetColumns(const std::string& imageList) {
    ListViewDisplay display = list_.Display().AsRowList(true);
    list_.SetDisplay(display);

    list_.ClearColumns();
    list_.AddColumn({"#", 0, ColumnAlignment::Left});
    list_.AddColumn({"", shape_.nameColumnWidth, ColumnAlignment::Left});
    list_.AddColumn({"Command/Node", shape_.targetColumnWidth, ColumnAlignment::Left});
    list_.AddColumn({"Label", 1600, ColumnAlignment::Left});
    list_.AddColumn({"NodeName", 0, ColumnAlignment::Left});
    list_.AddColumn({"NodeTypeID", 0, ColumnAlignment::Left});
    list_.AddColumn({"NodeNumber", 0, ColumnAlignment::Left});

    display.smallIcons = imageList;
    list_.SetDisplay(display);
}

void InPlaceEditedList::HidePickers() {
    for (const PickerPair& pair : shape_.pairs) {
        pair.node->SetVisible(false);
        pair.number->SetVisible(false);
    }
}

const PickerPair* InPlaceEditedList::PairFor(const ListItem& row) const {
    if (shape_.pairs.size() == 1) {
        return &shape_.pairs.front();
    }
    for (std::size_t index = 0; index < shape_.pairs.size(); ++index) {
        if (row.Key() == rows::RowKey(static_cast<int>(index) + 1)) {
            return &shape_.pairs[index];
        }
    }
    return nullptr;
}

void InPlaceEditedList::OpenPair(ListItem& row, const PickerPair& pair,
                                 const std::function<bool(const std::string&)>& typeAvailable,
                                 const std::function<void(const std::string&)>& notify) {
    ListControl& node = *pair.node;
    ListControl& number = *pair.number;
    const RowPosition position = list_.RowPositionOf(row);
    const int top = list_.Top() + position.top + kInPlacePickerDrop;
    node.SetLeft(list_.Left() + position.left + shape_.nameColumnWidth);
    node.SetTop(top);
    number.SetVisible(number.ListCount() > 0);
    number.SetLeft(node.Left() + node.Width());
    number.SetTop(top);

    const std::string code = row.SubItem(rows::kNodeName);
    if (typeAvailable(code)) {
        // Selecting the type runs the picker's own handling, which refills
        // the numbers for that type.
        node.SetText(code);
        if (rows::NodeNumberOf(row) <= number.ListCount()) {
            number.SetText(row.SubItem(rows::kNodeNumber));
            return;
        }
        if (node.ItemData(node.ListIndex()) == node_type::kNoNumber) {
            return;
        }
    }
    notify(rows::MaxNumberNotice(code));
    node.SetVisible(false);
    number.SetVisible(false);
}

void InPlaceEditedList::WritePickedNumber(
    const std::string& number, const std::function<std::string(const std::string&)>& codeOf) {
    ListItem* row = list_.SelectedItem();
    if (row == nullptr || !row->Selected()) {
        return;
    }
    row->SetSubItem(rows::kCommandNode, codeOf(row->SubItem(rows::kNodeTypeID)) + " " + number);
    row->SetSubItem(rows::kNodeNumber, number);
}

void InPlaceEditedList::FocusVisiblePicker() {
    for (const PickerPair& pair : shape_.pairs) {
        if (pair.node->Visible()) {
            pair.node->SetFocus();
            return;
        }
    }
}

}  // namespace dbn::form
