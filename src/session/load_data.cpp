// Loading one dial-by-name node into the form: the general fields, the
// greeting and directory, the actions, the method and languages, then the
// custom settings.
#include "session/business_rules.h"

#include "form/error_trap.h"
#include "form/gui.h"
#include "session/load_helpers.h"

#include <array>

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

// A language value 0..2 selects that entry, anything else "None".
void SelectLanguage(form::ListControl& list, std::int16_t value) {
    list.SetListIndex(value >= 0 && value <= 2 ? value : 0);
}

}  // namespace

bool Business_Rules::LoadData(std::int16_t nodeNumber) {
    bool found = false;
    bool completed = false;
    {
        session::BusyCursor busy(services_);
        completed = form::RunTrapped(services_, "LoadData", [&] {
            form::GUI& form = Form();
            form.PendingWarning.clear();
            const std::int16_t config = form.ConfigID();
            const std::int16_t partition = form.PartitionID();

            db_.Execute("Get_DBN_Node",
                        {session::Arg(config), session::Arg(partition), session::Arg(nodeNumber),
                         session::Arg(session::kDbnTypeID)});
            RowSet& node = db_.Recordset("Get_DBN_Node");
            session::RowSetCloser closer(node);
            if (!node.Eof()) {
                form.txtDescription.SetText(node.Field("NodeDescription").ToText());

                const std::string greeting = node.Field("GreetingNodeType").ToText();
                if (!form.IsPromptTypeAvailable(greeting)) {
                    form.cmbGreetingNode.SetText("NOOP");
                    form.PendingWarning = session::MaxNumberWarning(greeting);
                } else {
                    form.cmbGreetingNode.SetText(greeting);
                    session::SelectByEntryRange(form.cmbGreetingNumber,
                                                node.Field("GreetingNodeNumber").ToInt16(), -1);
                }

                session::SelectInRange(form.cmbDirectory,
                                       node.Field("DirectoryNodeNumber").ToInt16(), 1, 99, 0);

                form.ClearListItems(form.LVActions);
                for (std::size_t i = 0; i < kActionRows.size(); ++i) {
                    const session::StoredRef ref = session::ReadRef(node, kActionRows[i].role);
                    const std::string description =
                        session::LookUpDescription(db_, config, partition, ref.typeID, ref.number);
                    session::AddTargetRow(form.LVActions, static_cast<int>(i) + 1,
                                          kActionRows[i].name, ref, description,
                                          form.NodeNameCollection());
                }
                found = true;

                form.lblRecordPosition.SetCaption(std::to_string(form.cmbNode.ListIndex() + 1) +
                                                  " of " +
                                                  std::to_string(form.cmbNode.ListCount()));

                if (node.Field("Method").ToInt16() == 0) {
                    form.cmbMethod.SetListIndex(0);
                } else {
                    form.cmbMethod.SetListIndex(1);
                    SelectLanguage(form.cmbLanguage1, node.Field("FirstLanguage").ToInt16());
                    SelectLanguage(form.cmbLanguage2, node.Field("SecondLanguage").ToInt16());
                }

                AssignCustomSettingsValues(node, nodeNumber);
            } else {
                form.ShowInformation(
                    form.NodeNameCollection().Item(session::Arg(session::kDbnTypeID)) + " " +
                    session::Arg(nodeNumber) + " doesn't exist.");
            }
            node.Close();
            SetNavigationButtons(form);
        });
    }
    // A stored target replaced by "NOOP" would be overwritten by the next
    // save without a word; tell the operator once, after the load.
    if (found && completed && form_ != nullptr && !form_->PendingWarning.empty()) {
        const std::string warning = std::move(form_->PendingWarning);
        form_->PendingWarning.clear();
        form_->ShowInformation(warning);
    }
    return found;
}

}  // namespace dbn
