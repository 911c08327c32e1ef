// The Label cell of a list row: the description of the node the row points
// at, kept true whenever a pick, Default or a new row changes the target.
// Descriptions come from what the form already shows where it can, and from
// one look-up through the session otherwise.

#include "core/node_types.h"
#include "form/gui.h"
#include "form/list_rows.h"

#include <string>

namespace dbn::form {

namespace rows = list_rows;

namespace {

// A row elsewhere in the list that shows the same target with a label.
const std::string* ShownLabel(const ListView& list, const std::string& typeKey,
                              const std::string& number, const ListItem* except) {
    for (int position = 0; position < list.ItemCount(); ++position) {
        const ListItem& row = list.ItemAt(position);
        if (&row != except && row.SubItem(rows::kNodeTypeID) == typeKey &&
            row.SubItem(rows::kNodeNumber) == number && !row.SubItem(rows::kLabel).empty()) {
            return &row.SubItem(rows::kLabel);
        }
    }
    return nullptr;
}

}  // namespace

std::string GUI::TargetDescription(const std::string& typeKey, const std::string& number,
                                   const ListItem* except) {
    if (!rows::IsNumeric(number) || rows::ToInt16(number) <= 0 || !rows::IsNumeric(typeKey) ||
        rows::ToInt16(typeKey) == node_type::kNoNumber) {
        return {};
    }
    // Before a node is loaded the rows are placeholders the load replaces.
    if (!shownLabel_) {
        return {};
    }
    const auto key = std::make_pair(typeKey, number);
    if (const auto known = descriptions_.find(key); known != descriptions_.end()) {
        return known->second;
    }
    std::string description;
    if (const std::string* shown = ShownLabel(LVActions, typeKey, number, except)) {
        description = *shown;
    } else if (const std::string* listed = ShownLabel(LVConfirm, typeKey, number, except)) {
        description = *listed;
    } else if (formBusinessRules_ != nullptr) {
        description =
            formBusinessRules_->NodeDescription(rows::ToInt16(typeKey), rows::ToInt16(number))
                .value_or("");
    }
    descriptions_[key] = description;
    return description;
}

void GUI::RememberShownLabels() {
    for (const ListView* list : {&LVActions, &LVConfirm}) {
        for (int position = 0; position < list->ItemCount(); ++position) {
            const ListItem& row = list->ItemAt(position);
            descriptions_[{row.SubItem(rows::kNodeTypeID), row.SubItem(rows::kNodeNumber)}] =
                row.SubItem(rows::kLabel);
        }
    }
}

void GUI::ShowTargetLabel(ListItem& row) {
    // The row's own label may belong to its previous target.
    row.SetSubItem(rows::kLabel, TargetDescription(row.SubItem(rows::kNodeTypeID),
                                                   row.SubItem(rows::kNodeNumber), &row));
}

}  // namespace dbn::form
