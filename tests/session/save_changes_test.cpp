// Saving a node: what lands in Node_DBN, its prompt rows and its pool row,
// and what a failed save leaves behind.
#include "session_support.h"

#include "form/controls/operator_input.h"

#include <regex>

namespace dbn::testing {
namespace {

using SaveChanges = SessionTest;

TEST_F(SaveChanges, EveryColumnOfTheRowComesFromItsOwnControl) {
    root.Exec("UPDATE Node_DBN SET Reserved1 = 5, Reserved7 = 5, Reserved10 = 5, NodeType = 'X'");
    // Pool rows for targets missing from the demo, so that every stored value
    // is distinct and the referenced-node check asks nothing.
    root.Exec(
        "INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber) VALUES "
        "(1,1,16,7), (1,1,4,11), (1,1,1,12), (1,1,2,13), (1,1,3,14), (1,1,6,15), (1,1,8,6), "
        "(1,1,7,3), (1,1,9,4), (1,1,13,3), (1,1,15,9), (1,1,8,16)");
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui,
            "txtDescription=Front desk; cmbDirectory=7; cmbLanguage1=French; cmbLanguage2=English; "
            "cmbGreetingNode=MSG; cmbGreetingNumber=3; cmbfirstMatch=First Name; "
            "cmbFirstMinDigits=4; cmbFirstMaxDigits=8; cmbFirstMatchPrompt=LIST; "
            "cmbFirstMatchPromptNumber=6; cmbsecondMatch=Last Name; cmbSecondMinDigits=2; "
            "cmbSecondMaxDigits=9; cmbSecondMatchPrompt=MSG; cmbSecondMatchPromptNumber=7; "
            "cmbTimeoutNode=VOX; cmbTimeoutNumber=3; cmbInvalidNode=AUTO; cmbInvalidNumber=4; "
            "cmbDigitTimeOut=12; cmbSelTimeOut=33; cmbRetryLimit=4; cmbMaxMatches=6; "
            "cmbPlayName=No; cmbExitPromptNode=LIST; cmbExitPromptNumber=16");
        SetTarget(gui.LVActions.ItemAt(0), "XFER 11|XFER|4|11");
        SetTarget(gui.LVActions.ItemAt(1), "CMD 12|CMD|1|12");
        SetTarget(gui.LVActions.ItemAt(2), "TIME 13|TIME|2|13");
        SetTarget(gui.LVActions.ItemAt(3), "DATE 14|DATE|3|14");
        SetTarget(gui.LVActions.ItemAt(4), "DTMF 15|DTMF|6|15");
        SetTarget(gui.LVConfirm.ItemAt(0), "TABLE 3|TABLE|13|3");
        SetTarget(gui.LVConfirm.ItemAt(1), "DBN 9|DBN|15|9");
        EXPECT_TRUE(Rules(gui).SaveChanges(1));
    });
    EXPECT_TRUE(services.boxes.empty() && services.confirmations.empty());
    EXPECT_EQ(TableRows("Node_DBN", Where(1, "NodeNumber", 1)),
              "1,1,15,1,'DBN','Front desk',0,7,2,1,'MSG',3,0,'XFER',11,4,'CMD',12,1,'TIME',13,2,"
              "'DATE',14,3,'DTMF',15,6,2,4,8,'LIST',6,8,1,2,9,'MSG',7,0,'VOX',3,7,'AUTO',4,9,"
              "12,33,4,1,6,0,'TABLE',3,13,'DBN',9,15,'LIST',16,8,0,0,0,0,0,0,0,0,0,0");
    EXPECT_EQ(NodeColumn("NodeType", 1, 2), "X") << "another node was written";
}

TEST_F(SaveChanges, PromptRowsFollowTheConfirmationSetting) {
    const std::string defaults = "4:MSG 0/1,5:MSG 0/1,6:MSG 0/1,7:MSG 0/1,8:MSG 0/1,9:MSG 0/1";
    const std::string nineDefaults = "1:MSG 0/1,2:MSG 0/1,3:MSG 0/1," + defaults;
    const std::string beforeAndAfter =
        "BeforePromptNodeType || BeforePromptNodeNumber || BeforePromptNodeTypeID || ' ' || "
        "AfterPromptNodeType || AfterPromptNodeNumber || AfterPromptNodeTypeID";
    // Saves node 1 with the confirmation switched as given, rows pointing at
    // these message nodes (in the list while it is on, set aside in LVTemp
    // while it is off) and these name rows set aside beyond them; answers its
    // prompt rows "number:CODE ID/number".
    auto saveWith = [&](int confirmation, const std::vector<std::string>& targets,
                        const std::vector<std::string>& aside = {}) {
        Open(1, 1, [&](form::GUI& gui) {
            gui.cmbConfirmation.SetListIndex(confirmation);
            form::ListView& rows = confirmation == 1 ? gui.LVConfirm : gui.LVTemp;
            gui.LVConfirm.ClearItems();
            gui.LVTemp.ClearItems();
            for (const std::string& number : targets) {
                const std::string position = std::to_string(rows.ItemCount() + 1);
                rows.AddItem(position + "a", position);
                SetTarget(rows.ItemAt(rows.ItemCount() - 1), "MSG " + number + "|MSG|0|" + number);
            }
            gui.AsideNameRows().clear();
            for (const std::string& number : aside) {
                gui.AsideNameRows().push_back({"Name", "MSG " + number, "", "MSG", "0", number});
            }
            EXPECT_TRUE(Rules(gui).SaveChanges(1));
        });
        return root.QueryText(
            "SELECT " +
            root.JoinedTexts("PromptNumber || ':' || PromptNodeType || ' ' || PromptNodeTypeID "
                             "|| '/' || PromptNodeNumber",
                             "','") +
            " FROM (SELECT * FROM Detail_DBN_Prompts" + Where(1, "NodeMasterID", 1) +
            " ORDER BY PromptNumber) AS prompts");
    };

    // Off: the rows set aside are kept, names and before and after alike,
    // then the names beyond them; defaults only where there are none.
    EXPECT_EQ(saveWith(0, {"8", "9", "7"}, {"6", "5"}),
              "1:MSG 0/7,2:MSG 0/6,3:MSG 0/5," + defaults);
    EXPECT_EQ(NodeColumn(beforeAndAfter, 1, 1), "MSG80 MSG90");
    EXPECT_EQ(saveWith(0, {}), nineDefaults);
    EXPECT_EQ(NodeColumn(beforeAndAfter, 1, 1), "MSG10 MSG10");
    // On: the names shown, then those set aside beyond them.
    EXPECT_EQ(saveWith(1, {"5", "6", "9"}, {"8", "7"}),
              "1:MSG 0/9,2:MSG 0/8,3:MSG 0/7," + defaults);
    // Three names, then defaults up to nine.
    EXPECT_EQ(saveWith(1, {"5", "6", "9", "8", "7"}), "1:MSG 0/9,2:MSG 0/8,3:MSG 0/7," + defaults);
    EXPECT_EQ(saveWith(1, {"5", "6", "1", "2", "3", "4", "5", "6", "7", "8", "9", "1", "2"}),
              "1:MSG 0/1,2:MSG 0/2,3:MSG 0/3,4:MSG 0/4,5:MSG 0/5,6:MSG 0/6,"
              "7:MSG 0/7,8:MSG 0/8,9:MSG 0/9,10:MSG 0/1,11:MSG 0/2");
    // An empty list: message node 1 before and after.
    EXPECT_EQ(saveWith(1, {}), nineDefaults);
    EXPECT_EQ(NodeColumn(beforeAndAfter, 1, 1), "MSG10 MSG10");
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(SaveChanges, PoolEntryGetsTheLabelAndALocalTimeOnEverySaveAndEmptyNumbersStoreZero) {
    const std::string key = Where(1, "NodeNumber", 2) + " AND NodeTypeID = 15";
    const std::string pool = " FROM Node_General_Pool" + key;
    Open(1, 2, [&](form::GUI& gui) {
        gui.txtDescription.SetText("Sales team");
        for (form::ListControl* number : {&gui.cmbGreetingNumber, &gui.cmbFirstMatchPromptNumber,
                                          &gui.cmbSecondMatchPromptNumber, &gui.cmbTimeoutNumber,
                                          &gui.cmbInvalidNumber, &gui.cmbExitPromptNumber}) {
            number->Clear();
        }
        EXPECT_TRUE(Rules(gui).SaveChanges(2));
        EXPECT_TRUE(std::regex_match(root.QueryText("SELECT DateModified" + pool),
                                     std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)")));
        // Nothing changed since: a save writes nothing, asks nothing (not
        // even about the pool row another program changed) and adds no
        // history entry.
        root.Exec("UPDATE Node_General_Pool SET DateModified = 'old'" + key);
        EXPECT_TRUE(Rules(gui).SaveChanges(2));
        EXPECT_TRUE(services.boxes.empty());
    });
    EXPECT_EQ(root.QueryText("SELECT NodeDescription" + pool), "Sales team");
    EXPECT_EQ(root.QueryText("SELECT DateModified" + pool), "old");
    EXPECT_EQ(Count("Node_History", ""), 1);
    EXPECT_EQ(NodeColumn("GreetingNodeNumber || FirstPromptNodeNumber || SecondPromptNodeNumber "
                         "|| TimeoutNodeNumber || InvalidNodeNumber || ConfirmationExitNodeNumber",
                         1, 2),
              "000000");
}

TEST_F(SaveChanges, AFailedSaveWritesNothingAndLeavesTheFormAsItWas) {
    root.InjectFailure("Node_General_Pool", "UPDATE");
    const std::string before =
        TableRows("Node_DBN") + TableRows("Detail_DBN_Prompts") + TableRows("Node_General_Pool");
    Open(2, 5, [&](form::GUI& gui) {
        gui.txtDescription.SetText("Changed label");
        gui.cmdApply_Click();
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_EQ(gui.txtDescription.Text(), "Changed label");
        EXPECT_TRUE(gui.Frame1.Enabled() && !gui.StatusBar1.Visible() && services.busyDepth == 0);
    });
    ASSERT_EQ(services.boxes.size(), 1u);
    EXPECT_EQ(services.boxes[0].title, "Error");
    EXPECT_NE(services.boxes[0].text.find(" - SaveChanges \r\nDescription: "), std::string::npos);
    EXPECT_NE(services.boxes[0].text.find("injected"), std::string::npos);
    EXPECT_EQ(
        TableRows("Node_DBN") + TableRows("Detail_DBN_Prompts") + TableRows("Node_General_Pool"),
        before);

    // A node deleted meanwhile: told, and its prompt rows stay.
    services.boxes.clear();
    root.RemoveInjectedFailure("Node_General_Pool");
    Open(2, 5, [&](form::GUI& gui) {
        root.Exec("DELETE FROM Node_DBN" + Where(2, "NodeNumber", 5));
        gui.txtDescription.SetText("Changed label");
        EXPECT_FALSE(Rules(gui).SaveChanges(5));
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

// A type the partition offers without numbers (HANGUP has no limit row) is
// shown and stored as NOOP is: its code alone, number 0.
// What the form cannot show as stored (a label longer than its box, a value
// outside a list, Max Matches with confirmation off, a target shown as NOOP,
// prompts of a Confirm other than 0 and 1) is written back as stored when the
// operator changes another setting; a changed label is written as typed.
TEST_F(SaveChanges, SettingsTheFormCannotShowAreWrittenBackAsStored) {
    const std::string longLabel = "Reception and the whole staff directory";
    struct Case {
        std::string stored;  // assignments to the stored row
        const char* edit;    // what the operator changes
        const char* column;  // the expression read back
        std::string kept;    // its stored value afterwards
    };
    std::vector<Case> cases = {
        {"NodeDescription = '" + longLabel + "'", "cmbRetryLimit=4", "NodeDescription", longLabel},
        {"NodeDescription = '" + longLabel + "'", "txtDescription=Front desk", "NodeDescription",
         "Front desk"},
        {"Confirm = 1, MaxMatch = -3", "cmbRetryLimit=4", "MaxMatch", "-3"},
        {"Confirm = 1, MaxMatch = 12", "cmbRetryLimit=4", "MaxMatch", "12"},
        {"Confirm = 0, MaxMatch = 7", "cmbRetryLimit=4", "MaxMatch", "7"},
        {"Confirm = 5, BeforePromptNodeNumber = 3", "cmbRetryLimit=4",
         "Confirm || BeforePromptNodeNumber", "53"},
        {"DigitTimeout = 99, Method = 7", "cmbRetryLimit=4", "DigitTimeout || Method", "997"},
    };
    if (!root.OnServer()) {
        // Shown through its list's fallback (and told), no overflow; the
        // server's 16-bit columns cannot hold it in the first place.
        cases.push_back({"FirstMinDigits = 9223372036854775807", "cmbRetryLimit=4",
                         "FirstMinDigits", "9223372036854775807"});
    }
    for (const Case& c : cases) {
        root.Exec("UPDATE Node_DBN SET RetryLimit = 3, " + c.stored + Where(1, "NodeNumber", 1));
        root.Exec(
            "UPDATE Node_General_Pool SET NodeDescription = (SELECT NodeDescription FROM "
            "Node_DBN" +
            Where(1, "NodeNumber", 1) + " AND NodeTypeID = 15)" + Where(1, "NodeNumber", 1) +
            " AND NodeTypeID = 15");
        Open(1, 1, [&](form::GUI& gui) {
            Set(gui, c.edit);
            EXPECT_TRUE(Rules(gui).SaveChanges(1)) << c.stored;
        });
        for (const ShownBox& box : services.boxes) {
            EXPECT_EQ(box.title, "Information") << c.stored << ": " << box.text;
        }
        services.boxes.clear();
        EXPECT_EQ(NodeColumn(c.column, 1, 1), c.kept) << c.stored;
        EXPECT_EQ(NodeColumn("RetryLimit", 1, 1),
                  std::string(c.edit) == "cmbRetryLimit=4" ? "4" : "3");
        EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_General_Pool" +
                                 Where(1, "NodeNumber", 1) + " AND NodeTypeID = 15"),
                  NodeColumn("NodeDescription", 1, 1))
            << c.stored;
        root.Exec(
            "UPDATE Node_DBN SET NodeDescription = 'Staff directory', Confirm = 1, "
            "MaxMatch = 5, FirstMinDigits = 2, DigitTimeout = 10, Method = 0, "
            "BeforePromptNodeNumber = 5, TimeoutNodeType = 'XFER', TimeoutNodeNumber = 1, "
            "TimeoutNodeTypeID = 4" +
            Where(1, "NodeNumber", 1));
    }
}

TEST_F(SaveChanges, ARowSetToATypeWithoutNumbersStoresTheCodeAlone) {
    namespace input = form::operator_input;
    root.Exec("INSERT INTO SR_Node_Type_can_contain_Node_Type VALUES (15, 999, 1), (15, 999, 2)");
    Open(1, 1, [&](form::GUI& gui) {
        struct Row {
            form::ListView& list;
            form::Button& edit;
            form::ListControl& node;
            const char* key;
        };
        for (const Row& row : {Row{gui.LVActions, gui.cmdActionsEdit, gui.cmbAbortNode, "2a"},
                               Row{gui.LVConfirm, gui.cmdConfirmEdit, gui.cmbConfirmNode, "3a"}}) {
            input::ClickRow(row.list, *row.list.FindItem(row.key));
            input::Press(row.edit);
            ASSERT_TRUE(input::Pick(row.node, row.node.FindExactEntry("HANGUP")));
            const form::ListItem& item = *row.list.FindItem(row.key);
            EXPECT_EQ(item.SubItem(2) + "|" + item.SubItem(6), "HANGUP|0") << row.key;
            input::Press(row.edit);
        }
        gui.cmdApply_Click();
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(NodeColumn("AbortNodeType || AbortNodeNumber || AbortNodeTypeID", 1, 1),
              "HANGUP0999");
    EXPECT_EQ(root.QueryText("SELECT PromptNodeType || PromptNodeNumber FROM Detail_DBN_Prompts" +
                             Where(1, "NodeMasterID", 1) + " AND PromptNumber = 1"),
              "HANGUP0");
}

}  // namespace
}  // namespace dbn::testing
