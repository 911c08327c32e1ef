// The form as built: every control's container, kind, tab index and caption,
// and its start state.

#include "form_fixture.h"

#include <algorithm>

namespace dbn::testing {
namespace {

using form::ControlKind;

// Every control in tab order, in runs under their container ("" for the form):
// a control's position in the whole sequence is its tab index ("-" marks the
// unused 90). "=" gives the caption of a label, button or frame, or the text
// of a text field (none otherwise); '*' marks an editable list, other kinds
// follow from the name.
const std::vector<std::pair<std::string, std::string>> kTabOrder = {
    {"Frame1",
     "cmdFirst, cmdPrevious, cmbNode, lblRecordPosition=n/m, cmdNext, cmdLast, lblLabel=Label:, "
     "txtDescription, lblGreeting=Greeting:, cmbGreetingNode, cmbGreetingNumber*, "
     "lblDirectory=Directory:"},
    {"", "txtDIR=DIR"},
    {"Frame1", "cmbDirectory*, lblMethod=Method:, cmbMethod"},
    {"", "fraLanguage"},
    {"fraLanguage",
     "lblLanguage1=Language 1:, cmbLanguage1, lblLanguage2=Language 2:, cmbLanguage2"},
    {"Frame1", "fraActions=Actions"},
    {"fraActions",
     "LVActions, cmbValidMatchNode, cmbValidMatchNumber*, cmbAbortNode, cmbAbortNumber*, "
     "cmbStarNode, cmbStarNumber*, cmbPoundNode, cmbPoundNumber*, cmbZeroNode, cmbZeroNumber*, "
     "cmdActionsEdit=Edit, cmdActionsDefault=Default"},
    {"", "fraCustomSettings=Custom Settings"},
    {"fraCustomSettings", "fraMode=Mode"},
    {"fraMode",
     "lblFirstMatch=First Match, lblMatch=Match:, cmbfirstMatch, lblMinDigits=Min Digits:, "
     "cmbFirstMinDigits*, lblMaxDigits=Max Digits:, cmbFirstMaxDigits*, lblPrompt=Prompt:, "
     "cmbFirstMatchPrompt, cmbFirstMatchPromptNumber*, lblSecondMatch=Second Match, "
     "cmbsecondMatch, cmbSecondMinDigits*, cmbSecondMaxDigits*, cmbSecondMatchPrompt, "
     "cmbSecondMatchPromptNumber*"},
    {"", "fraErrorSettings=Error Settings"},
    {"fraErrorSettings",
     "lblTimeout=Timeout:, cmbTimeoutNode, cmbTimeoutNumber*, lblInvalid=Invalid:, cmbInvalidNode, "
     "cmbInvalidNumber*, lblSelTimeOut=Selection Time Out(sec):, cmbSelTimeOut*, "
     "lblDigitTimeOut=Digit Time Out(sec):, cmbDigitTimeOut*, lblRetryLimit=Retry Limit:, "
     "cmbRetryLimit*"},
    {"fraCustomSettings", "fraConfirmation=Confirmation"},
    {"fraConfirmation",
     "lblConfirmation=Confirmation:, cmbConfirmation, lblMaxMatches=Max Matches:, cmbMaxMatches*, "
     "LVConfirm, cmbConfirmNode, cmbConfirmNumber*, cmdConfirmEdit=Edit, "
     "cmdConfirmDefault=Default"},
    {"fraCustomSettings", "fraonExit=On Exit"},
    {"fraonExit",
     "lblExitPrompt=Exit Prompt:, cmbExitPromptNode, cmbExitPromptNumber*, lblPlayName=Play Name:, "
     "cmbPlayName"},
    {"Frame1", "cmdOK=OK, cmdCancel=Cancel, cmdApply=Apply"},
    {"", "StatusBar1, Frame1, lstNodeTypeID, lstNodeNumber, lstNodeTypeName, -, LVTemp"},
};

// The kind a table entry stands for.
ControlKind KindOf(const std::string& entry) {
    using enum ControlKind;
    for (auto [prefix, kind] : {std::pair{"cmd", Button},
                                {"lbl", Label},
                                {"fra", Frame},
                                {"Frame", Frame},
                                {"txt", TextField},
                                {"LV", ListView},
                                {"lst", PlainList},
                                {"Status", StatusBar}}) {
        if (entry.starts_with(prefix)) {
            return kind;
        }
    }
    return entry.ends_with('*') ? EditableList : ChoiceList;
}

TEST(GuiConstruction, EveryControlHasItsContainerKindTabIndexCaptionAndStartState) {
    FakeServices services;
    form::GUI gui(services);
    int tab = 0;
    std::size_t placed = 0;
    for (const auto& [container, run] : kTabOrder) {
        std::istringstream entries(run);
        for (std::string entry; std::getline(entries >> std::ws, entry, ','); ++tab) {
            if (entry == "-") {
                continue;
            }
            ++placed;
            const std::size_t equals = entry.find('=');
            const std::string name = entry.substr(0, std::min(equals, entry.find('*')));
            const form::Control* control = gui.FindControl(name);
            ASSERT_NE(control, nullptr) << name;
            SCOPED_TRACE(name);
            EXPECT_EQ(control->Container() ? control->Container()->Name() : "", container);
            EXPECT_EQ(control->Kind(), KindOf(entry.substr(0, equals)));
            EXPECT_EQ(control->TabIndex(), tab);
            EXPECT_EQ(TextOf(*control),
                      equals == std::string::npos ? "" : entry.substr(equals + 1));
        }
    }
    // The image list is the only control without a place of its own.
    EXPECT_EQ(gui.Controls().size(), placed + 1);
    EXPECT_EQ(gui.ImageList1.Kind(), ControlKind::ImageList);
    EXPECT_EQ(gui.FindControl("cmbNothing"), nullptr);
    // Every control but the never-shown lists lies inside its container.
    for (const form::Control* control : gui.Controls()) {
        const form::Control* container = control->Container();
        if (control->Name().starts_with("lst") || control == &gui.LVTemp ||
            control == &gui.ImageList1) {
            continue;
        }
        EXPECT_TRUE(
            control->Left() >= 0 && control->Top() >= 0 &&
            control->Left() + control->Width() <= (container ? container->Width() : gui.Width()) &&
            control->Top() + control->Height() <= (container ? container->Height() : gui.Height()))
            << control->Name();
    }

    // The start state.
    EXPECT_EQ(std::pair(gui.Width(), gui.Height()), std::pair(10515, 8415));
    EXPECT_EQ(gui.fraCustomSettings.Left(), 4800);
    EXPECT_TRUE(gui.cmdOK.IsDefault() && gui.cmdCancel.IsCancel() && gui.txtDIR.ReadOnly());
    EXPECT_EQ(gui.txtDescription.MaxLength(), 30);
    EXPECT_EQ(gui.lblFirstMatch.Font(), form::FontStyle::BoldUnderlined);
    EXPECT_FALSE(gui.cmdApply.Enabled() || gui.cmbMaxMatches.Enabled() ||
                 gui.lstNodeNumber.Visible() || gui.cmbZeroNumber.Visible() ||
                 gui.cmbConfirmNode.Visible());
}

}  // namespace
}  // namespace dbn::testing
