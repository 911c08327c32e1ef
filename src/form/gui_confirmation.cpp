// The confirmation list: the prompts played before, after and for each
// offered name. Switched on and off as a section (the rows wait in LVTemp
// while it is off), sized by the number of matches, and edited in place by
// one picker pair that floats over the selected row.

#include "core/component_error.h"
#include "core/node_types.h"
#include "form/gui.h"
#include "form/list_rows.h"

#include <string>

namespace dbn::form {

namespace rows = list_rows;

namespace {

constexpr int kYesIndex = 1;
constexpr int kDefaultMatchesIndex = 4;  // the entry "5"

constexpr int kNodePickerWidth = 900;
constexpr int kNumberPickerWidth = 700;
constexpr int kNodePickerWideWidth = 1600;

// New rows point at node 1 of the message type.
constexpr std::int32_t kNewRowType = node_type::kMessage;

void AddNewRow(GUI& gui, int position, const std::string& name) {
    const std::string typeKey = std::to_string(kNewRowType);
    const std::string& code = gui.NodeNameCollection().Item(typeKey);
    rows::AddRow(gui.LVConfirm, position, name, code + " 1", gui.TargetDescription(typeKey, "1"),
                 code, typeKey, "1");
}

std::string MatchRowName(int match) {
    return "Name" + std::to_string(match);
}

// "Before Names", "After Names" and one row per match of cmbMaxMatches.
void AddNewRows(GUI& gui) {
    AddNewRow(gui, 1, "Before Names");
    AddNewRow(gui, 2, "After Names");
    const std::string& matches = gui.cmbMaxMatches.Text();
    if (!rows::IsNumeric(matches)) {
        return;
    }
    const int count = rows::ToInt16(matches);
    for (int match = 1; match <= count; ++match) {
        AddNewRow(gui, match + 2, MatchRowName(match));
    }
}

}  // namespace

void GUI::ResetConfirmationListView() {
    RunTrapped("ResetConfirmationListView", [&] {
        confirmationList_.ResetColumns(ImageList1.Name());
        // LVTemp keeps the rows set aside, under the same headers.
        LVTemp.SetDisplay(LVTemp.Display().AsRowList(false));
        LVTemp.ClearColumns();
        for (int column = 0; column < LVConfirm.ColumnCount(); ++column) {
            ColumnHeader header;
            header.text = LVConfirm.Column(column).text;
            LVTemp.AddColumn(header);
        }
    });
}

void GUI::cmbConfirmation_Click() {
    RunTrapped("cmbConfirmation_Click", [&] {
        if (cmbConfirmation.ListIndex() == kYesIndex) {
            lblMaxMatches.SetEnabled(true);
            cmbMaxMatches.SetEnabled(true);
            LVConfirm.SetTabStop(true);
            cmdConfirmEdit.SetEnabled(true);
            cmdConfirmDefault.SetEnabled(true);
            LVConfirm.ClearItems();
            // Loading and Default put their own rows in afterwards.
            if (!ConfirmRowsSuppressed()) {
                if (LVTemp.ItemCount() > 0) {
                    rows::CopyRows(LVTemp, LVConfirm);
                    LVTemp.ClearItems();
                    // Prompts loaded while the section was off show their
                    // labels now.
                    for (int position = 0; position < LVConfirm.ItemCount(); ++position) {
                        ListItem& row = LVConfirm.ItemAt(position);
                        if (row.SubItem(rows::kLabel).empty()) {
                            ShowTargetLabel(row);
                        }
                    }
                } else {
                    AddNewRows(*this);
                }
            }
        } else {
            lblMaxMatches.SetEnabled(false);
            cmbMaxMatches.SetEnabled(false);
            LVConfirm.SetTabStop(false);
            cmdConfirmEdit.SetEnabled(false);
            cmdConfirmDefault.SetEnabled(false);
            // Set the rows aside; LVTemp holds exactly these afterwards. With
            // the section already off there is nothing to set aside, and the
            // rows kept from before must survive a second "No".
            if (LVConfirm.ItemCount() > 0) {
                LVTemp.ClearItems();
                rows::CopyRows(LVConfirm, LVTemp);
                LVConfirm.ClearItems();
            }
        }
        confirmationList_.HidePickers();
        EnableApply();
    });
}

void GUI::cmbMaxMatches_Click() {
    RunTrapped("cmbMaxMatches_Click", [&] {
        const int count = LVConfirm.ItemCount();
        if (count == 0) {
            return;
        }
        const std::string& matches = cmbMaxMatches.Text();
        if (!ConfirmRowsSuppressed() && rows::IsNumeric(matches)) {
            const int wanted = rows::ToInt16(matches);
            if (wanted > count - 2) {
                // Name rows for the new matches, numbered on after the last
                // row: the rows set aside first, in order, then new ones.
                for (int match = count - 1; match <= wanted; ++match) {
                    if (asideNames_.empty()) {
                        AddNewRow(*this, match + 2, MatchRowName(match));
                        continue;
                    }
                    rows::RowCells cells = std::move(asideNames_.front());
                    asideNames_.erase(asideNames_.begin());
                    cells.name = MatchRowName(match);
                    ListItem& row = rows::AddRow(LVConfirm, match + 2, cells);
                    if (row.SubItem(rows::kLabel).empty()) {
                        ShowTargetLabel(row);
                    }
                }
            } else if (wanted < count - 2) {
                // The removed rows are set aside, ahead of those already aside.
                std::vector<rows::RowCells> removed;
                for (int position = wanted + 3; position <= count; ++position) {
                    removed.push_back(rows::CellsOf(LVConfirm.ItemAt(position - 1)));
                }
                asideNames_.insert(asideNames_.begin(), removed.begin(), removed.end());
                for (int position = count; position >= wanted + 3; --position) {
                    LVConfirm.RemoveItem(position - 1);
                }
            }
        }
        confirmationList_.HidePickers();
        EnableApply();
    });
}

void GUI::cmbMaxMatches_Change() {
    GenericNumber_Change(cmbMaxMatches, NumberChangeMode::ClampOnly);
    cmbMaxMatches_Click();
}

void GUI::cmdConfirmDefault_Click() {
    RunTrapped("cmdConfirmDefault_Click", [&] {
        ClearListItems(LVConfirm);
        asideNames_.clear();
        {
            // The rows are added below; the two selections must add none.
            ConfirmRowsGuard guard(*this);
            cmbConfirmation.SetListIndex(kYesIndex);
            cmbMaxMatches.SetListIndex(kDefaultMatchesIndex);
        }
        lblMaxMatches.SetEnabled(true);
        cmbMaxMatches.SetEnabled(true);
        AddNewRows(*this);
        EnableApply();
    });
}

void GUI::cmdConfirmEdit_Click() {
    RunTrapped("cmdConfirmEdit_Click", [&] {
        if (confirmationList_.EditMode()) {
            confirmationList_.SwitchOff();
        } else {
            ListItem& selected = confirmationList_.SwitchOn();
            LVConfirm.EnsureVisible(selected);
            LVConfirm_ItemClick(selected);
            if (actionsList_.EditMode()) {
                cmdActionsEdit_Click();
            }
        }
        EnableApply();
    });
}

void GUI::LVConfirm_ItemClick(ListItem& item) {
    RunTrapped("LVConfirm_ItemClick", [&] {
        ResetConfirmationListView();
        if (!confirmationList_.EditMode()) {
            return;
        }
        cmbConfirmNode.SetVisible(true);
        cmbConfirmNode.SetFocus();
        confirmationList_.OpenPair(
            item, {&cmbConfirmNode, &cmbConfirmNumber},
            [this](const std::string& code) { return IsPromptTypeAvailable(code); },
            [this](const std::string& notice) { ShowInformation(notice); });
    });
}

void GUI::cmbConfirmNode_Click() {
    RunTrapped("cmbConfirmNode_Click", [&] {
        const std::int32_t typeId = cmbConfirmNode.ItemData(cmbConfirmNode.ListIndex());
        const std::string typeKey = std::to_string(typeId);
        rows::RefillNumbers(cmbConfirmNumber, MaxNodeNumberCollection().Item(typeKey));
        cmbConfirmNumber.SetVisible(true);
        cmbConfirmNode.SetWidth(kNodePickerWidth);
        cmbConfirmNumber.SetWidth(kNumberPickerWidth);
        cmbConfirmNumber.SetLeft(cmbConfirmNode.Left() + cmbConfirmNode.Width());

        ListItem* row = LVConfirm.SelectedItem();
        if (row == nullptr) {
            return;
        }
        const int numbers = cmbConfirmNumber.ListCount();
        row->SetSubItem(rows::kNodeTypeID, typeKey);
        if (rows::NodeNumberOf(*row) > numbers) {
            row->SetSubItem(rows::kNodeNumber, "1");
        }
        // A type without numbers in the partition is stored as NOOP is: its
        // code alone, number 0.
        if (typeId != node_type::kNoNumber && numbers > 0) {
            if (rows::NodeNumberOf(*row) <= 0) {
                row->SetSubItem(rows::kNodeNumber, "1");
            }
            row->SetSubItem(rows::kCommandNode, NodeNameCollection().Item(typeKey) + " " +
                                                    row->SubItem(rows::kNodeNumber));
        } else {
            row->SetSubItem(rows::kCommandNode, NodeNameCollection().Item(typeKey));
            row->SetSubItem(rows::kNodeNumber, "0");
            cmbConfirmNumber.SetVisible(false);
            cmbConfirmNode.SetWidth(kNodePickerWideWidth);
        }
        row->SetSubItem(rows::kNodeName, cmbConfirmNode.Text());
        ShowTargetLabel(*row);
        if (rows::NodeNumberOf(*row) <= numbers) {
            cmbConfirmNumber.SetText(row->SubItem(rows::kNodeNumber));
        }
    });
}

void GUI::cmbConfirmNumber_Click() {
    RunTrapped("cmbConfirmNumber_Click", [&] {
        confirmationList_.WritePickedNumber(cmbConfirmNumber.Text(), NodeCodeOf());
        if (ListItem* row = LVConfirm.SelectedItem(); row != nullptr && row->Selected()) {
            ShowTargetLabel(*row);
        }
    });
}

void GUI::LVConfirm_MouseUp() {
    RunTrapped("LVConfirm_MouseUp", [&] { confirmationList_.FocusVisiblePicker(); });
}

}  // namespace dbn::form
