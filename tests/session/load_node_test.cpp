// Loading a node into the form: stored values and their fallbacks, targets
// with their descriptions, the confirmation section and its rows, and the
// warning about targets replaced by "NOOP".
#include "session_support.h"

namespace dbn::testing {
namespace {

using LoadNode = SessionTest;

TEST_F(LoadNode, StoredValuesSelectTheirEntriesOrTheFallback) {
    ExpectSelections(1, 1,
                     {{"GreetingNodeNumber = 99", "cmbGreetingNumber", 98},
                      {"GreetingNodeNumber = 150", "cmbGreetingNumber", 0},
                      {"DirectoryNodeNumber = 0", "cmbDirectory", 0},
                      {"DirectoryNodeNumber = 100", "cmbDirectory", 0},
                      {"DirectoryNodeNumber = 99", "cmbDirectory", 98},
                      {"Method = 0, FirstLanguage = 2", "cmbLanguage1", 2},  // its own
                      {"Method = 7, FirstLanguage = 2", "cmbMethod", 1},
                      {"Method = 7, FirstLanguage = 2", "cmbLanguage1", 2},
                      {"Method = 1, FirstLanguage = 3, SecondLanguage = 1", "cmbLanguage1", 0},
                      {"Method = 1, SecondLanguage = -1", "cmbLanguage2", 0},
                      {"FirstMode = 5", "cmbfirstMatch", 0},
                      {"FirstMode = 2, SecondMode = 3", "cmbsecondMatch", 0},
                      {"FirstMinDigits = 10", "cmbFirstMinDigits", 2},
                      {"FirstMaxDigits = 0", "cmbFirstMaxDigits", 4},
                      {"SecondMode = 1, SecondMinDigits = 0", "cmbSecondMinDigits", 0},
                      {"SecondMaxDigits = 10", "cmbSecondMaxDigits", 4},
                      {"SelectionTimeout = 61", "cmbSelTimeOut", 4},
                      {"SelectionTimeout = 60", "cmbSelTimeOut", 59},
                      {"DigitTimeout = 0", "cmbDigitTimeOut", 9},
                      {"RetryLimit = 6", "cmbRetryLimit", 0},
                      {"TimeoutNodeNumber = 60", "cmbTimeoutNumber", 0},
                      {"ConfirmationExitNodeNumber = 9", "cmbExitPromptNumber", 8},
                      {"PlayName = 7", "cmbPlayName", 1}});
}

TEST_F(LoadNode, AFirstMatchWithoutSecondKeepsTheStoredSecondValuesDisabled) {
    SetNode(1, 1, "FirstMode = 4, SecondMode = 0, SecondMinDigits = 2, SecondMaxDigits = 7");
    Open(1, 1, [](form::GUI& gui) {
        EXPECT_EQ(gui.cmbfirstMatch.Text() + " " + gui.cmbsecondMatch.Text() + " " +
                      gui.cmbSecondMinDigits.Text() + " " + gui.cmbSecondMaxDigits.Text(),
                  "Extension None 2 7");
        for (const form::ListControl* list :
             {&gui.cmbsecondMatch, &gui.cmbSecondMinDigits, &gui.cmbSecondMaxDigits,
              &gui.cmbSecondMatchPrompt, &gui.cmbSecondMatchPromptNumber}) {
            EXPECT_FALSE(list->Enabled()) << list->Name();
        }
    });
}

TEST_F(LoadNode, RowsShowTargetsWithTheirDescriptionsAndStayWithTheirNode) {
    SetNode(1, 1,
            "AbortNodeNumber = 77, BeforePromptNodeNumber = 77, MaxMatch = 1, "
            "NodeDescription = NULL");
    SetNode(1, 2, "Confirm = 1, MaxMatch = 2");
    Open(1, 1, [&](form::GUI& gui) {
        EXPECT_EQ(gui.txtDescription.Text(), "");
        EXPECT_EQ(
            AllCells(gui.LVActions),
            (std::vector<std::string>{"1a:1|Valid Match|XFER 1|Operator transfer|XFER|4|1",
                                      "2a:2|Abort|MSG 77||MSG|0|77", "3a:3|*|NOOP||NOOP|814|0",
                                      "4a:4|#|NOOP||NOOP|814|0", "5a:5|0|NOOP||NOOP|814|0"}));
        EXPECT_EQ(AllCells(gui.LVConfirm),
                  (std::vector<std::string>{"1a:1|Before Names|MSG 77||MSG|0|77",
                                            "2a:2|After Names|MSG 6|After names|MSG|0|6",
                                            "3a:3|Name1|MSG 7|Name prompt one|MSG|0|7"}));
        // Rows set aside here must not come back on the next node.
        gui.cmbConfirmation.SetListIndex(0);
        services.answers = {form::kAnswerNo};
        gui.cmdNext_Click();
        EXPECT_EQ(gui.LVTemp.ItemCount(), 0);
        EXPECT_EQ(Targets(gui.LVConfirm),
                  "1a=Before Names/MSG 1 2a=After Names/MSG 1 3a=Name1/MSG 1 4a=Name2/MSG 1");
    });
}

TEST_F(LoadNode, ConfirmationRowsFollowConfirmAndMaxMatch) {
    const std::string fixed = "1a=Before Names/MSG 5 2a=After Names/MSG 6";
    const std::tuple<const char*, int, int, const char*> cases[] = {
        {"SELECT 1", 1, 2, " 3a=Name1/MSG 7 4a=Name2/MSG 8 5a=Name3/MSG 9"},
        {"UPDATE Node_DBN SET MaxMatch = 5; DELETE FROM Detail_DBN_Prompts WHERE PromptNumber > 2",
         1, 4, " 3a=Name1/MSG 7 4a=Name2/MSG 8"},
        {"DELETE FROM Detail_DBN_Prompts WHERE PromptNumber NOT IN (2, 5)", 1, 2,
         " 3a=Name2/MSG 8 4a=Name5/MSG 1"},
        {"UPDATE Detail_DBN_Prompts SET PromptNodeType = 'NOOP', PromptNodeTypeID = 814; "
         "UPDATE Node_DBN SET MaxMatch = 1",
         1, 0, " 3a=Name1/NOOP"},
        {"UPDATE Node_DBN SET MaxMatch = 0; DELETE FROM Detail_DBN_Prompts WHERE PromptNumber > 4",
         1, -1, " 3a=Name1/MSG 7 4a=Name2/MSG 8 5a=Name3/MSG 9 6a=Name4/MSG 1"},
        {"UPDATE Node_DBN SET MaxMatch = 12", 1, 8,
         " 3a=Name1/MSG 7 4a=Name2/MSG 8 5a=Name3/MSG 9 6a=Name4/MSG 1 7a=Name5/MSG 1 "
         "8a=Name6/MSG 1 9a=Name7/MSG 1 10a=Name8/MSG 1 11a=Name9/MSG 1"},
        {"UPDATE Node_DBN SET Confirm = 2", 1, 2, nullptr},
        // Off: the disabled box shows the stored number.
        {"UPDATE Node_DBN SET Confirm = 0", 0, 2, nullptr},
    };
    for (const auto& [arrange, confirmation, maxMatches, names] : cases) {
        TempDataRoot fresh(TempDataRoot::Content::Demo);
        fresh.Exec(arrange);
        Open(1, 1, [&](form::GUI& gui) {
            EXPECT_EQ(gui.cmbConfirmation.ListIndex(), confirmation) << arrange;
            EXPECT_EQ(gui.cmbMaxMatches.ListIndex(), maxMatches) << arrange;
            EXPECT_EQ(gui.cmbMaxMatches.Enabled(), confirmation == 1) << arrange;
            EXPECT_EQ(Targets(gui.LVConfirm), names ? fixed + names : "") << arrange;
        });
    }
    const std::string shownAs = "Stored settings of DBN 1 outside their range are shown as: ";
    const std::string kept = ". They are kept as stored unless changed.";
    EXPECT_EQ(services.TakeBoxTexts(),
              (std::vector<std::string>{shownAs + "MaxMatch 0 -> nothing" + kept,
                                        shownAs + "MaxMatch 12 -> 9" + kept,
                                        shownAs + "Confirm 2 -> Yes" + kept}));
}

TEST_F(LoadNode, UnavailableTargetsShowNoopAndWarnOnceAfterTheLoad) {
    const std::string warning = "Please check the \"Max Number of each Node\" Section for ";
    SetNode(2, 5, "GreetingNodeType = 'LIST', GreetingNodeNumber = 3");
    Open(2, 5, [&](form::GUI& gui) {
        EXPECT_EQ(gui.cmbGreetingNode.Text(), "NOOP");
        EXPECT_FALSE(gui.cmbGreetingNumber.Visible());
        ASSERT_EQ(services.boxes.size(), 1u);
        EXPECT_EQ(services.boxes[0].title, "Information");
        EXPECT_EQ(services.boxes[0].text, warning + "LIST Node in Partition Settings.");
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });

    // The last target met names the type; one box all the same.
    services.boxes.clear();
    SetNode(2, 5, "TimeoutNodeType = 'CMD'");
    Open(2, 5, [&](form::GUI& gui) {
        EXPECT_EQ(gui.cmbTimeoutNode.Text(), "NOOP");
        EXPECT_EQ(services.TakeBoxTexts(),
                  std::vector<std::string>{warning + "CMD Node in Partition Settings."});
    });
}

}  // namespace
}  // namespace dbn::testing
