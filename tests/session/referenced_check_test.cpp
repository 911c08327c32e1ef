// The referenced-node check: which references are gathered, how the
// operator's answers steer it, what it tells the operator, and the creation of
// each type's node from its template.
#include "session_support.h"

#include "form/list_rows.h"

namespace dbn::testing {
namespace {

using ReferencedCheck = SessionTest;

// The required-node lists as "key|type ID|number" rows.
std::vector<std::string> Required(const form::GUI& gui) {
    std::vector<std::string> rows;
    for (int i = 0; i < gui.lstNodeTypeName.ListCount(); ++i) {
        rows.push_back(gui.lstNodeTypeName.List(i) + "|" + gui.lstNodeTypeID.List(i) + "|" +
                       gui.lstNodeNumber.List(i));
    }
    return rows;
}

TEST_F(ReferencedCheck, GathersInOrderOnceEachAndSkipsTypesWithoutNodes) {
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui,
            "cmbGreetingNode=MSG; cmbGreetingNumber=3; cmbInvalidNode=MSG; cmbInvalidNumber=4");
        SetTarget(gui.LVActions.ItemAt(1), "msg 3|MSG|0|3");  // the greeting, other case
        SetTarget(gui.LVActions.ItemAt(2), "M_ON 5|M_ON|817|5");
        SetTarget(gui.LVActions.ItemAt(3), "GOTO 2|GOTO|816|2");
        SetTarget(gui.LVActions.ItemAt(4), "HANGUP|HANGUP|999|0");
        Rules(gui).CheckForUnReferencedNodes();
        // Greeting, directory, actions, then the custom method's prompts,
        // error targets, confirmation rows and exit prompt.
        EXPECT_EQ(Required(gui),
                  (std::vector<std::string>{"MSG 3|0|3", "DIR 1|16|1", "XFER 1|4|1", "MSG 5|0|5",
                                            "MSG 2|0|2", "MSG 4|0|4", "MSG 6|0|6", "MSG 7|0|7",
                                            "MSG 8|0|8", "MSG 9|0|9"}));
        EXPECT_EQ(gui.StatusBar1.PanelText(), "Checking for non-existing nodes. Please wait...");
        EXPECT_EQ(services.doEventsCalls, 1);

        // "Default Last Name" uses only the greeting, the directory and the actions.
        Set(gui,
            "cmbMethod=Default Last Name; cmbFirstMatchPrompt=MSG; cmbFirstMatchPromptNumber=40");
        Rules(gui).CheckForUnReferencedNodes();
        EXPECT_EQ(Required(gui),
                  (std::vector<std::string>{"MSG 3|0|3", "DIR 1|16|1", "XFER 1|4|1", "MSG 5|0|5"}));
    });
    EXPECT_TRUE(services.confirmations.empty());
    EXPECT_TRUE(services.boxes.empty());
}

// The check looks at what the save writes: a target the operator did not
// change as stored (shown through a fallback), one changed as shown.
TEST_F(ReferencedCheck, UnchangedTargetsAreCheckedAsStored) {
    SetNode(1, 2, "GreetingNodeNumber = 500, DirectoryNodeNumber = 500");
    Open(1, 2, [&](form::GUI& gui) {
        ASSERT_EQ(gui.cmbDirectory.Text(), "1");
        Set(gui, "txtDescription=Sales desk");
        Rules(gui).CheckForUnReferencedNodes();
        std::vector<std::string> gathered = Required(gui);
        gathered.resize(2);
        EXPECT_EQ(gathered, (std::vector<std::string>{"MSG 500|0|500", "DIR 500|16|500"}));
        Set(gui, "cmbGreetingNumber=3; cmbDirectory=2");
        Rules(gui).CheckForUnReferencedNodes();
        gathered = Required(gui);
        gathered.resize(2);
        EXPECT_EQ(gathered, (std::vector<std::string>{"MSG 3|0|3", "DIR 2|16|2"}));
    });
}

TEST_F(ReferencedCheck, AnswersDecideWhatIsCreatedAndWhetherToAskOn) {
    struct Case {
        std::deque<long> answers;
        std::size_t questions;
        std::vector<bool> created;  // XFER 21, MSG 21, CMD 5
    };
    const Case cases[] = {{{4}, 1, {true, true, true}},          // yes to all
                          {{5}, 1, {false, false, false}},       // no to all
                          {{0}, 1, {false, false, false}},       // closed
                          {{7, 2, 5}, 3, {false, true, false}},  // no, yes, no to all
                          {{2, 3}, 2, {true, false, false}},     // yes, cancel
                          {{1, 2, 2}, 3, {false, true, true}}};  // another code skips the node
    for (const Case& answerCase : cases) {
        TempDataRoot fresh(TempDataRoot::Content::Demo);
        services.confirmations.clear();
        services.confirmAnswers = answerCase.answers;
        std::vector<int> busyWhenAsked;
        services.onConfirm = [&] { busyWhenAsked.push_back(services.busyDepth); };
        Open(1, 2, [&](form::GUI& gui) {
            SetTarget(gui.LVActions.ItemAt(0), "XFER 21|XFER|4|21");
            SetTarget(gui.LVActions.ItemAt(1), "MSG 21|MSG|0|21");
            SetTarget(gui.LVActions.ItemAt(2), "CMD 5|CMD|1|5");
            services.SetBusyCursor(true);
            Rules(gui).CheckForUnReferencedNodes();
            EXPECT_GT(services.busyDepth, 0) << "busy cursor not shown again after asking";
        });
        ASSERT_EQ(services.confirmations.size(), answerCase.questions);
        EXPECT_EQ(services.confirmations[0],
                  "XFER 21 is referenced but it does not exist.\r\nDo you want to auto create "
                  "node 'XFER 21'?");
        EXPECT_EQ(busyWhenAsked, std::vector<int>(answerCase.questions, 0));
        const auto has = [&](int type, int number) {
            return fresh.QueryInt("SELECT count(*) FROM Node_General_Pool" +
                                  Where(1, "NodeNumber", number) +
                                  " AND NodeTypeID = " + std::to_string(type)) > 0;
        };
        const std::vector<bool> created = {has(4, 21), has(0, 21), has(1, 5)};
        EXPECT_EQ(created, answerCase.created) << answerCase.answers.front();
    }
    EXPECT_EQ(services.confirmTitles.front(), "Confirmation");
    EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ReferencedCheck, NodesThatCannotBeCreatedAreReportedAndTheCheckGoesOn) {
    root.Exec("DELETE FROM Node_General_Pool" + Where(1, "NodeNumber", 0) + " AND NodeTypeID = 2");
    services.confirmAnswers = {2, 2, 2};
    Open(1, 2, [&](form::GUI& gui) {
        SetTarget(gui.LVActions.ItemAt(0), "XYZ 3|XYZ|5|3");
        SetTarget(gui.LVActions.ItemAt(1), "TIME 7|TIME|2|7");
        SetTarget(gui.LVActions.ItemAt(2), "M_OFF 12|M_OFF|818|12");
        Rules(gui).CheckForUnReferencedNodes();
        EXPECT_EQ(gui.StatusBar1.PanelText(), "MSG 12 is created.");
    });
    EXPECT_EQ(services.boxes.at(0).title, "Information");
    EXPECT_EQ(services.TakeBoxTexts(),
              (std::vector<std::string>{
                  "XYZ 3 could not be created: its type cannot be created here.",
                  "TIME 7 could not be created: there is no template node 0 of its type."}));
    EXPECT_EQ(Count("Node_TIME", Where(1, "NodeNumber", 7)), 0);
    EXPECT_EQ(root.QueryText("SELECT OrvFilename FROM Node_MSG" + Where(1, "NodeNumber", 12)),
              "P01M012.wav");
}

TEST_F(ReferencedCheck, TemplatesNeedTheirNodeRowsAndNumbersStayWithinTheLimits) {
    // DATE's template keeps only its pool row; partition 2 allows XFER up to 20.
    root.Exec("DELETE FROM Node_DATE" + Where(2, "NodeNumber", 0));
    services.confirmAnswers = {2, form::kConfirmNo};
    Open(2, 5, [&](form::GUI& gui) {
        SetTarget(gui.LVActions.ItemAt(0), "XFER 21|XFER|4|21");
        SetTarget(gui.LVActions.ItemAt(1), "DATE 4|DATE|3|4");
        SetTarget(gui.LVActions.ItemAt(2), "MSG 12|MSG|0|12");
        gui.cmdApply_Click();
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(services.confirmations.size(), 2u);
    EXPECT_EQ(services.TakeBoxTexts(),
              (std::vector<std::string>{
                  "XFER 21 could not be created: the partition allows XFER nodes up to 20.",
                  "DATE 4 could not be created: there is no template node 0 of its type.",
                  "DBN 5 was saved. These references point at nodes that do not exist: XFER 21, "
                  "DATE 4, MSG 12."}));
    EXPECT_EQ(Count("Node_General_Pool", Where(2, "NodeNumber", 4) + " AND NodeTypeID = 3"), 0);
    EXPECT_EQ(Count("Node_XFER", Where(2, "NodeNumber", 21)), 0);
    EXPECT_EQ(NodeColumn("ValidMatchNodeNumber || AbortNodeType", 2, 5), "21DATE");
}

// A creation that fails is a failure of the save: told once, undone, and
// nothing of the node written; the edits stay for another Apply.
TEST_F(ReferencedCheck, AFailedCreationStopsTheSaveWithItsOneMessage) {
    root.InjectFailure("Node_General_Pool", "INSERT");
    services.confirmAnswers = {2};
    Open(2, 5, [&](form::GUI& gui) {
        services.onConfirm = [&] {  // asked in the middle of the save
            EXPECT_FALSE(gui.Frame1.Enabled());
            EXPECT_TRUE(gui.StatusBar1.Visible());
            EXPECT_EQ(services.busyDepth, 0);
        };
        SetTarget(gui.LVActions.ItemAt(1), "MSG 12|MSG|0|12");
        EXPECT_FALSE(Rules(gui).SaveChanges(5));
        EXPECT_EQ(gui.LVActions.ItemAt(1).SubItem(form::list_rows::kCommandNode), "MSG 12");
    });
    ASSERT_EQ(services.boxes.size(), 1u);
    EXPECT_NE(services.boxes[0].text.find(" - CheckForUnReferencedNodes \r\n"), std::string::npos);
    EXPECT_NE(services.boxes[0].text.find("injected"), std::string::npos);
    EXPECT_EQ(services.confirmations.size(), 1u);
    EXPECT_EQ(Count("Node_MSG", Where(2, "NodeNumber", 12)), 0);
    EXPECT_NE(NodeColumn("AbortNodeNumber", 2, 5), "12");
}

// A look-up that fails is not a missing node: the check stops with the
// failure's one message and offers nothing.
TEST_F(ReferencedCheck, AFailedLookUpIsNotAMissingNode) {
    Open(2, 5, [&](form::GUI& gui) {
        SetTarget(gui.LVActions.ItemAt(1), "MSG 12|MSG|0|12");
        root.Exec("ALTER TABLE Node_General_Pool RENAME TO Pool_Elsewhere");
        EXPECT_FALSE(Rules(gui).SaveChanges(5));
        root.Exec("ALTER TABLE Pool_Elsewhere RENAME TO Node_General_Pool");
    });
    // (On the server the save's first look at the tables finds it.)
    ASSERT_EQ(services.boxes.size(), 1u) << ::testing::PrintToString(services.TakeBoxTexts());
    EXPECT_EQ(services.boxes[0].title, "Error");
    EXPECT_TRUE(services.confirmations.empty());
    EXPECT_NE(NodeColumn("AbortNodeNumber", 2, 5), "12");
}

// Each type's template node 0 is copied under the new number with its detail
// rows, and a pool row like the template's.
TEST_F(ReferencedCheck, EveryTypeIsCreatedFromItsTemplate) {
    const std::tuple<const char*, int, const char*, std::vector<std::string>> types[] = {
        {"0", 0, "Node_MSG", {}},
        {"817", 0, "Node_MSG", {}},
        {"818", 0, "Node_MSG", {}},
        {"1", 1, "Node_CMD", {"Detail_CMD"}},
        {"2", 2, "Node_TIME", {"Detail_TIME"}},
        {"3", 3, "Node_DATE", {"Detail_DATE"}},
        {"4", 4, "Node_XFER", {}},
        {"6", 6, "Node_DTMF", {"Detail_DTMF_Prompts", "Detail_DTMF_Action"}},
        {"7", 7, "Node_VOX", {"Detail_VOX_Prompts", "Detail_VOX_Action"}},
        {"8", 8, "Node_LIST", {"Detail_LIST"}},
        {"9", 9, "Node_AUTO", {"Detail_AUTO_Prompts", "Detail_AUTO_Action"}},
        {"12", 12, "Node_PAAS", {"Detail_PAAS"}},
        {"13", 13, "Node_TABLE", {"Detail_TABLE_Action"}},
        {"15", 15, "Node_DBN", {"Detail_DBN_Prompts"}},
        {"16", 16, "Node_DIR", {"Detail_DIR"}},
        {"5", 5, "Node_General_Pool", {}}};  // no such type: nothing is copied
    int number = 30;
    for (const auto& [typeID, poolTypeID, nodeTable, details] : types) {
        SCOPED_TRACE(typeID);
        const std::string newNumber = std::to_string(++number);
        const long long poolRows = Count("Node_General_Pool", "");
        Open(1, 1, [&](form::GUI& gui) { Rules(gui).AutoCreateNode("0", newNumber, typeID); });
        if (poolTypeID == 5) {
            EXPECT_EQ(Count("Node_General_Pool", ""), poolRows);
            continue;
        }
        EXPECT_EQ(Count(nodeTable, Where(1, "NodeNumber", number)), 1);
        for (const std::string& detail : details) {
            const long long copied = Count(detail, Where(1, "NodeMasterID", number));
            EXPECT_GT(copied, 0) << detail;
            EXPECT_EQ(copied, Count(detail, Where(1, "NodeMasterID", 0))) << detail;
        }
        const std::string pool = "SELECT NodeType || NodeDescription FROM Node_General_Pool" +
                                 Where(1, "NodeTypeID", poolTypeID) + " AND NodeNumber = ";
        EXPECT_EQ(root.QueryText(pool + newNumber), root.QueryText(pool + "0"));
    }
    EXPECT_EQ(root.QueryText("SELECT OrvFilename FROM Node_MSG" + Where(1, "NodeNumber", 31)),
              "P01M031.wav");
}

}  // namespace
}  // namespace dbn::testing
