// Every operation on a server with its connection cut at each message the
// program sends in turn, before the server gets it and after: the operation
// either completed wholly, or wrote nothing and said the connection was lost,
// or (only when its commit went unanswered) said it may or may not have been
// written, and then holds one whole version. Each node's newest history
// entry shows the node as it is stored.

#include "database/configuration_copy.h"
#include "network_relay.h"
#include "session/history/node_restore.h"
#include "session/nodes/apply_nodes.h"
#include "session/nodes/node_history.h"
#include "session/nodes/node_list.h"
#include "session/nodes/node_text_store.h"
#include "session/session_support.h"

#include <stdlib.h>
#include <unistd.h>

namespace dbn::testing {
namespace {

using Cut = NetworkRelay::CutPoint;

// What an operation told about its connection.
enum class Told { Nothing, Lost, Maybe };

Told ToldBy(const std::string& text) {
    if (text.find("may or may not have been written") != std::string::npos) {
        return Told::Maybe;
    }
    EXPECT_NE(text.find("\" cannot be reached: "), std::string::npos) << text;
    return Told::Lost;
}

template <class Work>
Told ToldByError(Work work) {
    try {
        work();
    } catch (const ComponentError& error) {
        return ToldBy(error.Description());
    }
    return Told::Nothing;
}

class FaultSweep : public SessionTest {
protected:
    void SetUp() override {
        DBN_REQUIRE_TEST_SERVER();
        if (!root.OnServer()) {
            GTEST_SKIP() << "runs in the server pass";
        }
        relay = std::make_unique<NetworkRelay>(NetworkRelay::UpstreamOfUri(Uri()));
        relayed = relay->RelayedUri(Uri());
        ::setenv("DBN_DATABASE", relayed.c_str(), 1);
    }
    std::string Uri() const { return root.Target().location; }

    struct Operation {
        std::function<void()> prepare;  // undisturbed, before each run
        // Runs the operation through the relay, calling arm() just before
        // the messages the sweep counts and cuts.
        std::function<Told(const std::function<void()>& arm)> run;
        std::function<bool()> done;       // its whole effect is stored
        std::function<bool()> untouched;  // nothing of it is stored
    };

    // Runs op once undisturbed to note its messages, then once cut before
    // each of them (but the connection's end, which waits for nothing) and
    // once cut after each that ends a batch (the server runs a batch whole
    // before it answers, so a cut after any message of it is one after its
    // last). A run that wrote nothing needs no preparing again.
    void Sweep(const Operation& op) {
        op.prepare();
        ASSERT_EQ(op.run([&] { relay->ResetCounts(); }), Told::Nothing);
        ASSERT_TRUE(op.done());
        const std::string types = relay->ClientMessageTypes();
        const std::string states = relay->ClientTransactionStates();
        ASSERT_FALSE(types.empty());
        ASSERT_EQ(states.size(), types.size());
        bool prepared = false;
        for (std::size_t at = 0; at < types.size(); ++at) {
            for (const Cut point : {Cut::BeforeForwarding, Cut::AfterForwarding}) {
                if (point == Cut::BeforeForwarding ? types[at] == 'X'
                                                   : types[at] != 'S' && types[at] != 'Q') {
                    continue;
                }
                SCOPED_TRACE(
                    "cut " + std::string(point == Cut::BeforeForwarding ? "before" : "after") +
                    " message " + std::to_string(at + 1) + " of " + std::to_string(types.size()));
                if (!std::exchange(prepared, true)) {
                    op.prepare();
                }
                const Told told = op.run([&] {
                    relay->ResetCounts();
                    relay->CutAtClientMessage(static_cast<long>(at) + 1, point);
                });
                EXPECT_TRUE(relay->CutHappened());
                relay->CancelCut();
                Settle();
                switch (told) {
                    case Told::Nothing:
                        // Never finished on a new connection after the
                        // transaction went with the old one.
                        EXPECT_NE(states[at], 'T');
                        EXPECT_TRUE(op.done());
                        break;
                    case Told::Lost:
                        EXPECT_TRUE(op.untouched());
                        break;
                    case Told::Maybe:
                        EXPECT_TRUE(op.done() || op.untouched());
                        break;
                }
                if (told != Told::Lost) {
                    ExpectHistoryShowsTheStoredNodes();
                    prepared = false;
                }
                if (HasFailure()) {
                    return;
                }
            }
        }
    }

    // One value on a connection of the test's own (made once).
    std::string Query(const std::string& sql) {
        if (!admin) {
            admin = ConnectTo(Uri());
        }
        PGresult* result = PQexec(admin.get(), sql.c_str());
        const std::string value =
            PQntuples(result) == 1 && !PQgetisnull(result, 0, 0) ? PQgetvalue(result, 0, 0) : "";
        PQclear(result);
        return value;
    }
    long long Number(const std::string& sql) { return std::stoll("0" + Query(sql)); }

    // Waits until the server has finished with every connection of the
    // program (one cut before a message may leave its server process at
    // work a moment longer).
    void Settle() {
        for (int wait = 0; wait < 500; ++wait) {
            if (Number("SELECT count(*) FROM pg_stat_activity WHERE datname = current_database() "
                       "AND application_name = 'dbn-node-editor'") == 0) {
                return;
            }
            usleep(2000);
        }
        ADD_FAILURE() << "the server still works for a cut connection";
    }

    void ExpectHistoryShowsTheStoredNodes() {
        DataBase db(root.Target());
        if (!db.KeepsHistory()) {
            return;
        }
        std::vector<std::int16_t> numbers;
        db.Execute("Get_All_DBN_Nodes", {"1", "1", "15"});
        for (RowSet& rows = db.Recordset("Get_All_DBN_Nodes"); !rows.Eof(); rows.MoveNext()) {
            numbers.push_back(rows.Field("NodeNumber").ToInt16());
        }
        db.Recordset("Get_All_DBN_Nodes").Close();
        for (const std::int16_t number : numbers) {
            const session::NodeKey key{1, 1, 15, number};
            const auto entries = session::ReadNodeHistory(db, key, 1);
            if (!entries.empty()) {
                EXPECT_EQ(nodestate::ToStoredJson(entries.front().after),
                          nodestate::ToStoredJson(session::ReadNodeState(db, key)))
                    << "DBN " << number;
            }
        }
    }

    // The error boxes shown since the last call, as what they told.
    Told ToldByBoxes() {
        Told told = Told::Nothing;
        for (const ShownBox& box : services.boxes) {
            if (box.title == "Error") {
                EXPECT_EQ(told, Told::Nothing) << "a second error: " << box.text;
                told = ToldBy(box.text);
            }
        }
        services.boxes.clear();
        return told;
    }

    // Partition 1's nodes as exported now, applied back (over any change)
    // to undo a run the way the program writes.
    void KeepPartition() {
        DataBase db(root.Target());
        kept = session::ExportNodes(db, 1, 1);
    }
    void RestorePartition() {
        DataBase db(root.Target());
        session::ApplyOptions force;
        force.force = true;
        ASSERT_TRUE(session::ApplyNodes(db, kept, force).problems.empty());
    }
    // Partition 1 as kept, without MSG 50; MSG 50's node and pool rows.
    void RestoreWithoutMsg50() {
        RestorePartition();
        root.Exec("DELETE FROM Node_MSG" + Where(1, "NodeNumber", 50) +
                  "; DELETE FROM Node_General_Pool" + Where(1, "NodeNumber", 50) +
                  " AND NodeTypeID = 0");
    }
    long long Msg50Rows() {
        return Number("SELECT (SELECT count(*) FROM Node_MSG" + Where(1, "NodeNumber", 50) +
                      ") + (SELECT count(*) FROM Node_General_Pool" + Where(1, "NodeNumber", 50) +
                      " AND NodeTypeID = 0)");
    }
    std::string Label(int node) {
        return Query("SELECT NodeDescription FROM Node_DBN" + Where(1, "NodeNumber", node));
    }

    std::unique_ptr<NetworkRelay> relay;
    std::string relayed;
    PgConnection admin;
    nodetext::NodeDocument kept;
};

TEST_F(FaultSweep, OpenAndNext) {
    bool moved = false;
    // Opening: shown, or the lost connection told; nothing to write.
    Sweep({[] {},
           [&](const std::function<void()>& arm) {
               arm();
               bool shown = false;
               Open(1, 1, [&](form::GUI& gui) { shown = gui.nodeNumber() == 1; });
               const Told told = ToldByBoxes();
               EXPECT_EQ(shown, told == Told::Nothing);
               return told;
           },
           [] { return true; }, [] { return true; }});
    // Next, the form staying as it was when it cannot move.
    Sweep({[] {},
           [&](const std::function<void()>& arm) {
               Told told = Told::Nothing;
               Open(1, 1, [&](form::GUI& gui) {
                   Set(gui, "txtDescription=Mine");
                   const std::string before = FormState(gui);
                   services.answers = {form::kAnswerNo};
                   arm();
                   gui.cmdNext_Click();
                   told = ToldByBoxes();
                   moved = gui.nodeNumber() != 1;
                   EXPECT_EQ(moved, told == Told::Nothing);
                   if (!moved) {
                       EXPECT_EQ(FormState(gui), before);
                   }
               });
               return told;
           },
           [&] { return moved; }, [] { return true; }});
}

TEST_F(FaultSweep, ApplyWithAndWithoutCreatingNodes) {
    KeepPartition();
    const std::string label = Label(1);
    for (const bool create : {false, true}) {
        SCOPED_TRACE(create ? "creating MSG 50" : "references exist");
        const std::string edits =
            create ? "txtDescription=Run; cmbGreetingNumber=50" : "txtDescription=Run";
        Sweep({[&] { RestoreWithoutMsg50(); },
               [&](const std::function<void()>& arm) {
                   Told told = Told::Nothing;
                   services.confirmAnswers = {form::kConfirmYesToAll};
                   Open(1, 1, [&](form::GUI& gui) {
                       Set(gui, edits);
                       arm();
                       gui.cmdApply_Click();
                       told = ToldByBoxes();
                       // Lost: the edits stay, Apply too.
                       EXPECT_EQ(gui.cmdApply.Enabled(), told == Told::Lost);
                       if (told == Told::Lost) {
                           EXPECT_EQ(gui.txtDescription.Text(), "Run");
                       }
                   });
                   return told;
               },
               [&] { return Label(1) == "Run" && Msg50Rows() == (create ? 2 : 0); },
               [&] { return Label(1) == label && Msg50Rows() == 0; }});
    }
}

TEST_F(FaultSweep, ApplyOfAFileChangingTwentyNodes) {
    // DBN 10 to 29, copies of DBN 2.
    for (const auto& [table, number] : {std::pair{"Node_DBN", "nodenumber"},
                                        {"Node_General_Pool", "nodenumber"},
                                        {"Detail_DBN_Prompts", "nodemasterid"}}) {
        const std::string where =
            std::string(table) == "Detail_DBN_Prompts" ? "NodeMasterID = 2" : "NodeNumber = 2";
        root.Exec(
            std::string("INSERT INTO ") + table + " SELECT (jsonb_populate_record(NULL::" + table +
            ", to_jsonb(t) || jsonb_build_object('" + number + "', g))).* FROM " + table +
            " AS t, generate_series(10, 29) AS g WHERE " + "ConfigID = 1 AND PartID = 1 AND " +
            where + (std::string(table) == "Node_General_Pool" ? " AND NodeTypeID = 15" : ""));
    }
    KeepPartition();
    nodetext::NodeDocument changed = kept;
    std::erase_if(changed.nodes, [](const auto& node) { return node.number < 10; });
    ASSERT_EQ(changed.nodes.size(), 20u);
    for (auto& node : changed.nodes) {
        node.columns["NodeDescription"] = "Run " + std::to_string(node.number);
    }
    auto labels = [&](const std::string& prefix) {
        return Number(
                   "SELECT count(*) FROM Node_DBN WHERE PartID = 1 AND NodeNumber >= 10 AND "
                   "NodeDescription = " +
                   prefix) == 20;
    };
    Sweep({[&] { RestorePartition(); },
           [&](const std::function<void()>& arm) {
               DataBase db;
               arm();
               return ToldByError(
                   [&] { EXPECT_TRUE(session::ApplyNodes(db, changed, {}).written); });
           },
           [&] { return labels("'Run ' || NodeNumber"); },
           [&] { return labels("'Sales directory'"); }});
}

TEST_F(FaultSweep, ApplyCreatingMissingNodesAndTheNodeListsNewNode) {
    auto count = [&](const std::string& table, int number, const std::string& type = "") {
        return Number("SELECT count(*) FROM " + table + Where(1, "NodeNumber", number) + type);
    };
    KeepPartition();
    nodetext::NodeDocument changed = kept;
    std::erase_if(changed.nodes, [](const auto& node) { return node.number != 1; });
    changed.nodes[0].columns["NodeDescription"] = std::string("Run");
    nodetext::SetRefColumns(changed.nodes[0], "Greeting",
                            {std::string("MSG"), std::int64_t{50}, std::int64_t{0}});
    const std::string label = Label(1);
    session::ApplyOptions create;
    create.createMissing = true;
    // apply --create-missing: the node and MSG 50 together, or neither.
    Sweep({[&] { RestoreWithoutMsg50(); },
           [&](const std::function<void()>& arm) {
               DataBase db;
               arm();
               return ToldByError([&] {
                   EXPECT_EQ(session::ApplyNodes(db, changed, create).createdReferences,
                             std::vector<std::string>{"MSG 50"});
               });
           },
           [&] { return Label(1) == "Run" && Msg50Rows() == 2; },
           [&] { return Label(1) == label && Msg50Rows() == 0; }});
    // The node list's new node: its row, prompts and pool row together.
    auto dbn40 = [&] {
        return count("Node_DBN", 40) +
               Number("SELECT count(*) FROM Detail_DBN_Prompts" + Where(1, "NodeMasterID", 40)) +
               count("Node_General_Pool", 40, " AND NodeTypeID = 15");
    };
    const long long whole =
        2 + Number("SELECT count(*) FROM Detail_DBN_Prompts" + Where(1, "NodeMasterID", 0));
    Sweep({[&] {
               root.Exec("DELETE FROM Node_DBN" + Where(1, "NodeNumber", 40) +
                         "; DELETE FROM Detail_DBN_Prompts" + Where(1, "NodeMasterID", 40) +
                         "; DELETE FROM Node_General_Pool" + Where(1, "NodeNumber", 40) +
                         " AND NodeTypeID = 15");
           },
           [&](const std::function<void()>& arm) {
               DataBase db;
               session::NodeList list(db);
               arm();
               return ToldByError([&] { list.CreateNode({1, 1}, 40); });
           },
           [&] { return dbn40() == whole; }, [&] { return dbn40() == 0; }});
}

TEST_F(FaultSweep, Restore) {
    const std::string label = Label(1);
    KeepPartition();
    nodetext::NodeDocument restored = kept;
    for (auto& node : restored.nodes) {
        if (node.number == 1) {
            node.columns["NodeDescription"] = std::string("Restored");
        }
    }
    {
        DataBase db(root.Target());
        ASSERT_TRUE(session::ApplyNodes(db, restored, {}).written);
    }
    const long entry = static_cast<long>(Number("SELECT max(EntryID) FROM Node_History"));
    Sweep({[&] { RestorePartition(); },
           [&](const std::function<void()>& arm) {
               DataBase db;
               arm();
               return ToldByError([&] {
                   session::RestoreNodeVersion(db, {1, 1, 15, 1}, entry, false);
               });
           },
           [&] { return Label(1) == "Restored"; }, [&] { return Label(1) == label; }});
}

TEST_F(FaultSweep, CopyToTheServerAndTheSchemaUpgrade) {
    const std::string marker = "SELECT NodeDescription FROM Node_General_Pool" +
                               Where(1, "NodeNumber", 1) + " AND NodeTypeID = 0";
    Sweep({[&] {
               root.Exec("UPDATE Node_General_Pool SET NodeDescription = 'On the server'" +
                         Where(1, "NodeNumber", 1) + " AND NodeTypeID = 0");
           },
           [&](const std::function<void()>& arm) {
               arm();
               return ToldByError([&] {
                   CopyConfiguration(DatabaseTarget::SqliteFile(root.DatabasePath()),
                                     DatabaseTarget::Server(relayed), ExistingDatabase::Replace);
               });
           },
           [&] { return Query(marker) != "On the server"; },
           [&] { return Query(marker) == "On the server"; }});

    auto version = [&] {
        return Number(
                   "SELECT count(*) FROM information_schema.tables WHERE table_name IN "
                   "('node_history', 'schema_version')") +
               1;
    };
    Sweep({[&] {
               root.Exec(
                   "DROP FUNCTION IF EXISTS dbn_announce_history() CASCADE; DROP TABLE IF EXISTS "
                   "Node_History; DROP TABLE IF EXISTS Schema_Version");
           },
           [&](const std::function<void()>& arm) {
               DataBase db;
               arm();
               return ToldByError([&] { EXPECT_EQ(db.SchemaVersion(), 2); });
           },
           [&] { return version() == 3; }, [&] { return version() == 1; }});
}

}  // namespace
}  // namespace dbn::testing
