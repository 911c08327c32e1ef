// Load and unload, OK, Cancel and Apply, the save question, and moving
// between nodes.

#include "form_fixture.h"

#include "core/component_factory.h"
#include "core/text_validator.h"

namespace dbn::testing {
namespace {

const std::string kLabelRefused =
    "Double quotes and continuous single quotes are not allowed in the Label field";

class GuiCommit : public FormFixture {
protected:
    bool Closed() const { return !gui.IsLoaded() && services.endModals == 1; }
    void RefusedLabel() { gui.txtDescription.SetText("Say \"hi\""); }
};

TEST_F(GuiCommit, CancelAndTheCloseBoxCheckAndAskBeforeTheFormIsReleased) {
    EXPECT_TRUE(gui.FormBusinessRules() && gui.ListViewsHooked());
    EXPECT_EQ(Show("StatusBar1"), " hidden");
    EXPECT_EQ(gui.StatusBar1.PanelWidth(), 10415);

    // The checks block Cancel even without changes.
    gui.cmbMethod.SetListIndex(1);
    gui.cmbLanguage1.SetListIndex(0);
    gui.cmdApply.SetEnabled(false);
    input::Press(gui.cmdCancel);
    EXPECT_EQ(services.TakeBoxTexts(), Texts{"Please select a language in Language 1"});
    EXPECT_TRUE(gui.IsLoaded());

    gui.cmbLanguage1.SetListIndex(1);
    services.answers = {form::kAnswerCancel, form::kAnswerCancel};
    input::Press(gui.cmdCancel);
    EXPECT_FALSE(gui.Unload());
    ASSERT_EQ(services.boxes.size(), 2U);
    const ShownBox& box = services.boxes[1];
    EXPECT_EQ(box.title + ": " + box.text, "Confirmation: Do you want to save changes?");
    EXPECT_EQ(box.buttons, form::MsgBoxButtons::YesNoCancel);
    EXPECT_EQ(box.icon, form::MsgBoxIcon::Question);
    EXPECT_TRUE(gui.IsLoaded() && gui.FormBusinessRules() && gui.ListViewsHooked());
    EXPECT_EQ(services.endModals, 0);
    EXPECT_TRUE(gui.cmdApply.Enabled());

    std::vector<form::FormChange> changes;
    gui.Observe([&](form::FormChange change) { changes.push_back(change); });
    services.answers = {form::kAnswerYes};
    input::Press(gui.cmdCancel);
    EXPECT_TRUE(Closed());
    EXPECT_EQ(link.saves, std::vector<std::int16_t>{5});
    EXPECT_EQ(link.released, 1);
    EXPECT_FALSE(gui.FormBusinessRules() || gui.ListViewsHooked() || gui.Focus().Focused());
    EXPECT_EQ(changes, std::vector<form::FormChange>{form::FormChange::Unloaded});
}

class GuiOk : public GuiCommit, public ::testing::WithParamInterface<bool> {};

TEST_P(GuiOk, SavesOnlyAChangedNodeAndClosesWithoutAQuestion) {
    if (GetParam()) {
        MakeDirty();
    }
    ASSERT_TRUE(input::Press(gui.cmdOK));
    EXPECT_TRUE(Closed());
    EXPECT_EQ(link.saves, GetParam() ? std::vector<std::int16_t>{5} : std::vector<std::int16_t>{});
    EXPECT_TRUE(services.boxes.empty());
}
INSTANTIATE_TEST_SUITE_P(WithAndWithoutChanges, GuiOk, ::testing::Bool());

TEST_F(GuiCommit, OkStaysOpenWhenTheSaveDoesNotHappen) {
    // A refused label: told, handed back selected, nothing saved.
    RefusedLabel();
    input::Press(gui.cmdOK);
    EXPECT_EQ(services.TakeBoxTexts(), Texts{kLabelRefused});
    EXPECT_TRUE(gui.IsLoaded() && gui.cmdApply.Enabled() && link.saves.empty());
    EXPECT_TRUE(gui.txtDescription.HasFocus());
    EXPECT_EQ(std::pair(gui.txtDescription.SelStart(), gui.txtDescription.SelLength()),
              std::pair(0, 8));

    // A save that does not commit.
    gui.txtDescription.SetText("Fine");
    link.saveCommits = false;
    input::Press(gui.cmdOK);
    EXPECT_EQ(link.saves.size(), 1U);
    EXPECT_TRUE(gui.IsLoaded() && gui.cmdApply.Enabled());

    // Search settings that do not pass the check.
    link.saveCommits = true;
    gui.cmbsecondMatch.SetListIndex(1);
    input::Press(gui.cmdOK);
    EXPECT_EQ(services.boxes.size(), 1U);
    EXPECT_TRUE(gui.IsLoaded() && link.saves.size() == 1U);
}

TEST_F(GuiCommit, ApplySavesOnceAndEndsTheEditModes) {
    gui.LVActions.SetSelectedItem(gui.LVActions.FindItem("1a"));
    gui.cmdActionsEdit_Click();
    ASSERT_TRUE(gui.cmdApply.Enabled());
    ASSERT_TRUE(input::Press(gui.cmdApply));
    EXPECT_EQ(Show("cmdActionsEdit cmdApply"), "Edit|Apply off");
    EXPECT_EQ(link.saves, std::vector<std::int16_t>{5});

    // Trapped, and the changes kept: no label validator, then no session object.
    UnregisterComponent(form::kTextValidatorClass);
    MakeDirty();
    gui.cmdApply_Click();
    form::RegisterTextValidator();
    gui.DiscardChangesAndUnload();
    gui.cmdApply.SetEnabled(true);
    gui.cmdApply_Click();
    const std::string trap = "Source: CVL_DBN_Node - cmdApply_Click \r\nDescription: ";
    EXPECT_EQ(services.TakeBoxTexts(),
              (Texts{trap + "Can't create object: CVL_Validate_TEXTField.Business_Rules",
                     trap + "Object variable or With block variable not set"}));
    EXPECT_TRUE(gui.cmdApply.Enabled() && link.saves.size() == 1U);
}

TEST_F(GuiCommit, SaveQuestionAnswers) {
    EXPECT_EQ(gui.AskToSaveChanges(), form::kAnswerNo);
    EXPECT_TRUE(services.boxes.empty());

    MakeDirty();
    services.answers = {form::kAnswerNo};
    EXPECT_EQ(gui.AskToSaveChanges(), form::kAnswerNo);
    EXPECT_TRUE(gui.cmdApply.Enabled());

    // Yes runs Apply's checks: each refusal is told and answers Cancel.
    for (const char* label : {"Say \"hi\"", "Tab\there", "Bell\x7f"}) {
        gui.txtDescription.SetText(label);
        services.answers = {form::kAnswerYes};
        EXPECT_EQ(gui.AskToSaveChanges(), form::kAnswerCancel) << label;
        EXPECT_EQ(services.boxes.back().text, kLabelRefused) << label;
    }
    gui.txtDescription.SetText("Fine");
    gui.cmbMethod.SetListIndex(1);
    gui.cmbLanguage1.SetListIndex(0);
    gui.cmbLanguage2.SetListIndex(0);
    services.answers = {form::kAnswerYes};
    EXPECT_EQ(gui.AskToSaveChanges(), form::kAnswerCancel);
    EXPECT_EQ(services.boxes.back().text, "Please select a language in Language 1");
    EXPECT_TRUE(link.saves.empty());
    gui.cmbLanguage1.SetListIndex(1);

    gui.txtDescription.SetText("Fine");
    link.saveCommits = false;
    services.answers = {form::kAnswerYes};
    EXPECT_EQ(gui.AskToSaveChanges(), form::kAnswerCancel);
    EXPECT_TRUE(gui.cmdApply.Enabled());

    link.saveCommits = true;
    services.answers = {form::kAnswerYes};
    EXPECT_EQ(gui.AskToSaveChanges(), form::kAnswerYes);
    EXPECT_FALSE(gui.cmdApply.Enabled());
    EXPECT_EQ(link.saves.size(), 2U);
}

// A node-type pick in any form pair's node picker is a change of the node.
TEST_F(GuiCommit, PickingANodeTypeEnablesApply) {
    for (form::ListControl* node :
         {&gui.cmbGreetingNode, &gui.cmbFirstMatchPrompt, &gui.cmbSecondMatchPrompt,
          &gui.cmbExitPromptNode, &gui.cmbTimeoutNode, &gui.cmbInvalidNode}) {
        SCOPED_TRACE(node->Name());
        node->SetEnabled(true);  // the second match's prompt is off while it is "None"
        gui.cmdApply.SetEnabled(false);
        ASSERT_TRUE(input::Pick(*node, 2));
        EXPECT_TRUE(gui.cmdApply.Enabled());
    }
}

using GuiNavigation = FormFixture;

TEST_F(GuiNavigation, ButtonsMoveTheSelectorAndLoadTheNode) {
    ASSERT_TRUE(input::Press(gui.cmdNext));
    EXPECT_EQ(gui.cmbNode.Text(), "DBN 7");
    EXPECT_EQ(gui.nodeNumber(), 7);
    EXPECT_EQ(link.loads, std::vector<std::int16_t>{7});
    // At the end already: nothing loads.
    gui.cmdNext_Click();
    gui.cmdLast_Click();
    EXPECT_EQ(link.loads.size(), 1U);
    gui.cmdFirst_Click();
    EXPECT_EQ(gui.nodeNumber(), 3);
    gui.cmdPrevious_Click();
    gui.cmdLast_Click();
    gui.cmdPrevious_Click();
    EXPECT_EQ(link.loads, (std::vector<std::int16_t>{7, 3, 7, 5}));
    EXPECT_EQ(gui.cmbNode.Text(), "DBN 5");
    EXPECT_FALSE(gui.cmdApply.Enabled());
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(GuiNavigation, UnsavedChangesAreOfferedOncePerMove) {
    MakeDirty();
    services.answers = {form::kAnswerCancel};
    gui.cmdNext_Click();
    EXPECT_EQ(gui.nodeNumber(), 5);
    EXPECT_TRUE(gui.cmdApply.Enabled());
    services.answers = {form::kAnswerNo};
    gui.cmdNext_Click();
    EXPECT_EQ(services.boxes.size(), 2U);
    EXPECT_EQ(gui.nodeNumber(), 7);
    EXPECT_FALSE(gui.cmdApply.Enabled() || !link.saves.empty());

    // Not moving still asks and still clears the mark.
    MakeDirty();
    services.answers = {form::kAnswerNo};
    gui.cmdLast_Click();
    EXPECT_EQ(services.boxes.size(), 3U);
    EXPECT_FALSE(gui.cmdApply.Enabled());
}

TEST_F(GuiNavigation, PickingANodeAsksAndACancelPutsTheSelectorBack) {
    MakeDirty();
    services.answers = {form::kAnswerCancel};
    ASSERT_TRUE(input::Pick(gui.cmbNode, 0));
    EXPECT_EQ(Show("cmbNode cmdApply"), "DBN 5|Apply");
    EXPECT_EQ(gui.nodeNumber(), 5);
    EXPECT_TRUE(link.loads.empty());
    EXPECT_EQ(services.boxes.size(), 1U);

    services.answers = {form::kAnswerNo};
    ASSERT_TRUE(input::Pick(gui.cmbNode, 0));
    EXPECT_EQ(gui.nodeNumber(), 3);
    EXPECT_EQ(link.loads, std::vector<std::int16_t>{3});

    // Without the session object the load is trapped.
    gui.Unload();
    gui.cmbNode.SetListIndex(2);
    EXPECT_EQ(services.TakeBoxTexts().back(),
              "Source: CVL_DBN_Node - cmbNode_Click \r\nDescription: "
              "Object variable or With block variable not set");
    EXPECT_EQ(gui.nodeNumber(), 3);
}

}  // namespace
}  // namespace dbn::testing
