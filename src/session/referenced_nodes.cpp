// The referenced-node check that runs before every save: gathers the nodes
// the form refers to, and offers to create each missing one by copying
// node 0 of its type.

#include "core/component_error.h"
#include "core/node_types.h"
#include "form/error_trap.h"
#include "form/gui.h"
#include "form/list_rows.h"
#include "session/business_rules.h"
#include "session/confirmation_dialog.h"
#include "session/form_references.h"
#include "session/modification_time.h"
#include "session/transaction_scope.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

namespace {

constexpr const char* kMessageTypeID = "0";
constexpr const char* kDirectoryTypeID = "16";
constexpr const char* kTemplateNumber = "0";

// The type ID as a number, when the text holds one.
std::optional<long> TypeNumber(std::string_view text) {
    long value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

// Types whose references carry no node to look up.
bool IsNeverGathered(std::string_view typeID) {
    std::optional<long> type = TypeNumber(typeID);
    return type == node_type::kNoNumber || type == node_type::kOpenRange ||
           type == node_type::kNeverLookedUp;
}

// Types that follow the message type.
bool FollowsMessageType(std::string_view typeID) {
    std::optional<long> type = TypeNumber(typeID);
    return type && node_type::FollowsMessage(*type);
}

// How a node of one type is copied: the commands after the node row's own
// copy (detail rows), all taking new number, configuration, partition and
// template number. The message type's copy takes a sound-file name as well.
struct CopyPlan {
    std::string_view typeID;
    bool message = false;
    std::vector<const char*> commands;
};

const std::vector<CopyPlan>& CopyPlans() {
    static const std::vector<CopyPlan> plans = {
        {"0", true, {}},
        {"817", true, {}},
        {"818", true, {}},
        {"1", false, {"Duplicate_CMD_NODE", "Duplicate_Detail_CMD_NODE"}},
        {"2", false, {"Duplicate_TIME_Node", "Duplicate_Detail_TIME_Node"}},
        {"3", false, {"Duplicate_DATE_Node", "Duplicate_Detail_DATE_Node"}},
        {"4", false, {"Duplicate_XFER_Node"}},
        {"6",
         false,
         {"Duplicate_DTMF_Node", "Duplicate_DetailPrompts_DTMF_Node",
          "Duplicate_DetailActions_DTMF_Node"}},
        {"7",
         false,
         {"Duplicate_VOX_Node", "Duplicate_DetailPrompts_VOX_Node",
          "Duplicate_DetailActions_VOX_Node"}},
        {"8", false, {"Duplicate_LIST_Node", "Duplicate_Detail_LIST_Node"}},
        {"9",
         false,
         {"Duplicate_AUTO_Node", "Duplicate_DetailPrompts_AUTO_Node",
          "Duplicate_DetailActions_AUTO_Node"}},
        {"12", false, {"Duplicate_PAAS_Node", "Duplicate_Detail_PAAS_Node"}},
        {"13", false, {"Duplicate_TABLE_Node", "Duplicate_DetailActions_TABLE_Node"}},
        {"15", false, {"Duplicate_DBN_Node", "Duplicate_DetailPrompts_DBN_Node"}},
        {"16", false, {"Duplicate_DIR_Node", "Duplicate_Detail_DIR_Node"}},
    };
    return plans;
}

const CopyPlan* FindCopyPlan(std::string_view typeID) {
    for (const CopyPlan& plan : CopyPlans()) {
        if (plan.typeID == typeID) {
            return &plan;
        }
    }
    return nullptr;
}

// "P" + partition (two digits at least) + "M" + node number (three digits at
// least) + ".wav".
std::string SoundFileName(std::int16_t partition, const std::string& number) {
    std::optional<long> value = TypeNumber(number);
    if (!value) {
        RaiseTypeMismatch();
    }
    std::array<char, 48> name{};
    int length = std::snprintf(name.data(), name.size(), "P%02dM%03ld.wav",
                               static_cast<int>(partition), *value);
    return std::string(name.data(), static_cast<std::size_t>(length));
}

// Copies made one after another with no word to the operator in between
// share one transaction, since a commit costs far more than a copy. The
// group is committed before the operator is asked or told anything, so that
// no lock is held while a dialog waits.
class CopyGroup {
public:
    explicit CopyGroup(DataBase& db) : db_(db) {}
    // Rolls back a group that is neither committed nor handed over (its
    // commit failed).
    ~CopyGroup() {
        if (owned_ && db_.InTransaction()) {
            try {
                db_.RollbackTrans();
            } catch (const std::exception&) {
                // The connection has already ended the transaction itself.
            }
        }
    }
    CopyGroup(const CopyGroup&) = delete;
    CopyGroup& operator=(const CopyGroup&) = delete;

    // Before a copy: begins the group's transaction unless one is open.
    void Join() {
        if (!db_.InTransaction()) {
            db_.BeginTrans();
            owned_ = true;
        }
    }
    // Commits the copies made so far.
    void Commit() {
        if (owned_ && db_.InTransaction()) {
            db_.CommitTrans();
        }
        owned_ = false;
    }
    // Leaves the open group to the caller, who commits it.
    void HandOver() noexcept { owned_ = false; }

private:
    DataBase& db_;
    bool owned_ = false;
};

// Commits the group when an error leaves the check, before the error is
// shown: no lock may be held while a box waits.
class CommitOnError {
public:
    explicit CommitOnError(CopyGroup& copies)
        : copies_(copies), errors_(std::uncaught_exceptions()) {}
    ~CommitOnError() {
        if (std::uncaught_exceptions() > errors_) {
            try {
                copies_.Commit();
            } catch (const std::exception&) {
                // The group is rolled back when it ends.
            }
        }
    }
    CommitOnError(const CommitOnError&) = delete;
    CommitOnError& operator=(const CommitOnError&) = delete;

private:
    CopyGroup& copies_;
    int errors_;
};

// The highest node number the partition allows for a type, when it is known.
std::optional<long> LimitOf(form::GUI& gui, const std::string& typeID) {
    const std::string key = FollowsMessageType(typeID) ? kMessageTypeID : typeID;
    form::KeyedCollection& limits = gui.MaxNodeNumberCollection();
    if (!limits.Contains(key)) {
        return std::nullopt;
    }
    return TypeNumber(limits.Item(key));
}

std::string MissingNodeQuestion(const std::string& key) {
    return key + " is referenced but it does not exist.\r\nDo you want to auto create node '" +
           key + "'?";
}

}  // namespace

void Business_Rules::AddNodeTolstRequired(std::string key, std::string typeID, std::string number) {
    form::GUI& gui = Form();
    form::RunTrapped(services_, "AddNodeTolstRequired", [&] {
        if (IsNeverGathered(typeID)) {
            return;
        }
        if (FollowsMessageType(typeID)) {
            typeID = kMessageTypeID;
            key = "MSG " + number;
        }
        if (gui.lstNodeTypeName.FindExact(key) >= 0) {
            return;
        }
        gui.lstNodeTypeName.AddItem(key);
        gui.lstNodeTypeID.AddItem(typeID);
        gui.lstNodeNumber.AddItem(number);
    });
}

bool Business_Rules::IsNodeExisted(std::string typeID, std::string number) {
    form::GUI& gui = Form();
    bool exists = false;
    form::RunTrapped(services_, "IsNodeExisted", [&] {
        if (FollowsMessageType(typeID)) {
            typeID = kMessageTypeID;
        }
        db_.Execute("Get_Description", {std::to_string(gui.ConfigID()),
                                        std::to_string(gui.PartitionID()), typeID, number});
        RowSet& found = db_.Recordset("Get_Description");
        exists = !found.Eof();
        found.Close();
    });
    return exists;
}

bool Business_Rules::AutoCreateNode(std::string templateNumber, std::string newNumber,
                                    std::string typeID) {
    const CopyPlan* plan = FindCopyPlan(typeID);
    if (plan == nullptr) {
        return false;
    }
    form::GUI& gui = Form();
    const std::string config = std::to_string(gui.ConfigID());
    const std::string partition = std::to_string(gui.PartitionID());

    // The node row, its detail rows and its pool row are created together;
    // a template without a node row in its type's table creates nothing.
    TransactionScope transaction(db_);
    long nodeRows = 0;
    if (plan->message) {
        typeID = kMessageTypeID;
        nodeRows = db_.Execute("Duplicate_MSG_NODE",
                               {newNumber, SoundFileName(gui.PartitionID(), newNumber), config,
                                partition, templateNumber});
    }
    for (const char* command : plan->commands) {
        const long rows = db_.Execute(command, {newNumber, config, partition, templateNumber});
        if (command == plan->commands.front()) {
            nodeRows = rows;
        }
    }
    if (nodeRows == 0) {
        return false;
    }
    db_.Execute("Duplicate_Node_In_General_Pool",
                {newNumber, CurrentModificationTime(), config, partition, templateNumber, typeID});
    transaction.Commit();
    return true;
}

void Business_Rules::CheckForUnReferencedNodes() {
    form::GUI& gui = Form();
    CopyGroup copies(db_);
    form::RunTrapped(services_, "CheckForUnReferencedNodes", [&] {
        const CommitOnError commitOnError(copies);
        gui.StatusBar1.SetPanelText("Checking for non-existing nodes. Please wait...");
        services_.DoEvents();

        std::unique_ptr<ConfirmationDialog> dialog =
            CreateObjectAs<ConfirmationDialog>(kConfirmationDialogClass);
        referenceFound_.clear();
        gui.lstNodeTypeName.Clear();
        gui.lstNodeTypeID.Clear();
        gui.lstNodeNumber.Clear();

        // A pair without a number refers to no node (it is stored as node 0).
        auto gatherPair = [&](const form::ListControl& node, const form::ListControl& number) {
            const std::string typeID = SelectedTagText(node);
            if (!number.Text().empty()) {
                AddNodeTolstRequired(node.Text() + " " + number.Text(), typeID, number.Text());
            }
        };
        auto gatherRows = [&](const form::ListView& list) {
            for (int position = 0; position < list.ItemCount(); ++position) {
                const form::ListItem& row = list.ItemAt(position);
                AddNodeTolstRequired(row.SubItem(form::list_rows::kCommandNode),
                                     row.SubItem(form::list_rows::kNodeTypeID),
                                     row.SubItem(form::list_rows::kNodeNumber));
            }
        };

        gatherPair(gui.cmbGreetingNode, gui.cmbGreetingNumber);
        AddNodeTolstRequired("DIR " + gui.cmbDirectory.Text(), kDirectoryTypeID,
                             gui.cmbDirectory.Text());
        gatherRows(gui.LVActions);
        // The prompts and error targets are used by the custom method only.
        if (gui.cmbMethod.ItemData(gui.cmbMethod.ListIndex()) == 0) {
            gatherPair(gui.cmbFirstMatchPrompt, gui.cmbFirstMatchPromptNumber);
            gatherPair(gui.cmbSecondMatchPrompt, gui.cmbSecondMatchPromptNumber);
            gatherPair(gui.cmbTimeoutNode, gui.cmbTimeoutNumber);
            gatherPair(gui.cmbInvalidNode, gui.cmbInvalidNumber);
            gatherRows(gui.LVConfirm);
            gatherPair(gui.cmbExitPromptNode, gui.cmbExitPromptNumber);
        }

        long answer = 0;
        referenceFound_.assign(static_cast<std::size_t>(gui.lstNodeTypeName.ListCount()), false);
        for (int i = 0; i < gui.lstNodeTypeName.ListCount(); ++i) {
            const std::string key = gui.lstNodeTypeName.List(i);
            const std::string typeID = gui.lstNodeTypeID.List(i);
            const std::string number = gui.lstNodeNumber.List(i);
            if (IsNodeExisted(typeID, number)) {
                referenceFound_[static_cast<std::size_t>(i)] = true;
                continue;
            }
            // Numbers above the partition's limit for the type cannot be made.
            if (const std::optional<long> limit = LimitOf(gui, typeID);
                limit && TypeNumber(number).value_or(0) > *limit) {
                copies.Commit();
                const std::string code = gui.NodeNameCollection().Item(
                    FollowsMessageType(typeID) ? kMessageTypeID : typeID);
                gui.ShowInformation(key + " could not be created: the partition allows " + code +
                                    " nodes up to " + std::to_string(*limit) + ".");
                continue;
            }
            if (answer != form::kConfirmYesToAll) {
                copies.Commit();
                services_.SetBusyCursor(false);
                answer = dialog->Show(1, MissingNodeQuestion(key), 1, 7, "Confirmation");
                services_.SetBusyCursor(true);
            }
            if (answer == form::kConfirmYes || answer == form::kConfirmYesToAll) {
                if (FindCopyPlan(typeID) == nullptr) {
                    copies.Commit();
                    gui.ShowInformation(key +
                                        " could not be created: its type cannot be created here.");
                } else if (!IsNodeExisted(typeID, kTemplateNumber)) {
                    copies.Commit();
                    gui.ShowInformation(
                        key + " could not be created: there is no template node 0 of its type.");
                } else {
                    copies.Join();
                    if (AutoCreateNode(kTemplateNumber, number, typeID)) {
                        referenceFound_[static_cast<std::size_t>(i)] = true;
                        gui.StatusBar1.SetPanelText(key + " is created.");
                    } else {
                        copies.Commit();
                        gui.ShowInformation(
                            key +
                            " could not be created: there is no template node 0 of its type.");
                    }
                }
            } else if (answer == form::kConfirmCancel || answer == 0) {
                break;
            }
        }
    });
    // A save goes on in the group's transaction, so that the copies and the
    // node are written in one commit.
    if (keepCopiesOpen_) {
        copies.HandOver();
    } else {
        form::RunTrapped(services_, "CheckForUnReferencedNodes", [&] { copies.Commit(); });
    }
}

}  // namespace dbn
