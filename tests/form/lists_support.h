#pragma once

// Reading and writing whole rows of the form's list views in the tests.

#include "form/controls/list_view.h"

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

inline std::vector<std::string> AllCells(const form::ListView& list) {
    std::vector<std::string> rows;
    for (int position = 0; position < list.ItemCount(); ++position) {
        rows.push_back(Cells(list.ItemAt(position)));
    }
    return rows;
}

// Writes the target cells from "command|label|code|type|number".
inline void SetTarget(form::ListItem& row, const std::string& cells) {
    std::istringstream in(cells);
    std::string cell;
    for (int index = 2; index <= 6 && std::getline(in, cell, '|'); ++index) {
        row.SetSubItem(index, cell);
    }
}

}  // namespace dbn::testing
