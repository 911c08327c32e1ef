// The record selector: every dial-by-name node of the partition.
#include "core/node_types.h"
#include "session/editor/business_rules.h"

#include "form/error_trap.h"
#include "form/gui.h"
#include "session/editor/form_lists.h"

namespace dbn {

void Business_Rules::LoadExistingNodesInRecordSelector(std::int16_t Node_Number) {
    form::RunTrapped(services_, "LoadExistingNodesInRecordSelector", [&] {
        form::GUI& form = Form();
        form::ListControl& selector = form.cmbNode;

        db_.Execute("Get_All_DBN_Nodes",
                    {session::CommandArg(form.ConfigID()), session::CommandArg(form.PartitionID()),
                     session::CommandArg(node_type::kDialByName)});
        RowSet& nodes = db_.Recordset("Get_All_DBN_Nodes");
        session::RowSetCloser closer(nodes);
        int toSelect = 0;
        for (; !nodes.Eof(); nodes.MoveNext()) {
            const std::int16_t number = nodes.Field("NodeNumber").ToInt16();
            // Node 0 is the type's template; only a session opened on it lists it.
            if (!editingNodeZero_ && number <= 0) {
                continue;
            }
            const std::string& typeName =
                form.NodeNameCollection().Item(session::CommandArg(node_type::kDialByName));
            session::AddEntry(selector, typeName + " " + session::CommandArg(number), number);
            if (number == Node_Number) {
                toSelect = selector.NewIndex();
            }
        }
        nodes.Close();

        if (selector.ListCount() > 0) {
            selector.SetListIndex(toSelect);
        }
        if (editingNodeZero_) {
            form.cmdFirst.SetVisible(false);
            form.cmdPrevious.SetVisible(false);
            form.cmbNode.SetVisible(false);
            form.lblRecordPosition.SetVisible(false);
            form.cmdNext.SetVisible(false);
            form.cmdLast.SetVisible(false);
        }
    });
}

}  // namespace dbn
