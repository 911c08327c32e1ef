// The node-type lists of the pickers: which types a dial-by-name node may
// refer to, less those the partition allows no node of.
#include "core/node_types.h"
#include "session/editor/business_rules.h"

#include "form/error_trap.h"
#include "form/gui.h"
#include "session/editor/form_lists.h"

#include <vector>

namespace dbn {
namespace {

using ListSet = std::vector<form::ListControl*>;

void AppendType(const ListSet& lists, const form::KeyedCollection& names, std::int16_t typeID) {
    for (form::ListControl* list : lists) {
        session::AddEntry(*list, names.Item(session::CommandArg(typeID)), typeID);
    }
}

// What a type's limit row says, if it has one.
struct Limit {
    bool present = false;
    std::int32_t maxNumber = 0;
};

Limit ReadLimit(DataBase& db, const std::string& config, const std::string& partition,
                std::int16_t typeID) {
    db.Execute("Get_Max_NodeNumber", {config, partition, session::CommandArg(typeID)});
    RowSet& rows = db.Recordset("Get_Max_NodeNumber");
    session::RowSetCloser closer(rows);
    Limit limit;
    if (!rows.Eof()) {
        limit.present = true;
        limit.maxNumber = rows.Field("Max_Number").ToInt32();
    }
    return limit;
}

// Walks the rule rows of one set for the dial-by-name type; `decide` gets
// each child type with its limit.
template <class Decide>
void ForEachRuleType(DataBase& db, const std::string& setID, Decide decide) {
    db.Execute("Get_Node_Type_can_contain_nodes",
               {session::CommandArg(node_type::kDialByName), setID});
    RowSet& rules = db.Recordset("Get_Node_Type_can_contain_nodes");
    session::RowSetCloser closer(rules);
    for (; !rules.Eof(); rules.MoveNext()) {
        decide(rules.Field("Child_Node_Type_ID").ToInt16());
    }
}

}  // namespace

void Business_Rules::LoadMSGLISTNOOPNode() {
    form::RunTrapped(services_, "LoadMSGLISTNOOPNode", [&] {
        form::GUI& form = Form();
        const ListSet lists{&form.cmbGreetingNode, &form.cmbFirstMatchPrompt,
                            &form.cmbSecondMatchPrompt, &form.cmbConfirmNode,
                            &form.cmbExitPromptNode};
        for (form::ListControl* list : lists) {
            list->Clear();
        }
        const std::string config = session::CommandArg(form.ConfigID());
        const std::string partition = session::CommandArg(form.PartitionID());
        form::KeyedCollection& names = form.NodeNameCollection();
        form::KeyedCollection& unavailable = form.NotAvailableMSGLISTNOOPNode();

        ForEachRuleType(db_, "1", [&](std::int16_t typeID) {
            const Limit limit = ReadLimit(db_, config, partition, typeID);
            if (limit.present && limit.maxNumber <= 0) {
                unavailable.Add(names.Item(session::CommandArg(typeID)),
                                session::CommandArg(typeID));
            } else {
                AppendType(lists, names, typeID);
            }
        });
    });
}

void Business_Rules::LoadAllInstructionsNode() {
    form::RunTrapped(services_, "LoadAllInstructionsNode", [&] {
        form::GUI& form = Form();
        const ListSet lists{&form.cmbTimeoutNode,   &form.cmbInvalidNode, &form.cmbAbortNode,
                            &form.cmbStarNode,      &form.cmbPoundNode,   &form.cmbZeroNode,
                            &form.cmbValidMatchNode};
        for (form::ListControl* list : lists) {
            list->Clear();
        }
        const std::string config = session::CommandArg(form.ConfigID());
        const std::string partition = session::CommandArg(form.PartitionID());
        form::KeyedCollection& names = form.NodeNameCollection();
        form::KeyedCollection& unavailable = form.NotAvailableAllInstructionsNode();

        // The message type's limit: the two message on/off types without a
        // limit row of their own are offered only when it is positive.
        std::int16_t messageLimit = 0;
        ForEachRuleType(db_, "2", [&](std::int16_t typeID) {
            const Limit limit = ReadLimit(db_, config, partition, typeID);
            if (limit.present && limit.maxNumber > 0) {
                AppendType(lists, names, typeID);
                if (typeID == node_type::kMessage) {
                    messageLimit = static_cast<std::int16_t>(limit.maxNumber);
                }
            } else if (limit.present) {
                unavailable.Add(names.Item(session::CommandArg(typeID)),
                                session::CommandArg(typeID));
                if (typeID == node_type::kMessage) {
                    messageLimit = 0;
                }
            } else if (!node_type::FollowsMessage(typeID)) {
                AppendType(lists, names, typeID);
            } else if (messageLimit != 0) {
                AppendType(lists, names, typeID);
            }
        });
    });
}

}  // namespace dbn
