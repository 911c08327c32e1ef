// The node pickers, the actions list, the confirmation list and the hook on
// the two list views.

#include "form_fixture.h"

#include <algorithm>

namespace dbn::testing {
namespace {

const std::string kNotice = "Please check the \"Max Number of each Node\" Section for ";

class ListsTest : public FormFixture {
protected:
    // The in-place pickers of the actions list that show.
    long VisibleActionPickers() {
        return std::ranges::count_if(gui.Controls(), [this](const form::Control* control) {
            return control->Container() == &gui.fraActions && control->Visible() &&
                   control->Name().starts_with("cmb");
        });
    }
    bool ConfirmPickersVisible() {
        return gui.cmbConfirmNode.Visible() || gui.cmbConfirmNumber.Visible();
    }
    form::ListItem& Action(int position) { return gui.LVActions.ItemAt(position); }
    form::ListItem& Confirm(int position) { return gui.LVConfirm.ItemAt(position); }
    // A confirmation row as added new: MSG 1, no label.
    static std::string NewRow(int position, const std::string& name) {
        const std::string number = std::to_string(position);
        return number + "a:" + number + "|" + name + "|MSG 1||MSG|0|1";
    }
};

TEST_F(ListsTest, EachTrappedCallShowsOneStandardErrorBox) {
    // No selected row to open the pickers on: both edit modes stay on.
    gui.LVActions.SetSelectedItem(nullptr);
    gui.LVConfirm.SetSelectedItem(nullptr);
    gui.cmdActionsEdit_Click();
    gui.cmdConfirmEdit_Click();
    // Pickers in disabled frames cannot take the focus.
    gui.Frame1.SetEnabled(false);
    gui.fraCustomSettings.SetEnabled(false);
    gui.LVActions_ItemClick(Action(0));
    gui.LVActions_MouseUp();
    gui.LVConfirm_ItemClick(Confirm(0));
    gui.LVConfirm_MouseUp();
    // Without the collections no node type can be looked up.
    gui.ReleaseCollections();
    gui.LVActions.SetSelectedItem(&Action(0));
    gui.LVConfirm.SetSelectedItem(&Confirm(0));
    gui.HandleMSGLISTNOOPPromptBOX(gui.cmbGreetingNode, gui.cmbGreetingNumber, false);
    EXPECT_TRUE(gui.cmdApply.Enabled());  // also after a failed refill
    gui.GenericLVactions_ItemClick(Action(0), gui.cmbValidMatchNode, gui.cmbValidMatchNumber);
    gui.GenericActionsSectionNodeNumber_Click(gui.cmbValidMatchNumber);
    gui.cmdActionsDefault_Click();
    gui.cmbConfirmNumber_Click();
    gui.cmbConfirmNode.SetListIndex(0);
    gui.cmbMaxMatches.SetListIndex(8);
    gui.cmdConfirmDefault_Click();
    gui.cmbConfirmation.SetListIndex(1);
    gui.GenericNumber_Change(
        gui.cmbMethod, form::NumberChangeMode::ClampOnly);  // "0" is no entry of a choice list

    // Each call ended in its own trap: one standard error box per call.
    const Texts boxes = services.TakeBoxTexts();
    ASSERT_EQ(boxes.size(), 16U);
    EXPECT_EQ(boxes.front(),
              "Source: CVL_DBN_Node - cmdActionsEdit_Click \r\nDescription: "
              "Object variable or With block variable not set");
    for (const std::string& box : boxes) {
        EXPECT_TRUE(box.starts_with("Source: CVL_DBN_Node - ")) << box;
    }
}

TEST_F(ListsTest, PickersRefillForAnotherLimitAndTheNoNumberTypeTakesBothPlaces) {
    // On the form the node picker takes the number picker's place too; in the
    // actions list its width switches between 850 and 1550.
    const int formWidth = gui.txtDIR.Width();
    for (auto [node, number, code, width, shown] :
         {std::tuple{&gui.cmbGreetingNode, &gui.cmbGreetingNumber, "NOOP",
                     formWidth + gui.cmbDirectory.Width(), false},
          {&gui.cmbGreetingNode, &gui.cmbGreetingNumber, "MSG", formWidth, true},
          {&gui.cmbStarNode, &gui.cmbStarNumber, "MSG", 850, true},
          {&gui.cmbStarNode, &gui.cmbStarNumber, "NOOP", 1550, false}}) {
        node->SetText(code);
        EXPECT_EQ(node->Width(), width);
        EXPECT_EQ(number->Visible(), shown);
    }
    EXPECT_EQ(gui.cmbStarNumber.Left(), gui.cmbStarNode.Left() + 850);

    // A form pair refills its numbers only for another highest number.
    gui.cmdApply.SetEnabled(false);
    gui.cmbTimeoutNumber.SetListIndex(6);             // MSG, 20 numbers
    ASSERT_TRUE(input::Pick(gui.cmbTimeoutNode, 5));  // M_ON, also 20
    EXPECT_EQ(Show("cmbTimeoutNumber cmdApply"), "7|Apply");
    input::Pick(gui.cmbTimeoutNode, 1);  // XFER, 12
    EXPECT_EQ(gui.cmbTimeoutNumber.ListCount(), 12);
    EXPECT_EQ(gui.cmbTimeoutNumber.List(11) + gui.cmbTimeoutNumber.Text(), "121");
}

TEST_F(ListsTest, InListPickRewritesTheSelectedRowOnly) {
    form::ListItem& star = Action(2);
    gui.LVActions.SetSelectedItem(&star);
    // 5 numbers: 7 falls back to 1; 20 numbers: 7 stays.
    for (auto [code, cells] :
         {std::pair{"LIST", "3a:3|*|LIST 1||LIST|8|1 1"}, {"MSG", "3a:3|*|MSG 7||MSG|0|7 7"}}) {
        SetTarget(star, "XFER 7|XFER|4|7", "Sales");
        gui.cmbStarNode.SetText(code);
        EXPECT_EQ(Cells(star) + " " + gui.cmbStarNumber.Text(), cells);
    }
    gui.cmbStarNode.SetText("NOOP");
    EXPECT_EQ(Cells(star), "3a:3|*|NOOP||NOOP|814|0");

    const auto rows = AllCells(gui.LVActions);
    gui.LVActions.SetSelectedItem(nullptr);
    gui.cmbStarNode.SetText("LIST");
    EXPECT_EQ(gui.cmbStarNumber.ListCount(), 5);
    EXPECT_EQ(AllCells(gui.LVActions), rows);
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ListsTest, ActionsDefaultGivesTheFiveRowsAndMarksTheChange) {
    SetTarget(Action(0), "MSG 3|MSG|0|3", "Operator");
    ASSERT_TRUE(input::Press(gui.cmdActionsDefault));
    EXPECT_EQ(
        AllCells(gui.LVActions),
        (Texts{"1a:1|Valid Match|XFER 1||XFER|4|1", "2a:2|Abort|MSG 1||MSG|0|1",
               "3a:3|*|NOOP||NOOP|814|0", "4a:4|#|NOOP||NOOP|814|0", "5a:5|0|NOOP||NOOP|814|0"}));
    EXPECT_TRUE(gui.cmdApply.Enabled());
    EXPECT_EQ(std::pair(gui.LVActions.Column(1).width, gui.LVActions.Column(2).width),
              std::pair(1000, 1500));
}

TEST_F(ListsTest, ActionsEditModeOpensPickersOverTheSelectedRowAndClosesThem) {
    gui.LVActions.SetSelectedItem(&Action(1));  // Abort, MSG 1
    ASSERT_TRUE(input::Press(gui.cmdActionsEdit));
    EXPECT_EQ(Show("cmdActionsEdit cmdActionsDefault cmbAbortNode cmbAbortNumber cmdApply"),
              "Edit Off|Default off|MSG|1|Apply");
    EXPECT_EQ(VisibleActionPickers(), 2);
    const form::RowPosition row = gui.LVActions.RowPositionOf(Action(1));
    EXPECT_EQ(gui.cmbAbortNode.Left(), gui.LVActions.Left() + row.left + 1000);
    EXPECT_EQ(gui.cmbAbortNode.Top(), gui.LVActions.Top() + row.top + 50);
    EXPECT_EQ(gui.cmbAbortNumber.Left(), gui.cmbAbortNode.Left() + gui.cmbAbortNode.Width());

    // A row of the type without numbers opens without the number picker.
    ASSERT_TRUE(input::ClickRow(gui.LVActions, Action(3)));
    EXPECT_EQ(VisibleActionPickers(), 1);
    EXPECT_TRUE(gui.cmbPoundNode.HasFocus() && services.boxes.empty());

    // A picked number, or a typed one, goes into the row with the description
    // of its node: one look-up for a target not known yet, none after.
    gui.NameShownNode(1, "Front desk");  // a node on show: look-ups are worth making
    link.descriptions[{0, 7}] = "Reception";
    input::ClickRow(gui.LVActions, Action(0));
    gui.cmbValidMatchNode.SetText("MSG");
    input::Pick(gui.cmbValidMatchNumber, 6);
    EXPECT_EQ(Cells(Action(0)), "1a:1|Valid Match|MSG 7|Reception|MSG|0|7");
    input::Type(gui.cmbValidMatchNumber, "17");
    EXPECT_EQ(Cells(Action(0)), "1a:1|Valid Match|MSG 17||MSG|0|17");
    const int lookups = link.lookups;
    input::Pick(gui.cmbValidMatchNumber, 6);
    EXPECT_EQ(Cells(Action(0)), "1a:1|Valid Match|MSG 7|Reception|MSG|0|7");
    EXPECT_EQ(link.lookups, lookups);

    gui.cmdApply.SetEnabled(false);
    input::Press(gui.cmdActionsEdit);
    EXPECT_EQ(Show("cmdActionsEdit cmdActionsDefault cmdApply"), "Edit|Default|Apply");
    input::ClickRow(gui.LVActions, Action(0));
    EXPECT_EQ(VisibleActionPickers(), 0);
}

TEST_F(ListsTest, UnavailableTargetShowsTheNoticeAndNoPicker) {
    gui.NotAvailableAllInstructionsNode().Add("MSG", "0");  // M_ON goes with it
    SetTarget(Action(0), "M_ON 3|M_ON|817|3", "Old");
    SetTarget(Action(1), "PAAS 2|PAAS|12|2", "");
    SetTarget(Confirm(1), "PAAS 1|PAAS|12|1", "");
    gui.LVActions.SetSelectedItem(&Action(0));
    input::Press(gui.cmdActionsEdit);
    input::ClickRow(gui.LVActions, Action(1));
    EXPECT_EQ(VisibleActionPickers(), 0);
    EXPECT_EQ(Cells(Action(0)), "1a:1|Valid Match|M_ON 3|Old|M_ON|817|3");

    input::Press(gui.cmdConfirmEdit);
    input::ClickRow(gui.LVConfirm, Confirm(1));
    EXPECT_FALSE(ConfirmPickersVisible());
    EXPECT_EQ(services.TakeBoxTexts(), (Texts{kNotice + "M_ON Node in Partition Settings.",
                                              kNotice + "PAAS Node in Partition Settings.",
                                              kNotice + "PAAS Node in Partition Settings."}));
}

TEST_F(ListsTest, ConfirmationOffAndOnAgainRestoresTheRowsAndDefaultRenewsThem) {
    const auto initial = AllCells(gui.LVConfirm);
    ASSERT_EQ(initial.size(), 7U);
    EXPECT_EQ(initial[0], NewRow(1, "Before Names"));
    EXPECT_EQ(initial[6], NewRow(7, "Name5"));
    SetTarget(Confirm(2), "LIST 4|LIST|8|4", "Smith");
    const auto rows = AllCells(gui.LVConfirm);

    const std::string section = "lblMaxMatches cmbMaxMatches cmdConfirmEdit cmdConfirmDefault";
    ASSERT_TRUE(input::Pick(gui.cmbConfirmation, 0));
    EXPECT_EQ(gui.LVConfirm.ItemCount(), 0);
    EXPECT_EQ(AllCells(gui.LVTemp), rows);
    EXPECT_EQ(Show(section), "Max Matches: off|5 off|Edit off|Default off");
    EXPECT_FALSE(gui.LVConfirm.TabStop());
    EXPECT_TRUE(gui.cmdApply.Enabled());

    input::Pick(gui.cmbConfirmation, 1);
    EXPECT_EQ(AllCells(gui.LVConfirm), rows);
    EXPECT_EQ(gui.LVTemp.ItemCount(), 0);
    EXPECT_EQ(Show(section), "Max Matches:|5|Edit|Default");
    EXPECT_TRUE(gui.LVConfirm.TabStop());

    // Default: "Yes", five matches and new rows.
    input::Pick(gui.cmbMaxMatches, 1);
    gui.cmdApply.SetEnabled(false);
    ASSERT_TRUE(input::Press(gui.cmdConfirmDefault));
    EXPECT_EQ(Show("cmbConfirmation cmbMaxMatches cmdApply"), "Yes|5|Apply");
    EXPECT_EQ(AllCells(gui.LVConfirm), initial);
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ListsTest, NumberOfMatchesGrowsAndShrinksKeepingTargets) {
    input::Pick(gui.cmbMaxMatches, 2);  // 3 matches
    ASSERT_EQ(gui.LVConfirm.ItemCount(), 5);
    SetTarget(Confirm(3), "LIST 4|LIST|8|4", "Jones");
    input::Pick(gui.cmbMaxMatches, 5);  // 6 matches
    const auto rows = AllCells(gui.LVConfirm);
    ASSERT_EQ(rows.size(), 8u);
    EXPECT_EQ(rows[3], "4a:4|Name2|LIST 4|Jones|LIST|8|4");
    EXPECT_EQ(rows[5], NewRow(6, "Name4"));
    EXPECT_EQ(rows[7], NewRow(8, "Name6"));

    // Lowering sets the name rows beyond aside; raising brings them back, in
    // order and renamed for their place, before any new row.
    SetTarget(Confirm(6), "LIST 2|LIST|8|2", "Brown");
    input::Pick(gui.cmbMaxMatches, 1);  // 2 matches
    ASSERT_EQ(gui.LVConfirm.ItemCount(), 4);
    EXPECT_EQ(gui.AsideNameRows().size(), 4u);
    input::Pick(gui.cmbMaxMatches, 6);  // 7 matches
    const auto back = AllCells(gui.LVConfirm);
    ASSERT_EQ(back.size(), 9u);
    EXPECT_EQ(back[3], "4a:4|Name2|LIST 4|Jones|LIST|8|4");
    EXPECT_EQ(back[4], NewRow(5, "Name3"));
    EXPECT_EQ(back[6], "7a:7|Name5|LIST 2|Brown|LIST|8|2");
    EXPECT_EQ(back[8], NewRow(9, "Name7"));
    EXPECT_TRUE(gui.AsideNameRows().empty());
    // Default drops the rows set aside with the rest.
    input::Pick(gui.cmbMaxMatches, 0);
    ASSERT_FALSE(gui.AsideNameRows().empty());
    input::Press(gui.cmdConfirmDefault);
    EXPECT_TRUE(gui.AsideNameRows().empty());

    // With the section off the list stays empty and nothing is marked.
    input::Pick(gui.cmbConfirmation, 0);
    gui.cmdApply.SetEnabled(false);
    gui.cmbMaxMatches.SetListIndex(1);
    EXPECT_EQ(gui.LVConfirm.ItemCount(), 0);
    EXPECT_FALSE(gui.cmdApply.Enabled());
}

TEST_F(ListsTest, GuardedSelectionsAddNoRowsAndSettingAsideKeepsOnlyCurrentRows) {
    input::Pick(gui.cmbConfirmation, 0);
    {
        form::GUI::ConfirmRowsGuard guard(gui);
        gui.cmbConfirmation.SetListIndex(1);
        EXPECT_EQ(std::pair(gui.LVConfirm.ItemCount(), gui.LVTemp.ItemCount()), std::pair(0, 7));
        EXPECT_TRUE(gui.cmbMaxMatches.Enabled());
        gui.LVConfirm.AddItem("1a", "1").SetSubItem(1, "Loaded");
        gui.cmbMaxMatches.SetListIndex(8);
        EXPECT_EQ(gui.LVConfirm.ItemCount(), 1);
    }
    input::Pick(gui.cmbConfirmation, 0);
    EXPECT_EQ(AllCells(gui.LVTemp), Texts{"1a:1|Loaded|||||"});
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ListsTest, ConfirmationEditModeEditsTheSelectedRowInPlaceAloneOfTheTwoLists) {
    input::Press(gui.cmdActionsEdit);
    gui.LVConfirm.SetSelectedItem(&Confirm(2));
    ASSERT_TRUE(input::Press(gui.cmdConfirmEdit));  // ends the actions edit mode
    EXPECT_EQ(Show("cmdActionsEdit cmdConfirmEdit cmdConfirmDefault cmbConfirmNode "
                   "cmbConfirmNumber cmdApply"),
              "Edit|Edit Off|Default off|MSG|1|Apply");
    EXPECT_EQ(VisibleActionPickers(), 0);
    EXPECT_EQ(gui.LVConfirm.EnsuredVisible(), 2);
    const form::RowPosition row = gui.LVConfirm.RowPositionOf(Confirm(2));
    EXPECT_EQ(gui.cmbConfirmNode.Left(), gui.LVConfirm.Left() + row.left + 1600);
    EXPECT_EQ(gui.cmbConfirmNode.Top(), gui.LVConfirm.Top() + row.top + 50);
    EXPECT_EQ(gui.cmbConfirmNumber.Left(), gui.cmbConfirmNode.Left() + 900);

    input::Pick(gui.cmbConfirmNode, 1);  // LIST
    input::Pick(gui.cmbConfirmNumber, 3);
    EXPECT_EQ(Cells(Confirm(2)), "3a:3|Name1|LIST 4||LIST|8|4");
    input::Pick(gui.cmbConfirmNode, 2);  // NOOP
    EXPECT_EQ(Cells(Confirm(2)), "3a:3|Name1|NOOP||NOOP|814|0");
    EXPECT_EQ(gui.cmbConfirmNode.Width(), 1600);
    EXPECT_FALSE(gui.cmbConfirmNumber.Visible());

    input::ClickRow(gui.LVConfirm, Confirm(0));
    EXPECT_TRUE(gui.cmbConfirmNode.HasFocus());
    input::Press(gui.cmdActionsEdit);  // ends this edit mode
    EXPECT_EQ(Show("cmdActionsEdit cmdConfirmEdit cmdConfirmDefault"), "Edit Off|Edit|Default");
    EXPECT_FALSE(ConfirmPickersVisible());
    EXPECT_EQ(VisibleActionPickers(), 2);
}

TEST_F(ListsTest, HeaderPressAndScrollHideTheEditorsOnlyWhileHooked) {
    input::Press(gui.cmdActionsEdit);
    gui.cmbZeroNumber.SetVisible(true);
    gui.cmbConfirmNode.SetVisible(true);
    gui.cmbConfirmNumber.SetVisible(true);
    // Scrolling the actions list hides nothing; its header press hides its
    // ten editors but leaves the edit mode on.
    ASSERT_TRUE(input::Scroll(gui.LVActions));
    EXPECT_EQ(VisibleActionPickers(), 3);
    ASSERT_TRUE(input::PressHeader(gui.LVActions));
    EXPECT_EQ(VisibleActionPickers(), 0);
    EXPECT_EQ(gui.cmdActionsEdit.Caption(), "Edit Off");
    EXPECT_TRUE(ConfirmPickersVisible());
    ASSERT_TRUE(input::Scroll(gui.LVConfirm));
    EXPECT_FALSE(ConfirmPickersVisible());
    gui.cmbConfirmNumber.SetVisible(true);
    ASSERT_TRUE(input::PressHeader(gui.LVConfirm));
    EXPECT_FALSE(ConfirmPickersVisible());

    gui.UnhookListViews();
    gui.cmbConfirmNode.SetVisible(true);
    gui.cmbAbortNode.SetVisible(true);
    input::PressHeader(gui.LVConfirm);
    input::Scroll(gui.LVConfirm);
    input::PressHeader(gui.LVActions);
    EXPECT_TRUE(gui.cmbConfirmNode.Visible() && gui.cmbAbortNode.Visible());
}

}  // namespace
}  // namespace dbn::testing
