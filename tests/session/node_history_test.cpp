// The node history: every path that changes a node writes its row in the
// change's transaction, a rolled-back change writes none, and restore writes
// back an entry's state as a new change.

#include "session_support.h"

#include "database/database_errors.h"
#include "database/database_setup.h"
#include "error_of.h"
#include "nodestate/state_diff.h"
#include "session/history/change_watcher.h"
#include "session/history/node_restore.h"
#include "session/nodes/node_history.h"

#include <poll.h>

#include <chrono>
#include <thread>

namespace dbn::testing {
namespace {

using session::HistoryEntry;
using session::NodeKey;

constexpr NodeKey kDbn11{1, 1, 15, 1};

std::vector<std::string> Fields(const HistoryEntry& entry) {
    std::vector<std::string> fields;
    for (const auto& change : nodestate::Diff(entry.before, entry.after)) {
        fields.push_back(change.field);
    }
    return fields;
}

class NodeHistory : public SessionTest {
protected:
    // Saves node 1 of partition 1 with a new description.
    void SaveDescription(const std::string& description) {
        Open(1, 1, [&](form::GUI& gui) {
            Set(gui, "txtDescription=" + description);
            gui.cmdApply_Click();
            EXPECT_FALSE(gui.cmdApply.Enabled());
        });
    }
    // Saves the labels One, Two and Three; the node's history, newest first.
    std::vector<HistoryEntry> ThreeSaves(DataBase& db) {
        for (const char* description : {"One", "Two", "Three"}) {
            SaveDescription(description);
        }
        return session::ReadNodeHistory(db, kDbn11, std::nullopt);
    }
};

TEST_F(NodeHistory, ASaveWritesOneEntryWithBothStates) {
    session::SetHistoryProgram("history-test 9.9");
    SaveDescription("Front desk");
    DataBase db;
    const std::vector<HistoryEntry> entries = session::ReadNodeHistory(db, kDbn11, std::nullopt);
    ASSERT_EQ(entries.size(), 1u);
    const HistoryEntry& entry = entries[0];
    EXPECT_EQ(entry.kind, "saved");
    EXPECT_EQ(entry.program, "history-test 9.9");
    EXPECT_EQ(entry.typeCode, "DBN");
    EXPECT_FALSE(entry.user.empty());
    EXPECT_EQ(entry.time.size(), 20u) << entry.time;  // 2026-11-25T01:35:12Z
    EXPECT_EQ(entry.time.back(), 'Z');
    EXPECT_EQ(entry.dbUser.empty(), !root.OnServer());
    ASSERT_TRUE(entry.before && entry.after);
    EXPECT_EQ(entry.before->node["NodeDescription"], "Staff directory");
    EXPECT_EQ(entry.after->node["NodeDescription"], "Front desk");
    EXPECT_EQ(entry.after->details.size(), 9u);
    EXPECT_EQ(Fields(entry), std::vector<std::string>{"NodeDescription"});
    // What changed is kept with the entry, and listed without the states.
    EXPECT_EQ(entry.changes, nodestate::Diff(entry.before, entry.after));
    EXPECT_EQ(entry.changeLines,
              std::vector<std::string>{R"(NodeDescription: "Staff directory" -> "Front desk")"});
    const std::vector<HistoryEntry> listed = session::ReadNodeHistoryChanges(db, kDbn11, 1);
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed[0].changes, entry.changes);
    EXPECT_EQ(listed[0].changeLines, entry.changeLines);
    EXPECT_FALSE(listed[0].before || listed[0].after);
    // The stored "after" is the node as it is now.
    EXPECT_EQ(session::ReadNodeState(db, kDbn11), entry.after);

    const nodestate::Json json = session::EntryJson(entry, false);
    EXPECT_EQ(json["changes"],
              nodestate::Json::parse(R"([{"field":"NodeDescription","before":"Staff directory",)"
                                     R"("after":"Front desk"}])"));
    std::vector<std::string> keys;
    for (const auto& item : json.items()) {
        keys.push_back(item.key());
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"entry", "time", "user", "host", "program", "kind",
                                              "changes"}));
    session::SetHistoryProgram("dbn-node-editor");
}

TEST_F(NodeHistory, NewestFirstAndLimited) {
    DataBase db;
    const auto all = ThreeSaves(db);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_GT(all[0].entry, all[1].entry);
    EXPECT_EQ(all[0].after->node["NodeDescription"], "Three");
    EXPECT_EQ(all[0].before->node["NodeDescription"], "Two");
    const auto newest = session::ReadNodeHistory(db, kDbn11, 2);
    ASSERT_EQ(newest.size(), 2u);
    EXPECT_EQ(newest[1].entry, all[1].entry);
    EXPECT_TRUE(session::ReadNodeHistory(db, {1, 1, 15, 2}, std::nullopt).empty());
    EXPECT_EQ(session::ReadHistoryAfter(db, all[1].entry).size(), 1u);
    EXPECT_EQ(session::LastHistoryEntry(db), all[0].entry);
}

TEST_F(NodeHistory, CreatedNodesGetAnEntryWithTheCopyAsAfter) {
    root.Exec(
        "DELETE FROM Node_MSG WHERE NodeNumber = 50; DELETE FROM Node_General_Pool WHERE "
        "NodeNumber = 50");
    services.confirmAnswers = {form::kConfirmYesToAll};
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui, "cmbGreetingNumber=50");
        gui.cmdApply_Click();
    });
    DataBase db;
    const auto created = session::ReadNodeHistory(db, {1, 1, 0, 50}, std::nullopt);
    ASSERT_EQ(created.size(), 1u);
    EXPECT_EQ(created[0].kind, "created");
    EXPECT_EQ(created[0].typeCode, "MSG");
    EXPECT_FALSE(created[0].before.has_value());
    ASSERT_TRUE(created[0].after.has_value());
    EXPECT_EQ(created[0].after->pool["NodeNumber"], 50);
    // The save that made it comes after it.
    const auto saved = session::ReadNodeHistory(db, kDbn11, std::nullopt);
    ASSERT_EQ(saved.size(), 1u);
    EXPECT_GT(saved[0].entry, created[0].entry);
}

// A watcher on a connection of its own hears another connection's save
// within two seconds (the server's announcement, the file's counter), and
// only once.
TEST_F(NodeHistory, AWatcherHearsAnotherConnectionsSave) {
    session::ChangeWatcher watcher(ResolveDatabaseTarget());
    ASSERT_TRUE(watcher.Active());
    EXPECT_TRUE(watcher.NewChanges().empty());
    SaveDescription("Front desk");
    std::vector<HistoryEntry> heard;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (heard.empty() && std::chrono::steady_clock::now() < deadline) {
        if (watcher.Socket() >= 0) {
            pollfd readable{watcher.Socket(), POLLIN, 0};
            ::poll(&readable, 1, 100);
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        heard = watcher.NewChanges();
    }
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0].kind, "saved");
    EXPECT_EQ(heard[0].key.number, 1);
    EXPECT_EQ(Fields(heard[0]), std::vector<std::string>{"NodeDescription"});
    EXPECT_TRUE(watcher.NewChanges().empty());
}

// A watcher started after a given entry reports the later ones at once; one
// whose file is replaced (init --force) says so and hears the new file.
TEST_F(NodeHistory, AWatcherStartsAfterAnEntryAndFollowsAReplacedFile) {
    SaveDescription("First");
    SaveDescription("Second");
    session::ChangeWatcher watcher(ResolveDatabaseTarget(), 1);
    std::vector<HistoryEntry> heard = watcher.NewChanges();
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0].entry, 2);
    if (root.OnServer()) {
        return;
    }
    CreateConfigurationDatabase(root.DatabasePath(), true, ExistingDatabase::Replace);
    for (const char* label : {"A", "B", "C"}) {
        SaveDescription(label);
    }
    heard = watcher.NewChanges();  // a file is asked on a timer: the change is there
    EXPECT_EQ(heard.size(), 3u);
    EXPECT_EQ(watcher.TakeNotice(), "The configuration database " + root.DatabasePath() +
                                        " was replaced by another file; watching the new one.");
}

// A failing write of the node or of its history entry rolls back the whole
// save: the node unchanged, no entry, the error shown.
TEST_F(NodeHistory, ARolledBackChangeWritesNoEntry) {
    for (const auto& [table, event] :
         {std::pair{"Node_General_Pool", "UPDATE"}, std::pair{"Node_History", "INSERT"}}) {
        root.InjectFailure(table, event);
        Open(1, 1, [&](form::GUI& gui) {
            Set(gui, "txtDescription=Never");
            gui.cmdApply_Click();
            EXPECT_TRUE(gui.cmdApply.Enabled()) << table;
        });
        root.RemoveInjectedFailure(table);
        EXPECT_EQ(Count("Node_History", ""), 0) << table;
        EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), "Staff directory") << table;
        ASSERT_EQ(services.boxes.size(), 1u) << table;
        EXPECT_EQ(services.boxes[0].title, "Error") << table;
        services.boxes.clear();
    }
}

TEST_F(NodeHistory, RestoresAnEntrysStateAfterAndBefore) {
    SaveDescription("One");
    const std::string maxMatch = NodeColumn("MaxMatch", 1, 1);
    root.Exec("UPDATE Node_DBN SET MaxMatch = " + std::string(maxMatch == "7" ? "6" : "7") +
              Where(1, "NodeNumber", 1));
    SaveDescription("Two");
    DataBase db;
    const auto entries = session::ReadNodeHistory(db, kDbn11, std::nullopt);
    ASSERT_EQ(entries.size(), 2u);
    const long first = entries[1].entry;

    const auto replaced = session::ReadNodeState(db, kDbn11);
    const session::RestoreResult after = session::RestoreNodeVersion(db, kDbn11, first, false);
    EXPECT_EQ(NodeColumn("NodeDescription || '/' || MaxMatch", 1, 1), "One/" + maxMatch);
    EXPECT_EQ(session::ReadNodeState(db, kDbn11)->details, entries[1].after->details);
    const auto restored = session::ReadHistoryEntry(db, after.entry);
    ASSERT_TRUE(restored.has_value());
    EXPECT_EQ(restored->kind, "restored");
    // The entry holds the state replaced and the state written, in that order.
    EXPECT_EQ(restored->before, replaced);
    EXPECT_EQ(restored->after, session::ReadNodeState(db, kDbn11));
    EXPECT_EQ(Fields(*restored), (std::vector<std::string>{"NodeDescription", "MaxMatch"}));
    EXPECT_TRUE(after.missing.empty());

    session::RestoreNodeVersion(db, kDbn11, first, true);
    EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), "Staff directory");
    EXPECT_EQ(session::ReadNodeHistory(db, kDbn11, std::nullopt).size(), 4u);
}

// Another program's change committed while the restore waits for the node's
// rows is the state the restore replaces, so that restoring the entry's
// state before brings it back.
TEST_F(NodeHistory, RestoreReplacesAChangeCommittedWhileItWaits) {
    SaveDescription("One");
    DataBase db;
    const long entry = session::LastHistoryEntry(db);
    TempDataRoot::Writer other(root,
                               "UPDATE Node_DBN SET RetryLimit = 5" + Where(1, "NodeNumber", 1));
    bool committed = false;
    db.SetWaitHandler([&] {
        if (!committed) {
            committed = true;
            other.Commit();
        }
    });
    const session::RestoreResult result = session::RestoreNodeVersion(db, kDbn11, entry, true);
    db.SetWaitHandler({});
    EXPECT_TRUE(committed);
    const auto restored = session::ReadHistoryEntry(db, result.entry);
    ASSERT_TRUE(restored && restored->before);
    EXPECT_EQ(restored->before->node["RetryLimit"], 5);
    session::RestoreNodeVersion(db, kDbn11, result.entry, true);
    EXPECT_EQ(NodeColumn("NodeDescription || '/' || RetryLimit", 1, 1), "One/5");
}

TEST_F(NodeHistory, RestoreRefusesOtherNodesAndUnknownEntries) {
    SaveDescription("One");
    DataBase db;
    const long entry = session::LastHistoryEntry(db);
    const std::string before = NodeColumn("NodeDescription", 1, 1);
    struct Case {
        NodeKey key;
        long entry;
        bool before;
        const char* says;
    };
    const std::vector<Case> cases{
        {{1, 1, 15, 2}, entry, false, "is not of DBN 2"},
        {{1, 1, 15, 1}, entry + 5, false, "There is no history entry"},
        {{1, 1, 0, 1}, entry, false, "Only dial-by-name nodes can be restored."},
    };
    for (const Case& c : cases) {
        const ComponentError refused =
            ErrorOf([&] { session::RestoreNodeVersion(db, c.key, c.entry, c.before); });
        EXPECT_NE(refused.Description().find(c.says), std::string::npos) << refused.Description();
        EXPECT_NE(refused.Description().find("Nothing was restored."), std::string::npos);
    }
    EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), before);
    EXPECT_EQ(Count("Node_History", ""), 1);
}

// A damaged row hides no other: it is listed with the reason it cannot be
// read, and restoring it is refused with that reason.
TEST_F(NodeHistory, ADamagedEntryIsNamedAndHidesNoOther) {
    DataBase db;
    const auto all = ThreeSaves(db);
    ASSERT_EQ(all.size(), 3u);
    const std::string changes = std::to_string(all[1].entry);
    const std::string state = std::to_string(all[0].entry);
    root.Exec("UPDATE Node_History SET Changes = '[{oops' WHERE EntryID = " + changes);
    root.Exec("UPDATE Node_History SET StateAfter = '[1]' WHERE EntryID = " + state);
    const auto listed = session::ReadNodeHistoryChanges(db, kDbn11, std::nullopt);
    ASSERT_EQ(listed.size(), 3u);
    EXPECT_EQ(listed[1].damage,
              "entry " + changes + " cannot be read: its list of changes is not valid");
    EXPECT_TRUE(listed[0].damage.empty());
    EXPECT_EQ(listed[2].changes, all[2].changes);
    const auto read = session::ReadNodeHistory(db, kDbn11, std::nullopt);
    ASSERT_EQ(read.size(), 3u);
    EXPECT_EQ(read[0].damage,
              "entry " + state + " cannot be read: its state after is not a node state");
    EXPECT_EQ(read[2].after, all[2].after);
    const ComponentError refused =
        ErrorOf([&] { session::RestoreNodeVersion(db, kDbn11, all[0].entry, true); });
    EXPECT_EQ(refused.Description(), "History entry " + state +
                                         " cannot be read: its state after is not a node state. "
                                         "Nothing was restored.");
}

TEST_F(NodeHistory, RestoreNamesReferencesToNodesThatAreGone) {
    SaveDescription("One");
    DataBase db;
    const long entry = session::LastHistoryEntry(db);
    const std::string greeting = NodeColumn("GreetingNodeType || ' ' || GreetingNodeNumber", 1, 1);
    root.Exec("DELETE FROM Node_General_Pool WHERE NodeType = '" + greeting.substr(0, 3) +
              "' AND NodeNumber = " + greeting.substr(4));
    const session::RestoreResult result = session::RestoreNodeVersion(db, kDbn11, entry, false);
    EXPECT_EQ(result.missing, std::vector<std::string>{greeting});
}

}  // namespace
}  // namespace dbn::testing
