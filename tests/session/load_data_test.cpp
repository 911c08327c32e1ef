// Loading a node: the general fields, greeting, directory, actions, method
// and languages, and the warning about targets replaced by "NOOP".
#include "session_support.h"

namespace dbn::testing {
namespace {

using LoadData = SessionTest;

TEST_F(LoadData, StoredValuesSelectTheirEntriesOrTheFallback) {
    ExpectSelections(1, 1,
                     {{"GreetingNodeNumber = 99", "cmbGreetingNumber", 98},
                      {"GreetingNodeNumber = 150", "cmbGreetingNumber", 0},
                      {"DirectoryNodeNumber = 0", "cmbDirectory", 0},
                      {"DirectoryNodeNumber = 100", "cmbDirectory", 0},
                      {"DirectoryNodeNumber = 99", "cmbDirectory", 98},
                      {"Method = 0, FirstLanguage = 2", "cmbLanguage1", 1},  // left as it was
                      {"Method = 7, FirstLanguage = 2", "cmbMethod", 1},
                      {"Method = 7, FirstLanguage = 2", "cmbLanguage1", 2},
                      {"Method = 1, FirstLanguage = 3, SecondLanguage = 1", "cmbLanguage1", 0},
                      {"Method = 1, SecondLanguage = -1", "cmbLanguage2", 0}});
}

TEST_F(LoadData, ActionRowsShowTargetsWithTheirDescriptions) {
    SetNode(1, 1, "AbortNodeNumber = 77, NodeDescription = NULL");
    const std::string xfer = root.QueryText(
        "SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 1 AND NodeTypeID = 4 AND "
        "NodeNumber = 1");
    Open(1, 1, [&](form::GUI& gui) {
        EXPECT_EQ(gui.txtDescription.Text(), "");
        EXPECT_EQ(Rows(gui.LVActions, true),
                  "1a=1|Valid Match|XFER 1|" + xfer +
                      "|XFER|4|1 2a=2|Abort|MSG 77||MSG|0|77 3a=3|*|NOOP||NOOP|814|0 "
                      "4a=4|#|NOOP||NOOP|814|0 5a=5|0|NOOP||NOOP|814|0");
    });
}

TEST_F(LoadData, UnavailableTargetsShowNoopAndWarnOnceAfterTheLoad) {
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
