// The actions list: where a call goes after a valid match, an abort and the
// star, pound and zero keys. Five fixed rows, edited in place by a picker
// pair per row that floats over the row's "Command/Node" cell.

#include "core/component_error.h"
#include "form/gui.h"
#include "form/in_place_pickers.h"
#include "form/list_rows.h"

#include <array>
#include <optional>
#include <string>

namespace dbn::form {

namespace rows = list_rows;

namespace {

constexpr const char* kEditCaption = "Edit";
constexpr const char* kEditOffCaption = "Edit Off";

// The pickers cover the list from the "Command/Node" column on.
constexpr int kPickerOffsetLeft = 1000;

struct PickerPair {
    ListControl* node;
    ListControl* number;
};

// The five pairs in row order: valid match, abort, star, pound, zero.
std::array<PickerPair, 5> ActionPairs(GUI& gui) {
    return {{{&gui.cmbValidMatchNode, &gui.cmbValidMatchNumber},
             {&gui.cmbAbortNode, &gui.cmbAbortNumber},
             {&gui.cmbStarNode, &gui.cmbStarNumber},
             {&gui.cmbPoundNode, &gui.cmbPoundNumber},
             {&gui.cmbZeroNode, &gui.cmbZeroNumber}}};
}

// Hides the ten pickers, pair by pair, node picker first.
void HideActionPickers(GUI& gui) {
    for (const PickerPair& pair : ActionPairs(gui)) {
        pair.node->SetVisible(false);
        pair.number->SetVisible(false);
    }
}

// The pair that edits the row with key, for the keys "1a" to "5a".
std::optional<PickerPair> PairForKey(GUI& gui, const std::string& key) {
    const auto pairs = ActionPairs(gui);
    for (std::size_t index = 0; index < pairs.size(); ++index) {
        if (key == rows::RowKey(static_cast<int>(index) + 1)) {
            return pairs[index];
        }
    }
    return std::nullopt;
}

struct DefaultAction {
    const char* name;
    std::int32_t typeId;
};

constexpr std::array<DefaultAction, 5> kDefaultActions{{
    {"Valid Match", 4},
    {"Abort", 0},
    {"*", rows::kNoNumberType},
    {"#", rows::kNoNumberType},
    {"0", rows::kNoNumberType},
}};

}  // namespace

void GUI::ResetActionsListView() {
    Trapped("ResetActionsListView", [&] {
        ListViewDisplay display = LVActions.Display();
        display.manualLabelEdit = true;
        display.fullRowSelect = true;
        display.gridLines = true;
        display.reportView = true;
        display.multiSelect = true;
        display.hideColumnHeaders = false;
        LVActions.SetDisplay(display);

        LVActions.ClearColumns();
        LVActions.AddColumn({"#", 0, ColumnAlignment::Left});
        LVActions.AddColumn({"", 1000, ColumnAlignment::Left});
        LVActions.AddColumn({"Command/Node", 1500, ColumnAlignment::Left});
        LVActions.AddColumn({"Label", 1600, ColumnAlignment::Left});
        LVActions.AddColumn({"NodeName", 0, ColumnAlignment::Left});
        LVActions.AddColumn({"NodeTypeID", 0, ColumnAlignment::Left});
        LVActions.AddColumn({"NodeNumber", 0, ColumnAlignment::Left});

        display.smallIcons = ImageList1.Name();
        LVActions.SetDisplay(display);
    });
}

void GUI::cmdActionsDefault_Click() {
    Trapped("cmdActionsDefault_Click", [&] {
        ClearListItems(LVActions);
        int position = 0;
        for (const DefaultAction& action : kDefaultActions) {
            ++position;
            ListItem& row = LVActions.AddItem(rows::RowKey(position), std::to_string(position));
            row.SetSubItem(rows::kName, action.name);
            const std::string typeKey = std::to_string(action.typeId);
            const bool numbered = action.typeId != rows::kNoNumberType;
            const std::string& code = NodeNameCollection().Item(typeKey);
            row.SetSubItem(rows::kCommandNode, numbered ? code + " 1" : code);
            row.SetSubItem(rows::kLabel, "");
            row.SetSubItem(rows::kNodeName, code);
            row.SetSubItem(rows::kNodeTypeID, typeKey);
            row.SetSubItem(rows::kNodeNumber, numbered ? "1" : "0");
        }
        EnableApply();
    });
}

void GUI::cmdActionsEdit_Click() {
    Trapped("cmdActionsEdit_Click", [&] {
        if (ActionsEditMode) {
            ActionsEditMode = false;
            cmdActionsDefault.SetEnabled(true);
            HideActionPickers(*this);
            cmdActionsEdit.SetCaption(kEditCaption);
        } else {
            ActionsEditMode = true;
            cmdActionsDefault.SetEnabled(false);
            cmdActionsEdit.SetCaption(kEditOffCaption);
            const ListItem* selected = LVActions.SelectedItem();
            if (selected == nullptr) {
                RaiseError(91, "Object variable or With block variable not set");
            }
            LVActions_ItemClick(LVActions.ItemAt(selected->Index()));
            if (cmdConfirmEdit.Caption() == kEditOffCaption) {
                cmdConfirmEdit_Click();
            }
        }
        EnableApply();
    });
}

void GUI::LVActions_ItemClick(ListItem& item) {
    Trapped("LVActions_ItemClick", [&] {
        ResetActionsListView();
        if (cmdActionsEdit.Caption() == kEditCaption) {
            return;
        }
        HideActionPickers(*this);
        const std::optional<PickerPair> pair = PairForKey(*this, item.Key());
        if (!pair) {
            return;
        }
        pair->node->SetVisible(true);
        pair->node->SetFocus();
        GenericLVactions_ItemClick(item, *pair->node, *pair->number);
    });
}

void GUI::GenericLVactions_ItemClick(ListItem& item, ListControl& node, ListControl& number) {
    Trapped("GenericLVactions_ItemClick", [&] {
        const RowPosition position = LVActions.RowPositionOf(item);
        const int top = LVActions.Top() + position.top + kInPlacePickerDrop;
        node.SetLeft(LVActions.Left() + position.left + kPickerOffsetLeft);
        node.SetTop(top);
        number.SetVisible(number.ListCount() > 0);
        number.SetLeft(node.Left() + node.Width());
        number.SetTop(top);

        const std::string code = item.SubItem(rows::kNodeName);
        if (IsInstructionTypeAvailable(code)) {
            // Selecting the type runs the picker's own handling, which refills
            // the numbers for that type.
            node.SetText(code);
            if (rows::NodeNumberOf(item) <= number.ListCount()) {
                number.SetText(item.SubItem(rows::kNodeNumber));
                return;
            }
            if (node.ItemData(node.ListIndex()) == rows::kNoNumberType) {
                return;
            }
        }
        ShowInformation(rows::MaxNumberNotice(code));
        node.SetVisible(false);
        number.SetVisible(false);
    });
}

void GUI::GenericActionsSectionNodeNumber_Click(ListControl& number) {
    Trapped("GenericActionsSectionNodeNumber_Click", [&] {
        ListItem* row = LVActions.SelectedItem();
        if (row == nullptr || !row->Selected()) {
            return;
        }
        row->SetSubItem(
            rows::kCommandNode,
            NodeNameCollection().Item(row->SubItem(rows::kNodeTypeID)) + " " + number.Text());
        row->SetSubItem(rows::kNodeNumber, number.Text());
    });
}

void GUI::LVActions_MouseUp() {
    Trapped("LVActions_MouseUp", [&] {
        for (const PickerPair& pair : ActionPairs(*this)) {
            if (pair.node->Visible()) {
                pair.node->SetFocus();
                return;
            }
        }
    });
}

}  // namespace dbn::form
