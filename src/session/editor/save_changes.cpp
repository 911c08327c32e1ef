// Business_Rules::SaveChanges: writes the node on show back to the
// configuration database, after the referenced-node check.

#include "core/component_error.h"
#include "core/node_types.h"
#include "database/database_errors.h"
#include "form/error_trap.h"
#include "form/gui.h"
#include "session/editor/business_rules.h"
#include "session/editor/form_lists.h"
#include "session/editor/form_references.h"
#include "session/editor/saved_fields.h"
#include "session/nodes/modification_time.h"
#include "session/nodes/node_history.h"
#include "session/nodes/stored_state.h"
#include "session/nodes/transaction_scope.h"

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

namespace {

const std::string kDbnTypeID = session::CommandArg(node_type::kDialByName);
constexpr int kReservedColumns = 10;
// Rows of the confirmation list before the first name prompt.
constexpr int kFixedConfirmRows = 2;
// Prompt numbers every node ends with (when the list is not longer).
constexpr int kDefaultPromptCount = 9;

// The keys that close every statement of the node's row and pool entry.
struct NodeKeyText {
    std::string config;
    std::string partition;
    std::string number;
};

void AppendKeys(std::vector<std::string>& args, const NodeKeyText& key) {
    args.push_back(key.config);
    args.push_back(key.partition);
    args.push_back(kDbnTypeID);
    args.push_back(key.number);
}

std::vector<std::string> Values(const std::vector<std::pair<std::string, std::string>>& fields) {
    std::vector<std::string> values;
    for (const auto& field : fields) {
        values.push_back(field.second);
    }
    return values;
}

std::vector<std::string> Part1Arguments(const session::SavedFields& fields,
                                        const NodeKeyText& key) {
    std::vector<std::string> args = Values(fields.part1);
    AppendKeys(args, key);
    return args;
}

std::vector<std::string> Part2Arguments(const session::SavedFields& fields,
                                        const NodeKeyText& key) {
    std::vector<std::string> args = Values(fields.part2);
    for (int reserved = 0; reserved < kReservedColumns; ++reserved) {
        args.push_back("0");
    }
    args.push_back(node_type::kDialByNameCode);
    AppendKeys(args, key);
    return args;
}

BatchStep PromptRow(const NodeKeyText& key, int promptNumber, const StoredNodeRef& prompt) {
    return {"Add_DBN_PromptsNode",
            {key.config, key.partition, std::to_string(promptNumber), prompt.typeID, prompt.number,
             key.number, prompt.type}};
}

// The name prompts of the confirmation list (or, while the section is off,
// the rows it set aside), then the name rows set aside beyond them, then
// message node 1 for every prompt number up to nine still open; prompt
// numbers start at 1 even when there are none.
void AddPromptRows(std::vector<BatchStep>& batch, form::GUI& gui, const NodeKeyText& key) {
    int nextPrompt = 1;
    const form::ListView& prompts = session::ListedPrompts(gui);
    for (int position = kFixedConfirmRows; position < prompts.ItemCount(); ++position) {
        batch.push_back(PromptRow(key, nextPrompt++, RowReference(prompts, position)));
    }
    for (const form::list_rows::RowCells& aside : gui.AsideNameRows()) {
        batch.push_back(
            PromptRow(key, nextPrompt++, {aside.nodeName, aside.nodeNumber, aside.typeId}));
    }
    for (; nextPrompt <= kDefaultPromptCount; ++nextPrompt) {
        batch.push_back(PromptRow(key, nextPrompt, session::kDefaultPrompt));
    }
}

// The save's display: busy cursor, Frame1 disabled and the status bar shown
// while it runs; all of it restored however the save ends.
class SavingDisplay {
public:
    SavingDisplay(form::GUI& gui, form::FormServices& services) : gui_(gui), services_(services) {
        services_.SetBusyCursor(true);
        gui_.Frame1.SetEnabled(false);
        gui_.StatusBar1.SetVisible(true);
    }
    ~SavingDisplay() {
        services_.SetBusyCursor(false);
        gui_.StatusBar1.SetPanelText("");
        gui_.StatusBar1.SetVisible(false);
        gui_.Frame1.SetEnabled(true);
    }
    SavingDisplay(const SavingDisplay&) = delete;
    SavingDisplay& operator=(const SavingDisplay&) = delete;

private:
    form::GUI& gui_;
    form::FormServices& services_;
};

// Enables Frame1 again when the scope ends, however it ends.
class FrameEnabledAfter {
public:
    explicit FrameEnabledAfter(form::GUI& gui) : gui_(gui) {}
    ~FrameEnabledAfter() { gui_.Frame1.SetEnabled(true); }
    FrameEnabledAfter(const FrameEnabledAfter&) = delete;
    FrameEnabledAfter& operator=(const FrameEnabledAfter&) = delete;

private:
    form::GUI& gui_;
};

// Ends the transaction that the referenced-node check left open with its
// last copies: committed together with the save, and on their own when the
// save fails or finds its node gone, so that the nodes the operator agreed to
// create are kept either way.
class OpenCopies {
public:
    explicit OpenCopies(DataBase& db) : db_(db), open_(db.InTransaction()) {}
    ~OpenCopies() {
        try {
            Commit();
        } catch (const std::exception&) {
            // Rolled back; the save's own error, if any, is the one shown.
        }
    }
    OpenCopies(const OpenCopies&) = delete;
    OpenCopies& operator=(const OpenCopies&) = delete;

    // Commits the copies (and whatever the save wrote in their transaction);
    // a failed commit rolls them back.
    void Commit() {
        if (!open_ || !db_.InTransaction()) {
            open_ = false;
            return;
        }
        open_ = false;
        try {
            db_.CommitTrans();
        } catch (const std::exception&) {
            try {
                db_.RollbackTrans();
            } catch (const std::exception&) {
                // The connection has already ended the transaction itself.
            }
            throw;
        }
    }

private:
    DataBase& db_;
    bool open_;
};

// Sets a flag for the length of a scope.
class FlagScope {
public:
    explicit FlagScope(bool& flag) : flag_(flag) { flag_ = true; }
    ~FlagScope() { flag_ = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& flag_;
};

}  // namespace

// Writes the form's node in one unit of work (a savepoint inside the
// referenced-node check's open copies). Unless told to overwrite, it first
// compares the stored state with the one the form was loaded from and writes
// nothing when another program has changed it.
Business_Rules::WriteResult Business_Rules::WriteShownNode(std::int16_t nodeNumber,
                                                           bool overwrite) {
    form::GUI& gui = Form();
    const NodeKeyText key{std::to_string(gui.ConfigID()), std::to_string(gui.PartitionID()),
                          std::to_string(nodeNumber)};
    const session::NodeKey nodeKey{gui.ConfigID(), gui.PartitionID(), node_type::kDialByName,
                                   nodeNumber};
    TransactionScope transaction(db_);
    // Compare before any write, under the row locks of the node's rows.
    session::LockStoredState(db_, gui.ConfigID(), gui.PartitionID(), nodeNumber);
    const std::optional<nodestate::NodeState> before = session::ReadNodeState(db_, nodeKey);
    if (!before) {
        // Deleted by another program since it was loaded.
        return {WriteOutcome::Vanished, std::nullopt};
    }
    std::string beforeJson = nodestate::ToJson(*before);
    if (!overwrite && gui.StoredState && beforeJson != *gui.StoredState) {
        return {WriteOutcome::Changed, std::nullopt,
                session::ChangeDetails(db_, nodeKey, *gui.StoredState, *before)};
    }
    // Every write, then the state just written (what the next save compares
    // with), in one batch. Fields the operator did not change are written as
    // stored; the name prompts are left as stored unless they changed.
    const session::SavedFields fields = session::FieldsToSave(gui);
    std::vector<BatchStep> batch{{"Update_DBN_Node_Part1", Part1Arguments(fields, key)},
                                 {"Update_DBN_Node_Part2", Part2Arguments(fields, key)},
                                 {"Update_Node_General_Pool",
                                  {fields.part1.front().second, CurrentModificationTime(),
                                   key.config, key.partition, kDbnTypeID, key.number}}};
    if (fields.promptsChanged) {
        batch.insert(batch.begin(),
                     {"Delete_DBN_PromptsNode", {key.config, key.partition, key.number}});
        AddPromptRows(batch, gui, key);
    }
    const std::size_t stateAt = batch.size();
    for (BatchStep& read :
         session::StoredStateReads(gui.ConfigID(), gui.PartitionID(), nodeNumber)) {
        batch.push_back(std::move(read));
    }
    std::vector<BatchAnswer> answers = db_.ExecuteBatch(batch);
    if (answers[fields.promptsChanged ? 1 : 0].count == 0) {
        // The node row is gone: the scope undoes the batch's other writes.
        return {WriteOutcome::Vanished, std::nullopt};
    }
    // The history row, with the state just written, travels with the commit.
    const std::optional<nodestate::NodeState> after =
        session::NodeStateOf(answers[stateAt], answers[stateAt + 1], answers[stateAt + 2]);
    std::optional<std::string> afterJson =
        after ? std::optional<std::string>(nodestate::ToJson(*after)) : std::nullopt;
    session::WriteHistoryEntry(db_, nodeKey, node_type::kDialByNameCode, session::ChangeKind::Saved,
                               before, after, std::move(beforeJson), afterJson.value_or(""));
    transaction.Commit();
    return {WriteOutcome::Committed, std::move(afterJson)};
}

bool Business_Rules::SaveChanges(std::int16_t nodeNumber) {
    form::GUI& gui = Form();
    // A form that still shows the node as loaded (or last saved) writes
    // nothing and leaves no history entry.
    bool changed = true;
    if (!form::RunTrapped(services_, "SaveChanges", [&] { changed = session::FormChanged(gui); })) {
        return false;
    }
    if (!changed) {
        return true;
    }
    // A database this process may not change: refused before anything is
    // checked, created or written, in the words it was told with.
    // A database that cannot be asked has told its failure: nothing more.
    bool readOnly = false;
    const bool asked = form::RunTrapped(services_, "SaveChanges", [&] {
        if (const std::optional<std::string> notice = db_.ReadOnlyNotice()) {
            readOnly = true;
            gui.ShowInformation(*notice);
        }
    });
    if (readOnly || !asked) {
        return false;
    }
    std::optional<WriteResult> result;
    // Set when the connection was lost during the commit.
    bool readAgain = false;
    // Writes the node inside the transaction the check left open, so that the
    // nodes it created are committed with it (or on their own, when the node
    // is not written).
    auto write = [&](bool checkReferences, bool overwrite) {
        result.reset();
        form::RunTrapped(services_, "SaveChanges", [&] {
            SavingDisplay display(gui, services_);
            if (checkReferences) {
                const FlagScope keepOpen(keepCopiesOpen_);
                CheckForUnReferencedNodes();
                if (checkFailed_) {
                    // The check has shown its failure; nothing is written.
                    return;
                }
            }
            try {
                OpenCopies copies(db_);
                if (checkReferences && checkCancelled_) {
                    // Cancelled at a question: the nodes created before it
                    // are kept, the node itself is not written.
                    copies.Commit();
                    return;
                }
                gui.StatusBar1.SetPanelText("Saving node information. Please wait...");
                WriteResult written = WriteShownNode(nodeNumber, overwrite);
                copies.Commit();
                result = std::move(written);
            } catch (const ComponentError& error) {
                readAgain = error.Number() == kErrCommitUncertain;
                throw;
            }
        });
    };
    // After a commit whose outcome is unknown the form shows what is stored.
    auto showStored = [&] {
        if (readAgain) {
            LoadData(nodeNumber);
            if (!loadFailed_) {
                gui.cmdApply.SetEnabled(false);
            }
        }
    };
    write(true, false);
    showStored();
    // "DBN 5": how the messages below name the node.
    auto nodeText = [&] {
        return gui.NodeNameCollection().Item(kDbnTypeID) + " " + std::to_string(nodeNumber);
    };
    if (result && result->outcome == WriteOutcome::Changed) {
        int answer = form::kAnswerCancel;
        form::RunTrapped(services_, "SaveChanges", [&] {
            // The form stays disabled while the save's question waits.
            gui.Frame1.SetEnabled(false);
            const FrameEnabledAfter enableAfter(gui);
            services_.SetNextBoxDetails(result->changeDetails);
            answer = services_.MsgBox(nodeText() +
                                          " was changed by another program after it was opened "
                                          "here. Save your changes over it?",
                                      form::MsgBoxButtons::SaveOverDiscardCancel,
                                      form::MsgBoxIcon::Question, "Confirmation");
        });
        if (answer == form::kAnswerYes) {
            write(false, true);
            showStored();
        } else {
            if (answer == form::kAnswerNo) {
                // Drop the edits: show the node as it is stored now.
                LoadData(nodeNumber);
                if (!loadFailed_) {
                    gui.cmdApply.SetEnabled(false);
                }
            }
            return false;
        }
    }
    if (!result) {
        return false;
    }
    if (result->outcome == WriteOutcome::Vanished) {
        form::RunTrapped(services_, "SaveChanges", [&] {
            gui.ShowInformation(nodeText() +
                                " no longer exists in the configuration database. Nothing was "
                                "saved.");
        });
        services_.SaveRefused();
        return false;
    }
    if (result->outcome != WriteOutcome::Committed) {
        return false;
    }
    gui.StoredState = std::move(result->savedState);
    // What was written is now the stored state the next save starts from.
    form::RunTrapped(services_, "SaveChanges", [&] { session::NoteSavedFields(gui); });
    gui.NameShownNode(nodeNumber, gui.txtDescription.Text());
    form::RunTrapped(services_, "SaveChanges", [&] { ReportMissingReferences(nodeText()); });
    return true;
}

void Business_Rules::ReportMissingReferences(const std::string& node) {
    form::GUI& gui = Form();
    std::string missing;
    for (int i = 0; i < gui.lstNodeTypeName.ListCount(); ++i) {
        // Only references the check did not find or create are looked up again.
        const auto row = static_cast<std::size_t>(i);
        if (row < referenceFound_.size() && referenceFound_[row]) {
            continue;
        }
        if (!IsNodeExisted(gui.lstNodeTypeID.List(i), gui.lstNodeNumber.List(i))) {
            missing += (missing.empty() ? "" : ", ") + gui.lstNodeTypeName.List(i);
        }
    }
    if (!missing.empty()) {
        gui.ShowInformation(node +
                            " was saved. These references point at nodes that do not "
                            "exist: " +
                            missing + ".");
    }
}

}  // namespace dbn
