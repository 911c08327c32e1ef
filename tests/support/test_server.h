#pragma once

// The PostgreSQL server of the tests (scripts/with-postgres): its URI comes
// in DBN_TEST_POSTGRES as postgresql://postgres@/postgres?host=DIR&port=P.
// Each test that needs a database of its own gets a fresh one, dropped when
// it ends.

#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <unistd.h>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

namespace dbn::testing {

// The server's URI, or empty when the tests run without one.
inline std::string TestServerUri() {
    const char* uri = std::getenv("DBN_TEST_POSTGRES");
    return uri != nullptr ? uri : "";
}

// True when the database and session tests run against the server
// (DBN_TEST_ENGINE=postgresql, set by scripts/test in its server pass).
inline bool TestsUseServer() {
    const char* engine = std::getenv("DBN_TEST_ENGINE");
    return engine != nullptr && std::string(engine) == "postgresql";
}

// The same URI naming another database on the server.
inline std::string UriOfDatabase(const std::string& name) {
    std::string uri = TestServerUri();
    const auto at = uri.find("@/postgres?");
    if (at == std::string::npos) {
        throw std::runtime_error(
            "DBN_TEST_POSTGRES is not of the form postgresql://USER@/postgres?...");
    }
    return uri.replace(at + 2, 8, name);
}

struct PgConnClose {
    void operator()(PGconn* conn) const { PQfinish(conn); }
};
using PgConnection = std::unique_ptr<PGconn, PgConnClose>;

inline PgConnection ConnectTo(const std::string& uri) {
    PgConnection conn(PQconnectdb(uri.c_str()));
    if (PQstatus(conn.get()) != CONNECTION_OK) {
        throw std::runtime_error("cannot connect to the test server: " +
                                 std::string(PQerrorMessage(conn.get())));
    }
    return conn;
}

// Runs sql (no result wanted) and throws with the server's message on error.
inline void PgExec(PGconn* conn, const std::string& sql) {
    PGresult* result = PQexec(conn, sql.c_str());
    const ExecStatusType status = PQresultStatus(result);
    const std::string message = PQresultErrorMessage(result);
    PQclear(result);
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
        throw std::runtime_error("SQL failed: " + message + " in: " + sql);
    }
}

// A fresh, empty database on the test server for the life of the object.
class ScratchServerDatabase {
public:
    ScratchServerDatabase() {
        static std::atomic<int> counter{0};
        name_ = "dbn_test_" + std::to_string(::getpid()) + "_" + std::to_string(counter++);
        PgExec(Admin().get(), "CREATE DATABASE " + name_);
        uri_ = UriOfDatabase(name_);
    }
    ~ScratchServerDatabase() {
        try {
            PgExec(Admin().get(), "DROP DATABASE IF EXISTS " + name_ + " WITH (FORCE)");
        } catch (const std::exception&) {
        }
    }
    ScratchServerDatabase(const ScratchServerDatabase&) = delete;
    ScratchServerDatabase& operator=(const ScratchServerDatabase&) = delete;

    const std::string& Uri() const { return uri_; }
    const std::string& Name() const { return name_; }

private:
    static PgConnection Admin() { return ConnectTo(TestServerUri()); }

    std::string name_;
    std::string uri_;
};

// In a test that needs the server: skips without one when run by hand, but
// fails when the suite asked for the server (DBN_REQUIRE_POSTGRES=1, as
// scripts/test does).
#define DBN_REQUIRE_TEST_SERVER()                                                          \
    do {                                                                                   \
        if (::dbn::testing::TestServerUri().empty()) {                                     \
            const char* required = std::getenv("DBN_REQUIRE_POSTGRES");                    \
            if (required != nullptr && std::string(required) == "1") {                     \
                FAIL() << "DBN_TEST_POSTGRES is not set: run under scripts/with-postgres"; \
            }                                                                              \
            GTEST_SKIP() << "no test server (run under scripts/with-postgres)";            \
        }                                                                                  \
    } while (false)

}  // namespace dbn::testing
