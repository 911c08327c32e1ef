#include "session/business_rules.h"
#include "core/node_types.h"

#include "core/component_error.h"
#include "database/database_errors.h"
#include "database/database_target.h"
#include "form/error_trap.h"
#include "form/gui.h"
#include "session/load_helpers.h"

namespace dbn {

Business_Rules::Business_Rules(form::FormServices& services) : services_(services) {
    KeepPaintingWhileWaiting();
}

Business_Rules::Business_Rules(form::FormServices& services, form::GUI& form)
    : services_(services), form_(&form) {
    KeepPaintingWhileWaiting();
}

void Business_Rules::KeepPaintingWhileWaiting() {
    // A save may wait up to the lock time-out for another program; the
    // window keeps painting meanwhile (the operator's input waits).
    db_.SetWaitHandler([this] { services_.DoEvents(); });
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

}  // namespace

bool Business_Rules::OpenDatabase(std::int16_t Config_ID, std::int16_t Partition_ID,
                                  std::int16_t Node_Number) {
    databaseUnavailable_ = false;
    try {
        db_.Execute(
            "Get_DBN_Node",
            {session::CommandArg(Config_ID), session::CommandArg(Partition_ID),
             session::CommandArg(Node_Number), session::CommandArg(node_type::kDialByName)});
        db_.Recordset("Get_DBN_Node").Close();
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

bool Business_Rules::ShowNodeEditor(std::int16_t Config_ID, std::int16_t Partition_ID,
                                    std::int16_t Node_Number) {
    nodeShown_ = false;
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
        form.MakeFormBusinessRules = [&services = services_, &form] {
            return std::make_unique<Business_Rules>(services, form);
        };
        form.Load();
        form.CreateCollections();
        form.SetConfigID(Config_ID);
        form.SetPartitionID(Partition_ID);
        form.SetnodeNumber(Node_Number);

        ResetAllGUIListView();
        SetInitialControlState();
        LoadNodeName();
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
