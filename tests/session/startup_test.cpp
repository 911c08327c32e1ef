// ShowNodeEditor: the selector's state, Apply, the hooks, missing nodes and the
// error path.
#include "session_support.h"

#include "database/data_location.h"

namespace dbn::testing {
namespace {

TEST_F(SessionTest, OpensTheRequestedNodeWithTheSelectorOnItAndApplyDisabled) {
    root.Exec("UPDATE Node_DBN SET NodeNumber = NodeNumber * 4 - 1 WHERE NodeNumber > 0");
    root.Exec("UPDATE Node_Type_Max SET Max_Number = 30 WHERE NodeType_ID = 15");
    bool hooked = false;
    Open(1, 3, [&](form::GUI& gui) {  // nodes 0, 3 and 7
        EXPECT_EQ(Entries(gui.cmbNode), "DBN 3(3) DBN 7(7)");
        EXPECT_EQ(gui.cmbNode.Text() + " " + gui.lblRecordPosition.Caption(), "DBN 3 1 of 2");
        EXPECT_FALSE(gui.cmdFirst.Enabled() || gui.cmdPrevious.Enabled() || gui.cmdApply.Enabled());
        EXPECT_TRUE(gui.cmdNext.Enabled() && gui.cmdLast.Enabled());
        EXPECT_EQ(gui.txtDescription.Text(), "Staff directory");
        hooked = gui.ListViewsHooked();
    });
    EXPECT_TRUE(hooked);
    EXPECT_FALSE(services.hookedAtUnload);
    EXPECT_TRUE(services.boxes.empty());
    EXPECT_EQ(services.busyDepth, 0);

    Open(1, 3, [&](form::GUI& gui) {  // a node gone since: told, the form stays as it was
        EXPECT_FALSE(gui.FormBusinessRules()->LoadData(42));
        EXPECT_EQ(services.TakeBoxTexts(), std::vector<std::string>{"DBN 42 doesn't exist."});
        EXPECT_EQ(gui.txtDescription.Text() + " " + std::to_string(gui.LVActions.ItemCount()),
                  "Staff directory 5");
    });
    Open(2, 19, [](form::GUI& gui) {  // the only node: all four buttons off
        EXPECT_FALSE(gui.cmdFirst.Enabled() || gui.cmdPrevious.Enabled() || gui.cmdNext.Enabled() ||
                     gui.cmdLast.Enabled());
    });
}

TEST_F(SessionTest, AMissingNodeIsReportedOnceAndNeverShown) {
    Open(1, 9);
    EXPECT_EQ(services.modalShows, 0);
    EXPECT_EQ(services.TakeBoxTexts(), std::vector<std::string>{"DBN 9 doesn't exist."});
    EXPECT_FALSE(services.hookedAtUnload);
    // The selector fell back on its first entry, whose click loaded that node
    // without a save question.
    EXPECT_EQ(services.descriptionAtUnload, "Staff directory");

    // No database at all: one box, and no form is even loaded.
    SetDataRootOverride(root.Root() + "/elsewhere");
    if (root.OnServer()) {
        ::setenv("DBN_DATABASE", testing::UriOfDatabase("no_such_database").c_str(), 1);
    }
    services.endModals = 0;
    Open(1, 1);
    EXPECT_EQ(services.modalShows + services.endModals, 0);
    ASSERT_EQ(services.boxes.size(), 1u);
    EXPECT_EQ(services.boxes.front().title, "Error");
    EXPECT_EQ(services.busyDepth, 0);
}

}  // namespace
}  // namespace dbn::testing
