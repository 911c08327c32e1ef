// A configuration this process may read but not change (here: a server role
// with the right to read the tables only) is told once when the editor
// opens; Apply then refuses in the same words, writing nothing, and keeps
// the change mark.

#include "database/configuration_copy.h"
#include "error_of.h"
#include "session/history/node_restore.h"
#include "session/nodes/apply_nodes.h"
#include "session/nodes/node_text_store.h"
#include "session/session_support.h"

#include <stdlib.h>
#include <unistd.h>

namespace dbn::testing {
namespace {

class ReadOnly : public SessionTest {
protected:
    void SetUp() override {
        DBN_REQUIRE_TEST_SERVER();
        if (!root.OnServer()) {
            GTEST_SKIP() << "runs in the server pass";
        }
        role = "dbn_reader_" + std::to_string(::getpid());
        // Roles other than postgres log in with a password on the test server.
        PgExec(ConnectTo(TestServerUri()).get(),
               "CREATE ROLE " + role + " LOGIN PASSWORD 'reader-pw'");
        root.Exec("GRANT SELECT ON ALL TABLES IN SCHEMA public TO " + role);
        uri = root.Target().location;
        uri.replace(uri.find("postgres@"), 8, role + ":reader-pw");
        ::setenv("DBN_DATABASE", uri.c_str(), 1);
    }
    void TearDown() override {
        if (!role.empty()) {
            root.Exec("DROP OWNED BY " + role);
            PgExec(ConnectTo(TestServerUri()).get(), "DROP ROLE " + role);
        }
    }
    std::string Notice() const {
        return "The configuration database \"" + DisplayName(DatabaseTarget::Server(uri)) +
               "\" is open read-only: " + role +
               " may read it but not change it. Changes cannot be saved.";
    }
    std::string role;
    std::string uri;
};

TEST_F(ReadOnly, ToldWhenTheEditorOpensAndApplyRefusesInTheSameWords) {
    const std::string notice = Notice();
    services.confirmAnswers = {form::kConfirmYes};
    Open(1, 1, [&](form::GUI& gui) {
        EXPECT_EQ(services.TakeBoxTexts(), std::vector<std::string>{notice});
        Set(gui, "txtDescription=Mine; cmbGreetingNumber=50");
        gui.cmdApply_Click();
        EXPECT_EQ(services.TakeBoxTexts(), std::vector<std::string>{notice});
        EXPECT_TRUE(services.confirmations.empty());
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_EQ(gui.txtDescription.Text(), "Mine");
    });
    EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), "Staff directory");
    EXPECT_EQ(Count("Node_MSG", Where(1, "NodeNumber", 50)), 0);
}

// The commands that write without the editor refuse in the same words,
// never with the server's "permission denied".
TEST_F(ReadOnly, ApplyRestoreAndCopyRefuseInTheEditorsWords) {
    {
        DataBase owner(root.Target());  // an entry to restore
        nodetext::NodeDocument document = session::ExportNodes(owner, 1, 1, {1});
        document.nodes[0].columns["NodeDescription"] = std::string("Owner's");
        ASSERT_TRUE(session::ApplyNodes(owner, document, {}).written);
    }
    DataBase db;
    nodetext::NodeDocument document = session::ExportNodes(db, 1, 1, {1});
    document.nodes[0].columns["NodeDescription"] = std::string("Mine");
    const std::function<void()> writers[] = {
        [&] { session::ApplyNodes(db, document, {}); },
        [&] {
            session::RestoreNodeVersion(db, {1, 1, 15, 1}, 1, true);
        },
        [&] {
            CopyConfiguration(DatabaseTarget::SqliteFile(root.DatabasePath()),
                              DatabaseTarget::Server(uri), ExistingDatabase::Replace);
        },
    };
    for (const auto& write : writers) {
        EXPECT_EQ(ErrorOf(write).Description(), Notice());
    }
    EXPECT_EQ(NodeColumn("NodeDescription", 1, 1), "Owner's");
}

}  // namespace
}  // namespace dbn::testing
