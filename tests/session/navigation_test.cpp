// Moving between the partition's nodes while the editor shows, with the save
// question answered cancel or no.
#include "session_support.h"

namespace dbn::testing {
namespace {

using Navigation = SessionTest;

TEST_F(Navigation, ButtonsAskFirstAndStayOnCancel) {
    Open(1, 1, [&](form::GUI& gui) {
        gui.txtDescription.SetText("changed");
        services.answers = {form::kAnswerCancel, form::kAnswerNo};
        gui.cmdNext_Click();
        EXPECT_EQ(gui.cmbNode.Text() + " " + gui.txtDescription.Text(), "DBN 1 changed");
        EXPECT_TRUE(gui.cmdApply.Enabled());

        gui.cmdNext_Click();
        EXPECT_EQ(gui.nodeNumber(), 2);
        EXPECT_EQ(gui.txtDescription.Text() + " " + gui.lblRecordPosition.Caption(),
                  "Sales directory 2 of 2");
        EXPECT_TRUE(gui.cmdFirst.Enabled() && !gui.cmdLast.Enabled() && !gui.cmdApply.Enabled());

        // On the last entry Next moves nowhere, but still asks and drops.
        gui.txtDescription.SetText("changed");
        services.answers = {form::kAnswerNo};
        gui.cmdNext_Click();
        EXPECT_EQ(gui.nodeNumber(), 2);
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(services.boxes.size(), 3u);
    EXPECT_TRUE(services.answers.empty());
}

TEST_F(Navigation, CancellingASelectorPickPutsTheSelectionBack) {
    Open(1, 2, [&](form::GUI& gui) {
        gui.txtDescription.SetText("changed");
        services.answers = {form::kAnswerCancel, form::kAnswerNo};
        gui.cmbNode.SetListIndex(0);
        EXPECT_EQ(gui.cmbNode.Text() + " " + gui.txtDescription.Text(), "DBN 2 changed");

        gui.cmbNode.SetListIndex(0);
        EXPECT_EQ(gui.nodeNumber(), 1);
        EXPECT_EQ(gui.txtDescription.Text(), "Staff directory");
        EXPECT_FALSE(gui.cmdApply.Enabled());

        // A node that is gone is told and leaves the form as it was.
        services.boxes.clear();
        EXPECT_FALSE(gui.FormBusinessRules()->LoadData(42));
        EXPECT_EQ(services.TakeBoxTexts(), std::vector<std::string>{"DBN 42 doesn't exist."});
        EXPECT_EQ(gui.txtDescription.Text() + " " + std::to_string(gui.LVActions.ItemCount()),
                  "Staff directory 5");
    });
}

}  // namespace
}  // namespace dbn::testing
