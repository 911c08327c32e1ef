#pragma once

// The editor's controls, each declared once. DBN_GUI_CONTROLS is the one
// table of them; GUI expands it into its members, their construction, the
// list of all controls (lookup by name) and the list of in-place pickers.

#include "form/controls/list_control.h"
#include "form/controls/list_view.h"
#include "form/controls/simple_controls.h"

#include <type_traits>

namespace dbn::form {

// What sets a control apart at start beyond its caption: its look and its
// start state. Each table row names one of the presets below.
struct ControlStart {
    bool borderless = false;  // a frame drawn without border or caption
    bool readOnly = false;    // a text field the operator cannot type into
    int maxLength = 0;        // a text field's longest text, 0 = unlimited
    FontStyle font = FontStyle::Regular;
    ButtonPicture picture = ButtonPicture::None;
    bool isDefault = false;  // pressed by Enter
    bool isCancel = false;   // pressed by Esc
    bool hidden = false;
    bool disabled = false;
    // Floats over a row of a list view while the row is edited; hidden at start.
    bool inPlacePicker = false;
};

namespace start {
inline constexpr ControlStart Plain{};
inline constexpr ControlStart Borderless{.borderless = true};
inline constexpr ControlStart ReadOnly{.readOnly = true};
inline constexpr ControlStart Max30Characters{.maxLength = 30};
inline constexpr ControlStart BoldUnderlined{.font = FontStyle::BoldUnderlined};
inline constexpr ControlStart FirstPicture{.picture = ButtonPicture::First};
inline constexpr ControlStart PreviousPicture{.picture = ButtonPicture::Previous};
inline constexpr ControlStart NextPicture{.picture = ButtonPicture::Next};
inline constexpr ControlStart LastPicture{.picture = ButtonPicture::Last};
inline constexpr ControlStart EnterButton{.isDefault = true};
inline constexpr ControlStart EscButton{.isCancel = true};
inline constexpr ControlStart Disabled{.disabled = true};
inline constexpr ControlStart Hidden{.hidden = true};
inline constexpr ControlStart InPlacePicker{.hidden = true, .inPlacePicker = true};
}  // namespace start

// The class that models each kind of control.
template <ControlKind kind>
struct ControlClassOf;
template <>
struct ControlClassOf<ControlKind::ChoiceList> {
    using type = ListControl;
};
template <>
struct ControlClassOf<ControlKind::EditableList> {
    using type = ListControl;
};
template <>
struct ControlClassOf<ControlKind::TextField> {
    using type = TextField;
};
template <>
struct ControlClassOf<ControlKind::Label> {
    using type = Label;
};
template <>
struct ControlClassOf<ControlKind::Button> {
    using type = Button;
};
template <>
struct ControlClassOf<ControlKind::Frame> {
    using type = Frame;
};
template <>
struct ControlClassOf<ControlKind::ListView> {
    using type = ListView;
};
template <>
struct ControlClassOf<ControlKind::PlainList> {
    using type = PlainList;
};
template <>
struct ControlClassOf<ControlKind::StatusBar> {
    using type = StatusBar;
};
template <>
struct ControlClassOf<ControlKind::ImageList> {
    using type = ImageList;
};
template <ControlKind kind>
using ControlClass = typename ControlClassOf<kind>::type;

// One row of the table, as the construction of a control reads it.
struct ControlRow {
    const char* name;
    Rect rect;
    int tabIndex;
    const char* caption;  // caption, or the initial text of a text field
    ControlStart start;
};

// Builds the control of one row inside container (nullptr: on the form).
template <ControlKind kind>
ControlClass<kind> MakeControl(const ControlRow& row, Control* container) {
    using Class = ControlClass<kind>;
    if constexpr (std::is_same_v<Class, ListControl>) {
        return ListControl(kind, row.name, container, row.rect, row.tabIndex);
    } else if constexpr (std::is_same_v<Class, TextField>) {
        return TextField(row.name, container, row.rect, row.tabIndex, row.caption,
                         row.start.maxLength, row.start.readOnly);
    } else if constexpr (std::is_same_v<Class, Label>) {
        return Label(row.name, container, row.rect, row.tabIndex, row.caption, row.start.font);
    } else if constexpr (std::is_same_v<Class, Button>) {
        return Button(row.name, container, row.rect, row.tabIndex, row.caption, row.start.picture);
    } else if constexpr (std::is_same_v<Class, Frame>) {
        return Frame(row.name, container, row.rect, row.tabIndex, row.caption,
                     !row.start.borderless);
    } else if constexpr (std::is_same_v<Class, ImageList>) {
        return ImageList(row.name);
    } else {
        return Class(row.name, container, row.rect, row.tabIndex);
    }
}

// The table. Columns: kind, name, container (Form = directly on the form),
// left, top, width and height in twips, tab index, caption or initial text,
// start. Containers come before what they contain.
// clang-format off
#define DBN_GUI_CONTROLS(X)                                                                           \
    /* Directly on the form */                                                                        \
    X(Frame,        Frame1,                     Form,              0,     0, 10455, 7935, 86, "",                 start::Borderless)      \
    X(Frame,        fraLanguage,                Form,            600,  2520,  3975, 1215, 16, "",                 start::Plain)           \
    X(Frame,        fraErrorSettings,           Form,           4920,  2280,  5415, 2175, 53, "Error Settings",   start::Plain)           \
    X(Frame,        fraCustomSettings,          Form,           4800,     0,  5655, 8055, 35, "Custom Settings",  start::Plain)           \
    X(TextField,    txtDIR,                     Form,           1320,  1680,   975,  315, 12, "DIR",              start::ReadOnly)        \
    X(StatusBar,    StatusBar1,                 Form,              0,  8040, 10515,  375, 85, "",                 start::Plain)           \
    X(PlainList,    lstNodeTypeName,            Form,            120,  9600,  1575, 1230, 89, "",                 start::Hidden)          \
    X(PlainList,    lstNodeTypeID,              Form,           1680,  9600,  1335, 1230, 87, "",                 start::Hidden)          \
    X(PlainList,    lstNodeNumber,              Form,           3240,  9600,  1335, 1230, 88, "",                 start::Hidden)          \
    X(ListView,     LVTemp,                     Form,          11160,  1440,  2535, 1935, 91, "",                 start::Plain)           \
    X(ImageList,    ImageList1,                 Form,              0,     0,     0,    0,  0, "",                 start::Plain)           \
    /* In Frame1 */                                                                                   \
    X(Button,       cmdFirst,                   Frame1,          600,   120,   375,  315,  0, "",                 start::FirstPicture)    \
    X(Button,       cmdPrevious,                Frame1,          975,   120,   375,  315,  1, "",                 start::PreviousPicture) \
    X(ChoiceList,   cmbNode,                    Frame1,         1350,   120,  1095,  315,  2, "",                 start::Plain)           \
    X(Label,        lblRecordPosition,          Frame1,         2445,   120,   855,  315,  3, "n/m",              start::Plain)           \
    X(Button,       cmdNext,                    Frame1,         3300,   120,   375,  315,  4, "",                 start::NextPicture)     \
    X(Button,       cmdLast,                    Frame1,         3675,   120,   375,  315,  5, "",                 start::LastPicture)     \
    X(Label,        lblLabel,                   Frame1,          240,   720,   435,  195,  6, "Label:",           start::Plain)           \
    X(TextField,    txtDescription,             Frame1,         1320,   720,  3255,  285,  7, "",                 start::Max30Characters) \
    X(Label,        lblGreeting,                Frame1,          240,  1200,   675,  195,  8, "Greeting:",        start::Plain)           \
    X(ChoiceList,   cmbGreetingNode,            Frame1,         1320,  1200,   975,  315,  9, "",                 start::Plain)           \
    X(EditableList, cmbGreetingNumber,          Frame1,         2280,  1200,   700,  315, 10, "",                 start::Plain)           \
    X(Label,        lblDirectory,               Frame1,          240,  1680,   720,  195, 11, "Directory:",       start::Plain)           \
    X(EditableList, cmbDirectory,               Frame1,         2280,  1680,   735,  315, 13, "",                 start::Plain)           \
    X(Label,        lblMethod,                  Frame1,          240,  2160,   600,  195, 14, "Method:",          start::Plain)           \
    X(ChoiceList,   cmbMethod,                  Frame1,         1320,  2160,  1695,  315, 15, "",                 start::Plain)           \
    X(Frame,        fraActions,                 Frame1,          120,  4200,  4455, 2535, 21, "Actions",          start::Plain)           \
    X(Button,       cmdOK,                      Frame1,          435,  7320,   855,  375, 82, "OK",               start::EnterButton)     \
    X(Button,       cmdCancel,                  Frame1,         1800,  7320,   855,  375, 83, "Cancel",           start::EscButton)       \
    X(Button,       cmdApply,                   Frame1,         3120,  7320,   855,  372, 84, "Apply",            start::Disabled)        \
    /* In fraLanguage */                                                                              \
    X(Label,        lblLanguage1,               fraLanguage,     240,   240,   900,  195, 17, "Language 1:",      start::Plain)           \
    X(ChoiceList,   cmbLanguage1,               fraLanguage,    1320,   240,  1695,  315, 18, "",                 start::Plain)           \
    X(Label,        lblLanguage2,               fraLanguage,     240,   720,   900,  195, 19, "Language 2:",      start::Plain)           \
    X(ChoiceList,   cmbLanguage2,               fraLanguage,    1320,   720,  1695,  315, 20, "",                 start::Plain)           \
    /* In fraActions: the list and a picker pair per row (valid match, abort, star, pound, zero) */ \
    X(ListView,     LVActions,                  fraActions,      120,   240,  4215, 1815, 22, "",                 start::Plain)           \
    X(ChoiceList,   cmbValidMatchNode,          fraActions,     1200,   240,   975,  315, 23, "",                 start::InPlacePicker)   \
    X(EditableList, cmbValidMatchNumber,        fraActions,     2160,   240,   700,  315, 24, "",                 start::InPlacePicker)   \
    X(ChoiceList,   cmbAbortNode,               fraActions,     1200,   600,   975,  315, 25, "",                 start::InPlacePicker)   \
    X(EditableList, cmbAbortNumber,             fraActions,     2160,   600,   700,  315, 26, "",                 start::InPlacePicker)   \
    X(ChoiceList,   cmbStarNode,                fraActions,     1200,   960,   975,  315, 27, "",                 start::InPlacePicker)   \
    X(EditableList, cmbStarNumber,              fraActions,     2160,   960,   700,  315, 28, "",                 start::InPlacePicker)   \
    X(ChoiceList,   cmbPoundNode,               fraActions,     1200,  1320,   975,  315, 29, "",                 start::InPlacePicker)   \
    X(EditableList, cmbPoundNumber,             fraActions,     2160,  1320,   700,  315, 30, "",                 start::InPlacePicker)   \
    X(ChoiceList,   cmbZeroNode,                fraActions,     1200,  1680,   975,  315, 31, "",                 start::InPlacePicker)   \
    X(EditableList, cmbZeroNumber,              fraActions,     2160,  1680,   700,  315, 32, "",                 start::InPlacePicker)   \
    X(Button,       cmdActionsEdit,             fraActions,     2520,  2160,   855,  255, 33, "Edit",             start::Plain)           \
    X(Button,       cmdActionsDefault,          fraActions,     3480,  2160,   855,  255, 34, "Default",          start::Plain)           \
    /* In fraCustomSettings */                                                                        \
    X(Frame,        fraMode,                    fraCustomSettings, 120,  240,  5415, 1935, 36, "Mode",            start::Plain)           \
    X(Frame,        fraConfirmation,            fraCustomSettings, 120, 4560,  5415, 2205, 66, "Confirmation",    start::Plain)           \
    X(Frame,        fraonExit,                  fraCustomSettings, 120, 6840,  5415, 1095, 76, "On Exit",         start::Plain)           \
    /* In fraMode */                                                                                  \
    X(Label,        lblFirstMatch,              fraMode,        1200,   120,  1215,  255, 37, "First Match",      start::BoldUnderlined)  \
    X(Label,        lblMatch,                   fraMode,         120,   360,   495,  195, 38, "Match:",           start::Plain)           \
    X(ChoiceList,   cmbfirstMatch,              fraMode,        1200,   360,  1695,  315, 39, "",                 start::Plain)           \
    X(Label,        lblMinDigits,               fraMode,         120,   720,   735,  195, 40, "Min Digits:",      start::Plain)           \
    X(EditableList, cmbFirstMinDigits,          fraMode,        1200,   720,   735,  315, 41, "",                 start::Plain)           \
    X(Label,        lblMaxDigits,               fraMode,         120,  1080,   795,  195, 42, "Max Digits:",      start::Plain)           \
    X(EditableList, cmbFirstMaxDigits,          fraMode,        1200,  1080,   735,  315, 43, "",                 start::Plain)           \
    X(Label,        lblPrompt,                  fraMode,         120,  1440,   570,  195, 44, "Prompt:",          start::Plain)           \
    X(ChoiceList,   cmbFirstMatchPrompt,        fraMode,        1200,  1440,   975,  315, 45, "",                 start::Plain)           \
    X(EditableList, cmbFirstMatchPromptNumber,  fraMode,        2160,  1440,   700,  315, 46, "",                 start::Plain)           \
    X(Label,        lblSecondMatch,             fraMode,        3240,   120,  1215,  255, 47, "Second Match",     start::BoldUnderlined)  \
    X(ChoiceList,   cmbsecondMatch,             fraMode,        3240,   360,  1695,  315, 48, "",                 start::Plain)           \
    X(EditableList, cmbSecondMinDigits,         fraMode,        3240,   720,   735,  315, 49, "",                 start::Plain)           \
    X(EditableList, cmbSecondMaxDigits,         fraMode,        3240,  1080,   735,  315, 50, "",                 start::Plain)           \
    X(ChoiceList,   cmbSecondMatchPrompt,       fraMode,        3240,  1440,   975,  315, 51, "",                 start::Plain)           \
    X(EditableList, cmbSecondMatchPromptNumber, fraMode,        4200,  1440,   700,  315, 52, "",                 start::Plain)           \
    /* In fraErrorSettings */                                                                         \
    X(Label,        lblTimeout,                 fraErrorSettings, 120,  240,   630,  195, 54, "Timeout:",         start::Plain)           \
    X(ChoiceList,   cmbTimeoutNode,             fraErrorSettings, 2040, 240,   975,  315, 55, "",                 start::Plain)           \
    X(EditableList, cmbTimeoutNumber,           fraErrorSettings, 3000, 240,   700,  315, 56, "",                 start::Plain)           \
    X(Label,        lblInvalid,                 fraErrorSettings, 120,  600,   540,  195, 57, "Invalid:",         start::Plain)           \
    X(ChoiceList,   cmbInvalidNode,             fraErrorSettings, 2040, 600,   975,  315, 58, "",                 start::Plain)           \
    X(EditableList, cmbInvalidNumber,           fraErrorSettings, 3000, 600,   700,  315, 59, "",                 start::Plain)           \
    X(Label,        lblSelTimeOut,              fraErrorSettings, 120,  960,  1755,  195, 60, "Selection Time Out(sec):", start::Plain)   \
    X(EditableList, cmbSelTimeOut,              fraErrorSettings, 2040, 960,   735,  315, 61, "",                 start::Plain)           \
    X(Label,        lblDigitTimeOut,            fraErrorSettings, 120, 1320,  1425,  195, 62, "Digit Time Out(sec):", start::Plain)       \
    X(EditableList, cmbDigitTimeOut,            fraErrorSettings, 2040, 1350,  735,  315, 63, "",                 start::Plain)           \
    X(Label,        lblRetryLimit,              fraErrorSettings, 120, 1750,   825,  195, 64, "Retry Limit:",     start::Plain)           \
    X(EditableList, cmbRetryLimit,              fraErrorSettings, 2040, 1750,  735,  315, 65, "",                 start::Plain)           \
    /* In fraConfirmation: the list shares one picker pair among its rows */                          \
    X(Label,        lblConfirmation,            fraConfirmation, 165,   240,   975,  195, 67, "Confirmation:",    start::Plain)           \
    X(ChoiceList,   cmbConfirmation,            fraConfirmation, 1320,  240,   735,  315, 68, "",                 start::Plain)           \
    X(Label,        lblMaxMatches,              fraConfirmation, 2520,  240,  1005,  195, 69, "Max Matches:",     start::Disabled)        \
    X(EditableList, cmbMaxMatches,              fraConfirmation, 3720,  240,   735,  315, 70, "",                 start::Disabled)        \
    X(ListView,     LVConfirm,                  fraConfirmation, 120,   600,  5175, 1215, 71, "",                 start::Plain)           \
    X(ChoiceList,   cmbConfirmNode,             fraConfirmation, 1200,  720,   975,  315, 72, "",                 start::InPlacePicker)   \
    X(EditableList, cmbConfirmNumber,           fraConfirmation, 2160,  720,   700,  315, 73, "",                 start::InPlacePicker)   \
    X(Button,       cmdConfirmEdit,             fraConfirmation, 3480, 1880,   855,  255, 74, "Edit",             start::Plain)           \
    X(Button,       cmdConfirmDefault,          fraConfirmation, 4440, 1880,   855,  255, 75, "Default",          start::Plain)           \
    /* In fraonExit */                                                                                \
    X(Label,        lblExitPrompt,              fraonExit,       120,   240,   885,  195, 77, "Exit Prompt:",     start::Plain)           \
    X(ChoiceList,   cmbExitPromptNode,          fraonExit,      1200,   240,   975,  315, 78, "",                 start::Plain)           \
    X(EditableList, cmbExitPromptNumber,        fraonExit,      2160,   240,   700,  315, 79, "",                 start::Plain)           \
    X(Label,        lblPlayName,                fraonExit,       120,   650,   810,  195, 80, "Play Name:",       start::Plain)           \
    X(ChoiceList,   cmbPlayName,                fraonExit,      1200,   650,   735,  315, 81, "",                 start::Plain)
// clang-format on

}  // namespace dbn::form
