// Node pickers: a node-type list and a node-number list that together choose
// one target node. Picking a type refills the numbers, adapts the pair's
// layout to types without numbers, and rewrites the edited actions row.

#include "core/node_types.h"
#include "form/gui.h"
#include "form/list_rows.h"

#include <string>

namespace dbn::form {

namespace rows = list_rows;

namespace {

// The type code that takes no node number: its picker covers both places.
constexpr const char* kNoNumberCode = "NOOP";

// In-list pairs float over LVActions; these widths keep them over the
// "Command/Node" cell.
constexpr int kInListNodeWidth = 850;
constexpr int kInListNodeWideWidth = 1550;

}  // namespace

void GUI::HandleMSGLISTNOOPPromptBOX(ListControl& node, ListControl& number, bool inList) {
    RunTrapped("HandleMSGLISTNOOPPromptBOX", [&] {
        if (node.Text() != kNoNumberCode) {
            number.SetVisible(true);
            if (inList) {
                node.SetWidth(kInListNodeWidth);
                number.SetLeft(node.Left() + node.Width());
            } else {
                node.SetWidth(txtDIR.Width());
            }
        } else {
            number.SetVisible(false);
            node.SetWidth(inList ? kInListNodeWideWidth : cmbDirectory.Width() + txtDIR.Width());
        }
        // Traps its own errors, so Apply is enabled whatever it met.
        GenericMSGLISTNOOPNode_Click(node, number, inList);
        EnableApply();
    });
}

void GUI::GenericMSGLISTNOOPNode_Click(ListControl& node, ListControl& number, bool inList) {
    RunTrapped("GenericMSGLISTNOOPNode_Click", [&] {
        const std::int32_t typeId = node.ItemData(node.ListIndex());
        const std::string typeKey = std::to_string(typeId);
        rows::RefillNumbers(number, MaxNodeNumberCollection().Item(typeKey));

        if (!inList) {
            if (number.ListCount() > 0 && number.ListIndex() == -1) {
                number.SetListIndex(0);
            }
            return;
        }

        ListItem* row = LVActions.SelectedItem();
        if (row == nullptr) {
            return;
        }
        row->SetSubItem(rows::kNodeTypeID, typeKey);
        if (rows::NodeNumberOf(*row) > number.ListCount()) {
            row->SetSubItem(rows::kNodeNumber, "1");
        }
        // A type without numbers in the partition is stored as NOOP is: its
        // code alone, number 0.
        if (typeId != node_type::kNoNumber && number.ListCount() > 0) {
            if (rows::NodeNumberOf(*row) <= 0) {
                row->SetSubItem(rows::kNodeNumber, "1");
            }
            row->SetSubItem(rows::kCommandNode,
                            NodeNameCollection().Item(row->SubItem(rows::kNodeTypeID)) + " " +
                                row->SubItem(rows::kNodeNumber));
        } else {
            row->SetSubItem(rows::kCommandNode,
                            NodeNameCollection().Item(row->SubItem(rows::kNodeTypeID)));
            row->SetSubItem(rows::kNodeNumber, "0");
        }
        row->SetSubItem(rows::kNodeName, node.Text());
        ShowTargetLabel(*row);
        if (number.ListCount() == 0) {
            // Nothing to pick: the number picker would only rewrite the row.
            number.SetVisible(false);
        } else if (rows::NodeNumberOf(*row) <= number.ListCount()) {
            number.SetText(row->SubItem(rows::kNodeNumber));
        }
    });
}

}  // namespace dbn::form
