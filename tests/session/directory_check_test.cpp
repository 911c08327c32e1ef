// The directory check of a node: its stored settings read as the editor shows
// them, its directory's names, missing nodes, and the settings the form shows
// before they are saved.
#include "session_support.h"

#include "core/component_error.h"
#include "session/nodes/directory_check.h"

namespace dbn::testing {
namespace {

using directory::MatchMode;
using directory::SearchSettings;

class DirectoryCheckTest : public SessionTest {
protected:
    directory::DirectoryReport Stored(int partition, int node) {
        DataBase db;
        return session::CheckStoredNode(db, 1, static_cast<std::int16_t>(partition),
                                        static_cast<std::int16_t>(node));
    }

    // "verdict digits" of every name, in sequence order.
    static std::string Verdicts(const directory::DirectoryReport& report) {
        std::string text;
        for (const directory::NameVerdict& verdict : report.verdicts) {
            text += (text.empty() ? "" : ", ") + directory::VerdictName(verdict.verdict) +
                    (verdict.digits.empty() ? "" : " " + verdict.digits);
        }
        return text;
    }
};

TEST_F(DirectoryCheckTest, StoredNodeChecksItsDirectoryUnderItsSettings) {
    const directory::DirectoryReport report = Stored(1, 1);
    EXPECT_EQ(report.directory, 1);
    EXPECT_EQ(report.settings,
              directory::CustomSearch(MatchMode::LastName, 3, 5, 2, 1, 5, true, 3));
    ASSERT_EQ(report.names.size(), 5u);
    EXPECT_EQ(report.names[3].lastName, "Dubois");
    EXPECT_EQ(Verdicts(report),
              "direct 23267, direct 22537, direct 2436, direct 38264, direct 38267");

    DataBase db;
    const session::ReachableCount count = session::CountReachableNames(db, 1, 1, 1);
    EXPECT_EQ(count.reachable, 5);
    EXPECT_EQ(count.total, 5);
}

// Values beyond the lists, beyond 16 bits too, are read as the editor shows
// them and told as the editor tells them.
TEST_F(DirectoryCheckTest, StoredValuesOutsideTheListsAreReadAsTheEditorShowsThem) {
    using directory::CustomSearch;
    struct Case {
        const char* assignments;
        SearchSettings settings;
        const char* shownAs;
    };
    const Case cases[] = {
        {"Method = 1, FirstMode = 4", directory::DefaultLastNameSearch(), ""},
        {"FirstMode = 4, SecondMode = 2",
         CustomSearch(MatchMode::Extension, 3, 5, 0, 1, 5, true, 3), ""},
        {"FirstMode = 9, FirstMinDigits = 0, FirstMaxDigits = 10, SecondMode = 7",
         CustomSearch(MatchMode::LastName, 3, 5, 0, 1, 5, true, 3),
         "FirstMode 9 -> Last Name; FirstMinDigits 0 -> 3; FirstMaxDigits 10 -> 5; SecondMode 7 "
         "-> None"},
        {"SecondMode = 1, SecondMinDigits = 0, SecondMaxDigits = 12",
         CustomSearch(MatchMode::LastName, 3, 5, 1, 1, 5, true, 3),
         "SecondMinDigits 0 -> 1; SecondMaxDigits 12 -> 5"},
        {"Confirm = 0, MaxMatch = 2", CustomSearch(MatchMode::LastName, 3, 5, 2, 1, 5, false, 2),
         ""},
        {"Confirm = 0, MaxMatch = 12", CustomSearch(MatchMode::LastName, 3, 5, 2, 1, 5, false, 0),
         "MaxMatch 12 -> nothing"},
        {"Confirm = 2, MaxMatch = 12", CustomSearch(MatchMode::LastName, 3, 5, 2, 1, 5, true, 9),
         "Confirm 2 -> Yes; MaxMatch 12 -> 9"},
        {"MaxMatch = 0", CustomSearch(MatchMode::LastName, 3, 5, 2, 1, 5, true, 0),
         "MaxMatch 0 -> nothing"},
        {"Method = 70000, DirectoryNodeNumber = 40000", directory::DefaultLastNameSearch(),
         "Method 70000 -> Default Last Name; DirectoryNodeNumber 40000 -> 1"},
        {"MaxMatch = 40000, FirstMinDigits = 2147483647",
         CustomSearch(MatchMode::LastName, 3, 5, 2, 1, 5, true, 9),
         "FirstMinDigits 2147483647 -> 3; MaxMatch 40000 -> 9"},
    };
    for (const Case& c : cases) {
        root.Exec(
            "UPDATE Node_DBN SET Method = 0, DirectoryNodeNumber = 1, FirstMode = 1, "
            "FirstMinDigits = 3, FirstMaxDigits = 5, SecondMode = 2, SecondMinDigits = 1, "
            "SecondMaxDigits = 5, Confirm = 1, MaxMatch = 3" +
            Where(1, "NodeNumber", 1));
        SetNode(1, 1, c.assignments);
        DataBase db;
        std::string shownAs;
        EXPECT_EQ(session::CheckStoredNode(db, 1, 1, 1, &shownAs).settings, c.settings)
            << c.assignments;
        EXPECT_EQ(shownAs, *c.shownAs == '\0' ? std::string()
                                              : "Stored settings of DBN 1 outside their range "
                                                "are shown as: " +
                                                    std::string(c.shownAs) + ".");
    }
}

TEST_F(DirectoryCheckTest, MissingNodesGiveAClearError) {
    struct Case {
        const char* arrange;
        int node;
        long number;
        const char* description;
    };
    const Case cases[] = {
        {"", 9, session::kErrCheckedNodeMissing,
         "DBN 9 doesn't exist in configuration 1, partition 1."},
        {"UPDATE Node_DBN SET DirectoryNodeNumber = 7 WHERE NodeNumber = 1", 1,
         session::kErrDirectoryMissing, "DIR 7 doesn't exist in configuration 1, partition 1."},
        {"DELETE FROM Node_DIR WHERE NodeNumber = 1", 2, session::kErrDirectoryMissing,
         "DIR 1 doesn't exist in configuration 1, partition 1."},
    };
    for (const Case& c : cases) {
        if (*c.arrange) {
            root.Exec(c.arrange);
        }
        try {
            Stored(1, c.node);
            ADD_FAILURE() << "no error for " << c.description;
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), c.number);
            EXPECT_EQ(error.Description(), c.description);
        }
    }
}

TEST_F(DirectoryCheckTest, EmptyDirectoryHasNothingToReach) {
    root.Exec("DELETE FROM Detail_DIR WHERE PartID = 2 AND NodeMasterID = 1");
    const directory::DirectoryReport report = Stored(2, 5);
    EXPECT_EQ(report.Total(), 0);
    EXPECT_EQ(report.ReachableCount(), 0);
}

TEST_F(DirectoryCheckTest, FormIsCheckedWithTheSettingsItShowsBeforeTheyAreSaved) {
    root.Exec("INSERT INTO Detail_DIR VALUES (1, 1, 6, 'Chen', 'Bo', '2106', '', '', 1)");
    Open(1, 1, [&](form::GUI& gui) {
        // As loaded: Chen and Chen share CHEN -> 2436; three can be offered.
        directory::DirectoryReport report = session::CheckFormNode(gui);
        EXPECT_EQ(report.node, 1);
        EXPECT_EQ(report.settings,
                  directory::CustomSearch(MatchMode::LastName, 3, 5, 2, 1, 5, true, 3));
        EXPECT_EQ(Verdicts(report),
                  "direct 23267, direct 22537, among 2436, direct 38264, direct 38267, among 2436");

        // Unsaved: no confirmation, then the first name decides between the two.
        Set(gui, "cmbConfirmation=No");
        EXPECT_EQ(Verdicts(session::CheckFormNode(gui)),
                  "direct 23267, direct 22537, second stage 2436, direct 38264, direct 38267, "
                  "second stage 2436");
        // Five digits at least: only names of five letters or more are left.
        Set(gui, "cmbFirstMinDigits=5");
        EXPECT_EQ(session::CheckFormNode(gui).ReachableCount(), 4);
        // Extension search; no second stage with it.
        Set(gui, "cmbFirstMinDigits=3; cmbfirstMatch=Extension");
        report = session::CheckFormNode(gui);
        EXPECT_EQ(report.settings.stages.size(), 1u);
        EXPECT_EQ(Verdicts(report),
                  "direct 2101, direct 2102, direct 2103, direct 2104, "
                  "direct 2105, direct 2106");
        // The default method, whatever the custom section shows.
        Set(gui, "cmbMethod=Default Last Name");
        EXPECT_EQ(session::CheckFormNode(gui).settings, directory::DefaultLastNameSearch());
        // Another directory, one that does not exist.
        Set(gui, "cmbDirectory=4");
        EXPECT_THROW(session::CheckFormNode(gui), ComponentError);
        EXPECT_TRUE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(Stored(1, 1).ReachableCount(), 6);
}

}  // namespace
}  // namespace dbn::testing
