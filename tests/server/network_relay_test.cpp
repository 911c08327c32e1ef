// The relay that the server tests and the benchmarks put between a program
// and the server: it counts round trips by the protocol, not by packets, and
// cuts exactly where it is told.

#include "network_relay.h"
#include "test_server.h"

#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <chrono>
#include <string>
#include <thread>

namespace dbn {
namespace {

using testing::NetworkRelay;

class RelayTest : public ::testing::Test {
protected:
    void SetUp() override {
        DBN_REQUIRE_TEST_SERVER();
        relay_ =
            std::make_unique<NetworkRelay>(NetworkRelay::UpstreamOfUri(testing::TestServerUri()));
        uri_ = relay_->RelayedUri(testing::TestServerUri());
    }

    testing::PgConnection Connect() { return testing::ConnectTo(uri_); }

    // The status of one simple query on conn.
    static ExecStatusType Run(PGconn* conn, const char* sql) {
        PGresult* result = PQexec(conn, sql);
        const ExecStatusType status = PQresultStatus(result);
        PQclear(result);
        return status;
    }

    std::unique_ptr<NetworkRelay> relay_;
    std::string uri_;
};

TEST_F(RelayTest, CountsOneRoundTripPerAnsweredSendWhateverThePacketsAre) {
    auto conn = Connect();
    EXPECT_EQ(relay_->Connections(), 1);
    // Trust authentication: the start-up packet and its answer.
    EXPECT_EQ(relay_->RoundTrips(), 1);

    relay_->ResetCounts();
    EXPECT_EQ(Run(conn.get(), "SELECT 1"), PGRES_TUPLES_OK);
    EXPECT_EQ(Run(conn.get(), "SELECT 2"), PGRES_TUPLES_OK);
    EXPECT_EQ(relay_->RoundTrips(), 2);
    EXPECT_EQ(relay_->ClientMessages(), 2);

    // Three statements in one pipeline travel together: one round trip.
    relay_->ResetCounts();
    ASSERT_EQ(PQenterPipelineMode(conn.get()), 1);
    for (const char* sql : {"SELECT 1", "SELECT 2", "SELECT 3"}) {
        ASSERT_EQ(PQsendQueryParams(conn.get(), sql, 0, nullptr, nullptr, nullptr, nullptr, 0), 1);
    }
    ASSERT_EQ(PQpipelineSync(conn.get()), 1);
    int results = 0;
    while (PGresult* result = PQgetResult(conn.get())) {
        if (PQresultStatus(result) == PGRES_PIPELINE_SYNC) {
            PQclear(result);
            break;
        }
        results += PQresultStatus(result) == PGRES_TUPLES_OK ? 1 : 0;
        PQclear(result);
        while (PGresult* end = PQgetResult(conn.get())) {
            PQclear(end);
        }
    }
    EXPECT_EQ(results, 3);
    EXPECT_EQ(relay_->RoundTrips(), 1);

    // Ending the connection sends one message and waits for nothing.
    ASSERT_EQ(PQexitPipelineMode(conn.get()), 1);
    relay_->ResetCounts();
    conn.reset();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (relay_->ClientMessages() == 0 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(relay_->ClientMessages(), 1);
    EXPECT_EQ(relay_->RoundTrips(), 0);
}

TEST_F(RelayTest, CutsBeforeOrAfterTheMessageItIsToldOf) {
    auto conn = Connect();
    ASSERT_EQ(Run(conn.get(), "CREATE TEMP TABLE probe (n int)"), PGRES_COMMAND_OK);

    relay_->CutAtClientText("INSERT", NetworkRelay::CutPoint::BeforeForwarding);
    EXPECT_EQ(Run(conn.get(), "SELECT 1"), PGRES_TUPLES_OK) << "an unrelated message passes";
    EXPECT_FALSE(relay_->CutHappened());
    EXPECT_EQ(Run(conn.get(), "INSERT INTO probe VALUES (1)"), PGRES_FATAL_ERROR);
    EXPECT_TRUE(relay_->CutHappened());
    EXPECT_EQ(PQstatus(conn.get()), CONNECTION_BAD);

    // After forwarding: the server does the work, the program never hears.
    auto admin = testing::ConnectTo(testing::TestServerUri());
    auto writer = Connect();
    Run(admin.get(), "SET client_min_messages = warning");
    Run(admin.get(), "DROP TABLE IF EXISTS relay_probe");
    ASSERT_EQ(Run(admin.get(), "CREATE TABLE relay_probe (n int)"), PGRES_COMMAND_OK);
    relay_->CutAtClientMessage(1, NetworkRelay::CutPoint::AfterForwarding);
    EXPECT_EQ(Run(writer.get(), "INSERT INTO relay_probe VALUES (7)"), PGRES_FATAL_ERROR);
    PGresult* rows = nullptr;
    for (int attempt = 0; attempt < 200; ++attempt) {  // the server may still be at it
        rows = PQexec(admin.get(), "SELECT count(*) FROM relay_probe");
        if (std::string(PQgetvalue(rows, 0, 0)) == "1") {
            break;
        }
        PQclear(rows);
        rows = nullptr;
        usleep(10000);
    }
    EXPECT_NE(rows, nullptr) << "the forwarded insert never reached the server";
    PQclear(rows);
    Run(admin.get(), "DROP TABLE relay_probe");
}

TEST_F(RelayTest, ServerDownAndBackAgain) {
    auto conn = Connect();
    relay_->RefuseNewConnections(true);
    relay_->CutAll();
    EXPECT_EQ(Run(conn.get(), "SELECT 1"), PGRES_FATAL_ERROR);
    PGconn* refused = PQconnectdb(uri_.c_str());
    EXPECT_EQ(PQstatus(refused), CONNECTION_BAD);
    PQfinish(refused);

    relay_->RefuseNewConnections(false);
    PQreset(conn.get());
    EXPECT_EQ(PQstatus(conn.get()), CONNECTION_OK);
    EXPECT_EQ(Run(conn.get(), "SELECT 1"), PGRES_TUPLES_OK);
}

}  // namespace
}  // namespace dbn
