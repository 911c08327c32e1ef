#include "host/play_runner.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <sstream>

namespace dbn::host {
namespace {

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

Outcome Play(std::vector<std::string> lines) {
    std::ostringstream out;
    std::ostringstream err;
    Player player(out, err);
    const int status = player.Run(std::move(lines));
    return {status, out.str(), err.str()};
}

TEST(PlayRunnerErrors, ScriptErrorsNameTheLineAndStopTheRun) {
    Outcome outcome = Play({"# heading", "", "answer 6", "bogus 1", "show GUI"});
    EXPECT_EQ(outcome.status, kRunScriptError);
    EXPECT_EQ(outcome.err, "error: 4: unknown action \"bogus\"\n");
    EXPECT_EQ(outcome.out, "");

    outcome = Play({"answer 1", "entries cmbNode"});
    EXPECT_EQ(outcome.status, kRunScriptError);
    EXPECT_EQ(outcome.err, "error: 2: no form is shown\n");

    outcome = Play({"close"});
    EXPECT_EQ(outcome.err, "error: 1: no form is shown\n");
}

class PlayRunnerSession : public ::testing::Test {
protected:
    testing::TempDataRoot root{testing::TempDataRoot::Content::Demo};

    std::string DescriptionOfNode1() const {
        return root.QueryText(
            "SELECT NodeDescription FROM Node_DBN WHERE ConfigID=1 AND PartID=1 AND "
            "NodeNumber=1");
    }
};

TEST_F(PlayRunnerSession, FormLeftOpenIsDiscardedWithoutQuestion) {
    Outcome outcome = Play({"open 1 1 1", "type txtDescription Changed", "show cmdApply"});
    EXPECT_EQ(outcome.status, kRunCompleted) << outcome.err;
    EXPECT_EQ(outcome.out, "cmdApply: caption=\"Apply\" enabled=1 visible=1\nabandoned\n");
    EXPECT_EQ(DescriptionOfNode1(), "Staff directory");
}

TEST_F(PlayRunnerSession, LinesAfterTheFormClosesRunOutsideIt) {
    Outcome outcome =
        Play({"open 1 1 1", "type txtDescription Renamed", "click cmdOK", "show txtDescription"});
    EXPECT_EQ(outcome.status, kRunScriptError);
    EXPECT_EQ(outcome.out, "returned false\n");
    EXPECT_EQ(outcome.err, "error: 4: no form is shown\n");
    EXPECT_EQ(DescriptionOfNode1(), "Renamed");
}

TEST_F(PlayRunnerSession, OneFormAtATime) {
    Outcome outcome = Play({"open 1 1 1", "open 1 1 2"});
    EXPECT_EQ(outcome.status, kRunScriptError);
    EXPECT_EQ(outcome.err, "error: 2: a form is already shown\n");
}

TEST_F(PlayRunnerSession, UnansweredQuestionInsideAHandlerEndsTheRun) {
    // The save question comes from inside the form's own error-trapped
    // handler; the stop must pass through it and nothing is saved.
    Outcome outcome =
        Play({"open 1 1 1", "type txtDescription Renamed", "click cmdNext", "show txtDescription"});
    EXPECT_EQ(outcome.status, kRunUnanswered);
    EXPECT_EQ(outcome.out,
              "no answer queued for: box Confirmation: Do you want to save changes?\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(DescriptionOfNode1(), "Staff directory");
}

}  // namespace
}  // namespace dbn::host
