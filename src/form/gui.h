#pragma once

#include "form/business_rules_link.h"
#include "form/control_table.h"
#include "form/controls/list_control.h"
#include "form/controls/list_view.h"
#include "form/controls/simple_controls.h"
#include "form/form_services.h"
#include "form/in_place_edited_list.h"
#include "form/keyed_collection.h"
#include "form/list_rows.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn::form {

// The messages of the list-view hook that matter to the editors.
enum class HookMessage { VerticalScroll, ParentNotify };

// What GenericNumber_Change does after clamping a typed number.
enum class NumberChangeMode : std::int16_t {
    ActionsRow = 0,       // writes it into the actions list's selected row
    ConfirmationRow = 1,  // writes it into the confirmation list's selected row
    ClampOnly = 2,        // nothing more
};

// Form-level changes a view observes.
enum class FormChange { Width, Loaded, Unloaded, Title };

// The dial-by-name node editor dialog: every control, the four collections,
// the editing state and all of the form's handlers. Toolkit-free: a view
// mirrors the controls and forwards the operator's input to them.
class GUI {
public:
    explicit GUI(FormServices& services);
    ~GUI();
    GUI(const GUI&) = delete;
    GUI& operator=(const GUI&) = delete;

    FormServices& Services() noexcept { return services_; }

    // ---- The form itself ------------------------------------------------
    static constexpr const char* kCaption = "DBN Node Editor";
    static constexpr int kClientWidth = 10515;  // twips
    static constexpr int kClientHeight = 8415;  // twips
    static constexpr int kCustomWidth = 10590;  // width that shows the custom section
    // The form's font; captioned frames draw it bold, the two match headings
    // bold and underlined (Label::Font).
    static constexpr const char* kFontName = "Tahoma";
    static constexpr double kFontPoints = 8.25;
    int Width() const noexcept { return width_; }
    void SetWidth(int width);
    int Height() const noexcept { return kClientHeight; }
    // The window title: the node on show as stored ("DBN 5 Sales directory"),
    // then its configuration and partition; the caption before any node.
    std::string Title() const;
    // Names the node on show by its number and stored label, after a load or
    // a save.
    void NameShownNode(std::int16_t number, const std::string& label);

    // Every control in creation order (containers before their children).
    const std::vector<Control*>& Controls() const noexcept { return controls_; }
    // A control by name, or nullptr.
    Control* FindControl(const std::string& name) const;
    FocusScope& Focus() noexcept { return focus_; }

    int Observe(std::function<void(FormChange)> observer);
    void Unobserve(int handle);

    // ---- Keys of the node on show -------------------------------------
    std::int16_t ConfigID() const noexcept { return configID_; }
    void SetConfigID(std::int16_t Given_ConfigID) noexcept { configID_ = Given_ConfigID; }
    std::int16_t PartitionID() const noexcept { return partitionID_; }
    void SetPartitionID(std::int16_t Given_PartitionID) noexcept {
        partitionID_ = Given_PartitionID;
    }
    std::int16_t nodeNumber() const noexcept { return nodeNumber_; }
    void SetnodeNumber(std::int16_t Given_NodeNumber) noexcept { nodeNumber_ = Given_NodeNumber; }

    // ---- The four collections -----------------------------------------
    void CreateCollections();
    void ReleaseCollections();
    bool CollectionsCreated() const noexcept { return nodeNames_ != nullptr; }
    // Reading a released collection raises error 91 "Object variable or With
    // block variable not set".
    KeyedCollection& NodeNameCollection();
    KeyedCollection& MaxNodeNumberCollection();
    KeyedCollection& NotAvailableAllInstructionsNode();
    KeyedCollection& NotAvailableMSGLISTNOOPNode();
    // Looks a node-type code up in NodeNameCollection by type ID text, when called.
    std::function<std::string(const std::string&)> NodeCodeOf() {
        return [this](const std::string& typeId) { return NodeNameCollection().Item(typeId); };
    }

    // ---- Editing state ------------------------------------------------
    // Each list is in edit mode exactly while its Edit button reads "Edit Off".
    bool ActionsEditMode() const { return actionsList_.EditMode(); }
    bool ConfirmEditMode() const { return confirmationList_.EditMode(); }
    // The last "Please check the ..." text composed while loading a node.
    std::string PendingWarning;
    // The fingerprint of the node's stored state when it was loaded or last
    // saved; a save finding another one asks before it overwrites.
    std::optional<std::string> StoredState;
    // The node's Node_DBN row as loaded (or last saved): each column's stored
    // value as text (keyed in lower case) and how each stored field looked
    // in the form then (by its first column). A save writes the stored value
    // of every field the operator did not change and that still looks so,
    // whatever the form shows for it (a fallback entry, a label cut to the
    // box, NOOP for a type the partition does not offer, prompts the form
    // does not list).
    struct LoadedRow {
        std::map<std::string, std::string, std::less<>> values;
        std::map<std::string, std::string, std::less<>> shownFields;
        // False until the fields' looks are noted: every field then counts
        // as changed.
        bool fieldsNoted = false;
    };
    LoadedRow Loaded;
    // Forgets which controls the operator changed (after a load or a save).
    void ForgetOperatorChanges();

    // The confirmation list's name rows set aside, in order: those beyond the
    // Max Matches shown (at load or after lowering it). Raising Max Matches
    // brings them back first; a save writes them after the names shown;
    // Default and loading replace them.
    std::vector<list_rows::RowCells>& AsideNameRows() noexcept { return asideNames_; }

    // ---- Load and unload ----------------------------------------------
    // Makes the form's own session object (set by the session before Load).
    std::function<std::unique_ptr<BusinessRulesLink>()> MakeFormBusinessRules;
    // The form's load step: creates FormBusinessRules, sizes and hides the
    // status bar, hooks the two list views.
    void Load();
    // The form's unload step: asks AskToSaveChanges; on 2 the unload is
    // cancelled and false answered. Otherwise releases FormBusinessRules,
    // unhooks the list views, ends the modal show and answers true.
    bool Unload();
    // Drops the change mark (Apply disabled) and unloads the form, so that
    // the unload step asks nothing: closing without saving.
    bool DiscardChangesAndUnload();
    bool IsLoaded() const noexcept { return loaded_; }
    BusinessRulesLink* FormBusinessRules() const noexcept { return formBusinessRules_.get(); }
    bool ListViewsHooked() const noexcept { return hooked_; }
    void HookListViews();
    void UnhookListViews();
    // The hook: reacts to a header press (ParentNotify) and vertical scrolling.
    void ListViewHookProc(ListView& list, HookMessage message);

    // ---- Controls --------------------------------------------------------
    // One member per row of the control table (form/control_table.h).
#define DBN_DECLARE_CONTROL(kind, name, ...) ControlClass<ControlKind::kind> name;
    DBN_GUI_CONTROLS(DBN_DECLARE_CONTROL)
#undef DBN_DECLARE_CONTROL

    // The pickers that float over list rows while they are edited, in table order.
    const std::vector<ListControl*>& InPlacePickers() const noexcept {
        return inPlacePickers_;
    }

    // ---- Record selector and navigation ---------------------------------
    void cmdFirst_Click();
    void cmdPrevious_Click();
    void cmdNext_Click();
    void cmdLast_Click();
    void cmbNode_Click();

    // ---- Node pickers ---------------------------------------------------
    void HandleMSGLISTNOOPPromptBOX(ListControl& node, ListControl& number, bool inList);
    void GenericMSGLISTNOOPNode_Click(ListControl& node, ListControl& number, bool inList);

    // ---- Actions list ---------------------------------------------------
    void ResetActionsListView();
    void cmdActionsDefault_Click();
    void cmdActionsEdit_Click();
    void LVActions_ItemClick(ListItem& item);
    void GenericLVactions_ItemClick(ListItem& item, ListControl& node, ListControl& number);
    void GenericActionsSectionNodeNumber_Click(ListControl& number);
    void LVActions_MouseUp();

    // ---- Confirmation list ----------------------------------------------
    void ResetConfirmationListView();
    void cmbConfirmation_Click();
    void cmbMaxMatches_Click();
    void cmbMaxMatches_Change();
    void cmdConfirmDefault_Click();
    void cmdConfirmEdit_Click();
    void LVConfirm_ItemClick(ListItem& item);
    void cmbConfirmNode_Click();
    void cmbConfirmNumber_Click();
    void LVConfirm_MouseUp();

    // ---- OK, Cancel, Apply and change tracking --------------------------
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdApply_Click();
    void EnableApply();

    // ---- Search method and match settings -------------------------------
    void cmbMethod_Click();
    void cmbfirstMatch_Click();
    void cmbsecondMatch_Click();

    // ---- Shared helpers and validation ----------------------------------
    void GenericNumber_Change(ListControl& list, NumberChangeMode mode);
    void LeaveEditModes(bool endActions, bool endConfirmation);
    std::int16_t AskToSaveChanges();
    void ClearListItems(ListView& list);
    bool IsInstructionTypeAvailable(const std::string& name);
    bool IsPromptTypeAvailable(const std::string& name);
    bool ValidateBeforeSave();

    // The description of a target node ("" for none, NOOP, or a node that
    // does not exist), from the rows shown, what was looked up since the last
    // load or save, or one look-up.
    // A row given as except is not asked (its label may be its old target's).
    std::string TargetDescription(const std::string& typeKey, const std::string& number,
                                  const ListItem* except = nullptr);
    // Notes the labels the lists show right after a load: each is the
    // description just read of its row's target.
    void RememberShownLabels();
    // Writes the description of the row's target into its Label cell.
    void ShowTargetLabel(ListItem& row);

    // Shows an information box (information icon, OK, title "Information").
    void ShowInformation(const std::string& text);
    // Runs body under the error trap of operation: true when body completed,
    // false when an error was trapped and shown.
    bool RunTrapped(std::string_view operation, const std::function<void()>& body);

private:
    // Containers named in the control table: a control or the form itself.
    struct OnForm {};
    static constexpr OnForm Form{};
    static Control* ContainerOf(Control& container) noexcept {
        return &container;
    }
    static Control* ContainerOf(OnForm) noexcept {
        return nullptr;
    }
    // Adds a control built from the table to the form, in its start state.
    void Register(Control& control, const ControlStart& start);
    void Register(Button& button, const ControlStart& start);
    void Register(ListControl& list, const ControlStart& start);
    void WireEvents();
    // Asks the label validator about txtDescription; a refused label is told
    // to the operator and answers false.
    bool CheckLabel();
    // Apply's work: ValidateBeforeSave, the label check, then the save;
    // true when the save committed (the mark is then cleared).
    bool ApplyChanges();

    FormServices& services_;
    std::vector<Control*> controls_;
    std::vector<ListControl*> inPlacePickers_;
    InPlaceEditedList actionsList_;
    InPlaceEditedList confirmationList_;
    FocusScope focus_;
    int width_ = kClientWidth;
    std::vector<std::pair<int, std::function<void(FormChange)>>> observers_;
    int nextObserver_ = 1;
    void NotifyForm(FormChange change);

    std::int16_t configID_ = 0;
    std::int16_t partitionID_ = 0;
    std::int16_t nodeNumber_ = 0;
    std::optional<std::string> shownLabel_;
    std::int16_t shownNumber_ = 0;
    // Descriptions looked up since the node was loaded or saved, by type ID
    // and number.
    std::map<std::pair<std::string, std::string>, std::string> descriptions_;
    std::vector<list_rows::RowCells> asideNames_;

    std::unique_ptr<KeyedCollection> nodeNames_;
    std::unique_ptr<KeyedCollection> maxNodeNumbers_;
    std::unique_ptr<KeyedCollection> notAvailableAllInstructions_;
    std::unique_ptr<KeyedCollection> notAvailableMSGLISTNOOP_;

    std::unique_ptr<BusinessRulesLink> formBusinessRules_;
    bool loaded_ = false;
    bool hooked_ = false;
    // Set while the confirmation section is being filled by loading or by
    // Default, so that the switch-on handling adds no rows of its own.
    bool suppressConfirmRows_ = false;

public:
    // Loading (and Default) fill LVConfirm themselves; while this guard is
    // alive the switch-on and number-of-matches handling add no rows.
    class ConfirmRowsGuard {
    public:
        explicit ConfirmRowsGuard(GUI& gui) : gui_(gui), previous_(gui.suppressConfirmRows_) {
            gui_.suppressConfirmRows_ = true;
        }
        ~ConfirmRowsGuard() { gui_.suppressConfirmRows_ = previous_; }
        ConfirmRowsGuard(const ConfirmRowsGuard&) = delete;
        ConfirmRowsGuard& operator=(const ConfirmRowsGuard&) = delete;

    private:
        GUI& gui_;
        bool previous_;
    };
    bool ConfirmRowsSuppressed() const noexcept {
        return suppressConfirmRows_;
    }
};

}  // namespace dbn::form
