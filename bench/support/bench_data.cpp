#include "support/bench_data.h"

#include "database/configuration_copy.h"
#include "database/database_target.h"
#include "test_server.h"

#include "database/data_location.h"
#include "database/database_setup.h"

#include <sqlite3.h>
#include <stdlib.h>

#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

namespace dbn::bench {
namespace {

struct Closer {
    void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Connection = std::unique_ptr<sqlite3, Closer>;
using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

Connection Open(const std::string& path) {
    sqlite3* raw = nullptr;
    const int rc = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
    Connection db(raw);
    if (rc != SQLITE_OK) {
        throw std::runtime_error("cannot open " + path + ": " + sqlite3_errstr(rc));
    }
    sqlite3_busy_timeout(db.get(), 5000);
    return db;
}

void Exec(sqlite3* db, const std::string& sql) {
    char* message = nullptr;
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        const std::string text = message != nullptr ? message : "unknown error";
        sqlite3_free(message);
        throw std::runtime_error("SQL failed: " + text + " in: " + sql);
    }
}

Statement Prepare(sqlite3* db, const std::string& sql) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &raw, nullptr) != SQLITE_OK) {
        throw std::runtime_error("SQL failed: " + std::string(sqlite3_errmsg(db)) + " in: " + sql);
    }
    return Statement(raw);
}

std::vector<std::string> Columns(sqlite3* db, const std::string& table) {
    Statement statement = Prepare(db, "SELECT name FROM pragma_table_info('" + table + "')");
    std::vector<std::string> columns;
    while (sqlite3_step(statement.get()) == SQLITE_ROW) {
        columns.emplace_back(
            reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0)));
    }
    return columns;
}

std::vector<std::string> Tables(sqlite3* db) {
    Statement statement =
        Prepare(db, "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name");
    std::vector<std::string> tables;
    while (sqlite3_step(statement.get()) == SQLITE_ROW) {
        tables.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0)));
    }
    return tables;
}

bool Has(const std::vector<std::string>& columns, const std::string& name) {
    for (const std::string& column : columns) {
        if (column == name) {
            return true;
        }
    }
    return false;
}

// The numbers 1 to kLargeNodeCount as the rows of n(v).
const std::string kNumbers =
    "WITH RECURSIVE n(v) AS (SELECT 1 UNION ALL SELECT v + 1 FROM n "
    "WHERE v < " +
    std::to_string(kLargeNodeCount) + ") ";

// Copies the rows of table that match filter, every column as it is except
// those given in overrides (column -> SQL expression). Numbered copies are
// made once for each v of n(v).
void CopyRows(sqlite3* db, const std::string& table, const std::string& filter,
              const std::map<std::string, std::string>& overrides, bool numbered = false) {
    std::string into;
    std::string select;
    for (const std::string& column : Columns(db, table)) {
        const std::string quoted = "\"" + column + "\"";
        into += (into.empty() ? "" : ", ") + quoted;
        const auto found = overrides.find(column);
        select +=
            (select.empty() ? "" : ", ") + (found != overrides.end() ? found->second : quoted);
    }
    Exec(db, (numbered ? kNumbers : "") + "INSERT INTO " + table + " (" + into + ") SELECT " +
                 select + " FROM " + table + (numbered ? ", n" : "") + " WHERE " + filter);
}

const std::string kPartition = std::to_string(kLargePartition);
const std::string kConfig = std::to_string(kLargeConfig);

// Node 0 of every type with its detail rows, and a limit of 999 for every
// type that has a limit in partition 1.
void CopyTemplates(sqlite3* db) {
    for (const std::string& table : Tables(db)) {
        const std::vector<std::string> columns = Columns(db, table);
        if (!Has(columns, "PartID")) {
            continue;
        }
        const std::string number = Has(columns, "NodeMasterID") ? "NodeMasterID" : "NodeNumber";
        CopyRows(db, table, "ConfigID = " + kConfig + " AND PartID = 1 AND " + number + " = 0",
                 {{"PartID", kPartition}});
    }
    CopyRows(db, "Node_Type_Max", "Config_ID = " + kConfig + " AND PartitionID = 1",
             {{"PartitionID", kPartition}, {"Max_Number", std::to_string(kLargeNodeCount)}});
}

void AddNodes(sqlite3* db) {
    const std::string inPartition = "ConfigID = " + kConfig + " AND PartID = " + kPartition;
    CopyRows(db, "Node_MSG", inPartition + " AND NodeNumber = 0",
             {{"NodeNumber", "v"},
              {"OrvFilename", "printf('P%02dM%03d.wav', PartID, v)"},
              {"NodeDescription", "'Message ' || v"}},
             true);
    // The directory and the transfer the dial-by-name nodes name.
    const std::string demoNodeOne = "ConfigID = " + kConfig + " AND PartID = 1 AND ";
    CopyRows(db, "Node_DIR", demoNodeOne + "NodeNumber = 1", {{"PartID", kPartition}});
    CopyRows(db, "Detail_DIR", demoNodeOne + "NodeMasterID = 1", {{"PartID", kPartition}});
    CopyRows(db, "Node_XFER", demoNodeOne + "NodeNumber = 1", {{"PartID", kPartition}});
    // Every dial-by-name node is a copy of the demo's staff directory with a
    // greeting and an abort target of its own.
    const std::string count = std::to_string(kLargeNodeCount);
    CopyRows(db, "Node_DBN", demoNodeOne + "NodeNumber = 1",
             {{"PartID", kPartition},
              {"NodeNumber", "v"},
              {"NodeDescription", "'Directory ' || v"},
              {"GreetingNodeNumber", "v"},
              {"AbortNodeNumber", "v % " + count + " + 1"}},
             true);
    Exec(db, kNumbers +
                 "INSERT INTO Detail_DBN_Prompts (ConfigID, PartID, PromptNumber, "
                 "PromptNodeTypeID, PromptNodeNumber, NodeMasterID, PromptNodeType) "
                 "SELECT " +
                 kConfig + ", " + kPartition + ", p.v, 0, (n.v + p.v - 1) % " + count +
                 " + 1, n.v, 'MSG' FROM n, (SELECT v FROM n WHERE v <= 9) AS p");
    for (const char* table : {"Node_MSG", "Node_DIR", "Node_XFER", "Node_DBN"}) {
        Exec(db, std::string("INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, "
                             "NodeNumber, NodeType, NodeDescription, DateModified) "
                             "SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, "
                             "NodeDescription, '2024-03-04 09:15:00' FROM ") +
                     table + " WHERE " + inPartition + " AND NodeNumber > 0");
    }
}

}  // namespace

void AddLargePartition(const std::string& databasePath) {
    Connection db = Open(databasePath);
    Exec(db.get(), "BEGIN");
    CopyTemplates(db.get());
    AddNodes(db.get());
    Exec(db.get(), "COMMIT");
}

void ExecSql(const std::string& databasePath, const std::string& sql) {
    Connection db = Open(databasePath);
    Exec(db.get(), sql);
}

long long QueryNumber(const std::string& databasePath, const std::string& sql) {
    Connection db = Open(databasePath);
    Statement statement = Prepare(db.get(), sql);
    return sqlite3_step(statement.get()) == SQLITE_ROW ? sqlite3_column_int64(statement.get(), 0)
                                                       : 0;
}

BenchDataRoot::BenchDataRoot(Content content) {
    std::string pattern = (std::filesystem::temp_directory_path() / "dbn-bench-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder from " + pattern);
    }
    root_ = pattern;
    Use();
    path_ = GetDatabaseFilePath();
    CreateConfigurationDatabase(path_, true);
    if (content == Content::DemoAndLarge) {
        AddLargePartition(path_);
    }
    if (BenchOnServer()) {
        static int made = 0;  // each root its own database
        serverDatabase_ = std::string("dbn_bench_") +
                          (content == Content::DemoAndLarge ? "large_" : "demo_") +
                          std::to_string(::getpid()) + "_" + std::to_string(made++);
        ServerAdminSql("DROP DATABASE IF EXISTS " + serverDatabase_);
        ServerAdminSql("CREATE DATABASE " + serverDatabase_);
        serverUri_ = testing::UriOfDatabase(serverDatabase_);
        CopyConfiguration(DatabaseTarget::SqliteFile(path_), DatabaseTarget::Server(serverUri_),
                          ExistingDatabase::Refuse);
    }
    Use();
}

BenchDataRoot::~BenchDataRoot() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
    if (!serverDatabase_.empty()) {
        try {
            ServerAdminSql("DROP DATABASE IF EXISTS " + serverDatabase_ + " WITH (FORCE)");
        } catch (const std::exception&) {
        }
    }
}

void BenchDataRoot::Use() const {
    SetDataRootOverride(root_);
    SetDatabaseOverride(serverUri_.empty() ? std::nullopt : std::optional(serverUri_));
}

void BenchDataRoot::Exec(const std::string& sql) const {
    if (serverUri_.empty()) {
        ExecSql(path_, sql);
        return;
    }
    auto conn = testing::ConnectTo(serverUri_);
    testing::PgExec(conn.get(), sql);
}

long long BenchDataRoot::QueryNumber(const std::string& sql) const {
    if (serverUri_.empty()) {
        return bench::QueryNumber(path_, sql);
    }
    auto conn = testing::ConnectTo(serverUri_);
    PGresult* result = PQexec(conn.get(), sql.c_str());
    const long long value = PQntuples(result) > 0 ? std::atoll(PQgetvalue(result, 0, 0)) : 0;
    PQclear(result);
    return value;
}

bool BenchOnServer() {
    return testing::TestsUseServer() ||
           (std::getenv("DBN_BENCH_ENGINE") != nullptr &&
            std::string(std::getenv("DBN_BENCH_ENGINE")) == "postgresql");
}

void ServerAdminSql(const std::string& sql) {
    auto admin = testing::ConnectTo(testing::TestServerUri());
    testing::PgExec(admin.get(), sql);
}

BenchDataRoot& DemoRoot() {
    static BenchDataRoot root(BenchDataRoot::Content::Demo);
    return root;
}

BenchDataRoot& LargeRoot() {
    static BenchDataRoot root(BenchDataRoot::Content::DemoAndLarge);
    return root;
}

}  // namespace dbn::bench
