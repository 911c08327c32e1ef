// Another program writing the configuration database while the operator
// saves: the save waits for it; when the wait runs out the operator is told
// the database is locked, nothing is written, and the edit stays unsaved so
// that Apply can be pressed again.
#include "reliability_support.h"

#include <sqlite3.h>

#include <chrono>
#include <thread>

namespace dbn::testing {
namespace {

using namespace form::operator_input;
using namespace std::chrono_literals;

// A connection of another program that holds a write transaction, having
// changed the description of message node 1 of partition 2.
class OtherWriter {
public:
    explicit OtherWriter(const std::string& path) {
        if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) {
            ADD_FAILURE() << "cannot open " << path;
        }
    }
    ~OtherWriter() { sqlite3_close(db_); }
    OtherWriter(const OtherWriter&) = delete;
    OtherWriter& operator=(const OtherWriter&) = delete;

    void Begin() {
        Run("BEGIN IMMEDIATE");
        Run("UPDATE Node_General_Pool SET NodeDescription = 'Written by the other program' "
            "WHERE PartID = 2 AND NodeTypeID = 0 AND NodeNumber = 1");
    }
    void Commit() { Run("COMMIT"); }
    void Rollback() { Run("ROLLBACK"); }

private:
    void Run(const char* sql) {
        EXPECT_EQ(sqlite3_exec(db_, sql, nullptr, nullptr, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(db_);
    }
    sqlite3* db_ = nullptr;
};

class ConcurrentWriters : public EditorTest {
protected:
    std::string Label() {
        return root.QueryText(
            "SELECT NodeDescription FROM Node_DBN WHERE PartID = 2 AND NodeNumber = 5");
    }
    std::string OtherLabel() {
        return root.QueryText(
            "SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 0 "
            "AND NodeNumber = 1");
    }

    // Points the abort action at message node 12, which does not exist yet.
    static void AbortToMissingMessage(form::GUI& gui) {
        ASSERT_TRUE(Press(gui.cmdActionsEdit));
        ASSERT_TRUE(ClickRow(gui.LVActions, *gui.LVActions.FindItem("2a")));
        ASSERT_TRUE(Pick(gui.cmbAbortNode, gui.cmbAbortNode.FindEntry("MSG")));
        ASSERT_TRUE(Pick(gui.cmbAbortNumber, 11));
    }

    // The unsaved edit is intact and the form is ready for the next try.
    void ExpectEditKept(form::GUI& gui, const std::string& label) {
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_EQ(gui.txtDescription.Text(), label);
        EXPECT_TRUE(gui.Frame1.Enabled());
        EXPECT_FALSE(gui.StatusBar1.Visible());
        EXPECT_EQ(services.busyDepth, 0);
    }

    OtherWriter other{root.DatabasePath()};
};

TEST_F(ConcurrentWriters, ASaveWaitsForAWriterThatCommitsWithinTheTimeOut) {
    Edit(2, 5, [&](form::GUI& gui) {
        FormRules(gui).Db().SetBusyTimeout(60s);
        ASSERT_TRUE(Type(gui.txtDescription, "Saved after the wait"));
        other.Begin();
        std::thread committer([&] {
            std::this_thread::sleep_for(200ms);
            other.Commit();
        });
        EXPECT_TRUE(Press(gui.cmdApply));
        committer.join();
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_TRUE(services.boxes.empty()) << BoxTexts("Error");
    EXPECT_EQ(Label(), "Saved after the wait");
    EXPECT_EQ(OtherLabel(), "Written by the other program");
}

TEST_F(ConcurrentWriters, ALockHeldPastTheTimeOutIsReportedAndNothingIsWritten) {
    const std::string locked =
        "\r\nDescription: The configuration database \"" + root.DatabasePath() +
        "\" is locked by another program. Try again when that program has finished with it.";
    const std::string before = SavedTables();
    Edit(2, 5, [&](form::GUI& gui) {
        FormRules(gui).Db().SetBusyTimeout(50ms);
        ASSERT_TRUE(Type(gui.txtDescription, "Waiting label"));
        other.Begin();
        EXPECT_TRUE(Press(gui.cmdApply));
        ASSERT_EQ(services.boxes.size(), 1u);
        EXPECT_EQ(services.boxes[0].title, "Error");
        EXPECT_EQ(services.boxes[0].text, "Source: SQLite - SaveChanges " + locked);
        ExpectEditKept(gui, "Waiting label");
        other.Rollback();
        EXPECT_TRUE(SavedTables() == before) << "the file changed";

        // The other program is done: the same edit saves.
        EXPECT_TRUE(Press(gui.cmdApply));
        EXPECT_FALSE(gui.cmdApply.Enabled());
        EXPECT_EQ(services.boxes.size(), 1u);
    });
    EXPECT_EQ(Label(), "Waiting label");
}

TEST_F(ConcurrentWriters, ANodeToCreateWhileLockedIsNeitherCreatedNorReferenced) {
    const std::string message12 = " FROM Node_MSG WHERE PartID = 2 AND NodeNumber = 12";
    const std::string before = SavedTables();
    Edit(2, 5, [&](form::GUI& gui) {
        FormRules(gui).Db().SetBusyTimeout(50ms);
        AbortToMissingMessage(gui);
        ASSERT_TRUE(Type(gui.txtDescription, "Abort to twelve"));
        other.Begin();
        services.confirmAnswers = {form::kConfirmYes};
        EXPECT_TRUE(Press(gui.cmdApply));
        // The creation fails first, then the save: both say why.
        ASSERT_EQ(services.boxes.size(), 2u);
        EXPECT_NE(services.boxes[0].text.find(" - CheckForUnReferencedNodes \r\n"),
                  std::string::npos);
        EXPECT_NE(services.boxes[1].text.find(" - SaveChanges \r\n"), std::string::npos);
        for (const ShownBox& box : services.boxes) {
            EXPECT_NE(box.text.find("is locked by another program"), std::string::npos);
        }
        ExpectEditKept(gui, "Abort to twelve");
        other.Rollback();
        EXPECT_TRUE(SavedTables() == before) << "the file changed";

        services.confirmAnswers = {form::kConfirmYes};
        EXPECT_TRUE(Press(gui.cmdApply));
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(root.QueryText("SELECT OrvFilename" + message12), "P02M012.wav");
    EXPECT_EQ(root.QueryText("SELECT AbortNodeType || ' ' || AbortNodeNumber FROM Node_DBN "
                             "WHERE PartID = 2 AND NodeNumber = 5"),
              "MSG 12");
}

}  // namespace
}  // namespace dbn::testing
