#pragma once

// A throw-away data root for tests: a fresh temporary folder made the data
// root of the process, holding a configuration database (schema only, or the
// demo content), with raw SQL access to it for arranging and checking. In the
// suite's server pass (DBN_TEST_ENGINE=postgresql) the configuration lives in
// a fresh database on the test server instead, made the process's database
// through DBN_DATABASE; the SQL given must then suit both engines.

#include "database/data_location.h"
#include "database/database_setup.h"
#include "test_server.h"

#include <sqlite3.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace dbn::testing {

class TempDataRoot {
public:
    enum class Content { Empty, Demo };

    explicit TempDataRoot(Content content = Content::Empty) {
        std::string pattern = (std::filesystem::temp_directory_path() / "dbn-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make a temporary folder from " + pattern);
        }
        root_ = pattern;
        SetDataRootOverride(root_);
        path_ = GetDatabaseFilePath();
        // The file is made in the server pass too, for the tests of the file.
        CreateConfigurationDatabase(path_, content == Content::Demo);
        // Never the database the developer's own environment names.
        ::unsetenv("DBN_DATABASE");
        if (TestsUseServer()) {
            server_ = std::make_unique<ScratchServerDatabase>();
            ::setenv("DBN_DATABASE", server_->Uri().c_str(), 1);
            CreateConfigurationDatabase(DatabaseTarget::Server(server_->Uri()),
                                        content == Content::Demo, ExistingDatabase::Refuse);
        }
    }

    ~TempDataRoot() {
        if (server_) {
            ::unsetenv("DBN_DATABASE");
        }
        SetDataRootOverride(std::nullopt);
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }

    TempDataRoot(const TempDataRoot&) = delete;
    TempDataRoot& operator=(const TempDataRoot&) = delete;

    // The temporary folder that serves as the data root.
    const std::string& Root() const { return root_; }
    std::string DatabasePath() const { return path_; }

    // True when the configuration is on the test server (the file is made
    // all the same, but the editor's DataBase objects use the server).
    bool OnServer() const { return server_ != nullptr; }
    // The database as its engine addresses it: the file or the server URI.
    DatabaseTarget Target() const {
        return server_ ? DatabaseTarget::Server(server_->Uri()) : DatabaseTarget::SqliteFile(path_);
    }

    // Makes every INSERT or UPDATE (event) on table fail with "injected"
    // until RemoveInjectedFailure.
    void InjectFailure(const std::string& table, const std::string& event) const {
        if (server_) {
            Exec(
                "CREATE OR REPLACE FUNCTION injected() RETURNS trigger AS $$ BEGIN RAISE "
                "EXCEPTION 'injected'; END $$ LANGUAGE plpgsql");
            Exec("CREATE TRIGGER injected BEFORE " + event + " ON " + table +
                 " FOR EACH ROW EXECUTE FUNCTION injected()");
            return;
        }
        Exec("CREATE TRIGGER injected BEFORE " + event + " ON " + table +
             " BEGIN SELECT RAISE(ABORT, 'injected'); END");
    }
    void RemoveInjectedFailure(const std::string& table) const {
        Exec(server_ ? "DROP TRIGGER injected ON " + table : "DROP TRIGGER injected");
    }

    // The aggregate that joins texts: group_concat on the file, string_agg
    // on the server.
    std::string JoinedTexts(const std::string& expression, const std::string& separator) const {
        return (server_ ? "string_agg(" : "group_concat(") + expression + ", " + separator + ")";
    }

    // Runs SQL on the database through a short-lived connection of its own.
    void Exec(const std::string& sql) const {
        if (server_) {
            PgExec(ConnectTo(server_->Uri()).get(), sql);
            return;
        }
        auto db = Open();
        char* message = nullptr;
        if (sqlite3_exec(db.get(), sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
            std::string text = message != nullptr ? message : "unknown error";
            sqlite3_free(message);
            throw std::runtime_error("SQL failed: " + text + " in: " + sql);
        }
    }

    // First column of the first row; 0 when there is no row.
    long long QueryInt(const std::string& sql) const {
        if (server_) {
            const std::string text = ServerQuery(sql);
            return text.empty() ? 0 : std::stoll(text);
        }
        long long value = 0;
        Query(sql, [&value](sqlite3_stmt* row) { value = sqlite3_column_int64(row, 0); });
        return value;
    }

    // First column of the first row as text; empty when there is no row.
    std::string QueryText(const std::string& sql) const {
        if (server_) {
            return ServerQuery(sql);
        }
        std::string value;
        Query(sql, [&value](sqlite3_stmt* row) {
            const auto* text = sqlite3_column_text(row, 0);
            value = text != nullptr ? reinterpret_cast<const char*>(text) : "";
        });
        return value;
    }

    struct Closer {
        void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    // Another program writing the configuration: a connection of its own
    // that keeps a transaction open until Commit.
    class Writer {
    public:
        Writer(const TempDataRoot& root, const std::string& sql) {
            if (root.server_) {
                server_ = ConnectTo(root.server_->Uri());
                PgExec(server_.get(), "BEGIN; " + sql);
            } else {
                file_ = root.Open();
                Run("BEGIN IMMEDIATE; " + sql);
            }
        }
        void Commit() {
            if (server_) {
                PgExec(server_.get(), "COMMIT");
            } else if (file_) {
                Run("COMMIT");
            }
        }

    private:
        void Run(const std::string& sql) {
            if (sqlite3_exec(file_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
                throw std::runtime_error("SQL failed: " + std::string(sqlite3_errmsg(file_.get())));
            }
        }
        PgConnection server_;
        std::unique_ptr<sqlite3, Closer> file_;
    };

private:
    std::string ServerQuery(const std::string& sql) const {
        auto conn = ConnectTo(server_->Uri());
        PGresult* result = PQexec(conn.get(), sql.c_str());
        std::string value;
        const bool ok = PQresultStatus(result) == PGRES_TUPLES_OK;
        const std::string message = PQresultErrorMessage(result);
        if (ok && PQntuples(result) > 0 && PQgetisnull(result, 0, 0) == 0) {
            value = PQgetvalue(result, 0, 0);
        }
        PQclear(result);
        if (!ok) {
            throw std::runtime_error("SQL failed: " + message + " in: " + sql);
        }
        return value;
    }

    std::unique_ptr<sqlite3, Closer> Open() const {
        sqlite3* raw = nullptr;
        const int rc = sqlite3_open_v2(path_.c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
        std::unique_ptr<sqlite3, Closer> db(raw);
        if (rc != SQLITE_OK) {
            throw std::runtime_error("cannot open " + path_ + ": " + sqlite3_errstr(rc));
        }
        sqlite3_busy_timeout(db.get(), 5000);
        return db;
    }

    template <class ReadRow>
    void Query(const std::string& sql, ReadRow readRow) const {
        auto db = Open();
        sqlite3_stmt* raw = nullptr;
        if (sqlite3_prepare_v2(db.get(), sql.c_str(), -1, &raw, nullptr) != SQLITE_OK) {
            throw std::runtime_error("SQL failed: " + std::string(sqlite3_errmsg(db.get())) +
                                     " in: " + sql);
        }
        std::unique_ptr<sqlite3_stmt, Closer> statement(raw);
        const int rc = sqlite3_step(statement.get());
        if (rc == SQLITE_ROW) {
            readRow(statement.get());
        } else if (rc != SQLITE_DONE) {
            throw std::runtime_error("SQL failed: " + std::string(sqlite3_errmsg(db.get())) +
                                     " in: " + sql);
        }
    }

    std::string root_;
    std::string path_;
    std::unique_ptr<ScratchServerDatabase> server_;
};

}  // namespace dbn::testing

// In a test of the SQLite file itself: skipped in the server pass, where the
// editor's DataBase objects use the server (the test ran in the file pass).
#define DBN_FILE_TEST_ONLY(root)                                                  \
    do {                                                                          \
        if ((root).OnServer()) {                                                  \
            GTEST_SKIP() << "a test of the SQLite file; it ran in the file pass"; \
        }                                                                         \
    } while (false)
