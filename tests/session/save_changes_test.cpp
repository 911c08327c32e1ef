// Saving a node: what lands in Node_DBN, its prompt rows and its pool row,
// and what a failed save leaves behind.

#include "save_support.h"

#include <regex>
#include <tuple>

namespace dbn::testing {
namespace {

using SaveChangesTest = SavingTest;

TEST_F(SaveChangesTest, EveryColumnOfTheRowComesFromItsOwnControl) {
    root.Exec("UPDATE Node_DBN SET Reserved1 = 5, Reserved7 = 5, Reserved10 = 5, NodeType = 'X'");
    // Targets missing from the demo, so that every stored value is distinct.
    for (auto [type, number, code] :
         std::vector<std::tuple<int, int, std::string>>{{16, 7, "DIR"},
                                                        {4, 11, "XFER"},
                                                        {1, 12, "CMD"},
                                                        {2, 13, "TIME"},
                                                        {3, 14, "DATE"},
                                                        {6, 15, "DTMF"},
                                                        {8, 6, "LIST"},
                                                        {7, 3, "VOX"},
                                                        {9, 4, "AUTO"},
                                                        {13, 3, "TABLE"},
                                                        {15, 9, "DBN"},
                                                        {8, 16, "LIST"}}) {
        AddPoolRow(1, type, number, code);
    }
    Edit(1, 1, [&](form::GUI& gui, Business_Rules& rules) {
        gui.txtDescription.SetText("Front desk");
        gui.cmbDirectory.SetText("7");
        gui.cmbLanguage1.SetListIndex(2);
        gui.cmbLanguage2.SetListIndex(1);
        PickTarget(gui.cmbGreetingNode, gui.cmbGreetingNumber, "MSG", "3");
        SetTarget(gui.LVActions, 0, "XFER 11", "XFER", "4", "11");
        SetTarget(gui.LVActions, 1, "CMD 12", "CMD", "1", "12");
        SetTarget(gui.LVActions, 2, "TIME 13", "TIME", "2", "13");
        SetTarget(gui.LVActions, 3, "DATE 14", "DATE", "3", "14");
        SetTarget(gui.LVActions, 4, "DTMF 15", "DTMF", "6", "15");
        gui.cmbfirstMatch.SetListIndex(1);
        gui.cmbFirstMinDigits.SetText("4");
        gui.cmbFirstMaxDigits.SetText("8");
        PickTarget(gui.cmbFirstMatchPrompt, gui.cmbFirstMatchPromptNumber, "LIST", "6");
        gui.cmbsecondMatch.SetListIndex(1);
        gui.cmbSecondMinDigits.SetText("2");
        gui.cmbSecondMaxDigits.SetText("9");
        PickTarget(gui.cmbSecondMatchPrompt, gui.cmbSecondMatchPromptNumber, "MSG", "7");
        PickTarget(gui.cmbTimeoutNode, gui.cmbTimeoutNumber, "VOX", "3");
        PickTarget(gui.cmbInvalidNode, gui.cmbInvalidNumber, "AUTO", "4");
        gui.cmbDigitTimeOut.SetText("12");
        gui.cmbSelTimeOut.SetText("33");
        gui.cmbRetryLimit.SetText("4");
        gui.cmbMaxMatches.SetText("6");
        gui.cmbPlayName.SetListIndex(0);
        SetTarget(gui.LVConfirm, 0, "TABLE 3", "TABLE", "13", "3");
        SetTarget(gui.LVConfirm, 1, "DBN 9", "DBN", "15", "9");
        PickTarget(gui.cmbExitPromptNode, gui.cmbExitPromptNumber, "LIST", "16");
        EXPECT_TRUE(rules.SaveChanges(1));
    });
    EXPECT_TRUE(services.boxes.empty() && services.confirmations.empty());
    EXPECT_EQ(Rows("Node_DBN", Where(1, "NodeNumber", 1)),
              "1,1,15,1,'DBN','Front desk',0,7,2,1,'MSG',3,0,'XFER',11,4,'CMD',12,1,'TIME',13,2,"
              "'DATE',14,3,'DTMF',15,6,2,4,8,'LIST',6,8,1,2,9,'MSG',7,0,'VOX',3,7,'AUTO',4,9,"
              "12,33,4,1,6,0,'TABLE',3,13,'DBN',9,15,'LIST',16,8,0,0,0,0,0,0,0,0,0,0");
    EXPECT_EQ(NodeColumn("NodeType", 1, 2), "X") << "another node was written";
}

TEST_F(SaveChangesTest, EmptyNumberPickersStoreZero) {
    Edit(1, 1, [&](form::GUI& gui, Business_Rules& rules) {
        for (form::ListControl* number : {&gui.cmbGreetingNumber, &gui.cmbFirstMatchPromptNumber,
                                          &gui.cmbSecondMatchPromptNumber, &gui.cmbTimeoutNumber,
                                          &gui.cmbInvalidNumber, &gui.cmbExitPromptNumber}) {
            number->Clear();
        }
        EXPECT_TRUE(rules.SaveChanges(1));
    });
    EXPECT_EQ(NodeColumn("GreetingNodeNumber || FirstPromptNodeNumber || SecondPromptNodeNumber "
                         "|| TimeoutNodeNumber || InvalidNodeNumber || ConfirmationExitNodeNumber",
                         1, 1),
              "000000");
}

TEST_F(SaveChangesTest, PromptRowsFollowTheConfirmationSetting) {
    const std::string defaults = "4:MSG 0/1,5:MSG 0/1,6:MSG 0/1,7:MSG 0/1,8:MSG 0/1,9:MSG 0/1";
    const std::string nineDefaults = "1:MSG 0/1,2:MSG 0/1,3:MSG 0/1," + defaults;
    const std::string beforeAndAfter =
        "BeforePromptNodeType || BeforePromptNodeNumber || BeforePromptNodeTypeID || ' ' || "
        "AfterPromptNodeType || AfterPromptNodeNumber || AfterPromptNodeTypeID";
    // Saves node 1 with the confirmation switched as given and these rows listed.
    auto saveWith = [&](int confirmation, std::vector<std::string> rows) {
        Edit(1, 1, [&](form::GUI& gui, Business_Rules& rules) {
            gui.cmbConfirmation.SetListIndex(confirmation);
            gui.LVConfirm.ClearItems();
            for (const std::string& number : rows) {
                AddMessageRow(gui.LVConfirm, number);
            }
            EXPECT_TRUE(rules.SaveChanges(1));
        });
    };

    saveWith(0, {"8", "9", "7"});  // off: defaults only, but before and after from the list
    EXPECT_EQ(PromptRows(1, 1), nineDefaults);
    EXPECT_EQ(NodeColumn(beforeAndAfter, 1, 1), "MSG80 MSG90");

    saveWith(1, {"5", "6", "9", "8", "7"});  // three names, then defaults up to nine
    EXPECT_EQ(PromptRows(1, 1), "1:MSG 0/9,2:MSG 0/8,3:MSG 0/7," + defaults);

    saveWith(1, {"5", "6", "1", "2", "3", "4", "5", "6", "7", "8", "9", "1", "2"});
    EXPECT_EQ(PromptRows(1, 1),
              "1:MSG 0/1,2:MSG 0/2,3:MSG 0/3,4:MSG 0/4,5:MSG 0/5,6:MSG 0/6,"
              "7:MSG 0/7,8:MSG 0/8,9:MSG 0/9,10:MSG 0/1,11:MSG 0/2");

    saveWith(1, {});  // an empty list: message node 1 before and after
    EXPECT_EQ(PromptRows(1, 1), nineDefaults);
    EXPECT_EQ(NodeColumn(beforeAndAfter, 1, 1), "MSG10 MSG10");
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(SaveChangesTest, PoolEntryGetsTheLabelAndAFreshLocalTimeOnEverySave) {
    const std::string pool =
        " FROM Node_General_Pool" + Where(1, "NodeNumber", 2) + " AND NodeTypeID = 15";
    Edit(1, 2, [&](form::GUI& gui, Business_Rules& rules) {
        gui.txtDescription.SetText("Sales team");
        EXPECT_TRUE(rules.SaveChanges(2));
        EXPECT_TRUE(std::regex_match(root.QueryText("SELECT DateModified" + pool),
                                     std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)")));
        // Nothing changed since: the time is written again all the same.
        root.Exec("UPDATE Node_General_Pool SET DateModified = 'old'" + Where(1, "NodeNumber", 2) +
                  " AND NodeTypeID = 15");
        EXPECT_TRUE(rules.SaveChanges(2));
    });
    EXPECT_EQ(root.QueryText("SELECT NodeDescription" + pool), "Sales team");
    EXPECT_NE(root.QueryText("SELECT DateModified" + pool), "old");
}

TEST_F(SaveChangesTest, FailedStatementLeavesDatabaseUntouchedAndFormDirty) {
    root.Exec(
        "CREATE TRIGGER injected BEFORE UPDATE ON Node_General_Pool BEGIN "
        "SELECT RAISE(ABORT, 'injected'); END");
    const std::string before =
        Rows("Node_DBN") + Rows("Detail_DBN_Prompts") + Rows("Node_General_Pool");
    Edit(2, 5, [&](form::GUI& gui, Business_Rules&) {
        gui.txtDescription.SetText("Changed label");
        gui.cmdApply_Click();
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_EQ(gui.txtDescription.Text(), "Changed label");
        EXPECT_TRUE(gui.Frame1.Enabled());
        EXPECT_FALSE(gui.StatusBar1.Visible());
        EXPECT_EQ(services.busyDepth, 0);
    });
    ASSERT_EQ(services.boxes.size(), 1u);
    EXPECT_EQ(services.boxes[0].title, "Error");
    EXPECT_TRUE(services.boxes[0].text.find(" - SaveChanges \r\nDescription: ") !=
                    std::string::npos &&
                services.boxes[0].text.find("injected") != std::string::npos)
        << services.boxes[0].text;
    EXPECT_EQ(Rows("Node_DBN") + Rows("Detail_DBN_Prompts") + Rows("Node_General_Pool"), before);
}

TEST_F(SaveChangesTest, NodeDeletedMeanwhileIsReportedAndNothingIsWritten) {
    Edit(2, 5, [&](form::GUI& gui, Business_Rules& rules) {
        root.Exec("DELETE FROM Node_DBN WHERE PartID = 2 AND NodeNumber = 5");
        gui.txtDescription.SetText("Changed label");
        EXPECT_FALSE(rules.SaveChanges(5));
    });
    ASSERT_EQ(services.boxes.size(), 1u);
    EXPECT_EQ(services.boxes[0].title, "Information");
    EXPECT_EQ(services.boxes[0].text,
              "DBN 5 no longer exists in the configuration database. Nothing was saved.");
    EXPECT_EQ(Count("Detail_DBN_Prompts", Where(2, "NodeMasterID", 5)), 9);
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_General_Pool" +
                             Where(2, "NodeNumber", 5) + " AND NodeTypeID = 15"),
              "Support directory");
}

}  // namespace
}  // namespace dbn::testing
