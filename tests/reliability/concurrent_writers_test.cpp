// Another program writing the configuration database while the operator
// saves: the save waits for it; when the wait runs out the operator is told
// the database is locked, nothing is written, and the edit stays unsaved so
// that Apply can be pressed again.
#include "reliability_support.h"

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <utility>

namespace dbn::testing {
namespace {

using namespace form::operator_input;
using namespace std::chrono_literals;

class ConcurrentWriters : public EditorTest {
protected:
    ConcurrentWriters() {
        sqlite3* raw = nullptr;
        EXPECT_EQ(sqlite3_open(root.DatabasePath().c_str(), &raw), SQLITE_OK);
        other_.reset(raw);
    }

    // Runs SQL on the other program's connection.
    void Other(const char* sql) {
        EXPECT_EQ(sqlite3_exec(other_.get(), sql, nullptr, nullptr, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(other_.get());
    }
    // The other program opens a write transaction and changes message node 1
    // of partition 2.
    void OtherBeginsWriting() {
        Other("BEGIN IMMEDIATE");
        Other(
            "UPDATE Node_General_Pool SET NodeDescription = 'Written by the other program' "
            "WHERE PartID = 2 AND NodeTypeID = 0 AND NodeNumber = 1");
    }
    std::string Labels() const {
        return root.QueryText(
            "SELECT group_concat(NodeDescription, ' / ') FROM (SELECT NodeDescription FROM "
            "Node_General_Pool WHERE PartID = 2 AND (NodeTypeID = 0 AND NodeNumber = 1 OR "
            "NodeTypeID = 15 AND NodeNumber = 5) ORDER BY NodeTypeID)");
    }

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> other_{nullptr, sqlite3_close};
};

TEST_F(ConcurrentWriters, ASaveWaitsForAWriterThatCommitsWithinTheTimeOut) {
    Edit(2, 5, [&](form::GUI& gui) {
        FormRules(gui).Db().SetBusyTimeout(60s);
        ASSERT_TRUE(Type(gui.txtDescription, "Saved after the wait"));
        OtherBeginsWriting();
        // The other program commits once the save is seen waiting for it.
        bool waited = false;
        FormRules(gui).Db().SetWaitHandler([&] {
            if (!std::exchange(waited, true)) {
                Other("COMMIT");
            }
        });
        EXPECT_TRUE(Press(gui.cmdApply));
        EXPECT_TRUE(waited);
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_TRUE(services.boxes.empty()) << BoxTexts("Error");
    EXPECT_EQ(Labels(), "Written by the other program / Saved after the wait");
}

// The save also has a missing message node to create: the creation fails,
// which stops the save, and neither the node nor the reference is written.
TEST_F(ConcurrentWriters, ALockHeldPastTheTimeOutIsReportedNothingIsWrittenAndApplyRetries) {
    const std::string locked =
        " \r\nDescription: The configuration database \"" + root.DatabasePath() +
        "\" is locked by another program. Try again when that program has finished with it.";
    const std::string before = SavedTables();
    Edit(2, 5, [&](form::GUI& gui) {
        FormRules(gui).Db().SetBusyTimeout(50ms);
        // The abort action goes to message node 12, which does not exist yet.
        ASSERT_TRUE(Press(gui.cmdActionsEdit));
        ASSERT_TRUE(ClickRow(gui.LVActions, *gui.LVActions.FindItem("2a")));
        ASSERT_TRUE(Pick(gui.cmbAbortNode, gui.cmbAbortNode.FindEntry("MSG")));
        ASSERT_TRUE(Pick(gui.cmbAbortNumber, 11));
        ASSERT_TRUE(Type(gui.txtDescription, "Abort to twelve"));
        OtherBeginsWriting();
        services.confirmAnswers = {form::kConfirmYes};
        EXPECT_TRUE(Press(gui.cmdApply));
        // The check's failure is the save's: told once, nothing written.
        EXPECT_EQ(services.boxes.size(), 1u);
        EXPECT_EQ(BoxTexts("Error"), "Source: SQLite - CheckForUnReferencedNodes" + locked);
        ExpectEditKept(gui, "Abort to twelve");
        Other("ROLLBACK");
        EXPECT_TRUE(SavedTables() == before) << "the file changed";

        // The other program is done: the same edit saves.
        services.confirmAnswers = {form::kConfirmYes};
        EXPECT_TRUE(Press(gui.cmdApply));
        EXPECT_FALSE(gui.cmdApply.Enabled());
        EXPECT_EQ(services.boxes.size(), 1u);  // nothing more told
    });
    EXPECT_EQ(
        root.QueryText("SELECT OrvFilename FROM Node_MSG WHERE PartID = 2 AND NodeNumber = 12"),
        "P02M012.wav");
    EXPECT_EQ(root.QueryText("SELECT AbortNodeType || ' ' || AbortNodeNumber || ' ' || "
                             "NodeDescription FROM Node_DBN WHERE PartID = 2 AND NodeNumber = 5"),
              "MSG 12 Abort to twelve");
}

}  // namespace
}  // namespace dbn::testing
