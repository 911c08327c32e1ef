// The search method and match handlers, number clamping, the checks before
// saving, the availability of node types and the ending of edit modes.

#include "form_fixture.h"

namespace dbn::testing {
namespace {

class GuiMethod : public FormFixture {
protected:
    bool SecondGroupEnabled(bool expected) {
        for (form::ListControl* list :
             {&gui.cmbSecondMinDigits, &gui.cmbSecondMaxDigits, &gui.cmbSecondMatchPrompt,
              &gui.cmbSecondMatchPromptNumber}) {
            if (list->Enabled() != expected) {
                return false;
            }
        }
        return true;
    }
};

TEST_F(GuiMethod, MethodSwitchesLanguagesAndTheFormWidth) {
    ASSERT_TRUE(input::Pick(gui.cmbMethod, 1));
    EXPECT_EQ(gui.Width(), gui.fraCustomSettings.Left());
    EXPECT_TRUE(gui.fraLanguage.Enabled());
    EXPECT_TRUE(gui.cmbLanguage2.Enabled());
    EXPECT_TRUE(gui.cmdApply.Enabled());

    gui.SetWidth(7000);
    ASSERT_TRUE(input::Pick(gui.cmbMethod, 0));
    EXPECT_EQ(gui.Width(), 10590);
    EXPECT_FALSE(gui.fraLanguage.Enabled());
    EXPECT_FALSE(gui.lblLanguage1.Enabled());
    EXPECT_FALSE(gui.cmbLanguage1.Enabled());
    // The languages keep their choices.
    EXPECT_EQ(gui.cmbLanguage1.Text(), "English");
}

TEST_F(GuiMethod, BothNamesOrExtensionForceAndDisableTheSecondMatch) {
    input::Pick(gui.cmbsecondMatch, 1);  // "Last Name"
    input::Type(gui.cmbSecondMinDigits, "4");
    input::Type(gui.cmbSecondMaxDigits, "8");
    ASSERT_TRUE(SecondGroupEnabled(true));

    ASSERT_TRUE(input::Pick(gui.cmbfirstMatch, 3));  // "Extension"
    EXPECT_EQ(gui.cmbsecondMatch.Text(), "None");
    EXPECT_EQ(gui.cmbSecondMinDigits.Text(), "1");
    EXPECT_EQ(gui.cmbSecondMaxDigits.Text(), "5");
    EXPECT_EQ(gui.cmbSecondMatchPrompt.Text(), "MSG");
    EXPECT_FALSE(gui.cmbsecondMatch.Enabled());
    EXPECT_TRUE(SecondGroupEnabled(false));

    // Back to a name match: only the second-match list becomes usable.
    ASSERT_TRUE(input::Pick(gui.cmbfirstMatch, 0));
    EXPECT_TRUE(gui.cmbsecondMatch.Enabled());
    EXPECT_TRUE(SecondGroupEnabled(false));
    ASSERT_TRUE(input::Pick(gui.cmbsecondMatch, 2));
    EXPECT_TRUE(SecondGroupEnabled(true));
    ASSERT_TRUE(input::Pick(gui.cmbfirstMatch, 1));
    EXPECT_TRUE(SecondGroupEnabled(true));
}

TEST_F(GuiMethod, PlainSelectionsOnlyMarkTheNodeChanged) {
    for (form::ListControl* list : {&gui.cmbDirectory, &gui.cmbLanguage2, &gui.cmbSecondMaxDigits,
                                    &gui.cmbRetryLimit, &gui.cmbPlayName, &gui.cmbGreetingNumber}) {
        SCOPED_TRACE(list->Name());
        gui.cmdApply.SetEnabled(false);
        const int width = gui.Width();
        list->SetListIndex(1);
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_EQ(list->Text(), list->List(1));
        EXPECT_EQ(gui.Width(), width);
    }
    EXPECT_TRUE(services.boxes.empty());
}

using GuiNumbers = FormFixture;

TEST_F(GuiNumbers, TypedNumbersAreClampedToTheList) {
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

using GuiValidation = FormFixture;

TEST_F(GuiValidation, DefaultMethodMovesOrDropsLanguages) {
    gui.cmbMethod.SetListIndex(1);
    gui.cmbLanguage1.SetListIndex(0);
    gui.cmbLanguage2.SetListIndex(2);  // French
    EXPECT_TRUE(gui.ValidateBeforeSave());
    EXPECT_EQ(gui.cmbLanguage1.Text(), "French");
    EXPECT_EQ(gui.cmbLanguage2.Text(), "None");

    gui.cmbLanguage2.SetListIndex(2);
    EXPECT_TRUE(gui.ValidateBeforeSave());
    EXPECT_EQ(gui.cmbLanguage1.Text(), "French");
    EXPECT_EQ(gui.cmbLanguage2.Text(), "None");

    gui.cmbLanguage1.SetListIndex(0);
    EXPECT_FALSE(gui.ValidateBeforeSave());
    EXPECT_EQ(services.TakeBoxTexts(), Texts{"Please select a language in Language 1"});
    EXPECT_TRUE(gui.cmbLanguage1.HasFocus());
}

TEST_F(GuiValidation, CustomMethodChecksTheMatches) {
    const std::string sameMatch =
        "Second Match must be different from the First Match.  Please select another option "
        "in Second Match.";
    const std::string minAboveMax =
        "Min Digits value must be less than or equal to Max Digits value.";

    gui.cmbsecondMatch.SetListIndex(1);  // "Last Name", as the first match
    EXPECT_FALSE(gui.ValidateBeforeSave());
    EXPECT_EQ(services.TakeBoxTexts(), Texts{sameMatch});
    EXPECT_TRUE(gui.cmbsecondMatch.HasFocus());

    gui.cmbsecondMatch.SetListIndex(2);
    gui.cmbFirstMinDigits.SetText("6");
    EXPECT_FALSE(gui.ValidateBeforeSave());
    EXPECT_EQ(services.TakeBoxTexts(), Texts{minAboveMax});
    EXPECT_TRUE(gui.cmbFirstMinDigits.HasFocus());

    gui.cmbFirstMinDigits.SetText("5");
    gui.cmbSecondMinDigits.SetText("7");
    EXPECT_FALSE(gui.ValidateBeforeSave());
    EXPECT_EQ(services.TakeBoxTexts(), Texts{minAboveMax});
    EXPECT_TRUE(gui.cmbSecondMinDigits.HasFocus());

    // With no second match its limits are not compared.
    gui.cmbsecondMatch.SetListIndex(0);
    gui.cmbSecondMinDigits.SetEnabled(true);
    gui.cmbSecondMinDigits.SetText("9");
    EXPECT_TRUE(gui.ValidateBeforeSave());
    EXPECT_TRUE(services.TakeBoxTexts().empty());
}

TEST_F(GuiValidation, TypesSwitchedOffInThePartitionAreNotAvailable) {
    EXPECT_TRUE(gui.IsInstructionTypeAvailable("msg"));
    EXPECT_TRUE(gui.IsInstructionTypeAvailable("M_ON"));
    EXPECT_FALSE(gui.IsInstructionTypeAvailable("paas"));
    EXPECT_FALSE(gui.IsPromptTypeAvailable("PAAS"));
    EXPECT_TRUE(gui.IsPromptTypeAvailable("LIST"));

    gui.NotAvailableAllInstructionsNode().Add("MSG", "0");
    EXPECT_FALSE(gui.IsInstructionTypeAvailable("MSG"));
    EXPECT_FALSE(gui.IsInstructionTypeAvailable("m_on"));
    EXPECT_FALSE(gui.IsInstructionTypeAvailable("M_OFF"));
    EXPECT_TRUE(gui.IsInstructionTypeAvailable("XFER"));
    // The on/off rule belongs to the instruction targets only.
    gui.NotAvailableMSGLISTNOOPNode().Add("MSG", "0");
    EXPECT_TRUE(gui.IsPromptTypeAvailable("M_ON"));
}

class GuiEditModes : public FormFixture {
protected:
    void StartActionsEdit() {
        gui.LVActions.SetSelectedItem(gui.LVActions.FindItem("1a"));
        gui.cmdActionsEdit_Click();
        ASSERT_EQ(gui.cmdActionsEdit.Caption(), "Edit Off");
    }
    void StartConfirmEdit() {
        gui.LVConfirm.SetSelectedItem(gui.LVConfirm.FindItem("1a"));
        gui.cmdConfirmEdit_Click();
        ASSERT_EQ(gui.cmdConfirmEdit.Caption(), "Edit Off");
    }
};

TEST_F(GuiEditModes, FocusEndsTheEditModesOfTheOtherLists) {
    StartActionsEdit();
    // The row's own pickers keep the mode.
    input::Focus(gui.cmbValidMatchNumber);
    EXPECT_EQ(gui.cmdActionsEdit.Caption(), "Edit Off");
    input::Focus(gui.LVActions);
    EXPECT_EQ(gui.cmdActionsEdit.Caption(), "Edit Off");
    input::Focus(gui.cmbMaxMatches);
    EXPECT_EQ(gui.cmdActionsEdit.Caption(), "Edit");
    EXPECT_FALSE(gui.cmbValidMatchNode.Visible());

    StartConfirmEdit();
    input::Focus(gui.cmbMaxMatches);
    input::Focus(gui.LVConfirm);
    EXPECT_EQ(gui.cmdConfirmEdit.Caption(), "Edit Off");
    input::Focus(gui.LVActions);
    EXPECT_EQ(gui.cmdConfirmEdit.Caption(), "Edit");

    StartConfirmEdit();
    input::Focus(gui.txtDescription);
    EXPECT_EQ(gui.cmdConfirmEdit.Caption(), "Edit");
    StartActionsEdit();
    input::Focus(gui.cmbRetryLimit);
    EXPECT_EQ(gui.cmdActionsEdit.Caption(), "Edit");
}

}  // namespace
}  // namespace dbn::testing
