#include "fake_services.h"
#include "form/gui.h"
#include "host/play_services.h"
#include "host/play_state.h"

#include <gtest/gtest.h>

#include <sstream>

namespace dbn::host {
namespace {

using form::MsgBoxButtons;
using form::MsgBoxIcon;

TEST(PlayServices, BoxesPrintOnOneLineAndOnlyQuestionsTakeTheQueuedAnswers) {
    std::ostringstream out;
    PlayServices services(out);
    services.QueueAnswer(2);
    services.QueueAnswer(7);
    EXPECT_EQ(services.MsgBox("Source: x - Op \r\nDescription: y\rz", MsgBoxButtons::OK,
                              MsgBoxIcon::Exclamation, "Error"),
              form::kAnswerOK);
    EXPECT_EQ(services.Confirm("MSG 12 is missing.\r\nCreate it?", "Confirmation"), 2);
    EXPECT_EQ(
        services.MsgBox("Save?", MsgBoxButtons::YesNoCancel, MsgBoxIcon::Question, "Confirmation"),
        7);
    try {
        services.Confirm("Create?", "Confirmation");
        FAIL() << "an unanswered question did not stop the run";
    } catch (const RunStopped& stop) {
        EXPECT_EQ(stop.status, kRunUnanswered);
    }
    EXPECT_EQ(out.str(),
              "box Error: Source: x - Op \\nDescription: y\rz => 1\n"
              "confirm: MSG 12 is missing.\\nCreate it? => 2\n"
              "box Confirmation: Save? => 7\n"
              "no answer queued for: confirm: Create?\n");
}

// What the scenario scripts do not show: a status bar with text, an empty
// list view, and the controls that have no state or entries to print.
TEST(PlayState, StatusBarEmptyListViewAndControlsWithoutState) {
    testing::FakeServices services;
    form::GUI gui{services};
    gui.StatusBar1.SetPanelText("Saving");
    EXPECT_EQ(DescribeControl(gui.StatusBar1),
              (std::vector<std::string>{R"(StatusBar1: text="Saving" visible=1)"}));
    EXPECT_EQ(DescribeControl(gui.LVTemp), (std::vector<std::string>{"LVTemp: rows=0 selected=-"}));
    EXPECT_FALSE(DescribeControl(gui.lstNodeTypeName));
    EXPECT_FALSE(DescribeControl(gui.ImageList1));
    EXPECT_FALSE(DescribeEntries(gui.LVTemp));
    gui.lstNodeTypeName.AddItem("MSG");
    EXPECT_EQ(DescribeEntries(gui.lstNodeTypeName), "lstNodeTypeName: MSG(0)");
}

}  // namespace
}  // namespace dbn::host
