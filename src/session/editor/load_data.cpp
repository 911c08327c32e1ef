// Loading one dial-by-name node into the form: the general fields, the
// greeting and directory, the actions, the method and languages, then the
// custom settings.
#include "core/node_types.h"
#include "session/editor/business_rules.h"

#include "core/component_error.h"
#include "database/database_errors.h"
#include "form/error_trap.h"
#include "form/gui.h"
#include "session/editor/form_lists.h"
#include "session/editor/read_ahead.h"
#include "session/editor/saved_fields.h"
#include "session/nodes/node_templates.h"
#include "session/nodes/stored_state.h"

#include <array>
#include <optional>
#include <utility>

namespace dbn {
namespace {

struct ActionRow {
    const char* role;
    const char* name;
};

constexpr std::array<ActionRow, 5> kActionRows = {{{"ValidMatch", "Valid Match"},
                                                   {"Abort", "Abort"},
                                                   {"Star", "*"},
                                                   {"Pound", "#"},
                                                   {"Zero", "0"}}};

void SetNavigationButtons(form::GUI& form) {
    const int count = form.cmbNode.ListCount();
    const int index = form.cmbNode.ListIndex();
    bool backward = true;
    bool forward = true;
    if (count == 1) {
        backward = forward = false;
    } else if (index == 0) {
        backward = false;
    } else if (index == count - 1) {
        forward = false;
    }
    form.cmdFirst.SetEnabled(backward);
    form.cmdPrevious.SetEnabled(backward);
    form.cmdNext.SetEnabled(forward);
    form.cmdLast.SetEnabled(forward);
}

// A language value 0..2 selects that entry, anything else "None" (false).
bool SelectLanguage(form::ListControl& list, std::int64_t value) {
    const bool valid = value >= 0 && value <= 2;
    list.SetListIndex(valid ? static_cast<int>(value) : 0);
    return valid;
}

}  // namespace

std::optional<std::string> Business_Rules::NodeDescription(std::int32_t typeID,
                                                           std::int16_t number) {
    form::GUI& form = Form();
    const std::string looked = session::LookedUpTypeID(std::to_string(typeID));
    return session::LookUpDescription(db_, form.ConfigID(), form.PartitionID(),
                                      static_cast<std::int16_t>(std::stoi(looked)), number);
}

bool Business_Rules::LoadData(std::int16_t nodeNumber) {
    bool found = false;
    bool completed = false;
    {
        session::BusyCursor busy(services_);
        completed = form::RunTrapped(services_, "LoadData", [&] {
            form::GUI& form = Form();
            form.PendingWarning.clear();
            // Until the node is shown whole every field counts as changed.
            form.Loaded.fieldsNoted = false;
            rangeNotes_.Clear();
            loadFailed_ = false;
            const std::int16_t config = form.ConfigID();
            const std::int16_t partition = form.PartitionID();
            if (nodeNumber < 0) {
                // Node numbers start at 1; a negative one would be saved
                // over another node.
                form.ShowInformation(
                    form.NodeNameCollection().Item(session::CommandArg(node_type::kDialByName)) +
                    " " + session::CommandArg(nodeNumber) +
                    " cannot be edited: node numbers start at 1.");
                SetNavigationButtons(form);
                return;
            }
            // The node's reads in two batches, unless the start-up has read
            // them already.
            std::optional<ReadAheadScope> readAhead;
            if (!db_.HasReadAhead()) {
                readAhead.emplace(db_);
                session::ReadNodeAhead(db_, config, partition, nodeNumber);
            }
            // Everything the form will show is read before it changes: a read
            // that fails (the connection lost between two batches, a table
            // gone) stops the load with the form as it was.
            std::optional<std::string> stored;
            RowSet& node = db_.Recordset("Get_DBN_Node");
            RowSet& prompts = db_.Recordset("Get_DBN_PromptsNode");
            session::RowSetCloser nodeCloser(node);
            session::RowSetCloser promptsCloser(prompts);
            session::TargetDescriptions descriptions(db_, config, partition);
            try {
                // The stored state first: a change made while the form is
                // filled then shows as a change at the next save rather than
                // being overwritten. A node whose rows cannot be read is shown
                // as far as it loads; its save reads them again and stops there.
                try {
                    stored = session::ReadStoredState(db_, config, partition, nodeNumber);
                } catch (const ComponentError& error) {
                    if (IsDatabaseUnavailable(error.Number())) {
                        throw;
                    }
                    stored.reset();
                }
                db_.Execute(
                    "Get_DBN_Node",
                    {session::CommandArg(config), session::CommandArg(partition),
                     session::CommandArg(nodeNumber), session::CommandArg(node_type::kDialByName)});
                if (!node.Eof()) {
                    db_.Execute("Get_DBN_PromptsNode",
                                {session::CommandArg(config), session::CommandArg(partition),
                                 session::CommandArg(nodeNumber)});
                    for (const ActionRow& row : kActionRows) {
                        descriptions.Read(node, row.role);
                    }
                    descriptions.Read(node, "BeforePrompt");
                    descriptions.Read(node, "AfterPrompt");
                    // A copy, unobserved: the filling reads the rows from
                    // the first, as a recording of the session replays them.
                    RowSet rows = prompts;
                    rows.SetObserver(nullptr);
                    for (; !rows.Eof(); rows.MoveNext()) {
                        descriptions.Read(rows, "Prompt");
                    }
                }
            } catch (...) {
                loadFailed_ = true;
                throw;
            }
            if (!node.Eof()) {
                form.Loaded = {};
                // Keyed in lower case: the server names its columns so.
                for (const std::string& column : node.Columns()) {
                    form.Loaded.values[session::LowerCase(column)] = node.Field(column).ToText();
                }
                // A label longer than the box is shown cut, and told.
                const std::string label = node.Field("NodeDescription").ToText();
                form.txtDescription.SetText(label);
                if (form.txtDescription.Text() != label) {
                    rangeNotes_.NoteText("NodeDescription", label, form.txtDescription.Text());
                }
                form.NameShownNode(nodeNumber, label);

                const std::string greeting = node.Field("GreetingNodeType").ToText();
                if (!form.IsPromptTypeAvailable(greeting)) {
                    form.cmbGreetingNode.SetText("NOOP");
                    form.PendingWarning = session::MaxNumberWarning(greeting);
                } else {
                    form.cmbGreetingNode.SetText(greeting);
                    const std::int16_t number = node.Field("GreetingNodeNumber").ToInt16();
                    if (!session::SelectByEntryRange(form.cmbGreetingNumber, number, -1)) {
                        rangeNotes_.Note("GreetingNodeNumber", number, form.cmbGreetingNumber);
                    }
                }

                const std::int64_t directory = node.Field("DirectoryNodeNumber").ToInt64();
                if (!session::SelectInRange(form.cmbDirectory, session::Clamped(directory), 1, 99,
                                            0)) {
                    rangeNotes_.Note("DirectoryNodeNumber", directory, form.cmbDirectory);
                }

                form.ClearListItems(form.LVActions);
                for (std::size_t i = 0; i < kActionRows.size(); ++i) {
                    const session::StoredRef ref = session::ReadRef(node, kActionRows[i].role);
                    session::AddTargetRow(form.LVActions, static_cast<int>(i) + 1,
                                          kActionRows[i].name, ref, descriptions.Of(ref),
                                          form.NodeNameCollection());
                }
                found = true;

                form.lblRecordPosition.SetCaption(std::to_string(form.cmbNode.ListIndex() + 1) +
                                                  " of " +
                                                  std::to_string(form.cmbNode.ListCount()));

                const std::int64_t method = node.Field("Method").ToInt64();
                form.cmbMethod.SetListIndex(method == 0 ? 0 : 1);
                if (method != 0 && method != 1) {
                    rangeNotes_.Note("Method", method, form.cmbMethod);
                }
                // Custom nodes show their own languages too (in the disabled
                // lists), so that a save never writes another node's into them.
                for (auto [column, list] : {std::pair{"FirstLanguage", &form.cmbLanguage1},
                                            std::pair{"SecondLanguage", &form.cmbLanguage2}}) {
                    const std::int64_t language = node.Field(column).ToInt64();
                    if (!SelectLanguage(*list, language)) {
                        rangeNotes_.Note(column, language, *list);
                    }
                }

                AssignCustomSettingsValues(node, prompts, descriptions);
                form.RememberShownLabels();
                session::NoteShownFields(form);
                form.StoredState = std::move(stored);
            } else {
                form.StoredState.reset();
                form.Loaded = {};
                form.ShowInformation(
                    form.NodeNameCollection().Item(session::CommandArg(node_type::kDialByName)) +
                    " " + session::CommandArg(nodeNumber) + " doesn't exist.");
            }
            node.Close();
            SetNavigationButtons(form);
        });
    }
    // A stored target shown as "NOOP": tell the operator once, after the
    // load (a save keeps it as stored unless the operator picks another).
    if (found && completed && form_ != nullptr && !form_->PendingWarning.empty()) {
        const std::string warning = std::move(form_->PendingWarning);
        form_->PendingWarning.clear();
        form_->ShowInformation(warning);
    }
    // Settings shown through a fallback: told, and kept as stored unless changed.
    if (found && completed && form_ != nullptr) {
        form::RunTrapped(services_, "LoadData", [&] {
            const std::string notes = rangeNotes_.Message(
                form_->NodeNameCollection().Item(session::CommandArg(node_type::kDialByName)) +
                " " + session::CommandArg(nodeNumber));
            rangeNotes_.Clear();
            if (!notes.empty()) {
                form_->ShowInformation(notes);
            }
        });
    }
    return found;
}

}  // namespace dbn
