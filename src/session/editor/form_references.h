#pragma once

#include "form/controls/list_control.h"
#include "form/controls/list_view.h"

#include <string>

namespace dbn {

// A reference to another node as it is stored: type code, number and type
// ID, each as text.
struct StoredNodeRef {
    std::string type;
    std::string number;
    std::string typeID;
};

// The tag of the selected entry as decimal text. No selection raises error
// 381 "Invalid property array index".
std::string SelectedTagText(const form::ListControl& list);

// The reference a picker pair shows; an empty number picker stores "0".
StoredNodeRef PairReference(const form::ListControl& node, const form::ListControl& number);

// The reference a list row holds ("NodeName", "NodeNumber", "NodeTypeID").
// A position out of range raises error 35600 "Index out of bounds".
StoredNodeRef RowReference(const form::ListView& list, int position);

}  // namespace dbn
