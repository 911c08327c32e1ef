// The form's construction: every control with its container, caption,
// position, tab index and start state; the form's own properties, the
// collections, the load and unload steps and the list-view hook.

#include "form/gui.h"

#include "core/component_error.h"
#include "core/text_validator.h"
#include "form/error_trap.h"

#include <algorithm>
#include <utility>

namespace dbn::form {

namespace {

// The status bar's first panel is this much narrower than the form.
constexpr int kStatusPanelMargin = 100;

KeyedCollection& Required(const std::unique_ptr<KeyedCollection>& collection) {
    if (!collection) {
        RaiseObjectNotSet();
    }
    return *collection;
}

}  // namespace

GUI::GUI(FormServices& services)
    :
#define DBN_CONSTRUCT_CONTROL(kind, name, container, left, top, width, height, tab, caption,      \
                              start)                                                              \
    name(MakeControl<ControlKind::kind>({#name, {left, top, width, height}, tab, caption, start}, \
                                        ContainerOf(container))),
      DBN_GUI_CONTROLS(DBN_CONSTRUCT_CONTROL)
#undef DBN_CONSTRUCT_CONTROL
          services_(services),
      actionsList_(LVActions, cmdActionsEdit, cmdActionsDefault,
                   {.pairs = {{&cmbValidMatchNode, &cmbValidMatchNumber},
                              {&cmbAbortNode, &cmbAbortNumber},
                              {&cmbStarNode, &cmbStarNumber},
                              {&cmbPoundNode, &cmbPoundNumber},
                              {&cmbZeroNode, &cmbZeroNumber}},
                    .nameColumnWidth = 1000,
                    .targetColumnWidth = 1500,
                    .scrollingHidesPickers = false}),
      // Every row of the confirmation list is edited with the same pair.
      confirmationList_(LVConfirm, cmdConfirmEdit, cmdConfirmDefault,
                        {.pairs = {{&cmbConfirmNode, &cmbConfirmNumber}},
                         .nameColumnWidth = 1600,
                         .targetColumnWidth = 1600,
                         .scrollingHidesPickers = true}) {
#define DBN_REGISTER_CONTROL(kind, name, container, left, top, width, height, tab, caption, start) \
    Register(name, start);
    DBN_GUI_CONTROLS(DBN_REGISTER_CONTROL)
#undef DBN_REGISTER_CONTROL
    WireEvents();
    RegisterTextValidator();
}

GUI::~GUI() = default;

void GUI::Register(Control& control, const ControlStart& start) {
    controls_.push_back(&control);
    control.AttachFocusScope(&focus_);
    if (start.hidden) {
        control.SetVisible(false);
    }
    if (start.disabled) {
        control.SetEnabled(false);
    }
}

void GUI::Register(Button& button, const ControlStart& start) {
    button.SetDefault(start.isDefault);
    button.SetCancel(start.isCancel);
    Register(static_cast<Control&>(button), start);
}

void GUI::Register(ListControl& list, const ControlStart& start) {
    if (start.inPlacePicker) {
        inPlacePickers_.push_back(&list);
    }
    Register(static_cast<Control&>(list), start);
}

Control* GUI::FindControl(const std::string& name) const {
    const auto found =
        std::find_if(controls_.begin(), controls_.end(),
                     [&](const Control* control) { return control->Name() == name; });
    return found == controls_.end() ? nullptr : *found;
}

void GUI::SetWidth(int width) {
    if (width_ == width) {
        return;
    }
    width_ = width;
    NotifyForm(FormChange::Width);
}

std::string GUI::Title() const {
    if (!shownLabel_) {
        return kCaption;
    }
    std::string title = "DBN " + std::to_string(shownNumber_);
    if (!shownLabel_->empty()) {
        title += " " + *shownLabel_;
    }
    return title + " - configuration " + std::to_string(configID_) + ", partition " +
           std::to_string(partitionID_);
}

void GUI::NameShownNode(std::int16_t number, const std::string& label) {
    shownNumber_ = number;
    shownLabel_ = label;
    // A load or a save may have changed which nodes exist.
    descriptions_.clear();
    NotifyForm(FormChange::Title);
}

int GUI::Observe(std::function<void(FormChange)> observer) {
    const int handle = nextObserver_++;
    observers_.emplace_back(handle, std::move(observer));
    return handle;
}

void GUI::Unobserve(int handle) {
    std::erase_if(observers_, [handle](const auto& entry) { return entry.first == handle; });
}

void GUI::NotifyForm(FormChange change) {
    // A copy, so that an observer may observe or unobserve while being told.
    const auto observers = observers_;
    for (const auto& [handle, observer] : observers) {
        if (observer) {
            observer(change);
        }
    }
}

// ---- Collections ---------------------------------------------------------

void GUI::CreateCollections() {
    nodeNames_ = std::make_unique<KeyedCollection>();
    maxNodeNumbers_ = std::make_unique<KeyedCollection>();
    notAvailableAllInstructions_ = std::make_unique<KeyedCollection>();
    notAvailableMSGLISTNOOP_ = std::make_unique<KeyedCollection>();
}

void GUI::ReleaseCollections() {
    nodeNames_.reset();
    maxNodeNumbers_.reset();
    notAvailableAllInstructions_.reset();
    notAvailableMSGLISTNOOP_.reset();
}

KeyedCollection& GUI::NodeNameCollection() {
    return Required(nodeNames_);
}
KeyedCollection& GUI::MaxNodeNumberCollection() {
    return Required(maxNodeNumbers_);
}
KeyedCollection& GUI::NotAvailableAllInstructionsNode() {
    return Required(notAvailableAllInstructions_);
}
KeyedCollection& GUI::NotAvailableMSGLISTNOOPNode() {
    return Required(notAvailableMSGLISTNOOP_);
}

// ---- Load and unload -----------------------------------------------------

void GUI::Load() {
    if (MakeFormBusinessRules) {
        formBusinessRules_ = MakeFormBusinessRules();
    }
    StatusBar1.SetPanelWidth(Width() - kStatusPanelMargin);
    StatusBar1.SetVisible(false);
    HookListViews();
    loaded_ = true;
    NotifyForm(FormChange::Loaded);
}

bool GUI::Unload() {
    if (AskToSaveChanges() == kAnswerCancel) {
        return false;
    }
    formBusinessRules_.reset();
    UnhookListViews();
    focus_.Clear();
    loaded_ = false;
    services_.EndModal(*this);
    NotifyForm(FormChange::Unloaded);
    return true;
}

void GUI::HookListViews() {
    hooked_ = true;
}

void GUI::UnhookListViews() {
    hooked_ = false;
}

void GUI::ListViewHookProc(ListView& list, HookMessage message) {
    InPlaceEditedList& edited = &list == &LVActions ? actionsList_ : confirmationList_;
    if (&list != &LVActions && &list != &LVConfirm) {
        return;
    }
    // A header press hides the pickers; scrolling only where the rows move
    // under them.
    if (message == HookMessage::ParentNotify || edited.ScrollingHidesPickers()) {
        edited.HidePickers();
    }
}

// ---- Messages and the error trap ------------------------------------------

void GUI::ShowInformation(const std::string& text) {
    services_.MsgBox(text, MsgBoxButtons::OK, MsgBoxIcon::Information, "Information");
}

bool GUI::RunTrapped(std::string_view operation, const std::function<void()>& body) {
    return form::RunTrapped(services_, operation, body);
}

}  // namespace dbn::form
