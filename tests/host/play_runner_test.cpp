#include "host/play_runner.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <sstream>
#include <streambuf>

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

// A script handed out one line at a time, as through a pipe: before line i
// (0-based) is read, the action given for it runs, as the program writing
// the script may act between lines.
class DrivenScript : public std::streambuf {
public:
    DrivenScript(std::vector<std::string> lines,
                 std::map<std::size_t, std::function<void()>> before)
        : lines_(std::move(lines)), before_(std::move(before)) {}

protected:
    int_type underflow() override {
        if (next_ == lines_.size()) {
            return traits_type::eof();
        }
        if (auto action = before_.find(next_); action != before_.end()) {
            action->second();
        }
        current_ = lines_[next_++] + "\n";
        setg(current_.data(), current_.data(), current_.data() + current_.size());
        return traits_type::to_int_type(current_[0]);
    }

private:
    std::vector<std::string> lines_;
    std::map<std::size_t, std::function<void()>> before_;
    std::size_t next_ = 0;
    std::string current_;
};

const std::string kNode1 = " WHERE PartID = 1 AND NodeTypeID = 15 AND NodeNumber = 1";

// A script whose database is changed by `between` after its second line was
// run and before its third is read.
struct ChangedBetweenLines {
    std::vector<std::string> lines;
    std::function<void(testing::TempDataRoot&)> between;
    std::string expected;  // status|output|stored description (a prefix)
};

void ExpectRunOf(const ChangedBetweenLines& c) {
    testing::TempDataRoot root(testing::TempDataRoot::Content::Demo);
    DrivenScript buffer(c.lines, {{2, [&] { c.between(root); }}});
    std::istream script(&buffer);
    std::ostringstream out;
    std::ostringstream err;
    const int status = Player(out, err).Run(script);
    const std::string seen = std::to_string(status) + "|" + out.str() + "|" +
                             root.QueryText("SELECT NodeDescription FROM Node_DBN" + kNode1);
    EXPECT_EQ(seen.substr(0, c.expected.size()), c.expected) << c.lines[2];
}

TEST(PlayRunner, EachLineRunsBeforeTheNextIsReadSoAChangeBetweenLinesIsAsked) {
    const std::string changed =
        "box Confirmation: DBN 1 was changed by another program after it was opened here. Save "
        "your changes over it? => ";
    // The details name the other change's fields (no history entry: an SQL update).
    const std::string details =
        "details: This node was changed outside this program; not in the history: "
        "NodeDescription: \"Staff directory\" -> \"Theirs\"\n";
    const auto theirs = [](testing::TempDataRoot& root) {
        root.Exec("UPDATE Node_DBN SET NodeDescription = 'Theirs'" + kNode1);
    };
    const ChangedBetweenLines cases[] = {
        {{"open 1 1 1", "type txtDescription Mine", "answer 6", "click cmdApply", "click cmdOK"},
         theirs,
         "0|" + changed + "6\n" + details + "returned false\n|Mine"},
        {{"open 1 1 1", "type txtDescription Mine", "answer 7", "click cmdApply", "click cmdOK"},
         theirs,
         "0|" + changed + "7\n" + details + "returned false\n|Theirs"},
        {{"open 1 1 1", "type txtDescription Mine", "answer 2", "click cmdApply", "close"},
         theirs,
         "1|" + changed + "2\n" + details +
             "no answer queued for: box Confirmation: Do you want to "
             "save changes?\n|Theirs"},
    };
    for (const ChangedBetweenLines& c : cases) {
        ExpectRunOf(c);
    }
}

TEST(PlayRunner, ASaveTheDatabaseRefusesEndsTheRunWithStatus3) {
    const std::vector<std::string> apply = {"open 1 1 1", "type txtDescription Mine",
                                            "click cmdApply"};
    const ChangedBetweenLines cases[] = {
        // The node is gone: told in an Information box.
        {apply, [](testing::TempDataRoot& root) { root.Exec("DELETE FROM Node_DBN" + kNode1); },
         "3|box Information: DBN 1 no longer exists in the configuration database. Nothing was "
         "saved. => 1\nabandoned\n|"},
        // An error box.
        {apply,
         [](testing::TempDataRoot& root) {
             root.Exec(
                 "CREATE TRIGGER refuse BEFORE UPDATE ON Node_General_Pool BEGIN SELECT "
                 "RAISE(ABORT, 'refused'); END");
         },
         "3|box Error: Source: SQLite - SaveChanges \\nDescription: refused (Update_Node_General_"
         "Pool on"},
    };
    for (const ChangedBetweenLines& c : cases) {
        ExpectRunOf(c);
    }
}

TEST(PlayRunner, NoDatabaseIsAFailedRun) {
    testing::TempDataRoot root(testing::TempDataRoot::Content::Demo);
    std::filesystem::remove(root.DatabasePath());
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(Player(out, err).Run(std::vector<std::string>{"open 1 1 1"}), kRunFailed);
    EXPECT_EQ(out.str(), "box Error: There is no configuration database at " + root.DatabasePath() +
                             ". Create one with: dbn-node-editor init => 1\nreturned false\n");
}

}  // namespace
}  // namespace dbn::host
