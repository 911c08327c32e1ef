// The actions list: where a call goes after a valid match, an abort and the
// star, pound and zero keys. Five fixed rows, edited in place by a picker
// pair per row that floats over the row's "Command/Node" cell.

#include "core/component_error.h"
#include "core/node_types.h"
#include "form/gui.h"
#include "form/list_rows.h"

#include <array>
#include <string>

namespace dbn::form {

namespace rows = list_rows;

namespace {

struct DefaultAction {
    const char* name;
    std::int32_t typeId;
};

constexpr std::array<DefaultAction, 5> kDefaultActions{{
    {"Valid Match", node_type::kTransfer},
    {"Abort", node_type::kMessage},
    {"*", node_type::kNoNumber},
    {"#", node_type::kNoNumber},
    {"0", node_type::kNoNumber},
}};

}  // namespace

void GUI::ResetActionsListView() {
    RunTrapped("ResetActionsListView", [&] { actionsList_.ResetColumns(ImageList1.Name()); });
}

void GUI::cmdActionsDefault_Click() {
    RunTrapped("cmdActionsDefault_Click", [&] {
        ClearListItems(LVActions);
        int position = 0;
        for (const DefaultAction& action : kDefaultActions) {
            ++position;
            ListItem& row = LVActions.AddItem(rows::RowKey(position), std::to_string(position));
            row.SetSubItem(rows::kName, action.name);
            const std::string typeKey = std::to_string(action.typeId);
            const bool numbered = action.typeId != node_type::kNoNumber;
            const std::string& code = NodeNameCollection().Item(typeKey);
            row.SetSubItem(rows::kCommandNode, numbered ? code + " 1" : code);
            row.SetSubItem(rows::kNodeName, code);
            row.SetSubItem(rows::kNodeTypeID, typeKey);
            row.SetSubItem(rows::kNodeNumber, numbered ? "1" : "0");
            ShowTargetLabel(row);
        }
        EnableApply();
    });
}

void GUI::cmdActionsEdit_Click() {
    RunTrapped("cmdActionsEdit_Click", [&] {
        if (actionsList_.EditMode()) {
            actionsList_.SwitchOff();
        } else {
            ListItem& selected = actionsList_.SwitchOn();
            LVActions_ItemClick(selected);
            if (confirmationList_.EditMode()) {
                cmdConfirmEdit_Click();
            }
        }
        EnableApply();
    });
}

void GUI::LVActions_ItemClick(ListItem& item) {
    RunTrapped("LVActions_ItemClick", [&] {
        ResetActionsListView();
        if (!actionsList_.EditMode()) {
            return;
        }
        actionsList_.HidePickers();
        const PickerPair* pair = actionsList_.PairFor(item);
        if (pair == nullptr) {
            return;
        }
        pair->node->SetVisible(true);
        pair->node->SetFocus();
        GenericLVactions_ItemClick(item, *pair->node, *pair->number);
    });
}

void GUI::GenericLVactions_ItemClick(ListItem& item, ListControl& node, ListControl& number) {
    RunTrapped("GenericLVactions_ItemClick", [&] {
        actionsList_.OpenPair(
            item, {&node, &number},
            [this](const std::string& code) { return IsInstructionTypeAvailable(code); },
            [this](const std::string& notice) { ShowInformation(notice); });
    });
}

void GUI::GenericActionsSectionNodeNumber_Click(ListControl& number) {
    RunTrapped("GenericActionsSectionNodeNumber_Click", [&] {
        actionsList_.WritePickedNumber(number.Text(), NodeCodeOf());
        if (ListItem* row = LVActions.SelectedItem(); row != nullptr && row->Selected()) {
            ShowTargetLabel(*row);
        }
    });
}

void GUI::LVActions_MouseUp() {
    RunTrapped("LVActions_MouseUp", [&] { actionsList_.FocusVisiblePicker(); });
}

}  // namespace dbn::form
