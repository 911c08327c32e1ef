#include "session/editor/form_references.h"

#include "form/list_rows.h"

namespace dbn {

std::string SelectedTagText(const form::ListControl& list) {
    return std::to_string(list.ItemData(list.ListIndex()));
}

StoredNodeRef PairReference(const form::ListControl& node, const form::ListControl& number) {
    StoredNodeRef ref;
    ref.type = node.Text();
    ref.number = number.Text().empty() ? "0" : number.Text();
    ref.typeID = SelectedTagText(node);
    return ref;
}

StoredNodeRef RowReference(const form::ListView& list, int position) {
    const form::ListItem& row = list.ItemAt(position);
    return {row.SubItem(form::list_rows::kNodeName), row.SubItem(form::list_rows::kNodeNumber),
            row.SubItem(form::list_rows::kNodeTypeID)};
}

}  // namespace dbn
