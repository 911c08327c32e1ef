#pragma once

// The rows of a list view as text, and writing a row's target, for tests of
// the actions and confirmation lists.

#include "form/controls/list_view.h"

#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace dbn::testing {

// A row as "key:text|name|command|label|code|type|number".
inline std::string Cells(const form::ListItem& row) {
    std::string cells = row.Key() + ":" + row.Text();
    for (int index = 1; index <= 6; ++index) {
        cells += "|" + row.SubItem(index);
    }
    return cells;
}

// Every row of a list, as Cells gives it.
inline std::vector<std::string> AllCells(const form::ListView& list) {
    std::vector<std::string> rows;
    for (int position = 0; position < list.ItemCount(); ++position) {
        rows.push_back(Cells(list.ItemAt(position)));
    }
    return rows;
}

// Each row as "key=name/target", joined by blanks.
inline std::string Targets(const form::ListView& list) {
    std::string text;
    for (int i = 0; i < list.ItemCount(); ++i) {
        const form::ListItem& row = list.ItemAt(i);
        text += (i ? " " : "") + row.Key() + "=" + row.SubItem(1) + "/" + row.SubItem(2);
    }
    return text;
}

// Writes a row's target from "command|code|type|number", and its label when given.
inline void SetTarget(form::ListItem& row, const std::string& target,
                      const std::optional<std::string>& label = std::nullopt) {
    std::istringstream in(target);
    std::string cell;
    for (const int index : {2, 4, 5, 6}) {
        std::getline(in, cell, '|');
        row.SetSubItem(index, cell);
    }
    if (label) {
        row.SetSubItem(3, *label);
    }
}

}  // namespace dbn::testing
