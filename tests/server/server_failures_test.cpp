// A configuration database on a PostgreSQL server: each way the server can
// fail gives one clear message naming it, never the password, and writers
// wait for one another as on the embedded file.

#include "database/database.h"
#include "database/database_errors.h"
#include "database/database_setup.h"
#include "error_of.h"
#include "test_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>

namespace dbn {
namespace {

using testing::ErrorOf;
using testing::ScratchServerDatabase;

constexpr const char* kPassword = "Sesame-7f3";

class ServerFailures : public ::testing::Test {
protected:
    void SetUp() override {
        DBN_REQUIRE_TEST_SERVER();
        scratch_ = std::make_unique<ScratchServerDatabase>();
    }
    // A demo configuration in the scratch database.
    DatabaseTarget Configured() {
        const DatabaseTarget target = DatabaseTarget::Server(scratch_->Uri());
        CreateConfigurationDatabase(target, true, ExistingDatabase::Refuse);
        return target;
    }
    std::unique_ptr<ScratchServerDatabase> scratch_;
};

TEST_F(ServerFailures, EachFailureHasItsOwnMessageNamingTheServerWithoutThePassword) {
    auto admin = testing::ConnectTo(testing::TestServerUri());
    testing::PgExec(admin.get(), "DROP ROLE IF EXISTS dbn_operator");
    testing::PgExec(admin.get(),
                    std::string("CREATE ROLE dbn_operator LOGIN PASSWORD '") + kPassword + "'");
    const std::string uri = scratch_->Uri();
    const std::string host = uri.substr(uri.find("?host=") + 6);
    struct Case {
        std::string target;
        long number;
        const char* says;
    };
    const Case cases[] = {
        {"postgresql://postgres:" + std::string(kPassword) +
             "@/postgres?host=/nonexistent-socket-folder&port=5432",
         kErrServerUnreachable, "cannot be reached"},
        {"postgresql://dbn_operator:wrong-" + std::string(kPassword) + "@/" + scratch_->Name() +
             "?host=" + host,
         kErrServerLogin, "authentication failed"},
        {testing::UriOfDatabase("no_such_configuration"), kErrServerDatabaseMissing,
         "has no such database"},
        {uri, kErrSchemaMissing,
         "has no configuration tables. Create them with: "
         "dbn-node-editor init --database"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.target);
        DataBase db(DatabaseTarget::Server(c.target));
        const ComponentError error = ErrorOf([&] { db.Execute("Get_Node_Names"); });
        EXPECT_EQ(error.Number(), c.number);
        EXPECT_EQ(error.Source(), "PostgreSQL");
        EXPECT_NE(error.Description().find(c.says), std::string::npos) << error.Description();
        EXPECT_NE(error.Description().find("dbname="), std::string::npos) << error.Description();
        EXPECT_EQ(error.Description().find("Sesame"), std::string::npos) << error.Description();
    }
    testing::PgExec(admin.get(), "DROP ROLE dbn_operator");
}

TEST_F(ServerFailures, ALockHeldByAnotherConnectionPastTheTimeOutIsTheLockedMessage) {
    const DatabaseTarget target = Configured();
    auto other = testing::ConnectTo(scratch_->Uri());
    const std::string locked = "The configuration database \"" + DisplayName(target) +
                               "\" is locked by another program. Try again when that program "
                               "has finished with it.";

    // Another writer's transaction: a save cannot begin.
    testing::PgExec(other.get(), "BEGIN; SELECT pg_advisory_xact_lock(4473422)");
    DataBase db(target);
    db.SetBusyTimeout(std::chrono::milliseconds(200));
    int waits = 0;  // the wait handler keeps a window painting meanwhile
    db.SetWaitHandler([&] { ++waits; });
    ComponentError error = ErrorOf([&] { db.BeginTrans(); });
    EXPECT_EQ(error.Number(), kErrDatabaseLocked);
    EXPECT_EQ(error.Description(), locked);
    EXPECT_FALSE(db.InTransaction());
    EXPECT_GE(waits, 3);
    testing::PgExec(other.get(), "ROLLBACK");

    // A row another program holds: the statement gives up the same way.
    testing::PgExec(other.get(),
                    "BEGIN; UPDATE Node_General_Pool SET NodeDescription = 'x' WHERE ConfigID = 1 "
                    "AND PartID = 1 AND NodeTypeID = 15 AND NodeNumber = 1");
    error = ErrorOf([&] {
        db.Execute("Update_Node_General_Pool", {"y", "2001-01-01 00:00:00", "1", "1", "15", "1"});
    });
    EXPECT_EQ(error.Number(), kErrDatabaseLocked);
    testing::PgExec(other.get(), "ROLLBACK");
    EXPECT_EQ(db.Execute("Get_Node_Names"), 18);
}

// Two editors on two connections save the same node: the second waits for
// the first's commit and then writes; neither save is lost half way.
TEST_F(ServerFailures, TwoEditorsSavingTheSameNodeFollowOneAnother) {
    const DatabaseTarget target = Configured();
    DataBase first(target);
    DataBase second(target);
    const std::vector<std::string> key = {"1", "1", "15", "1"};
    auto save = [&key](DataBase& db, const std::string& label) {
        std::vector<std::string> args = {label, "2001-01-01 00:00:00"};
        args.insert(args.end(), key.begin(), key.end());
        db.Execute("Update_Node_General_Pool", args);
        db.Execute("Delete_DBN_PromptsNode", {"1", "1", "1"});
        db.Execute("Add_DBN_PromptsNode", {"1", "1", "1", "0", "7", "1", label.substr(0, 3)});
    };
    first.BeginTrans();
    save(first, "First");
    auto later = std::async(std::launch::async, [&] {
        second.BeginTrans();  // waits for the first's commit
        save(second, "Second");
        second.CommitTrans();
    });
    EXPECT_EQ(later.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
    first.CommitTrans();
    later.get();

    DataBase reader(target);
    reader.Execute("Get_Description", key);
    EXPECT_EQ(reader.Recordset("Get_Description").Field("NodeDescription").ToText(), "Second");
    EXPECT_EQ(reader.Execute("Get_DBN_PromptsNode", {"1", "1", "1"}), 1);
    EXPECT_EQ(reader.Recordset("Get_DBN_PromptsNode").Field("PromptNodeType").ToText(), "Sec");
}

TEST_F(ServerFailures, InitRefusesAConfiguredDatabaseWithoutForceAndReplacesItWithForce) {
    const DatabaseTarget target = Configured();
    EXPECT_EQ(ErrorOf([&] {
                  CreateConfigurationDatabase(target, false, ExistingDatabase::Refuse);
              }).Number(),
              kErrDatabaseExists);
    DataBase db(target);
    EXPECT_EQ(db.Execute("Get_All_DBN_Nodes", {"1", "1", "15"}), 3);
    db.Recordset("Get_All_DBN_Nodes").Close();
    CreateConfigurationDatabase(target, false, ExistingDatabase::Replace);
    EXPECT_EQ(db.Execute("Get_All_DBN_Nodes", {"1", "1", "15"}), 0);
}

}  // namespace
}  // namespace dbn
