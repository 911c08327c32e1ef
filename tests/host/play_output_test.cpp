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

TEST(PlayServicesBoxes, OkBoxesPrintAndNeedNoAnswer) {
    std::ostringstream out;
    PlayServices services(out);
    services.QueueAnswer(6);
    EXPECT_EQ(services.MsgBox("Source: x - Op \r\nDescription: y", MsgBoxButtons::OK,
                              MsgBoxIcon::Exclamation, "Error"),
              form::kAnswerOK);
    EXPECT_EQ(out.str(), "box Error: Source: x - Op \\nDescription: y => 1\n");
    EXPECT_EQ(services.QueuedAnswers(), 1u);
}

TEST(PlayServicesBoxes, QuestionsTakeQueuedAnswersInOrder) {
    std::ostringstream out;
    PlayServices services(out);
    services.QueueAnswer(2);
    services.QueueAnswer(7);
    EXPECT_EQ(services.Confirm("MSG 12 is missing.\r\nCreate it?", "Confirmation"), 2);
    EXPECT_EQ(
        services.MsgBox("Save?", MsgBoxButtons::YesNoCancel, MsgBoxIcon::Question, "Confirmation"),
        7);
    EXPECT_EQ(out.str(),
              "confirm: MSG 12 is missing.\\nCreate it? => 2\n"
              "box Confirmation: Save? => 7\n");
}

TEST(PlayServicesBoxes, UnansweredQuestionStopsTheRun) {
    std::ostringstream out;
    PlayServices services(out);
    try {
        services.MsgBox("Save?", MsgBoxButtons::YesNoCancel, MsgBoxIcon::Question, "Confirmation");
        FAIL() << "no stop";
    } catch (const RunStopped& stop) {
        EXPECT_EQ(stop.status, kRunUnanswered);
    }
    EXPECT_THROW(services.Confirm("Create?", "Confirmation"), RunStopped);
    EXPECT_EQ(out.str(),
              "no answer queued for: box Confirmation: Save?\n"
              "no answer queued for: confirm: Create?\n");
}

TEST(PlayServicesBoxes, OnlyCarriageReturnLineFeedBecomesEscaped) {
    EXPECT_EQ(OneLine("a\r\nb\r\n"), "a\\nb\\n");
    EXPECT_EQ(OneLine("a\rb\\n"), "a\rb\\n");
}

class PlayStateTest : public ::testing::Test {
protected:
    testing::FakeServices services;
    form::GUI gui{services};

    std::vector<std::string> Lines(const form::Control& control) {
        return DescribeControl(control).value_or(std::vector<std::string>{"<none>"});
    }
};

TEST_F(PlayStateTest, SingleValueControls) {
    gui.txtDescription.SetText("Say \"hi\" \\ there");
    gui.txtDescription.SetEnabled(false);
    EXPECT_EQ(Lines(gui.txtDescription),
              (std::vector<std::string>{
                  R"(txtDescription: text="Say "hi" \ there" enabled=0 visible=1)"}));
    EXPECT_EQ(Lines(gui.lblLabel),
              (std::vector<std::string>{R"(lblLabel: caption="Label:" enabled=1 visible=1)"}));
    gui.cmdOK.SetVisible(false);
    EXPECT_EQ(Lines(gui.cmdOK),
              (std::vector<std::string>{R"(cmdOK: caption="OK" enabled=1 visible=0)"}));
    EXPECT_EQ(Lines(gui.fraActions), (std::vector<std::string>{"fraActions: enabled=1 visible=1"}));
    gui.StatusBar1.SetPanelText("Saving");
    EXPECT_EQ(Lines(gui.StatusBar1),
              (std::vector<std::string>{R"(StatusBar1: text="Saving" visible=1)"}));
    EXPECT_EQ(DescribeForm(gui), "GUI: width=10515");
}

TEST_F(PlayStateTest, ListsShowTheirSelectionAndEntries) {
    form::ListControl& list = gui.cmbGreetingNode;
    list.AddItem("MSG");
    list.SetItemData(list.NewIndex(), 0);
    list.AddItem("NOOP");
    list.SetItemData(list.NewIndex(), 814);
    EXPECT_EQ(Lines(list),
              (std::vector<std::string>{
                  R"(cmbGreetingNode: text="" index=-1 count=2 enabled=1 visible=1)"}));
    list.SetListIndex(1);
    EXPECT_EQ(Lines(list),
              (std::vector<std::string>{
                  R"(cmbGreetingNode: text="NOOP" index=1 count=2 enabled=1 visible=1)"}));
    EXPECT_EQ(DescribeEntries(list), "cmbGreetingNode: MSG(0) NOOP(814)");

    // A typed text that is no entry.
    form::ListControl editable(form::ControlKind::EditableList, "cmbNumber", nullptr, {}, 0);
    editable.AddItem("1");
    editable.SetText("17");
    EXPECT_EQ(
        Lines(editable),
        (std::vector<std::string>{R"(cmbNumber: text="17" index=-1 count=1 enabled=1 visible=1)"}));

    gui.lstNodeTypeName.AddItem("MSG");
    gui.lstNodeTypeName.AddItem("DIR");
    EXPECT_EQ(DescribeEntries(gui.lstNodeTypeName), "lstNodeTypeName: MSG(0) DIR(0)");
    EXPECT_EQ(DescribeEntries(gui.lstNodeTypeID), "lstNodeTypeID:");
    EXPECT_FALSE(DescribeControl(gui.lstNodeTypeName));
}

TEST_F(PlayStateTest, ListViewsShowEveryRowWithSixCells) {
    form::ListView& list = gui.LVTemp;
    EXPECT_EQ(Lines(list), (std::vector<std::string>{"LVTemp: rows=0 selected=-"}));
    form::ListItem& first = list.AddItem("1a", "1");
    for (int cell = 1; cell <= 6; ++cell) {
        first.SetSubItem(cell, "c" + std::to_string(cell));
    }
    form::ListItem& second = list.AddItem("2a", "2");
    second.SetSubItem(2, "MSG 4");
    list.SetSelectedItem(&second);
    EXPECT_EQ(Lines(list), (std::vector<std::string>{"LVTemp: rows=2 selected=2a",
                                                     "  1a: 1 | c1 | c2 | c3 | c4 | c5 | c6",
                                                     "  2a: 2 |  | MSG 4 |  |  |  | "}));
    EXPECT_FALSE(DescribeEntries(list));
    EXPECT_FALSE(DescribeControl(gui.ImageList1));
}

}  // namespace
}  // namespace dbn::host
