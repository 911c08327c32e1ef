// What the operator is told while a node is opened, and what is refused:
// no database, a negative node number, settings shown through a fallback,
// a partition that offers no messages; and Custom nodes keeping their own
// languages.
#include "session_support.h"

#include <filesystem>
#include <fstream>

namespace dbn::testing {
namespace {

using LoadNotices = SessionTest;

TEST_F(LoadNotices, ADatabaseThatCannotBeOpenedIsToldOnceAndNoFormOpens) {
    DBN_FILE_TEST_ONLY(root);
    namespace fs = std::filesystem;
    const std::string path = root.DatabasePath();
    const std::string missing =
        "There is no configuration database at " + path + ". Create one with: dbn-node-editor init";
    struct Case {
        std::function<void()> damage;
        std::string box;
    };
    for (const Case& c : {Case{[&] { fs::remove(path); }, missing},
                          Case{[&] { fs::remove_all(fs::path(path).parent_path()); }, missing},
                          Case{[&] {
                                   fs::create_directories(fs::path(path).parent_path());
                                   std::ofstream(path) << "not a database";
                               },
                               "Source: SQLite - ShowNodeEditor \r\nDescription: The file \"" +
                                   path + "\" is not a configuration database."}}) {
        c.damage();
        Business_Rules editor(services);
        EXPECT_FALSE(editor.ShowNodeEditor(1, 1, 1));
        EXPECT_TRUE(editor.DatabaseUnavailable());
        ASSERT_EQ(services.boxes.size(), 1u) << c.box;
        EXPECT_EQ(services.boxes[0].title, "Error");
        EXPECT_EQ(services.boxes[0].text, c.box);
        services.boxes.clear();
        EXPECT_EQ(services.modalShows, 0);
    }
}

// Refused before any node is read or shown: the first node's own notices
// (a stored method out of range) never appear.
TEST_F(LoadNotices, ANodeNumberThatCannotBeEditedIsNotOpened) {
    SetNode(1, 1, "Method = 99");
    root.Exec(
        "INSERT INTO Node_DBN SELECT ConfigID, PartID, NodeTypeID, 25, NodeType, NodeDescription, "
        "Method, DirectoryNodeNumber, FirstLanguage, SecondLanguage, GreetingNodeType, "
        "GreetingNodeNumber, GreetingNodeTypeID, ValidMatchNodeType, ValidMatchNodeNumber, "
        "ValidMatchNodeTypeID, AbortNodeType, AbortNodeNumber, AbortNodeTypeID, StarNodeType, "
        "StarNodeNumber, StarNodeTypeID, PoundNodeType, PoundNodeNumber, PoundNodeTypeID, "
        "ZeroNodeType, ZeroNodeNumber, ZeroNodeTypeID, FirstMode, FirstMinDigits, "
        "FirstMaxDigits, FirstPromptNodeType, FirstPromptNodeNumber, FirstPromptNodeTypeID, "
        "SecondMode, SecondMinDigits, SecondMaxDigits, SecondPromptNodeType, "
        "SecondPromptNodeNumber, SecondPromptNodeTypeID, TimeoutNodeType, TimeoutNodeNumber, "
        "TimeoutNodeTypeID, InvalidNodeType, InvalidNodeNumber, InvalidNodeTypeID, DigitTimeout, "
        "SelectionTimeout, RetryLimit, Confirm, MaxMatch, PlayName, BeforePromptNodeType, "
        "BeforePromptNodeNumber, BeforePromptNodeTypeID, AfterPromptNodeType, "
        "AfterPromptNodeNumber, AfterPromptNodeTypeID, ConfirmationExitNodeType, "
        "ConfirmationExitNodeNumber, ConfirmationExitNodeTypeID, Reserved1, Reserved2, "
        "Reserved3, Reserved4, Reserved5, Reserved6, Reserved7, Reserved8, Reserved9, Reserved10 "
        "FROM Node_DBN" +
        Where(1, "NodeNumber", 1));
    for (const auto& [node, told] :
         {std::pair{-2, "DBN -2 cannot be edited: node numbers start at 1."},
          std::pair{25, "DBN 25 cannot be edited: the partition allows DBN nodes up to 20."}}) {
        Business_Rules editor(services);
        EXPECT_FALSE(editor.ShowNodeEditor(1, 1, static_cast<std::int16_t>(node)));
        EXPECT_FALSE(editor.DatabaseUnavailable());
        EXPECT_EQ(services.modalShows, 0);
        ASSERT_EQ(services.boxes.size(), 1u) << node;
        EXPECT_EQ(services.boxes[0].title, "Information");
        EXPECT_EQ(services.boxes[0].text, told);
        services.boxes.clear();
    }
    EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), "Staff directory");
}

TEST_F(LoadNotices, SettingsShownThroughAFallbackAreToldOnceAfterLoading) {
    struct Case {
        int node;
        const char* stored;
        const char* told;  // "" when nothing is told
    };
    for (const Case& c : {
             // With confirmation off Max Matches outside 1 to 9 shows nothing.
             Case{2, "Method = 99, DirectoryNodeNumber = 0, SecondLanguage = 7, MaxMatch = 40",
                  "Stored settings of DBN 2 outside their range are shown as: Method 99 -> "
                  "Default Last Name; DirectoryNodeNumber 0 -> 1; SecondLanguage 7 -> None; "
                  "MaxMatch 40 -> nothing. They are kept as stored unless changed."},
             Case{1, "MaxMatch = 12, RetryLimit = 9, FirstMode = 0, GreetingNodeNumber = 500",
                  "Stored settings of DBN 1 outside their range are shown as: GreetingNodeNumber "
                  "500 -> 1; FirstMode 0 -> Last Name; RetryLimit 9 -> 1; MaxMatch 12 -> 9. They "
                  "are "
                  "kept as stored unless changed."},
             // A label longer than its box is told as one more item.
             Case{1, "NodeDescription = 'Reception and the whole staff directory', Method = 7",
                  "Stored settings of DBN 1 outside their range are shown as: NodeDescription "
                  "\"Reception and the whole staff directory\" -> \"Reception and the whole "
                  "staff \"; Method 7 -> Default Last Name. They are kept as stored unless "
                  "changed."},
             Case{1, "MaxMatch = 0, PlayName = 3",
                  "Stored settings of DBN 1 outside their range are shown as: MaxMatch 0 -> "
                  "nothing; PlayName 3 -> Yes. They are kept as stored unless changed."},
             // Values the lists map without a fallback are not told.
             Case{2, "Method = 1, DirectoryNodeNumber = 99, RetryLimit = 5, MaxMatch = 4", ""},
         }) {
        SetNode(1, c.node, c.stored);
        Open(1, c.node, [](form::GUI&) {});
        EXPECT_EQ(services.TakeBoxTexts(),
                  *c.told ? std::vector<std::string>{c.told} : std::vector<std::string>{})
            << c.stored;
        root.Exec(
            "UPDATE Node_DBN SET NodeDescription = 'Staff directory', Method = 1, PlayName = 1, "
            "MaxMatch = 3, RetryLimit = 1, "
            "FirstMode = 1, GreetingNodeNumber = 1, SecondLanguage = 2, "
            "DirectoryNodeNumber = 1" +
            Where(1, "NodeNumber", c.node));
    }
}

TEST_F(LoadNotices, ACustomNodeShowsAndKeepsItsOwnLanguages) {
    // Sales (2) speaks English and French; Staff (1) is Custom with English only.
    Open(1, 2, [&](form::GUI& gui) {
        gui.cmdPrevious_Click();
        EXPECT_EQ(gui.nodeNumber(), 1);
        EXPECT_EQ(gui.cmbLanguage1.Text() + "/" + gui.cmbLanguage2.Text(), "English/None");
        EXPECT_FALSE(gui.cmbLanguage2.Enabled());
        Set(gui, "txtDescription=Front desk");
        gui.cmdApply_Click();
    });
    EXPECT_EQ(NodeColumn("NodeDescription || FirstLanguage || SecondLanguage", 1, 1),
              "Front desk10");
}

TEST_F(LoadNotices, APartitionWithoutMessagesOpensWithoutErrors) {
    root.Exec("UPDATE Node_Type_Max SET Max_Number = 0 WHERE PartitionID = 1 AND NodeType_ID = 0");
    Open(1, 2, [&](form::GUI& gui) {
        EXPECT_EQ(gui.cmbSecondMatchPrompt.Text(), "NOOP");
        EXPECT_EQ(gui.cmbSecondMatchPromptNumber.ListIndex(), -1);
    });
    for (const ShownBox& box : services.boxes) {
        EXPECT_EQ(box.title, "Information") << box.text;
    }
    EXPECT_EQ(services.TakeBoxTexts(),
              std::vector<std::string>{"Please check the \"Max Number of each Node\" Section for "
                                       "MSG Node in Partition Settings."});
}

}  // namespace
}  // namespace dbn::testing
