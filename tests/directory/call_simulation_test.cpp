// A call through a dial-by-name node, event by event: the exact steps of
// each exit, mode, stage, retry and time-out.
#include "directory/call_simulation.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace dbn::directory {
namespace {

// Last names' keys: Adams 23267, Baker 22537, Baxter 229837, Chen 2436,
// Müller 685537; first names': Grace 47223, Tom 866, Tim 846, Lena 5362,
// Jörg 5674.
CallPlan SmallPlan() {
    CallPlan plan;
    plan.search = CustomSearch(MatchMode::LastName, 3, 5, 2, 1, 3, true, 2);
    plan.greeting = {"MSG 1", "Main greeting"};
    plan.stagePrompts = {{"MSG 2", "Spell the last name"}, {"MSG 3", "Spell the first name"}};
    plan.beforeNames = {"MSG 5", "Before names"};
    plan.namePrompts = {{"MSG 7", "Name one"}, {"MSG 8", "Name two"}};
    plan.afterNames = {"MSG 6", "After names"};
    plan.Target(CallExit::ValidMatch) = {"XFER 1", "Operator transfer"};
    plan.Target(CallExit::Abort) = {"MSG 4", "Goodbye"};
    plan.Target(CallExit::Star) = {"CMD 2", "Main menu"};
    plan.Target(CallExit::Pound) = {"NOOP", ""};
    plan.Target(CallExit::Zero) = {"XFER 9", "Reception"};
    plan.Target(CallExit::Timeout) = {"MSG 10", "Timed out"};
    plan.Target(CallExit::Invalid) = {"MSG 11", "Not found"};
    plan.Target(CallExit::ConfirmationExit) = {"MSG 12", "No choice"};
    plan.retryLimit = 1;
    plan.names = {{1, "Adams", "Grace", "2101"},
                  {2, "Baker", "Tom", "2102"},
                  {3, "Baxter", "Tim", "2203"},
                  {4, "Chen", "Lena", "2104"},
                  {5, "Müller", "Jörg", ""}};
    return plan;
}

std::vector<CallStep> Call(const CallPlan& plan, const std::string& events) {
    std::string why;
    const std::optional<std::vector<CallEvent>> parsed = ParseCallEvents(events, why);
    EXPECT_TRUE(parsed) << why;
    CallSimulator simulator(plan);
    return SimulateCall(simulator, parsed.value_or(std::vector<CallEvent>{}));
}

std::string Text(const std::vector<CallStep>& steps) {
    std::string text;
    for (const CallStep& step : steps) {
        text += StepText(step);
    }
    return text;
}

TEST(CallSimulation, AWholeCallThroughTheConfirmation) {
    EXPECT_EQ(Text(Call(SmallPlan(), "2 3 2 silence 1")),
              "0 start\n"
              "  play: MSG 1 \"Main greeting\"\n"
              "  play: MSG 2 \"Spell the last name\"\n"
              "  first stage, Last Name: no digits, 5 names\n"
              "1 key 2\n"
              "  first stage, Last Name: 2, 4 matches: Grace Adams 2101, Tom Baker 2102, Tim "
              "Baxter 2203, Lena Chen 2104\n"
              "2 key 3\n"
              "  first stage, Last Name: 23, 1 match: Grace Adams 2101\n"
              "3 key 2\n"
              "  first stage, Last Name: 232, 1 match: Grace Adams 2101\n"
              "4 silence\n"
              "  note: 232 matches 1 name\n"
              "  play: MSG 5 \"Before names\"\n"
              "  play: MSG 7 \"Name one\" for 1: Grace Adams\n"
              "  play: MSG 6 \"After names\"\n"
              "  confirmation: 1 name offered: 1 Grace Adams 2101\n"
              "5 key 1\n"
              "  note: picked 1\n"
              "  play: the name \"Grace Adams\"\n"
              "  exit Valid Match: XFER 1 \"Operator transfer\", extension 2101 (Grace Adams)\n");
}

TEST(CallSimulation, TwoStagesWithARetry) {
    CallPlan plan = SmallPlan();
    plan.search = CustomSearch(MatchMode::LastName, 2, 5, 2, 1, 3, true, 1);
    EXPECT_EQ(Text(Call(plan, "2 2 silence 8 silence 8 6 silence 1")),
              "0 start\n"
              "  play: MSG 1 \"Main greeting\"\n"
              "  play: MSG 2 \"Spell the last name\"\n"
              "  first stage, Last Name: no digits, 5 names\n"
              "1 key 2\n"
              "  first stage, Last Name: 2, 4 matches: Grace Adams 2101, Tom Baker 2102, Tim "
              "Baxter 2203, Lena Chen 2104\n"
              "2 key 2\n"
              "  first stage, Last Name: 22, 2 matches: Tom Baker 2102, Tim Baxter 2203\n"
              "3 silence\n"
              "  note: 22 leaves 2 names; the second stage searches them\n"
              "  play: MSG 3 \"Spell the first name\"\n"
              "  second stage, First Name: no digits, 2 names\n"
              "4 key 8\n"
              "  second stage, First Name: 8, 2 matches: Tom Baker 2102, Tim Baxter 2203\n"
              "5 silence\n"
              "  note: 8 matches 2 of them, more than the 1 that can be offered\n"
              "  note: retry 1 of 1\n"
              "  play: MSG 3 \"Spell the first name\"\n"
              "  second stage, First Name: no digits, 2 names\n"
              "6 key 8\n"
              "  second stage, First Name: 8, 2 matches: Tom Baker 2102, Tim Baxter 2203\n"
              "7 key 6\n"
              "  second stage, First Name: 86, 1 match: Tom Baker 2102\n"
              "8 silence\n"
              "  note: 86 matches 1 name\n"
              "  play: MSG 5 \"Before names\"\n"
              "  play: MSG 7 \"Name one\" for 1: Tom Baker\n"
              "  play: MSG 6 \"After names\"\n"
              "  confirmation: 1 name offered: 1 Tom Baker 2102\n"
              "9 key 1\n"
              "  note: picked 1\n"
              "  play: the name \"Tom Baker\"\n"
              "  exit Valid Match: XFER 1 \"Operator transfer\", extension 2102 (Tom Baker)\n");
}

// The last step of each kind of call, whole.
TEST(CallSimulation, EveryExitModeAndConfirmation) {
    struct Case {
        const char* what;
        std::function<void(CallPlan&)> change;
        const char* events;
        const char* last;
    };
    const auto search = [](MatchMode mode, int min, int max, bool confirmation, int maxMatches) {
        return [=](CallPlan& plan) {
            plan.search = CustomSearch(mode, min, max, 0, 1, 5, confirmation, maxMatches);
        };
    };
    const Case cases[] = {
        {"star", nullptr, "2 *", "2 key *\n  exit *: CMD 2 \"Main menu\"\n"},
        {"pound", nullptr, "#", "1 key #\n  exit #: NOOP\n"},
        {"zero before a digit", nullptr, "0", "1 key 0\n  exit 0: XFER 9 \"Reception\"\n"},
        {"zero at the offer", nullptr, "2 3 2 silence 0",
         "5 key 0\n  exit 0: XFER 9 \"Reception\"\n"},
        {"time-outs", nullptr, "silence silence",
         "2 silence\n  note: no digits before the digit time-out of 10 seconds\n"
         "  note: no retry left (limit 1)\n  exit Timeout: MSG 10 \"Timed out\"\n"},
        {"invalid entries", nullptr, "9 9 9 silence 2 silence",
         "6 silence\n  note: 2 is shorter than the minimum of 3 digits\n"
         "  note: no retry left (limit 1)\n  exit Invalid: MSG 11 \"Not found\"\n"},
        {"no matches", nullptr, "9 9 9 silence",
         "4 silence\n  note: 999 matches no name\n  note: retry 1 of 1\n"
         "  play: MSG 2 \"Spell the last name\"\n  first stage, Last Name: no digits, 5 names\n"},
        {"confirmation exit", nullptr, "2 3 2 silence 7 silence",
         "6 silence\n  note: no choice before the selection time-out of 5 seconds\n"
         "  note: no retry left (limit 1)\n  exit Confirmation Exit: MSG 12 \"No choice\"\n"},
        {"a wrong pick is offered again", nullptr, "2 3 2 silence 7",
         "5 key 7\n  note: no name is offered at 7\n  note: retry 1 of 1\n"
         "  play: MSG 5 \"Before names\"\n  play: MSG 7 \"Name one\" for 1: Grace Adams\n"
         "  play: MSG 6 \"After names\"\n  confirmation: 1 name offered: 1 Grace Adams 2101\n"},
        {"two offered, the second picked", search(MatchMode::LastName, 2, 2, true, 2), "2 2 2",
         "3 key 2\n  note: picked 2\n  play: the name \"Tim Baxter\"\n"
         "  exit Valid Match: XFER 1 \"Operator transfer\", extension 2203 (Tim Baxter)\n"},
        {"too many for the offer", search(MatchMode::LastName, 2, 2, true, 1), "2 2",
         "2 key 2\n  note: 22 matches 2 names, more than the 1 that can be offered\n"
         "  note: retry 1 of 1\n  play: MSG 2 \"Spell the last name\"\n"
         "  first stage, Last Name: no digits, 5 names\n"},
        {"confirmation off connects", search(MatchMode::LastName, 3, 5, false, 5), "2 4 3 silence",
         "4 silence\n  note: 243 matches 1 name\n  play: the name \"Lena Chen\"\n"
         "  exit Valid Match: XFER 1 \"Operator transfer\", extension 2104 (Lena Chen)\n"},
        {"confirmation off, two matches", search(MatchMode::LastName, 2, 2, false, 5), "2 2",
         "2 key 2\n  note: 22 matches 2 names, more than the single match that connects "
         "without confirmation\n  note: retry 1 of 1\n  play: MSG 2 \"Spell the last name\"\n"
         "  first stage, Last Name: no digits, 5 names\n"},
        {"first name", search(MatchMode::FirstName, 3, 3, false, 5), "8 6 6",
         "3 key 6\n  note: 866 matches 1 name\n  play: the name \"Tom Baker\"\n"
         "  exit Valid Match: XFER 1 \"Operator transfer\", extension 2102 (Tom Baker)\n"},
        {"both names, once each", search(MatchMode::BothNames, 1, 1, true, 9), "5",
         "1 key 5\n  note: 5 matches 2 names\n  play: MSG 5 \"Before names\"\n"
         "  play: MSG 7 \"Name one\" for 1: Lena Chen\n"
         "  play: MSG 8 \"Name two\" for 2: Jörg Müller\n  play: MSG 6 \"After names\"\n"
         "  confirmation: 2 names offered: 1 Lena Chen 2104, 2 Jörg Müller\n"},
        {"extension, 0 inside it", search(MatchMode::Extension, 4, 4, false, 5), "2 1 0 4",
         "4 key 4\n  note: 2104 matches 1 name\n  play: the name \"Lena Chen\"\n"
         "  exit Valid Match: XFER 1 \"Operator transfer\", extension 2104 (Lena Chen)\n"},
        {"no name to connect without play name", [](CallPlan& plan) { plan.playName = false; },
         "2 3 2 silence 1",
         "5 key 1\n  note: picked 1\n"
         "  exit Valid Match: XFER 1 \"Operator transfer\", extension 2101 (Grace Adams)\n"},
        {"retries allowed", [](CallPlan& plan) { plan.retryLimit = 2; }, "silence silence",
         "2 silence\n  note: no digits before the digit time-out of 10 seconds\n"
         "  note: retry 2 of 2\n  play: MSG 2 \"Spell the last name\"\n"
         "  first stage, Last Name: no digits, 5 names\n"},
        {"empty directory", [](CallPlan& plan) { plan.names.clear(); }, "5",
         "0 start\n  note: the directory has no names\n  play: MSG 1 \"Main greeting\"\n"
         "  exit Abort: MSG 4 \"Goodbye\"\n"},
        {"no digits allowed", search(MatchMode::LastName, 5, 3, true, 5), "",
         "0 start\n  note: no number of digits is allowed (minimum 5, maximum 3)\n"
         "  play: MSG 1 \"Main greeting\"\n  exit Abort: MSG 4 \"Goodbye\"\n"},
    };
    for (const Case& c : cases) {
        CallPlan plan = SmallPlan();
        if (c.change) {
            c.change(plan);
        }
        const std::vector<CallStep> steps = Call(plan, c.events);
        EXPECT_EQ(StepText(steps.back()), c.last) << c.what;
    }
}

TEST(CallSimulation, EventsJsonAndTheEndOfTheCall) {
    std::string why;
    EXPECT_FALSE(ParseCallEvents("5 6 hush", why));
    EXPECT_EQ(why, "\"hush\" is not a key (0-9, *, #) or \"silence\"");
    ASSERT_TRUE(ParseCallEvents(" 5\t* # SILENCE ", why));
    EXPECT_EQ(ParseCallEvents(" 5\t* # SILENCE ", why)->size(), 4u);

    CallSimulator simulator(SmallPlan());
    simulator.Start();
    for (char key : std::string("232")) {
        simulator.Answer(CallEvent{key});
    }
    EXPECT_EQ(
        StepJson(simulator.Answer(CallEvent{})),
        R"({"step":4,"event":"silence","notes":["232 matches 1 name"],"prompts":["MSG 5 \"Before names\"","MSG 7 \"Name one\" for 1: Grace Adams","MSG 6 \"After names\""],"stage":"confirmation","mode":"","digits":"","matchCount":1,"matches":[{"name":"Grace Adams","extension":"2101"}],"exit":null})");
    EXPECT_EQ(
        StepJson(simulator.Answer(CallEvent{'1'})),
        R"({"step":5,"event":"1","notes":["picked 1"],"prompts":["the name \"Grace Adams\""],"stage":"ended","mode":"","digits":"","matchCount":0,"matches":[],"exit":{"exit":"Valid Match","target":"XFER 1","description":"Operator transfer","name":"Grace Adams","extension":"2101"}})");
    EXPECT_TRUE(simulator.Ended());
    EXPECT_EQ(StepText(simulator.Answer(CallEvent{'5'})),
              "6 key 5\n  note: the call has left the node\n  exit Valid Match: XFER 1 \"Operator "
              "transfer\", extension 2101 (Grace Adams)\n");
    // Start begins the same call again.
    EXPECT_EQ(StepText(simulator.Start()), StepText(Call(SmallPlan(), "").front()));
}

}  // namespace
}  // namespace dbn::directory
