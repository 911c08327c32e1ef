// A connection lost under a DataBase: inside a transaction nothing of it is
// ever sent on a new connection and each step says nothing was written;
// outside one a read connects again once, and a write whose answer was lost
// is told, never sent again.

#include "database/database.h"
#include "database/database_errors.h"
#include "database/database_setup.h"
#include "error_of.h"
#include "network_relay.h"
#include "session/history/change_watcher.h"
#include "session/nodes/apply_nodes.h"
#include "session/nodes/node_text_store.h"
#include "test_server.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <unistd.h>

#include <functional>
#include <utility>

namespace dbn {
namespace {

using testing::ErrorOf;
using testing::NetworkRelay;

const std::string kNothingWritten =
    "cannot be reached: the connection to it was lost. Nothing was written.";

class LostConnection : public ::testing::Test {
protected:
    void SetUp() override {
        DBN_REQUIRE_TEST_SERVER();
        scratch_ = std::make_unique<testing::ScratchServerDatabase>();
        CreateConfigurationDatabase(DatabaseTarget::Server(scratch_->Uri()), true,
                                    ExistingDatabase::Refuse);
        relay_ = std::make_unique<NetworkRelay>(NetworkRelay::UpstreamOfUri(scratch_->Uri()));
        db_ =
            std::make_unique<DataBase>(DatabaseTarget::Server(relay_->RelayedUri(scratch_->Uri())));
        EXPECT_EQ(db_->Execute("Get_Node_Names"), 18);  // connected
        db_->Recordset("Get_Node_Names").Close();
    }
    long Label(int number, const std::string& text) {
        return db_->Execute("Update_Node_General_Pool",
                            {text, "2001-01-01 00:00:00", "1", "1", "0", std::to_string(number)});
    }
    // A connection of its own holding node 1's pool row locked in an open
    // transaction.
    testing::PgConnection HoldNode1() {
        auto holder = testing::ConnectTo(scratch_->Uri());
        PQclear(PQexec(holder.get(),
                       "BEGIN; UPDATE Node_General_Pool SET NodeDescription = 'held' WHERE "
                       "NodeTypeID = 15 AND NodeNumber = 1"));
        return holder;
    }
    // A read and a write of node 1's pool row in one batch.
    void ReadAndWriteNode1() {
        db_->ExecuteBatch(
            {{"Get_Node_Names", {}},
             {"Update_Node_General_Pool", {"mine", "2001-01-01 00:00:00", "1", "1", "15", "1"}}});
    }
    // The rows of table matching where, counted on a connection of its own.
    std::string Count(const std::string& table, const std::string& where) {
        auto conn = testing::ConnectTo(scratch_->Uri());
        PGresult* result =
            PQexec(conn.get(), ("SELECT count(*) FROM " + table + " WHERE " + where).c_str());
        const std::string count = PQntuples(result) == 1 ? PQgetvalue(result, 0, 0) : "?";
        PQclear(result);
        return count;
    }

    std::unique_ptr<testing::ScratchServerDatabase> scratch_;
    std::unique_ptr<NetworkRelay> relay_;
    std::unique_ptr<DataBase> db_;
};

TEST_F(LostConnection, InsideATransactionNoStepGoesToANewConnectionAndNothingIsWritten) {
    for (const auto& [commit, batch] : {std::pair{true, false}, {false, false}, {true, true}}) {
        SCOPED_TRACE(std::string(commit ? "ended by a commit" : "ended by a rollback") +
                     (batch ? ", begun in a batch" : ""));
        const long connections = relay_->Connections();
        if (batch) {
            db_->ExecuteBatch({BatchStep::BeginTrans()});
        } else {
            db_->BeginTrans();
        }
        Label(1, "lost");
        db_->QueueWrite(
            {"Update_Node_General_Pool", {"queued", "2001-01-01 00:00:00", "1", "1", "0", "2"}});
        relay_->CutAll();
        const std::function<void()> steps[] = {
            [&] { Label(3, "after the cut"); },
            [&] {
                db_->ExecuteBatch({{"Get_Node_Names", {}}});
            },
            [&] { db_->Execute("Get_Node_Names"); },
        };
        for (const auto& step : steps) {
            const ComponentError error = ErrorOf(step);
            EXPECT_EQ(error.Number(), kErrServerUnreachable);
            EXPECT_NE(error.Description().find(kNothingWritten), std::string::npos)
                << error.Description();
            EXPECT_TRUE(db_->InTransaction());
        }
        if (commit) {
            EXPECT_NE(ErrorOf([&] { db_->CommitTrans(); }).Description().find(kNothingWritten),
                      std::string::npos);
        } else {
            db_->RollbackTrans();
        }
        EXPECT_FALSE(db_->InTransaction());
        EXPECT_EQ(relay_->Connections(), connections) << "a step was sent on a new connection";
        // Outside the transaction a read connects again, once.
        EXPECT_EQ(db_->Execute("Get_Node_Names"), 18);
        db_->Recordset("Get_Node_Names").Close();
        EXPECT_EQ(relay_->Connections(), connections + 1);
        EXPECT_EQ(
            Count("Node_General_Pool", "NodeDescription IN ('lost', 'queued', 'after the cut')"),
            "0");
    }
}

// The server gets a write sent outside a transaction, its answer is lost:
// the loss is told and the write is not sent again.
TEST_F(LostConnection, AWriteWhoseAnswerIsLostIsToldAndNeverSentAgain) {
    relay_->CutAtClientText("Add_DBN_PromptsNode", NetworkRelay::CutPoint::AfterForwarding);
    const ComponentError error = ErrorOf([&] {
        db_->Execute("Add_DBN_PromptsNode", {"1", "1", "10", "0", "1", "2", "ONE"});
    });
    EXPECT_TRUE(relay_->CutHappened());
    EXPECT_EQ(error.Number(), kErrServerUnreachable);
    EXPECT_NE(error.Description().find("the connection to it was lost."), std::string::npos);
    EXPECT_EQ(error.Description().find("Nothing was written"), std::string::npos);
    // The next statement connects again; the server finishes the write it
    // got, once.
    EXPECT_EQ(db_->Execute("Get_Node_Names"), 18);
    const std::string where = "PromptNodeType = 'ONE'";
    for (int wait = 0; wait < 500 && Count("Detail_DBN_Prompts", where) == "0"; ++wait) {
        usleep(10000);
    }
    EXPECT_EQ(Count("Detail_DBN_Prompts", where), "1");
}

// A connection ended under a pipelined batch while the server stays away
// for a while (a restart): once it is back, the next operations go through.
TEST_F(LostConnection, AfterARestartThatTookAWhileTheNextOperationsGoThrough) {
    auto holder = HoldNode1();
    bool cut = false;
    db_->SetWaitHandler([&] {
        if (!std::exchange(cut, true)) {
            relay_->RefuseNewConnections(true);
            relay_->CutAll();
        }
    });
    EXPECT_EQ(ErrorOf([&] { ReadAndWriteNode1(); }).Number(), kErrServerUnreachable);
    PQclear(PQexec(holder.get(), "ROLLBACK"));
    db_->SetWaitHandler({});
    // Still away: told, twice.
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(ErrorOf([&] { db_->Execute("Get_Node_Names"); }).Number(), kErrServerUnreachable);
    }
    relay_->RefuseNewConnections(false);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(db_->Execute("Get_Node_Names"), 18);
        db_->Recordset("Get_Node_Names").Close();
        db_->BeginTrans();
        Label(1, "round " + std::to_string(round));
        db_->CommitTrans();
    }
}

// The server ends the connection itself, as a fast restart does, while the
// program is idle and while a pipelined batch waits on a lock: a read is sent
// again, the write is told lost, and the next reads and transactions go
// through on a new connection.
TEST_F(LostConnection, AConnectionTheServerEndsIsMadeAgain) {
    auto admin = testing::ConnectTo(scratch_->Uri());
    auto terminate = [&] {
        PQclear(PQexec(admin.get(),
                       "SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = "
                       "current_database() AND pid <> pg_backend_pid()"));
    };
    terminate();
    EXPECT_EQ(db_->ExecuteBatch({{"Get_Node_Names", {}}, {"Get_Node_Names", {}}})[1].count, 18);
    auto holder = HoldNode1();
    bool ended = false;
    db_->SetWaitHandler([&] {
        if (!std::exchange(ended, true)) {
            terminate();
        }
    });
    EXPECT_EQ(ErrorOf([&] { ReadAndWriteNode1(); }).Number(), kErrServerUnreachable);
    EXPECT_TRUE(ended);
    PQclear(PQexec(holder.get(), "ROLLBACK"));
    db_->SetWaitHandler({});
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(db_->ExecuteBatch({{"Get_Node_Names", {}}, {"Get_Node_Names", {}}})[0].count, 18);
        db_->BeginTrans();
        Label(1, "round " + std::to_string(round));
        db_->CommitTrans();
    }
    EXPECT_EQ(Count("Node_General_Pool", "NodeDescription = 'round 1'"), "1");
}

// A server restart under a watcher: told once, connected to again, and
// every entry committed meanwhile reported, read by its number.
TEST_F(LostConnection, AWatcherOutlivesAServerRestartAndMissesNothing) {
    session::ChangeWatcher watcher(db_->Target());
    ASSERT_TRUE(watcher.Active());
    DataBase direct(DatabaseTarget::Server(scratch_->Uri()));
    auto save = [&](const std::string& label) {
        nodetext::NodeDocument document = session::ExportNodes(direct, 1, 1, {1});
        document.nodes[0].columns["NodeDescription"] = label;
        ASSERT_TRUE(session::ApplyNodes(direct, document, {}).written);
    };
    std::vector<std::string> heard;
    std::vector<std::string> told;
    // Listens (up to twice the retry time) until `count` labels were heard
    // and `notices` told.
    auto hear = [&](std::size_t count, std::size_t notices) {
        const auto deadline = std::chrono::steady_clock::now() +
                              2 * session::ChangeWatcher::kRetryInterval + std::chrono::seconds(2);
        while ((heard.size() < count || told.size() < notices) &&
               std::chrono::steady_clock::now() < deadline) {
            pollfd readable{watcher.Socket(), POLLIN, 0};
            ::poll(&readable, watcher.Socket() >= 0 ? 1 : 0, 100);
            for (const session::HistoryEntry& entry : watcher.NewChanges()) {
                heard.push_back(entry.after ? entry.after->node.value("NodeDescription", "") : "");
            }
            if (std::optional<std::string> notice = watcher.TakeNotice()) {
                told.push_back(*notice);
            }
        }
    };
    save("Before");
    hear(1, 0);
    relay_->RefuseNewConnections(true);
    relay_->CutAll();
    hear(1, 1);  // the loss, told
    save("While down 1");
    save("While down 2");
    relay_->RefuseNewConnections(false);
    hear(3, 2);
    EXPECT_EQ(heard, (std::vector<std::string>{"Before", "While down 1", "While down 2"}));
    EXPECT_EQ(told, (std::vector<std::string>{
                        "The connection to the configuration database was lost; connecting again "
                        "every 3 seconds.",
                        "Connected to the configuration database again; changes made meanwhile "
                        "follow."}));
}

}  // namespace
}  // namespace dbn
