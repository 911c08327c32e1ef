// The form's construction: every control with its container, caption,
// position, tab index and start state; the form's own properties, the
// collections, the load and unload steps and the list-view hook.

#include "form/gui.h"

#include "core/component_error.h"
#include "form/error_trap.h"
#include "form/in_place_pickers.h"
#include "form/text_validator.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace dbn::form {

namespace {

ListControl Choice(std::string name, Control* container, Rect rect, int tab) {
    return ListControl(ControlKind::ChoiceList, std::move(name), container, rect, tab);
}

ListControl Editable(std::string name, Control* container, Rect rect, int tab) {
    return ListControl(ControlKind::EditableList, std::move(name), container, rect, tab);
}

// The in-place editors of the actions list: one row of a node-type list and a
// node-number list per action.
Rect ActionNodeAt(int top) {
    return {1200, top, 975, kInPlacePickerHeight};
}
Rect ActionNumberAt(int top) {
    return {2160, top, 700, kInPlacePickerHeight};
}

constexpr int kValidMatchTop = 240;
constexpr int kAbortTop = 600;
constexpr int kStarTop = 960;
constexpr int kPoundTop = 1320;
constexpr int kZeroTop = 1680;

// The status bar's first panel is this much narrower than the form.
constexpr int kStatusPanelMargin = 100;

KeyedCollection& Required(const std::unique_ptr<KeyedCollection>& collection) {
    if (!collection) {
        RaiseError(91, "Object variable or With block variable not set");
    }
    return *collection;
}

}  // namespace

GUI::GUI(FormServices& services)
    :  // Directly on the form
      Frame1("Frame1", nullptr, {0, 0, 10455, 7935}, 86, "", false),
      fraLanguage("fraLanguage", nullptr, {600, 2520, 3975, 1215}, 16, "", true),
      fraErrorSettings("fraErrorSettings", nullptr, {4920, 2280, 5415, 2175}, 53, "Error Settings",
                       true),
      fraCustomSettings("fraCustomSettings", nullptr, {4800, 0, 5655, 8055}, 35, "Custom Settings",
                        true),
      txtDIR("txtDIR", nullptr, {1320, 1680, 975, 315}, 12, "DIR", 0, true),
      StatusBar1("StatusBar1", nullptr, {0, 8040, 10515, 375}, 85),
      lstNodeTypeName("lstNodeTypeName", nullptr, {120, 9600, 1575, 1230}, 89),
      lstNodeTypeID("lstNodeTypeID", nullptr, {1680, 9600, 1335, 1230}, 87),
      lstNodeNumber("lstNodeNumber", nullptr, {3240, 9600, 1335, 1230}, 88),
      LVTemp("LVTemp", nullptr, {11160, 1440, 2535, 1935}, 91),
      ImageList1("ImageList1"),
      // In Frame1
      cmdFirst("cmdFirst", &Frame1, {600, 120, 375, 315}, 0, "", ButtonPicture::First),
      cmdPrevious("cmdPrevious", &Frame1, {975, 120, 375, 315}, 1, "", ButtonPicture::Previous),
      cmbNode(Choice("cmbNode", &Frame1, {1350, 120, 1095, 315}, 2)),
      lblRecordPosition("lblRecordPosition", &Frame1, {2445, 120, 855, 315}, 3, "n/m"),
      cmdNext("cmdNext", &Frame1, {3300, 120, 375, 315}, 4, "", ButtonPicture::Next),
      cmdLast("cmdLast", &Frame1, {3675, 120, 375, 315}, 5, "", ButtonPicture::Last),
      lblLabel("lblLabel", &Frame1, {240, 720, 435, 195}, 6, "Label:"),
      txtDescription("txtDescription", &Frame1, {1320, 720, 3255, 285}, 7, "", 30),
      lblGreeting("lblGreeting", &Frame1, {240, 1200, 675, 195}, 8, "Greeting:"),
      cmbGreetingNode(Choice("cmbGreetingNode", &Frame1, {1320, 1200, 975, 315}, 9)),
      cmbGreetingNumber(Editable("cmbGreetingNumber", &Frame1, {2280, 1200, 700, 315}, 10)),
      lblDirectory("lblDirectory", &Frame1, {240, 1680, 720, 195}, 11, "Directory:"),
      cmbDirectory(Editable("cmbDirectory", &Frame1, {2280, 1680, 735, 315}, 13)),
      lblMethod("lblMethod", &Frame1, {240, 2160, 600, 195}, 14, "Method:"),
      cmbMethod(Choice("cmbMethod", &Frame1, {1320, 2160, 1695, 315}, 15)),
      fraActions("fraActions", &Frame1, {120, 4200, 4455, 2535}, 21, "Actions", true),
      cmdOK("cmdOK", &Frame1, {435, 7320, 855, 375}, 82, "OK"),
      cmdCancel("cmdCancel", &Frame1, {1800, 7320, 855, 375}, 83, "Cancel"),
      cmdApply("cmdApply", &Frame1, {3120, 7320, 855, 372}, 84, "Apply"),
      // In fraLanguage
      lblLanguage1("lblLanguage1", &fraLanguage, {240, 240, 900, 195}, 17, "Language 1:"),
      cmbLanguage1(Choice("cmbLanguage1", &fraLanguage, {1320, 240, 1695, 315}, 18)),
      lblLanguage2("lblLanguage2", &fraLanguage, {240, 720, 900, 195}, 19, "Language 2:"),
      cmbLanguage2(Choice("cmbLanguage2", &fraLanguage, {1320, 720, 1695, 315}, 20)),
      // In fraActions
      LVActions("LVActions", &fraActions, {120, 240, 4215, 1815}, 22),
      cmbValidMatchNode(Choice("cmbValidMatchNode", &fraActions, ActionNodeAt(kValidMatchTop), 23)),
      cmbValidMatchNumber(
          Editable("cmbValidMatchNumber", &fraActions, ActionNumberAt(kValidMatchTop), 24)),
      cmbAbortNode(Choice("cmbAbortNode", &fraActions, ActionNodeAt(kAbortTop), 25)),
      cmbAbortNumber(Editable("cmbAbortNumber", &fraActions, ActionNumberAt(kAbortTop), 26)),
      cmbStarNode(Choice("cmbStarNode", &fraActions, ActionNodeAt(kStarTop), 27)),
      cmbStarNumber(Editable("cmbStarNumber", &fraActions, ActionNumberAt(kStarTop), 28)),
      cmbPoundNode(Choice("cmbPoundNode", &fraActions, ActionNodeAt(kPoundTop), 29)),
      cmbPoundNumber(Editable("cmbPoundNumber", &fraActions, ActionNumberAt(kPoundTop), 30)),
      cmbZeroNode(Choice("cmbZeroNode", &fraActions, ActionNodeAt(kZeroTop), 31)),
      cmbZeroNumber(Editable("cmbZeroNumber", &fraActions, ActionNumberAt(kZeroTop), 32)),
      cmdActionsEdit("cmdActionsEdit", &fraActions, {2520, 2160, 855, 255}, 33, "Edit"),
      cmdActionsDefault("cmdActionsDefault", &fraActions, {3480, 2160, 855, 255}, 34, "Default"),
      // In fraCustomSettings
      fraMode("fraMode", &fraCustomSettings, {120, 240, 5415, 1935}, 36, "Mode", true),
      fraConfirmation("fraConfirmation", &fraCustomSettings, {120, 4560, 5415, 2205}, 66,
                      "Confirmation", true),
      fraonExit("fraonExit", &fraCustomSettings, {120, 6840, 5415, 1095}, 76, "On Exit", true),
      // In fraMode
      lblFirstMatch("lblFirstMatch", &fraMode, {1200, 120, 1215, 255}, 37, "First Match",
                    FontStyle::BoldUnderlined),
      lblMatch("lblMatch", &fraMode, {120, 360, 495, 195}, 38, "Match:"),
      cmbfirstMatch(Choice("cmbfirstMatch", &fraMode, {1200, 360, 1695, 315}, 39)),
      lblMinDigits("lblMinDigits", &fraMode, {120, 720, 735, 195}, 40, "Min Digits:"),
      cmbFirstMinDigits(Editable("cmbFirstMinDigits", &fraMode, {1200, 720, 735, 315}, 41)),
      lblMaxDigits("lblMaxDigits", &fraMode, {120, 1080, 795, 195}, 42, "Max Digits:"),
      cmbFirstMaxDigits(Editable("cmbFirstMaxDigits", &fraMode, {1200, 1080, 735, 315}, 43)),
      lblPrompt("lblPrompt", &fraMode, {120, 1440, 570, 195}, 44, "Prompt:"),
      cmbFirstMatchPrompt(Choice("cmbFirstMatchPrompt", &fraMode, {1200, 1440, 975, 315}, 45)),
      cmbFirstMatchPromptNumber(
          Editable("cmbFirstMatchPromptNumber", &fraMode, {2160, 1440, 700, 315}, 46)),
      lblSecondMatch("lblSecondMatch", &fraMode, {3240, 120, 1215, 255}, 47, "Second Match",
                     FontStyle::BoldUnderlined),
      cmbsecondMatch(Choice("cmbsecondMatch", &fraMode, {3240, 360, 1695, 315}, 48)),
      cmbSecondMinDigits(Editable("cmbSecondMinDigits", &fraMode, {3240, 720, 735, 315}, 49)),
      cmbSecondMaxDigits(Editable("cmbSecondMaxDigits", &fraMode, {3240, 1080, 735, 315}, 50)),
      cmbSecondMatchPrompt(Choice("cmbSecondMatchPrompt", &fraMode, {3240, 1440, 975, 315}, 51)),
      cmbSecondMatchPromptNumber(
          Editable("cmbSecondMatchPromptNumber", &fraMode, {4200, 1440, 700, 315}, 52)),
      // In fraErrorSettings
      lblTimeout("lblTimeout", &fraErrorSettings, {120, 240, 630, 195}, 54, "Timeout:"),
      cmbTimeoutNode(Choice("cmbTimeoutNode", &fraErrorSettings, {2040, 240, 975, 315}, 55)),
      cmbTimeoutNumber(Editable("cmbTimeoutNumber", &fraErrorSettings, {3000, 240, 700, 315}, 56)),
      lblInvalid("lblInvalid", &fraErrorSettings, {120, 600, 540, 195}, 57, "Invalid:"),
      cmbInvalidNode(Choice("cmbInvalidNode", &fraErrorSettings, {2040, 600, 975, 315}, 58)),
      cmbInvalidNumber(Editable("cmbInvalidNumber", &fraErrorSettings, {3000, 600, 700, 315}, 59)),
      lblSelTimeOut("lblSelTimeOut", &fraErrorSettings, {120, 960, 1755, 195}, 60,
                    "Selection Time Out(sec):"),
      cmbSelTimeOut(Editable("cmbSelTimeOut", &fraErrorSettings, {2040, 960, 735, 315}, 61)),
      lblDigitTimeOut("lblDigitTimeOut", &fraErrorSettings, {120, 1320, 1425, 195}, 62,
                      "Digit Time Out(sec):"),
      cmbDigitTimeOut(Editable("cmbDigitTimeOut", &fraErrorSettings, {2040, 1350, 735, 315}, 63)),
      lblRetryLimit("lblRetryLimit", &fraErrorSettings, {120, 1750, 825, 195}, 64, "Retry Limit:"),
      cmbRetryLimit(Editable("cmbRetryLimit", &fraErrorSettings, {2040, 1750, 735, 315}, 65)),
      // In fraConfirmation
      lblConfirmation("lblConfirmation", &fraConfirmation, {165, 240, 975, 195}, 67,
                      "Confirmation:"),
      cmbConfirmation(Choice("cmbConfirmation", &fraConfirmation, {1320, 240, 735, 315}, 68)),
      lblMaxMatches("lblMaxMatches", &fraConfirmation, {2520, 240, 1005, 195}, 69, "Max Matches:"),
      cmbMaxMatches(Editable("cmbMaxMatches", &fraConfirmation, {3720, 240, 735, 315}, 70)),
      LVConfirm("LVConfirm", &fraConfirmation, {120, 600, 5175, 1215}, 71),
      cmbConfirmNode(Choice("cmbConfirmNode", &fraConfirmation, {1200, 720, 975, 315}, 72)),
      cmbConfirmNumber(Editable("cmbConfirmNumber", &fraConfirmation, {2160, 720, 700, 315}, 73)),
      cmdConfirmEdit("cmdConfirmEdit", &fraConfirmation, {3480, 1880, 855, 255}, 74, "Edit"),
      cmdConfirmDefault("cmdConfirmDefault", &fraConfirmation, {4440, 1880, 855, 255}, 75,
                        "Default"),
      // In fraonExit
      lblExitPrompt("lblExitPrompt", &fraonExit, {120, 240, 885, 195}, 77, "Exit Prompt:"),
      cmbExitPromptNode(Choice("cmbExitPromptNode", &fraonExit, {1200, 240, 975, 315}, 78)),
      cmbExitPromptNumber(Editable("cmbExitPromptNumber", &fraonExit, {2160, 240, 700, 315}, 79)),
      lblPlayName("lblPlayName", &fraonExit, {120, 650, 810, 195}, 80, "Play Name:"),
      cmbPlayName(Choice("cmbPlayName", &fraonExit, {1200, 650, 735, 315}, 81)),
      services_(services) {
    RegisterControls();

    // Start state
    cmdOK.SetDefault(true);
    cmdCancel.SetCancel(true);
    cmdApply.SetEnabled(false);
    for (PlainList* list : {&lstNodeTypeName, &lstNodeTypeID, &lstNodeNumber}) {
        list->SetVisible(false);
    }
    for (ListControl* editor :
         {&cmbValidMatchNode, &cmbValidMatchNumber, &cmbAbortNode, &cmbAbortNumber, &cmbStarNode,
          &cmbStarNumber, &cmbPoundNode, &cmbPoundNumber, &cmbZeroNode, &cmbZeroNumber,
          &cmbConfirmNode, &cmbConfirmNumber}) {
        editor->SetVisible(false);
    }
    lblMaxMatches.SetEnabled(false);
    cmbMaxMatches.SetEnabled(false);

    WireEvents();
    RegisterTextValidator();
}

GUI::~GUI() = default;

void GUI::RegisterControls() {
    controls_ = {
        &Frame1, &fraLanguage, &fraErrorSettings, &fraCustomSettings, &txtDIR, &StatusBar1,
        &lstNodeTypeName, &lstNodeTypeID, &lstNodeNumber, &LVTemp, &ImageList1,
        // Frame1
        &cmdFirst, &cmdPrevious, &cmbNode, &lblRecordPosition, &cmdNext, &cmdLast, &lblLabel,
        &txtDescription, &lblGreeting, &cmbGreetingNode, &cmbGreetingNumber, &lblDirectory,
        &cmbDirectory, &lblMethod, &cmbMethod, &fraActions, &cmdOK, &cmdCancel, &cmdApply,
        // fraLanguage
        &lblLanguage1, &cmbLanguage1, &lblLanguage2, &cmbLanguage2,
        // fraActions
        &LVActions, &cmbValidMatchNode, &cmbValidMatchNumber, &cmbAbortNode, &cmbAbortNumber,
        &cmbStarNode, &cmbStarNumber, &cmbPoundNode, &cmbPoundNumber, &cmbZeroNode, &cmbZeroNumber,
        &cmdActionsEdit, &cmdActionsDefault,
        // fraCustomSettings
        &fraMode, &fraConfirmation, &fraonExit,
        // fraMode
        &lblFirstMatch, &lblMatch, &cmbfirstMatch, &lblMinDigits, &cmbFirstMinDigits, &lblMaxDigits,
        &cmbFirstMaxDigits, &lblPrompt, &cmbFirstMatchPrompt, &cmbFirstMatchPromptNumber,
        &lblSecondMatch, &cmbsecondMatch, &cmbSecondMinDigits, &cmbSecondMaxDigits,
        &cmbSecondMatchPrompt, &cmbSecondMatchPromptNumber,
        // fraErrorSettings
        &lblTimeout, &cmbTimeoutNode, &cmbTimeoutNumber, &lblInvalid, &cmbInvalidNode,
        &cmbInvalidNumber, &lblSelTimeOut, &cmbSelTimeOut, &lblDigitTimeOut, &cmbDigitTimeOut,
        &lblRetryLimit, &cmbRetryLimit,
        // fraConfirmation
        &lblConfirmation, &cmbConfirmation, &lblMaxMatches, &cmbMaxMatches, &LVConfirm,
        &cmbConfirmNode, &cmbConfirmNumber, &cmdConfirmEdit, &cmdConfirmDefault,
        // fraonExit
        &lblExitPrompt, &cmbExitPromptNode, &cmbExitPromptNumber, &lblPlayName, &cmbPlayName};
    for (Control* control : controls_) {
        control->AttachFocusScope(&focus_);
    }
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
    if (message == HookMessage::VerticalScroll) {
        // Scrolling moves the rows under the confirmation editors; the actions
        // editors stay where they are.
        if (&list == &LVConfirm) {
            cmbConfirmNode.SetVisible(false);
            cmbConfirmNumber.SetVisible(false);
        }
        return;
    }
    if (&list == &LVActions) {
        for (ListControl* editor : {&cmbValidMatchNode, &cmbValidMatchNumber, &cmbAbortNode,
                                    &cmbAbortNumber, &cmbStarNode, &cmbStarNumber, &cmbPoundNode,
                                    &cmbPoundNumber, &cmbZeroNode, &cmbZeroNumber}) {
            editor->SetVisible(false);
        }
    } else if (&list == &LVConfirm) {
        cmbConfirmNode.SetVisible(false);
        cmbConfirmNumber.SetVisible(false);
    }
}

// ---- Messages and the error trap ------------------------------------------

void GUI::ShowInformation(const std::string& text) {
    services_.MsgBox(text, MsgBoxButtons::OK, MsgBoxIcon::Information, "Information");
}

bool GUI::Trapped(std::string_view operation, const std::function<void()>& body) {
    return RunTrapped(services_, operation, body);
}

}  // namespace dbn::form
