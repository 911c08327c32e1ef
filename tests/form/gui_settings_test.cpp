// The search method and match handlers, number clamping, the checks before
// saving, the availability of node types and the ending of edit modes.

#include "form_fixture.h"

namespace dbn::testing {
namespace {

using GuiSettings = FormFixture;

const std::string kSecondGroup =
    "cmbsecondMatch cmbSecondMinDigits cmbSecondMaxDigits cmbSecondMatchPrompt "
    "cmbSecondMatchPromptNumber";

TEST_F(GuiSettings, MethodSwitchesLanguagesAndTheFormWidth) {
    ASSERT_TRUE(input::Pick(gui.cmbMethod, 1));
    EXPECT_EQ(gui.Width(), gui.fraCustomSettings.Left());
    EXPECT_EQ(Show("fraLanguage lblLanguage1 cmbLanguage1 cmbLanguage2 cmdApply"),
              "|Language 1:|English|None|Apply");

    gui.SetWidth(7000);
    ASSERT_TRUE(input::Pick(gui.cmbMethod, 0));
    EXPECT_EQ(gui.Width(), 10590);
    // The languages keep their choices.
    EXPECT_EQ(Show("fraLanguage lblLanguage1 cmbLanguage1 cmbLanguage2"),
              " off|Language 1: off|English off|None off");
}

TEST_F(GuiSettings, BothNamesOrExtensionForceAndDisableTheSecondMatch) {
    for (int forcing : {3, 2}) {             // "Extension", "Both Names"
        input::Pick(gui.cmbsecondMatch, 1);  // "Last Name"
        input::Type(gui.cmbSecondMinDigits, "4");
        input::Type(gui.cmbSecondMaxDigits, "8");
        input::Pick(gui.cmbSecondMatchPrompt, 1);
        ASSERT_EQ(Show(kSecondGroup), "Last Name|4|8|LIST|1");
        ASSERT_TRUE(input::Pick(gui.cmbfirstMatch, forcing));
        EXPECT_EQ(Show(kSecondGroup), "None off|1 off|5 off|MSG off|1 off");
        // Back to a name match: only the second-match list becomes usable.
        ASSERT_TRUE(input::Pick(gui.cmbfirstMatch, 0));
        EXPECT_EQ(Show(kSecondGroup), "None|1 off|5 off|MSG off|1 off");
    }
    ASSERT_TRUE(input::Pick(gui.cmbsecondMatch, 2));
    EXPECT_EQ(Show(kSecondGroup), "First Name|1|5|MSG|1");
    ASSERT_TRUE(input::Pick(gui.cmbfirstMatch, 1));
    EXPECT_EQ(Show(kSecondGroup), "First Name|1|5|MSG|1");
}

TEST_F(GuiSettings, PlainSelectionsOnlyMarkTheNodeChanged) {
    for (form::ListControl* list : {&gui.cmbDirectory, &gui.cmbLanguage2, &gui.cmbSecondMaxDigits,
                                    &gui.cmbRetryLimit, &gui.cmbPlayName, &gui.cmbGreetingNumber}) {
        SCOPED_TRACE(list->Name());
        gui.cmdApply.SetEnabled(false);
        list->SetListIndex(1);
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_EQ(list->Text(), list->List(1));
        EXPECT_EQ(gui.Width(), 10590);
    }
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(GuiSettings, TypedNumbersAreClampedToTheList) {
    // cmbFirstMinDigits holds 1 to 9, cmbSelTimeOut 1 to 60.
    for (auto [typed, kept] :
         {std::pair{"12", "1"}, {"0", "1"}, {"7x5", "7"}, {"", "1"}, {"abc", "1"}, {"9", "9"}}) {
        SCOPED_TRACE(typed);
        input::Type(gui.cmbFirstMinDigits, typed);
        EXPECT_EQ(gui.cmbFirstMinDigits.Text(), kept);
        EXPECT_EQ(gui.cmbFirstMinDigits.SelStart(), static_cast<int>(std::string(kept).size()));
    }
    input::Type(gui.cmbSelTimeOut, "605");
    EXPECT_EQ(gui.cmbSelTimeOut.Text(), "60");
    EXPECT_TRUE(gui.cmdApply.Enabled());

    // A hidden list only marks the node changed.
    gui.cmdApply.SetEnabled(false);
    gui.cmbGreetingNumber.SetVisible(false);
    gui.cmbGreetingNumber.SetText("55x");
    EXPECT_EQ(gui.cmbGreetingNumber.Text(), "55x");
    EXPECT_TRUE(gui.cmdApply.Enabled());
}

TEST_F(GuiSettings, ChecksBeforeSavingMoveLanguagesOrStopWithAMessage) {
    const std::string sameMatch =
        "Second Match must be different from the First Match.  Please select another option "
        "in Second Match.";
    const std::string minAboveMax =
        "Min Digits value must be less than or equal to Max Digits value.";
    // Custom method: the matches are checked, in this order.
    for (auto [second, firstMin, secondMin, message, focused] :
         {std::tuple{1, "5", "1", &sameMatch, &gui.cmbsecondMatch},  // second as first
          {2, "6", "1", &minAboveMax, &gui.cmbFirstMinDigits},
          {2, "5", "7", &minAboveMax, &gui.cmbSecondMinDigits}}) {
        gui.cmbsecondMatch.SetListIndex(second);
        gui.cmbFirstMinDigits.SetText(firstMin);
        gui.cmbSecondMinDigits.SetText(secondMin);
        EXPECT_FALSE(gui.ValidateBeforeSave());
        EXPECT_EQ(services.TakeBoxTexts(), Texts{*message});
        EXPECT_TRUE(focused->HasFocus()) << focused->Name();
    }
    // With no second match its limits are not compared.
    gui.cmbsecondMatch.SetListIndex(0);
    gui.cmbSecondMinDigits.SetEnabled(true);
    gui.cmbSecondMinDigits.SetText("9");
    EXPECT_TRUE(gui.ValidateBeforeSave());

    // Default method: a second language alone moves up; the same language twice
    // is dropped from the second place; no language at all stops the save.
    gui.cmbMethod.SetListIndex(1);
    for (int french : {0, 1}) {
        gui.cmbLanguage1.SetListIndex(french * 2);
        gui.cmbLanguage2.SetListIndex(2);
        EXPECT_TRUE(gui.ValidateBeforeSave());
        EXPECT_EQ(Show("cmbLanguage1 cmbLanguage2"), "French|None");
    }
    EXPECT_TRUE(services.boxes.empty());
    gui.cmbLanguage1.SetListIndex(0);
    EXPECT_FALSE(gui.ValidateBeforeSave());
    EXPECT_EQ(services.TakeBoxTexts(), Texts{"Please select a language in Language 1"});
    EXPECT_TRUE(gui.cmbLanguage1.HasFocus());
}

TEST_F(GuiSettings, TypesSwitchedOffInThePartitionAreNotAvailable) {
    // PAAS is off in the partition, in any letter case; then MSG too, which
    // takes M_ON and M_OFF with it as instruction targets only.
    EXPECT_TRUE(gui.IsInstructionTypeAvailable("M_ON") && gui.IsPromptTypeAvailable("LIST"));
    EXPECT_FALSE(gui.IsInstructionTypeAvailable("paas") || gui.IsPromptTypeAvailable("PAAS"));
    gui.NotAvailableAllInstructionsNode().Add("MSG", "0");
    gui.NotAvailableMSGLISTNOOPNode().Add("MSG", "0");
    EXPECT_FALSE(gui.IsInstructionTypeAvailable("MSG") || gui.IsInstructionTypeAvailable("m_on") ||
                 gui.IsInstructionTypeAvailable("M_OFF"));
    EXPECT_TRUE(gui.IsInstructionTypeAvailable("XFER") && gui.IsPromptTypeAvailable("M_ON"));
}

// Which edit modes the focus on each input control ends: the actions list's
// and the confirmation list's. The in-place pickers end neither.
struct FocusRule {
    const char* control;
    bool endsActions;
    bool endsConfirmation;
};

const std::vector<FocusRule> kFocusRules = {
    {"LVActions", false, true},
    {"LVConfirm", true, false},
    {"cmbConfirmation", true, false},
    {"cmbMaxMatches", true, false},
    {"txtDescription", true, true},
    {"cmbGreetingNode", true, true},
    {"cmbGreetingNumber", true, true},
    {"cmbDirectory", true, true},
    {"cmbMethod", true, true},
    {"cmbLanguage1", true, true},
    {"cmbLanguage2", true, true},
    {"cmbfirstMatch", true, true},
    {"cmbFirstMinDigits", true, true},
    {"cmbFirstMaxDigits", true, true},
    {"cmbFirstMatchPrompt", true, true},
    {"cmbFirstMatchPromptNumber", true, true},
    {"cmbsecondMatch", true, true},
    {"cmbSecondMinDigits", true, true},
    {"cmbSecondMaxDigits", true, true},
    {"cmbSecondMatchPrompt", true, true},
    {"cmbSecondMatchPromptNumber", true, true},
    {"cmbTimeoutNode", true, true},
    {"cmbTimeoutNumber", true, true},
    {"cmbInvalidNode", true, true},
    {"cmbInvalidNumber", true, true},
    {"cmbSelTimeOut", true, true},
    {"cmbDigitTimeOut", true, true},
    {"cmbRetryLimit", true, true},
    {"cmbExitPromptNode", true, true},
    {"cmbExitPromptNumber", true, true},
    {"cmbPlayName", true, true},
    {"cmbValidMatchNumber", false, false},
    {"cmbConfirmNumber", false, false},
};

TEST_F(GuiSettings, FocusOnEachInputControlEndsTheEditModesItShould) {
    gui.fraLanguage.SetEnabled(true);
    for (const FocusRule& rule : kFocusRules) {
        form::Control* control = gui.FindControl(rule.control);
        ASSERT_NE(control, nullptr) << rule.control;
        for (const bool actions : {true, false}) {
            SCOPED_TRACE(std::string(rule.control) + (actions ? " (actions)" : " (confirmation)"));
            form::Button& edit = actions ? gui.cmdActionsEdit : gui.cmdConfirmEdit;
            form::ListView& list = actions ? gui.LVActions : gui.LVConfirm;
            list.SetSelectedItem(list.FindItem("1a"));
            ASSERT_TRUE(input::Press(edit));
            ASSERT_EQ(edit.Caption(), "Edit Off");
            // Reachable whatever the settings: a picker is shown only over the
            // row its list edits, some lists only for some settings.
            control->SetVisible(true);
            control->SetEnabled(true);
            ASSERT_TRUE(input::Focus(*control));
            const bool ends = actions ? rule.endsActions : rule.endsConfirmation;
            EXPECT_EQ(edit.Caption(), ends ? "Edit" : "Edit Off");
            if (!ends) {
                ASSERT_TRUE(input::Press(edit));
            }
            input::Focus(gui.cmdApply);
        }
    }
}

}  // namespace
}  // namespace dbn::testing
