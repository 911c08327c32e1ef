// The form as built: every shown control inside its container, a tab order
// without gaps or repeats, the captions the operator reads, the start state.

#include "form_fixture.h"

#include <set>

namespace dbn::testing {
namespace {

class GuiConstruction : public ::testing::Test {
protected:
    FakeServices services;
    form::GUI gui{services};
};

TEST_F(GuiConstruction, EveryShownControlLiesInsideItsContainer) {
    for (const form::Control* control : gui.Controls()) {
        // The never-shown lists lie outside the client area on purpose.
        if (control->Kind() == form::ControlKind::PlainList || control == &gui.LVTemp ||
            control == &gui.ImageList1) {
            continue;
        }
        const form::Control* container = control->Container();
        const int width = container ? container->Width() : gui.Width();
        const int height = container ? container->Height() : gui.Height();
        EXPECT_TRUE(control->Left() >= 0 && control->Top() >= 0 &&
                    control->Left() + control->Width() <= width &&
                    control->Top() + control->Height() <= height)
            << control->Name();
    }
}

TEST_F(GuiConstruction, TabIndexesRunFromZeroWithOneGapAndNoRepeats) {
    std::set<int> tabs;
    for (const form::Control* control : gui.Controls()) {
        if (control != &gui.ImageList1) {
            EXPECT_TRUE(tabs.insert(control->TabIndex()).second) << control->Name();
        }
    }
    std::set<int> expected;
    for (int tab = 0; tab <= 91; ++tab) {
        if (tab != 90) {
            expected.insert(tab);
        }
    }
    EXPECT_EQ(tabs, expected);
}

TEST_F(GuiConstruction, OperatorReadsTheseCaptions) {
    const std::vector<std::pair<const char*, const char*>> captions = {
        {"lblLabel", "Label:"},
        {"lblGreeting", "Greeting:"},
        {"lblDirectory", "Directory:"},
        {"txtDIR", "DIR"},
        {"lblMethod", "Method:"},
        {"lblLanguage1", "Language 1:"},
        {"lblLanguage2", "Language 2:"},
        {"fraActions", "Actions"},
        {"cmdActionsEdit", "Edit"},
        {"cmdActionsDefault", "Default"},
        {"fraCustomSettings", "Custom Settings"},
        {"fraMode", "Mode"},
        {"lblFirstMatch", "First Match"},
        {"lblSecondMatch", "Second Match"},
        {"lblMatch", "Match:"},
        {"lblMinDigits", "Min Digits:"},
        {"lblMaxDigits", "Max Digits:"},
        {"lblPrompt", "Prompt:"},
        {"fraErrorSettings", "Error Settings"},
        {"lblTimeout", "Timeout:"},
        {"lblInvalid", "Invalid:"},
        {"lblSelTimeOut", "Selection Time Out(sec):"},
        {"lblDigitTimeOut", "Digit Time Out(sec):"},
        {"lblRetryLimit", "Retry Limit:"},
        {"fraConfirmation", "Confirmation"},
        {"lblConfirmation", "Confirmation:"},
        {"lblMaxMatches", "Max Matches:"},
        {"cmdConfirmEdit", "Edit"},
        {"cmdConfirmDefault", "Default"},
        {"fraonExit", "On Exit"},
        {"lblExitPrompt", "Exit Prompt:"},
        {"lblPlayName", "Play Name:"},
        {"cmdOK", "OK"},
        {"cmdCancel", "Cancel"},
        {"cmdApply", "Apply"},
    };
    for (const auto& [name, caption] : captions) {
        const form::Control* control = gui.FindControl(name);
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(TextOf(*control), caption) << name;
    }
    EXPECT_EQ(gui.FindControl("cmbNothing"), nullptr);
}

TEST_F(GuiConstruction, StartsWithApplyOffAndThePickersHidden) {
    EXPECT_EQ(std::pair(gui.Width(), gui.Height()), std::pair(10515, 8415));
    EXPECT_TRUE(gui.cmdOK.IsDefault() && gui.cmdCancel.IsCancel() && gui.txtDIR.ReadOnly());
    EXPECT_EQ(gui.txtDescription.MaxLength(), 30);
    EXPECT_FALSE(gui.cmdApply.Enabled() || gui.cmbMaxMatches.Enabled() ||
                 gui.lblMaxMatches.Enabled() || gui.lstNodeNumber.Visible());
    ASSERT_EQ(gui.InPlacePickers().size(), 12U);
    for (const form::ListControl* picker : gui.InPlacePickers()) {
        EXPECT_FALSE(picker->Visible()) << picker->Name();
    }
}

}  // namespace
}  // namespace dbn::testing
