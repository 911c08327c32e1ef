// The form as built: its controls, start state, load and unload, the list-view
// hook and the error trap's message.

#include "form_fixture.h"

#include "form/controls/operator_input.h"

#include <gtest/gtest.h>

namespace dbn::testing {
namespace {

using form::ControlKind;
using form::GUI;
namespace input = form::operator_input;

struct Expected {
    const char* name;
    ControlKind kind;
    const char* container;  // "" for the form itself
    const char* caption;    // caption, or initial text of a text field
    form::Rect rect;
    int tab;
};

constexpr auto kChoice = ControlKind::ChoiceList;
constexpr auto kEdit = ControlKind::EditableList;
constexpr auto kLabel = ControlKind::Label;
constexpr auto kButton = ControlKind::Button;
constexpr auto kFrame = ControlKind::Frame;

const Expected kLayout[] = {
    {"Frame1", kFrame, "", "", {0, 0, 10455, 7935}, 86},
    {"fraLanguage", kFrame, "", "", {600, 2520, 3975, 1215}, 16},
    {"fraErrorSettings", kFrame, "", "Error Settings", {4920, 2280, 5415, 2175}, 53},
    {"fraCustomSettings", kFrame, "", "Custom Settings", {4800, 0, 5655, 8055}, 35},
    {"txtDIR", ControlKind::TextField, "", "DIR", {1320, 1680, 975, 315}, 12},
    {"StatusBar1", ControlKind::StatusBar, "", "", {0, 8040, 10515, 375}, 85},
    {"lstNodeTypeName", ControlKind::PlainList, "", "", {120, 9600, 1575, 1230}, 89},
    {"lstNodeTypeID", ControlKind::PlainList, "", "", {1680, 9600, 1335, 1230}, 87},
    {"lstNodeNumber", ControlKind::PlainList, "", "", {3240, 9600, 1335, 1230}, 88},
    {"LVTemp", ControlKind::ListView, "", "", {11160, 1440, 2535, 1935}, 91},
    {"cmdFirst", kButton, "Frame1", "", {600, 120, 375, 315}, 0},
    {"cmdPrevious", kButton, "Frame1", "", {975, 120, 375, 315}, 1},
    {"cmbNode", kChoice, "Frame1", "", {1350, 120, 1095, 315}, 2},
    {"lblRecordPosition", kLabel, "Frame1", "n/m", {2445, 120, 855, 315}, 3},
    {"cmdNext", kButton, "Frame1", "", {3300, 120, 375, 315}, 4},
    {"cmdLast", kButton, "Frame1", "", {3675, 120, 375, 315}, 5},
    {"lblLabel", kLabel, "Frame1", "Label:", {240, 720, 435, 195}, 6},
    {"txtDescription", ControlKind::TextField, "Frame1", "", {1320, 720, 3255, 285}, 7},
    {"lblGreeting", kLabel, "Frame1", "Greeting:", {240, 1200, 675, 195}, 8},
    {"cmbGreetingNode", kChoice, "Frame1", "", {1320, 1200, 975, 315}, 9},
    {"cmbGreetingNumber", kEdit, "Frame1", "", {2280, 1200, 700, 315}, 10},
    {"lblDirectory", kLabel, "Frame1", "Directory:", {240, 1680, 720, 195}, 11},
    {"cmbDirectory", kEdit, "Frame1", "", {2280, 1680, 735, 315}, 13},
    {"lblMethod", kLabel, "Frame1", "Method:", {240, 2160, 600, 195}, 14},
    {"cmbMethod", kChoice, "Frame1", "", {1320, 2160, 1695, 315}, 15},
    {"fraActions", kFrame, "Frame1", "Actions", {120, 4200, 4455, 2535}, 21},
    {"cmdOK", kButton, "Frame1", "OK", {435, 7320, 855, 375}, 82},
    {"cmdCancel", kButton, "Frame1", "Cancel", {1800, 7320, 855, 375}, 83},
    {"cmdApply", kButton, "Frame1", "Apply", {3120, 7320, 855, 372}, 84},
    {"lblLanguage1", kLabel, "fraLanguage", "Language 1:", {240, 240, 900, 195}, 17},
    {"cmbLanguage1", kChoice, "fraLanguage", "", {1320, 240, 1695, 315}, 18},
    {"lblLanguage2", kLabel, "fraLanguage", "Language 2:", {240, 720, 900, 195}, 19},
    {"cmbLanguage2", kChoice, "fraLanguage", "", {1320, 720, 1695, 315}, 20},
    {"LVActions", ControlKind::ListView, "fraActions", "", {120, 240, 4215, 1815}, 22},
    {"cmbValidMatchNode", kChoice, "fraActions", "", {1200, 240, 975, 315}, 23},
    {"cmbValidMatchNumber", kEdit, "fraActions", "", {2160, 240, 700, 315}, 24},
    {"cmbAbortNode", kChoice, "fraActions", "", {1200, 600, 975, 315}, 25},
    {"cmbAbortNumber", kEdit, "fraActions", "", {2160, 600, 700, 315}, 26},
    {"cmbStarNode", kChoice, "fraActions", "", {1200, 960, 975, 315}, 27},
    {"cmbStarNumber", kEdit, "fraActions", "", {2160, 960, 700, 315}, 28},
    {"cmbPoundNode", kChoice, "fraActions", "", {1200, 1320, 975, 315}, 29},
    {"cmbPoundNumber", kEdit, "fraActions", "", {2160, 1320, 700, 315}, 30},
    {"cmbZeroNode", kChoice, "fraActions", "", {1200, 1680, 975, 315}, 31},
    {"cmbZeroNumber", kEdit, "fraActions", "", {2160, 1680, 700, 315}, 32},
    {"cmdActionsEdit", kButton, "fraActions", "Edit", {2520, 2160, 855, 255}, 33},
    {"cmdActionsDefault", kButton, "fraActions", "Default", {3480, 2160, 855, 255}, 34},
    {"fraMode", kFrame, "fraCustomSettings", "Mode", {120, 240, 5415, 1935}, 36},
    {"fraConfirmation", kFrame, "fraCustomSettings", "Confirmation", {120, 4560, 5415, 2205}, 66},
    {"fraonExit", kFrame, "fraCustomSettings", "On Exit", {120, 6840, 5415, 1095}, 76},
    {"lblFirstMatch", kLabel, "fraMode", "First Match", {1200, 120, 1215, 255}, 37},
    {"lblMatch", kLabel, "fraMode", "Match:", {120, 360, 495, 195}, 38},
    {"cmbfirstMatch", kChoice, "fraMode", "", {1200, 360, 1695, 315}, 39},
    {"lblMinDigits", kLabel, "fraMode", "Min Digits:", {120, 720, 735, 195}, 40},
    {"cmbFirstMinDigits", kEdit, "fraMode", "", {1200, 720, 735, 315}, 41},
    {"lblMaxDigits", kLabel, "fraMode", "Max Digits:", {120, 1080, 795, 195}, 42},
    {"cmbFirstMaxDigits", kEdit, "fraMode", "", {1200, 1080, 735, 315}, 43},
    {"lblPrompt", kLabel, "fraMode", "Prompt:", {120, 1440, 570, 195}, 44},
    {"cmbFirstMatchPrompt", kChoice, "fraMode", "", {1200, 1440, 975, 315}, 45},
    {"cmbFirstMatchPromptNumber", kEdit, "fraMode", "", {2160, 1440, 700, 315}, 46},
    {"lblSecondMatch", kLabel, "fraMode", "Second Match", {3240, 120, 1215, 255}, 47},
    {"cmbsecondMatch", kChoice, "fraMode", "", {3240, 360, 1695, 315}, 48},
    {"cmbSecondMinDigits", kEdit, "fraMode", "", {3240, 720, 735, 315}, 49},
    {"cmbSecondMaxDigits", kEdit, "fraMode", "", {3240, 1080, 735, 315}, 50},
    {"cmbSecondMatchPrompt", kChoice, "fraMode", "", {3240, 1440, 975, 315}, 51},
    {"cmbSecondMatchPromptNumber", kEdit, "fraMode", "", {4200, 1440, 700, 315}, 52},
    {"lblTimeout", kLabel, "fraErrorSettings", "Timeout:", {120, 240, 630, 195}, 54},
    {"cmbTimeoutNode", kChoice, "fraErrorSettings", "", {2040, 240, 975, 315}, 55},
    {"cmbTimeoutNumber", kEdit, "fraErrorSettings", "", {3000, 240, 700, 315}, 56},
    {"lblInvalid", kLabel, "fraErrorSettings", "Invalid:", {120, 600, 540, 195}, 57},
    {"cmbInvalidNode", kChoice, "fraErrorSettings", "", {2040, 600, 975, 315}, 58},
    {"cmbInvalidNumber", kEdit, "fraErrorSettings", "", {3000, 600, 700, 315}, 59},
    {"lblSelTimeOut",
     kLabel,
     "fraErrorSettings",
     "Selection Time Out(sec):",
     {120, 960, 1755, 195},
     60},
    {"cmbSelTimeOut", kEdit, "fraErrorSettings", "", {2040, 960, 735, 315}, 61},
    {"lblDigitTimeOut",
     kLabel,
     "fraErrorSettings",
     "Digit Time Out(sec):",
     {120, 1320, 1425, 195},
     62},
    {"cmbDigitTimeOut", kEdit, "fraErrorSettings", "", {2040, 1350, 735, 315}, 63},
    {"lblRetryLimit", kLabel, "fraErrorSettings", "Retry Limit:", {120, 1750, 825, 195}, 64},
    {"cmbRetryLimit", kEdit, "fraErrorSettings", "", {2040, 1750, 735, 315}, 65},
    {"lblConfirmation", kLabel, "fraConfirmation", "Confirmation:", {165, 240, 975, 195}, 67},
    {"cmbConfirmation", kChoice, "fraConfirmation", "", {1320, 240, 735, 315}, 68},
    {"lblMaxMatches", kLabel, "fraConfirmation", "Max Matches:", {2520, 240, 1005, 195}, 69},
    {"cmbMaxMatches", kEdit, "fraConfirmation", "", {3720, 240, 735, 315}, 70},
    {"LVConfirm", ControlKind::ListView, "fraConfirmation", "", {120, 600, 5175, 1215}, 71},
    {"cmbConfirmNode", kChoice, "fraConfirmation", "", {1200, 720, 975, 315}, 72},
    {"cmbConfirmNumber", kEdit, "fraConfirmation", "", {2160, 720, 700, 315}, 73},
    {"cmdConfirmEdit", kButton, "fraConfirmation", "Edit", {3480, 1880, 855, 255}, 74},
    {"cmdConfirmDefault", kButton, "fraConfirmation", "Default", {4440, 1880, 855, 255}, 75},
    {"lblExitPrompt", kLabel, "fraonExit", "Exit Prompt:", {120, 240, 885, 195}, 77},
    {"cmbExitPromptNode", kChoice, "fraonExit", "", {1200, 240, 975, 315}, 78},
    {"cmbExitPromptNumber", kEdit, "fraonExit", "", {2160, 240, 700, 315}, 79},
    {"lblPlayName", kLabel, "fraonExit", "Play Name:", {120, 650, 810, 195}, 80},
    {"cmbPlayName", kChoice, "fraonExit", "", {1200, 650, 735, 315}, 81},
};

std::string CaptionOf(const form::Control& control) {
    if (auto* label = dynamic_cast<const form::Label*>(&control)) {
        return label->Caption();
    }
    if (auto* button = dynamic_cast<const form::Button*>(&control)) {
        return button->Caption();
    }
    if (auto* frame = dynamic_cast<const form::Frame*>(&control)) {
        return frame->Caption();
    }
    if (auto* field = dynamic_cast<const form::TextField*>(&control)) {
        return field->Text();
    }
    return "";
}

TEST(GuiConstruction, EveryControlSitsWhereTheLayoutPutsIt) {
    FakeServices services;
    GUI gui(services);
    for (const Expected& expected : kLayout) {
        SCOPED_TRACE(expected.name);
        form::Control* control = gui.FindControl(expected.name);
        ASSERT_NE(control, nullptr);
        EXPECT_EQ(control->Kind(), expected.kind);
        EXPECT_EQ(control->Container() ? control->Container()->Name() : "", expected.container);
        EXPECT_EQ(CaptionOf(*control), expected.caption);
        EXPECT_EQ(control->Left(), expected.rect.left);
        EXPECT_EQ(control->Top(), expected.rect.top);
        EXPECT_EQ(control->Width(), expected.rect.width);
        EXPECT_EQ(control->Height(), expected.rect.height);
        EXPECT_EQ(control->TabIndex(), expected.tab);
    }
    // The image list is the only control without a place of its own.
    EXPECT_EQ(gui.Controls().size(), std::size(kLayout) + 1);
    EXPECT_NE(gui.FindControl("ImageList1"), nullptr);
    EXPECT_EQ(gui.FindControl("cmbNothing"), nullptr);
}

TEST(GuiConstruction, StartsInTheStartState) {
    FakeServices services;
    GUI gui(services);
    EXPECT_EQ(gui.Width(), 10515);
    EXPECT_FALSE(gui.cmdApply.Enabled());
    EXPECT_TRUE(gui.cmdOK.IsDefault() && gui.cmdCancel.IsCancel());
    EXPECT_EQ(gui.txtDescription.MaxLength(), 30);
    EXPECT_TRUE(gui.txtDIR.ReadOnly());
    EXPECT_EQ(gui.lblFirstMatch.Font(), form::FontStyle::BoldUnderlined);
    EXPECT_EQ(gui.cmdPrevious.Picture(), form::ButtonPicture::Previous);
    EXPECT_FALSE(gui.lstNodeNumber.Visible());
    EXPECT_FALSE(gui.cmbZeroNumber.Visible());
    EXPECT_FALSE(gui.cmbConfirmNode.Visible());
    EXPECT_FALSE(gui.cmbMaxMatches.Enabled());
}

}  // namespace
}  // namespace dbn::testing
