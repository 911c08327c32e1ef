#include "session/editor/business_rules.h"
#include "core/node_types.h"

#include "core/component_error.h"
#include "database/database_errors.h"
#include "database/database_target.h"
#include "form/error_trap.h"
#include "form/gui.h"
#include "session/editor/read_ahead.h"
#include "session/nodes/node_templates.h"
#include "session/nodes/stored_values.h"

#include <optional>
#include <string>

namespace dbn {

Business_Rules::Business_Rules(form::FormServices& services)
    : services_(services), sharedDb_(std::make_shared<DataBase>()), db_(*sharedDb_) {
    KeepPaintingWhileWaiting();
}

Business_Rules::Business_Rules(form::FormServices& services, form::GUI& form)
    : Business_Rules(services, form, std::make_shared<DataBase>()) {
    KeepPaintingWhileWaiting();
}

Business_Rules::Business_Rules(form::FormServices& services, form::GUI& form,
                               std::shared_ptr<DataBase> db)
    : services_(services), sharedDb_(std::move(db)), db_(*sharedDb_), form_(&form) {}

void Business_Rules::KeepPaintingWhileWaiting() {
    // A save may wait up to the lock time-out for another program; the
    // window keeps painting meanwhile (the operator's input waits).
    db_.SetWaitHandler([&services = services_] { services.DoEvents(); });
}

Business_Rules::~Business_Rules() = default;

form::GUI& Business_Rules::Form() {
    if (form_ == nullptr) {
        RaiseObjectNotSet();
    }
    return *form_;
}

namespace {

// Forgets the form this object showed when ShowNodeEditor leaves, on every
// path (a script ending the run mid-show included).
class ShownFormScope {
public:
    ShownFormScope(std::unique_ptr<form::GUI>& owned, form::GUI*& current)
        : owned_(owned), current_(current) {}
    ~ShownFormScope() {
        current_ = nullptr;
        owned_.reset();
    }
    ShownFormScope(const ShownFormScope&) = delete;
    ShownFormScope& operator=(const ShownFormScope&) = delete;

private:
    std::unique_ptr<form::GUI>& owned_;
    form::GUI*& current_;
};

// Why a node number cannot be opened in the form's partition, if it cannot:
// below 0, or above the partition's limit for dial-by-name nodes.
std::optional<std::string> NodeNumberRefusal(form::GUI& form, std::int16_t number) {
    const std::string typeID = session::CommandArg(node_type::kDialByName);
    const std::string code = form.NodeNameCollection().Contains(typeID)
                                 ? form.NodeNameCollection().Item(typeID)
                                 : std::string(node_type::kDialByNameCode);
    const std::string node = code + " " + std::to_string(number);
    if (number < 0) {
        return node + " cannot be edited: node numbers start at 1.";
    }
    form::KeyedCollection& limits = form.MaxNodeNumberCollection();
    if (limits.Contains(typeID)) {
        const std::optional<long> limit = session::WholeNumber(limits.Item(typeID));
        if (limit && number > *limit) {
            return node + " cannot be edited: the partition allows " + code + " nodes up to " +
                   std::to_string(*limit) + ".";
        }
    }
    return std::nullopt;
}

}  // namespace

bool Business_Rules::OpenDatabase(std::int16_t Config_ID, std::int16_t Partition_ID,
                                  std::int16_t Node_Number) {
    databaseUnavailable_ = false;
    try {
        ReadStartUpAhead(Config_ID, Partition_ID, Node_Number);
        db_.Execute(
            "Get_DBN_Node",
            {session::CommandArg(Config_ID), session::CommandArg(Partition_ID),
             session::CommandArg(Node_Number), session::CommandArg(node_type::kDialByName)});
        db_.Recordset("Get_DBN_Node").Close();
        // Told once, before the form: the operator may look but not save.
        if (const std::optional<std::string> notice = db_.ReadOnlyNotice()) {
            services_.MsgBox(*notice, form::MsgBoxButtons::OK, form::MsgBoxIcon::Information,
                             "Information");
        }
        return true;
    } catch (const ComponentError& error) {
        databaseUnavailable_ = true;
        if (error.Number() == kErrDatabaseMissing) {
            services_.MsgBox("There is no configuration database at " + DisplayName(db_.Target()) +
                                 ". Create one with: dbn-node-editor init",
                             form::MsgBoxButtons::OK, form::MsgBoxIcon::Exclamation, "Error");
        } else {
            form::ShowErrorMessage(services_, error, "ShowNodeEditor");
        }
        return false;
    }
}

void Business_Rules::ReadStartUpAhead(std::int16_t Config_ID, std::int16_t Partition_ID,
                                      std::int16_t Node_Number) {
    const std::string config = session::CommandArg(Config_ID);
    const std::string partition = session::CommandArg(Partition_ID);
    const std::string dbn = session::CommandArg(node_type::kDialByName);
    // What the start-up reads besides the node: the type catalogue, the
    // picker rules and the record selector; then each type's limit.
    session::ReadNodeAhead(
        db_, Config_ID, Partition_ID, Node_Number,
        {{"Get_Node_Names", {}},
         {"Get_Node_Type_can_contain_nodes", {dbn, "1"}},
         {"Get_Node_Type_can_contain_nodes", {dbn, "2"}},
         {"Get_All_DBN_Nodes", {config, partition, dbn}}},
        [&](std::vector<BatchAnswer>& answers) {
            std::vector<BatchStep> limits;
            for (RowSet& types = answers.at(0).rows; !types.Eof(); types.MoveNext()) {
                limits.push_back(
                    {"Get_Max_NodeNumber",
                     {config, partition, session::CommandArg(types.Field("ID").ToInt16())}});
            }
            return limits;
        });
}

bool Business_Rules::ShowNodeEditor(std::int16_t Config_ID, std::int16_t Partition_ID,
                                    std::int16_t Node_Number) {
    nodeShown_ = false;
    // Everything the start-up reads arrives in two batches; none of it is
    // kept once the form shows.
    std::optional<ReadAheadScope> readAhead(std::in_place, db_);
    // A database that is missing or cannot be read is told once, before any
    // form exists, instead of by every loading step in turn.
    if (!OpenDatabase(Config_ID, Partition_ID, Node_Number)) {
        return false;
    }
    ShownFormScope scope(ownedForm_, form_);
    form::RunTrapped(services_, "ShowNodeEditor", [&] {
        editingNodeZero_ = Node_Number == 0;

        ownedForm_ = std::make_unique<form::GUI>(services_);
        form_ = ownedForm_.get();
        form::GUI& form = *form_;
        // The form's own object shares this object's connection.
        form.MakeFormBusinessRules = [&services = services_, &form, db = sharedDb_] {
            return std::make_unique<Business_Rules>(services, form, db);
        };
        form.Load();
        form.CreateCollections();
        form.SetConfigID(Config_ID);
        form.SetPartitionID(Partition_ID);
        form.SetnodeNumber(Node_Number);

        ResetAllGUIListView();
        SetInitialControlState();
        LoadNodeName();
        // A number that cannot be edited is refused before any node is read
        // or shown.
        if (const std::optional<std::string> refusal = NodeNumberRefusal(form, Node_Number)) {
            form.ShowInformation(*refusal);
            form.Unload();
            form.ReleaseCollections();
            return;
        }
        LoadMSGLISTNOOPNode();
        LoadAllInstructionsNode();
        LoadStaticConstants();
        // The selections so far enabled Apply through their handlers; they are
        // not the operator's changes, and a selector click must not ask to save.
        form.cmdApply.SetEnabled(false);
        LoadExistingNodesInRecordSelector(Node_Number);
        form.cmdApply.SetEnabled(false);
        const bool found = LoadData(Node_Number);
        form.cmdApply.SetEnabled(false);
        readAhead.reset();

        if (found) {
            nodeShown_ = true;
            services_.ShowModal(form);
        } else {
            form.Unload();
        }
        form.ReleaseCollections();
    });
    return false;
}

void Business_Rules::ResetAllGUIListView() {
    form::RunTrapped(services_, "ResetAllGUIListView", [&] {
        form::GUI& form = Form();
        form.ResetConfirmationListView();
        form.ResetActionsListView();
    });
}

void Business_Rules::SetInitialControlState() {
    form::GUI& form = Form();
    for (form::ListControl* editor : form.InPlacePickers()) {
        editor->SetVisible(false);
    }
    form.lblMaxMatches.SetEnabled(false);
    form.cmbMaxMatches.SetEnabled(false);
}

}  // namespace dbn
