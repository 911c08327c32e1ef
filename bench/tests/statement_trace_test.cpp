// Recording a session's database work and replaying it on a bare DataBase.
#include "support/bench_data.h"
#include "support/editor_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace dbn::bench {
namespace {

std::string Describe(const TraceStep& step) {
    std::string text = std::to_string(static_cast<int>(step.step)) + " " + step.command;
    for (const std::string& arg : step.args) {
        text += " '" + arg + "'";
    }
    return text + (step.column.empty() ? "" : " ." + step.column);
}

std::vector<std::string> Describe(const StatementTrace& trace) {
    std::vector<std::string> lines;
    for (const TraceStep& step : trace.Steps()) {
        lines.push_back(Describe(step));
    }
    return lines;
}

long CountOf(const StatementTrace& trace, DataBaseStep kind) {
    return std::count_if(trace.Steps().begin(), trace.Steps().end(),
                         [kind](const TraceStep& step) { return step.step == kind; });
}

TEST(StatementTrace, StartUpReplaysStepForStepOnAFreshConnection) {
    BenchDataRoot root(BenchDataRoot::Content::Demo);
    BenchServices services;
    StatementTrace recorded;
    OpenEditor(services, 1, 1, {}, &recorded);
    // Catalogue, limits, rules, selector, node, descriptions and prompts.
    EXPECT_GT(recorded.Statements(), 20);
    EXPECT_GT(CountOf(recorded, DataBaseStep::Field), recorded.Statements());
    EXPECT_EQ(CountOf(recorded, DataBaseStep::BeginTrans), 0);

    DataBase db;
    StatementTrace replayed;
    replayed.Attach(db);
    Replay replay(db, recorded.Steps());
    replay.Run();
    EXPECT_EQ(Describe(replayed), Describe(recorded));

    // A part of the recording replays just that part; detached, nothing more is seen.
    replayed.Clear();
    replay.Run(0, 3);
    EXPECT_EQ(replayed.Size(), 3u);
    StatementTrace::Detach(db);
    replay.Run(3, recorded.Size());
    EXPECT_EQ(replayed.Size(), 3u);
}

TEST(StatementTrace, SaveReplayedInOneTransactionWritesWhatTheEditorWrote) {
    const std::string node =
        "SELECT group_concat(NodeDescription || '/' || Method || '/' || GreetingNodeNumber) "
        "FROM Node_DBN WHERE PartID = 1 AND NodeNumber = 1";
    const std::string prompts =
        "SELECT count(*) FROM Detail_DBN_Prompts WHERE PartID = 1 AND NodeMasterID = 1";
    const std::string created =
        "SELECT count(*) FROM Node_MSG WHERE PartID = 1 AND NodeNumber IN (60, 61)";

    StatementTrace recorded;
    std::string saved;
    {
        BenchDataRoot edited(BenchDataRoot::Content::Demo);
        BenchServices services;
        services.confirmAnswers = {form::kConfirmYesToAll};
        OpenEditor(services, 1, 1, [&](form::GUI& gui, Business_Rules& formRules) {
            gui.txtDescription.SetText("Front desk");
            gui.cmbGreetingNumber.SetText("60");
            gui.cmbExitPromptNumber.SetText("61");
            recorded.Attach(formRules.Db());
            gui.cmdApply_Click();
            StatementTrace::Detach(formRules.Db());
            EXPECT_FALSE(gui.cmdApply.Enabled());
        });
        ASSERT_EQ(services.confirmations.size(), 1u);
        saved = std::to_string(QueryNumber(edited.DatabasePath(), created));
        EXPECT_EQ(saved, "2");
    }
    EXPECT_GT(CountOf(recorded, DataBaseStep::BeginTrans), 0);

    BenchDataRoot fresh(BenchDataRoot::Content::Demo);
    DataBase db;
    StatementTrace replayed;
    replayed.Attach(db);
    Replay(db, recorded.Steps(), Transactions::OneForAll).Run();
    EXPECT_EQ(CountOf(replayed, DataBaseStep::BeginTrans), 1);
    EXPECT_EQ(CountOf(replayed, DataBaseStep::CommitTrans), 1);
    EXPECT_EQ(replayed.Statements(), recorded.Statements());
    EXPECT_EQ(QueryNumber(fresh.DatabasePath(), created), 2);
    EXPECT_EQ(QueryNumber(fresh.DatabasePath(), prompts), 9);
    EXPECT_EQ(QueryNumber(fresh.DatabasePath(),
                          "SELECT count(*) FROM Node_General_Pool WHERE PartID = 1 AND "
                          "NodeTypeID = 15 AND NodeNumber = 1 AND NodeDescription = 'Front desk'"),
              1);
    ExecSql(fresh.DatabasePath(), "CREATE TABLE answer (text TEXT); INSERT INTO answer " + node);
    EXPECT_EQ(QueryNumber(fresh.DatabasePath(),
                          "SELECT count(*) FROM answer WHERE text = 'Front desk/0/60'"),
              1);
}

}  // namespace
}  // namespace dbn::bench
