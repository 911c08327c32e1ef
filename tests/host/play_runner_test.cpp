#include "host/play_runner.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <sstream>

namespace dbn::host {
namespace {

// Runs a script on a fresh demo database; answers its exit status, standard
// output and standard error, and the description of node 1 afterwards, joined
// by "|".
std::string Play(std::vector<std::string> lines) {
    testing::TempDataRoot root(testing::TempDataRoot::Content::Demo);
    std::ostringstream out;
    std::ostringstream err;
    const int status = Player(out, err).Run(std::move(lines));
    return std::to_string(status) + "|" + out.str() + "|" + err.str() + "|" +
           root.QueryText(
               "SELECT NodeDescription FROM Node_DBN WHERE PartID = 1 AND "
               "NodeNumber = 1");
}

TEST(PlayRunner, ScriptErrorsNameTheLineAndStopTheRun) {
    EXPECT_EQ(Play({"# heading", "", "answer 6", "bogus 1", "show GUI"}),
              "2||error: 4: unknown action \"bogus\"\n|Staff directory");
    EXPECT_EQ(Play({"close"}), "2||error: 1: no form is shown\n|Staff directory");
    EXPECT_EQ(Play({"open 1 1 1", "open 1 1 2"}),
              "2||error: 2: a form is already shown\n|Staff directory");
    // Lines after the form closed run outside it; what was saved stays.
    EXPECT_EQ(
        Play({"open 1 1 1", "type txtDescription Renamed", "click cmdOK", "show txtDescription"}),
        "2|returned false\n|error: 4: no form is shown\n|Renamed");
}

TEST(PlayRunner, AnAbandonedOrUnansweredRunSavesNothing) {
    EXPECT_EQ(Play({"open 1 1 1", "type txtDescription Changed"}),
              "0|abandoned\n||Staff directory");
    // The save question comes from inside the form's own error-trapped
    // handler; the stop must pass through it.
    EXPECT_EQ(
        Play({"open 1 1 1", "type txtDescription Renamed", "click cmdNext", "show txtDescription"}),
        "1|no answer queued for: box Confirmation: Do you want to save changes?\n||"
        "Staff directory");
}

}  // namespace
}  // namespace dbn::host
