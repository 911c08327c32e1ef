// The referenced-node check that runs before every save: gathers the nodes
// the form refers to, and offers to create each missing one by copying
// node 0 of its type.

#include "core/component_error.h"
#include "core/node_types.h"
#include "database/database_errors.h"
#include "form/error_trap.h"
#include "form/gui.h"
#include "session/editor/business_rules.h"
#include "session/editor/confirmation_dialog.h"
#include "session/editor/read_ahead.h"
#include "session/editor/saved_fields.h"
#include "session/nodes/node_templates.h"
#include "session/nodes/transaction_scope.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace dbn {

namespace {

const std::string kDirectoryTypeID = std::to_string(node_type::kDirectory);
constexpr const char* kTemplateNumber = "0";

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
    const std::string key = session::LookedUpTypeID(typeID);
    form::KeyedCollection& limits = gui.MaxNodeNumberCollection();
    if (!limits.Contains(key)) {
        return std::nullopt;
    }
    return session::WholeNumber(limits.Item(key));
}

std::string MissingNodeQuestion(const std::string& key) {
    return key + " is referenced but it does not exist.\r\nDo you want to auto create node '" +
           key + "'?";
}

}  // namespace

void Business_Rules::AddNodeTolstRequired(std::string key, std::string typeID, std::string number) {
    form::GUI& gui = Form();
    form::RunTrapped(services_, "AddNodeTolstRequired", [&] {
        std::optional<session::RequiredNode> node =
            session::GatheredReference(std::move(key), std::move(typeID), std::move(number));
        if (!node || gui.lstNodeTypeName.FindExact(node->key) >= 0) {
            return;
        }
        gui.lstNodeTypeName.AddItem(node->key);
        gui.lstNodeTypeID.AddItem(node->typeID);
        gui.lstNodeNumber.AddItem(node->number);
    });
}

bool Business_Rules::IsNodeExisted(std::string typeID, std::string number) {
    form::GUI& gui = Form();
    bool exists = false;
    form::RunTrapped(services_, "IsNodeExisted", [&] {
        exists =
            session::NodeExists(db_, gui.ConfigID(), gui.PartitionID(), std::move(typeID), number);
    });
    return exists;
}

bool Business_Rules::AutoCreateNode(std::string templateNumber, std::string newNumber,
                                    std::string typeID) {
    form::GUI& gui = Form();
    // The node row, its detail rows and its pool row are created together;
    // a template without a node row creates nothing.
    TransactionScope transaction(db_);
    if (!session::CopyTemplateNode(db_, gui.ConfigID(), gui.PartitionID(), templateNumber,
                                   newNumber, std::move(typeID))) {
        return false;
    }
    transaction.Commit();
    return true;
}

void Business_Rules::CheckForUnReferencedNodes() {
    form::GUI& gui = Form();
    CopyGroup copies(db_);
    auto check = [&] {
        const CommitOnError commitOnError(copies);
        gui.StatusBar1.SetPanelText("Checking for non-existing nodes. Please wait...");
        services_.DoEvents();

        std::unique_ptr<ConfirmationDialog> dialog =
            CreateObjectAs<ConfirmationDialog>(kConfirmationDialogClass);
        referenceFound_.clear();
        checkCancelled_ = false;
        gui.lstNodeTypeName.Clear();
        gui.lstNodeTypeID.Clear();
        gui.lstNodeNumber.Clear();

        // The nodes the save will write references to: a target the
        // operator did not change as stored, whatever the form shows for it.
        for (session::SavedReference& ref : session::ReferencesToSave(gui)) {
            AddNodeTolstRequired(std::move(ref.key), std::move(ref.typeID), std::move(ref.number));
        }

        // Whether each node and its type's template exist, asked in one
        // batch; a failed look-up is not a missing node: it ends the check
        // with its own message, and nothing is offered. A copy creates only the node it was asked
        // for, which no later row names again (the rows' keys are distinct).
        std::vector<session::RequiredNode> lookups;
        for (int i = 0; i < gui.lstNodeTypeName.ListCount(); ++i) {
            lookups.push_back({{}, gui.lstNodeTypeID.List(i), gui.lstNodeNumber.List(i)});
            lookups.push_back({{}, gui.lstNodeTypeID.List(i), kTemplateNumber});
        }
        const std::vector<BatchAnswer> found =
            db_.ExecuteBatch(session::ExistenceReads(gui.ConfigID(), gui.PartitionID(), lookups));
        auto exists = [&](int row, bool templateNode) {
            return found[static_cast<std::size_t>(2 * row + (templateNode ? 1 : 0))].count > 0;
        };

        // The nodes agreed to since the operator was last asked or told
        // anything are created together, in one batch, before the next
        // word. When one of them cannot be made, they are made again one
        // after another, each in a unit of work of its own, so that each
        // failure is told in turn and the nodes before it are kept.
        struct AgreedCopy {
            std::size_t row;
            std::string key;
            std::string typeID;
            std::string number;
        };
        std::vector<AgreedCopy> agreed;
        auto createAgreed = [&] {
            if (agreed.empty()) {
                return;
            }
            const std::vector<AgreedCopy> batch = std::exchange(agreed, {});
            std::vector<session::TemplateCopy> templateCopies;
            for (const AgreedCopy& copy : batch) {
                templateCopies.push_back({kTemplateNumber, copy.number, copy.typeID});
            }
            copies.Join();
            bool whole = false;
            db_.BeginSavepoint();
            try {
                const std::vector<bool> made = session::CopyTemplateNodes(
                    db_, gui.ConfigID(), gui.PartitionID(), templateCopies);
                whole = std::find(made.begin(), made.end(), false) == made.end();
            } catch (const ComponentError&) {
                // Made again one by one below, where the failure is told.
            }
            if (whole) {
                db_.ReleaseSavepoint();
                for (const AgreedCopy& copy : batch) {
                    referenceFound_[copy.row] = true;
                    gui.StatusBar1.SetPanelText(copy.key + " is created.");
                }
                return;
            }
            db_.RollbackToSavepoint();
            for (const AgreedCopy& copy : batch) {
                copies.Join();
                if (AutoCreateNode(kTemplateNumber, copy.number, copy.typeID)) {
                    referenceFound_[copy.row] = true;
                    gui.StatusBar1.SetPanelText(copy.key + " is created.");
                } else {
                    copies.Commit();
                    gui.ShowInformation(
                        copy.key +
                        " could not be created: there is no template node 0 of its type.");
                }
            }
        };
        // Before the operator is asked or told anything: the agreed nodes
        // are created and committed.
        auto beforeWord = [&] {
            createAgreed();
            copies.Commit();
        };

        long answer = 0;
        referenceFound_.assign(static_cast<std::size_t>(gui.lstNodeTypeName.ListCount()), false);
        for (int i = 0; i < gui.lstNodeTypeName.ListCount(); ++i) {
            const std::string key = gui.lstNodeTypeName.List(i);
            const std::string typeID = gui.lstNodeTypeID.List(i);
            const std::string number = gui.lstNodeNumber.List(i);
            if (exists(i, false)) {
                referenceFound_[static_cast<std::size_t>(i)] = true;
                continue;
            }
            // Numbers above the partition's limit for the type cannot be made.
            if (const std::optional<long> limit = LimitOf(gui, typeID);
                limit && session::WholeNumber(number).value_or(0) > *limit) {
                beforeWord();
                const std::string code =
                    gui.NodeNameCollection().Item(session::LookedUpTypeID(typeID));
                gui.ShowInformation(key + " could not be created: the partition allows " + code +
                                    " nodes up to " + std::to_string(*limit) + ".");
                continue;
            }
            if (answer != form::kConfirmYesToAll) {
                beforeWord();
                services_.SetBusyCursor(false);
                answer = dialog->Show(1, MissingNodeQuestion(key), 1, 7, "Confirmation");
                services_.SetBusyCursor(true);
            }
            if (answer == form::kConfirmYes || answer == form::kConfirmYesToAll) {
                if (!session::CanCopyNodeType(typeID)) {
                    beforeWord();
                    gui.ShowInformation(key +
                                        " could not be created: its type cannot be created here.");
                } else if (!exists(i, true)) {
                    beforeWord();
                    gui.ShowInformation(
                        key + " could not be created: there is no template node 0 of its type.");
                } else {
                    agreed.push_back({static_cast<std::size_t>(i), key, typeID, number});
                }
            } else if (answer == form::kConfirmCancel) {
                // The save that asked stops too; the nodes created so far stay.
                checkCancelled_ = true;
                break;
            } else if (answer == form::kConfirmNoToAll || answer == 0) {
                break;
            }
        }
        createAgreed();
    };
    // A failure of the database (not of the form's own state) stops the save
    // that runs the check.
    checkFailed_ = false;
    form::RunTrapped(services_, "CheckForUnReferencedNodes", [&] {
        try {
            check();
        } catch (const ComponentError& error) {
            checkFailed_ = error.Source() == kDatabaseSource || error.Source() == kServerSource;
            throw;
        }
    });
    // A save goes on in the group's transaction, so that the copies and the
    // node are written in one commit. After a failure the save stops, and
    // what the group still holds is rolled back.
    if (checkFailed_) {
        return;
    }
    if (keepCopiesOpen_) {
        copies.HandOver();
    } else {
        form::RunTrapped(services_, "CheckForUnReferencedNodes", [&] { copies.Commit(); });
    }
}

}  // namespace dbn
