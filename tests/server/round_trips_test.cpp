// Round trips to a configuration server, counted by the relay between the
// editor and the test server: every operation waits for the server a fixed,
// small number of times, connection included where it opens one, whatever
// the number of nodes. A change that adds a round trip fails here.

#include "network_relay.h"
#include "session/session_support.h"
#include "test_server.h"

#include "database/database.h"
#include "database/database_setup.h"
#include "session/nodes/apply_nodes.h"
#include "session/nodes/directory_check.h"
#include "session/nodes/node_list.h"
#include "session/nodes/node_text_store.h"
#include "support/missing_nodes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace dbn::testing {
namespace {

// The editor's connection goes through the relay to a demo configuration
// of its own on the test server.
class RoundTrips : public SessionTest {
protected:
    void SetUp() override {
        DBN_REQUIRE_TEST_SERVER();
        scratch_ = std::make_unique<ScratchServerDatabase>();
        CreateConfigurationDatabase(DatabaseTarget::Server(scratch_->Uri()), true,
                                    ExistingDatabase::Refuse);
        relay_ = std::make_unique<NetworkRelay>(NetworkRelay::UpstreamOfUri(scratch_->Uri()));
        ::setenv("DBN_DATABASE", relay_->RelayedUri(scratch_->Uri()).c_str(), 1);
    }
    void TearDown() override { ::unsetenv("DBN_DATABASE"); }

    void Sql(const std::string& sql) { PgExec(ConnectTo(scratch_->Uri()).get(), sql); }
    long Count(const std::string& sql) {
        PgConnection conn = ConnectTo(scratch_->Uri());
        PGresult* result = PQexec(conn.get(), sql.c_str());
        const long count = PQntuples(result) == 1 ? std::atol(PQgetvalue(result, 0, 0)) : -1;
        PQclear(result);
        return count;
    }

    // The round trips of one step of the open editor.
    long CountWhileShown(const std::function<void(form::GUI&)>& step) {
        long counted = -1;
        Open(1, 1, [&](form::GUI& gui) {
            relay_->ResetCounts();
            step(gui);
            counted = relay_->RoundTrips();
        });
        return counted;
    }

    // Copies node 1 of partition 1 to nodes 1001 up to 1000 + count, with
    // its prompt rows and pool row.
    void AddNodes(int count) {
        const std::string series = " FROM %s d, generate_series(1001, " +
                                   std::to_string(1000 + count) + ") g WHERE d.PartID = 1 AND ";
        auto copy = [&](const std::string& table, const std::string& key,
                        const std::string& extra) {
            std::string from = series;
            from.replace(from.find("%s"), 2, table);
            return "CREATE TEMP TABLE c AS SELECT d.*, g AS n" + from + key + " = 1" + extra +
                   "; UPDATE c SET " + key + " = n; ALTER TABLE c DROP COLUMN n; INSERT INTO " +
                   table + " SELECT * FROM c; DROP TABLE c;";
        };
        Sql(copy("Node_DBN", "NodeNumber", "") + copy("Detail_DBN_Prompts", "NodeMasterID", "") +
            copy("Node_General_Pool", "NodeNumber", " AND d.NodeTypeID = 15"));
    }

    std::unique_ptr<ScratchServerDatabase> scratch_;
    std::unique_ptr<NetworkRelay> relay_;
};

TEST_F(RoundTrips, StartUpNextAndApplyEachWaitAFixedNumberOfTimes) {
    // Start-up up to the form showing, connection included (closing only
    // sends the connection's end, which waits for nothing).
    relay_->ResetCounts();
    long startUp = -1;
    Open(1, 1, [&](form::GUI&) { startUp = relay_->RoundTrips(); });
    EXPECT_EQ(relay_->Connections(), 1);  // the host and the form share one
    const long next = CountWhileShown([](form::GUI& gui) { gui.cmdNext_Click(); });
    const long apply = CountWhileShown([](form::GUI& gui) {
        gui.txtDescription.SetText("Staff directory (saved)");
        gui.cmdApply_Click();
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    // Start-up: the connection, the two reading batches (the first asking
    // the schema's version too) and the question whether this user may change the
    // configuration. Apply: the references' look-up, the transaction's
    // start, the row locks with the comparison's reads, the writes with the
    // reads of what was written, and the history row with the commit.
    EXPECT_EQ(startUp, 4) << "start-up";
    EXPECT_EQ(next, 2) << "Next";
    EXPECT_EQ(apply, 5) << "Apply";
}

// Ten missing targets created under one "Yes to All" (the measurements'
// ten).
TEST_F(RoundTrips, ApplyCreatingTenNodes) {
    const long apply = CountWhileShown([&](form::GUI& gui) {
        bench::PointAtMissingNodes(gui);
        services.confirmAnswers = {form::kConfirmYesToAll};
        relay_->ResetCounts();
        gui.cmdApply_Click();
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    std::string created = "SELECT count(*) FROM Node_General_Pool WHERE PartID = 1 AND (false";
    for (const bench::MissingNode& target : bench::MissingNodes()) {
        created += " OR (NodeTypeID = " + std::to_string(target.typeID) +
                   " AND NodeNumber = " + std::to_string(target.number) + ")";
    }
    EXPECT_EQ(Count(created + ")"), 10);
    // One more than without them: the ten copies travel in one batch.
    EXPECT_EQ(apply, 6) << "Apply creating ten nodes";
}

// The node list and the check of one node open a connection of their own.
TEST_F(RoundTrips, NodeListWhateverItsSizeAndCheck) {
    // Each count on a connection of its own, all ended only at the end, so
    // that no connection's end arrives while another one is counted.
    std::vector<std::unique_ptr<DataBase>> connections;
    auto listCount = [&] {
        relay_->ResetCounts();
        DataBase& db = *connections.emplace_back(std::make_unique<DataBase>());
        const std::vector<session::NodeListRow> rows = session::NodeList(db).Nodes({1, 1});
        return std::pair{relay_->RoundTrips(), rows.size()};
    };
    const auto [small, smallRows] = listCount();
    AddNodes(300);
    const auto [large, largeRows] = listCount();
    EXPECT_EQ(largeRows, smallRows + 300);
    EXPECT_EQ(small, large);
    EXPECT_EQ(large, 3) << "node list";

    relay_->ResetCounts();
    session::CheckStoredNode(*connections.emplace_back(std::make_unique<DataBase>()), 1, 1, 1);
    EXPECT_EQ(relay_->RoundTrips(), 3) << "check";
}

// A 999-node partition applied from its text with the label of every node
// changed: the reads, the lookups of the references and the writes each
// travel in a fixed number of batches.
TEST_F(RoundTrips, ApplyOfNodesAsTextWhateverTheirNumber) {
    const long stored = Count(
        "SELECT count(*) FROM Node_DBN WHERE ConfigID = 1 AND PartID = 1 AND NodeTypeID = 15");
    AddNodes(static_cast<int>(999 - stored));
    nodetext::NodeDocument document = [] {
        DataBase db;
        return session::ExportNodes(db, 1, 1);
    }();
    ASSERT_EQ(document.nodes.size(), 999u);
    for (nodetext::TextNode& node : document.nodes) {
        node.columns["NodeDescription"] = "Desk " + std::to_string(node.number);
    }
    relay_->ResetCounts();
    long roundTrips = -1;
    {
        DataBase db;
        const session::ApplyResult result = session::ApplyNodes(db, document, {});
        ASSERT_TRUE(result.problems.empty());
        EXPECT_TRUE(result.written);
        roundTrips = relay_->RoundTrips();
    }
    EXPECT_EQ(Count("SELECT count(*) FROM Node_DBN WHERE ConfigID = 1 AND PartID = 1 AND "
                    "NodeDescription = 'Desk ' || NodeNumber"),
              999);
    // The connection, the partition's targets in two batches (the first
    // asking the schema's version too), its nodes in one, the transaction's
    // start, its nodes again under their row locks with the references'
    // lookups, every node's writes with its states in one batch, and the
    // history rows with the commit: the same count for 9 nodes or 999.
    EXPECT_EQ(roundTrips, 8) << "apply of 999 nodes as text";
}

// apply --create-missing: the references found missing are created from
// their templates together, one round trip more than an apply whose
// references all exist, however many are missing.
TEST_F(RoundTrips, ApplyCreatingMissingReferencesTogether) {
    auto countApply = [&](int missing) {
        nodetext::NodeDocument document = [] {
            DataBase db;
            return session::ExportNodes(db, 1, 1);
        }();
        for (nodetext::TextNode& node : document.nodes) {
            node.columns["NodeDescription"] = "Desk " + std::to_string(missing);
        }
        for (int i = 0; i < missing; ++i) {
            nodetext::TextNode& node = document.nodes[static_cast<std::size_t>(i) % 2];
            const std::string role = i < 2 ? "Greeting" : i < 4 ? "Abort" : "Star";
            node.columns[role + "NodeType"] = std::string("MSG");
            node.columns[role + "NodeNumber"] = std::int64_t{(missing > 1 ? 90 : 80) + i};
            node.columns[role + "NodeTypeID"] = std::int64_t{0};
        }
        relay_->ResetCounts();
        DataBase db;
        session::ApplyOptions options;
        options.createMissing = true;
        const session::ApplyResult result = session::ApplyNodes(db, document, options);
        for (const nodetext::Problem& problem : result.problems) {
            ADD_FAILURE() << nodetext::ProblemText(problem);
        }
        EXPECT_EQ(result.createdReferences.size(), static_cast<std::size_t>(missing));
        EXPECT_TRUE(result.missingReferences.empty());
        return relay_->RoundTrips();
    };
    const long none = countApply(0);
    EXPECT_EQ(countApply(1), none + 1);
    EXPECT_EQ(countApply(6), none + 1);
    EXPECT_EQ(Count("SELECT count(*) FROM Node_MSG WHERE PartID = 1 AND NodeNumber >= 80"), 7);
}

}  // namespace
}  // namespace dbn::testing
