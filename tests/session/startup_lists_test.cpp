// The start-up lists: node-type names and limits, the target-node lists and
// the fixed choice lists.
#include "session_support.h"

namespace dbn::testing {
namespace {

using StartupLists = SessionTest;

TEST_F(StartupLists, LimitsFallBackAndAMissingMessageTypeStopsTheNamesAt817) {
    root.Exec("DELETE FROM Node_Type_Max WHERE PartitionID = 1 AND NodeType_ID <> 0");
    root.Exec("UPDATE Node_Type_Max SET Max_Number = 500 WHERE PartitionID = 1");
    BareForm form(services, 1);
    form::KeyedCollection& limits = form.gui.MaxNodeNumberCollection();
    EXPECT_EQ(limits.Count(), 18);
    EXPECT_EQ(limits.Item("0") + limits.Item("15") + " " + limits.Item("816") + " " +
                  limits.Item("817") + " " + limits.Item("818"),
              "5000 999 500 500");
    root.Exec("DELETE FROM Node_Type_Max");
    EXPECT_EQ(BareForm(services, 1).gui.MaxNodeNumberCollection().Item("818"), "0");
    EXPECT_TRUE(services.boxes.empty());

    root.Exec("DELETE FROM SR_Node_Type_Names WHERE ID = 0");
    BareForm noMessages(services, 1);
    ASSERT_EQ(services.boxes.size(), 1u);
    EXPECT_NE(services.boxes[0].text.find(" - LoadNodeName "), std::string::npos);
    EXPECT_EQ(noMessages.gui.NodeNameCollection().Count(), 15);  // up to M_ON
    EXPECT_EQ(noMessages.gui.MaxNodeNumberCollection().Count(), 14);
    root.Exec("DELETE FROM SR_Node_Type_Names");
    EXPECT_EQ(BareForm(services, 1).gui.NodeNameCollection().Count(), 0);
    EXPECT_EQ(services.boxes.size(), 1u);
}
TEST_F(StartupLists, TypesWithoutNumbersAreHeldBackFromEveryListOfTheirSet) {
    root.Exec("UPDATE Node_Type_Max SET Max_Number = -1 WHERE PartitionID = 2 AND NodeType_ID = 3");
    BareForm form(services, 2);
    form.rules.LoadMSGLISTNOOPNode();
    form.rules.LoadAllInstructionsNode();
    form::GUI& gui = form.gui;
    for (const form::ListControl* list :
         {&gui.cmbGreetingNode, &gui.cmbFirstMatchPrompt, &gui.cmbSecondMatchPrompt,
          &gui.cmbConfirmNode, &gui.cmbExitPromptNode}) {
        EXPECT_EQ(Entries(*list), "MSG(0) NOOP(814)") << list->Name();
    }
    for (const form::ListControl* list :
         {&gui.cmbTimeoutNode, &gui.cmbInvalidNode, &gui.cmbAbortNode, &gui.cmbStarNode,
          &gui.cmbPoundNode, &gui.cmbZeroNode, &gui.cmbValidMatchNode}) {
        EXPECT_EQ(Entries(*list),
                  "MSG(0) XFER(4) DTMF(6) AUTO(9) TABLE(13) DBN(15) NOOP(814) M_ON(817) "
                  "M_OFF(818)")
            << list->Name();
    }
    EXPECT_EQ(gui.NotAvailableMSGLISTNOOPNode().KeyAt(0), "8");
    EXPECT_EQ(gui.NotAvailableMSGLISTNOOPNode().Count(), 1);
    EXPECT_EQ(gui.NotAvailableAllInstructionsNode().Count(), 6);  // CMD TIME DATE VOX LIST PAAS
    EXPECT_EQ(gui.NotAvailableAllInstructionsNode().Item("3"), "DATE");

    root.Exec("DELETE FROM SR_Node_Type_can_contain_Node_Type");
    BareForm noRules(services, 2);
    noRules.rules.LoadMSGLISTNOOPNode();
    noRules.rules.LoadAllInstructionsNode();
    EXPECT_EQ(noRules.gui.cmbGreetingNode.ListCount() + noRules.gui.cmbZeroNode.ListCount() +
                  noRules.gui.NotAvailableAllInstructionsNode().Count(),
              0);
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(StartupLists, MessageOnOffTypesFollowTheMessageLimitUnlessTheyHaveTheirOwn) {
    const std::pair<const char*, const char*> cases[] = {
        {"UPDATE Node_Type_Max SET Max_Number = 5 WHERE NodeType_ID = 0", " M_ON(817) M_OFF(818)"},
        {"SELECT 1", ""},  // message limit 0
        {"DELETE FROM Node_Type_Max WHERE NodeType_ID = 0", ""},
        {"INSERT INTO Node_Type_Max VALUES (1, 1, 817, 3)", " M_ON(817)"},
    };
    for (const auto& [arrange, offered] : cases) {
        root.Exec("UPDATE Node_Type_Max SET Max_Number = 0 WHERE NodeType_ID = 0");
        root.Exec(arrange);
        BareForm form(services, 1);
        form.rules.LoadAllInstructionsNode();
        const std::string entries = Entries(form.gui.cmbZeroNode);
        EXPECT_EQ(entries.substr(entries.find("NOOP(814)") + 9), offered) << arrange;
    }
}

TEST_F(StartupLists, FixedListsHoldTheirEntriesAndDefaults) {
    BareForm form(services, 1);
    form.rules.LoadMSGLISTNOOPNode();
    form.rules.LoadStaticConstants();
    form::GUI& gui = form.gui;
    std::string state;
    for (const form::ListControl* list :
         {&gui.cmbDirectory, &gui.cmbFirstMinDigits, &gui.cmbFirstMaxDigits,
          &gui.cmbSecondMaxDigits, &gui.cmbMaxMatches, &gui.cmbRetryLimit, &gui.cmbSelTimeOut,
          &gui.cmbDigitTimeOut, &gui.cmbMethod, &gui.cmbLanguage1, &gui.cmbLanguage2,
          &gui.cmbConfirmation, &gui.cmbPlayName}) {
        state += std::to_string(list->ListCount()) + ":" + std::to_string(list->ListIndex()) + " ";
    }
    EXPECT_EQ(state, "99:0 9:2 9:4 9:4 9:4 5:0 60:4 15:9 2:-1 3:1 3:0 2:1 2:1 ");
    EXPECT_EQ(gui.cmbSelTimeOut.List(59) + "/" + std::to_string(gui.cmbSelTimeOut.ItemData(59)),
              "60/0");
    EXPECT_EQ(Entries(gui.cmbfirstMatch) + " " + Entries(gui.cmbsecondMatch) + " " +
                  Entries(gui.cmbMethod) + " " + Entries(gui.cmbLanguage2),
              "Last Name(1) First Name(2) Both Names(3) Extension(4) None(0) Last Name(1) "
              "First Name(2) Custom(0) Default Last Name(1) None(0) English(1) French(2)");
    EXPECT_TRUE(services.boxes.empty());
}

}  // namespace
}  // namespace dbn::testing
