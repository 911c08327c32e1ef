// Every name of generated directories, dialled as the directory check
// reasons about it, reaches that name through Valid Match exactly when the
// check calls it reachable; an unreachable name's call ends where the
// check's reason says.
#include "directory/call_simulation.h"
#include "directory/directory_check.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace dbn::directory {
namespace {

// Parts that make names sharing keys (Baker and Baxter share 22; accented
// letters share the keys of their base letters), short names and names
// without letters.
const char* const kLastNames[] = {"Li",    "Lu",     "Smith", "Smyth",  "Müller", "Muller",
                                  "Baker", "Baxter", "Ng",    "O'Hara", "Żuk",    "Zuk",
                                  "Chen",  "Évora",  "Evans", "Ivy",    "-",      "Kay"};
const char* const kFirstNames[] = {"Ann",  "Anna", "Bo", "Eve", "Jörg",
                                   "Jorg", "Al",   "",   "Tim", "Tom"};

std::vector<DirectoryName> Generate(std::mt19937& random, int count) {
    std::vector<DirectoryName> names;
    auto pick = [&](int size) { return std::uniform_int_distribution<int>(0, size - 1)(random); };
    for (int i = 0; i < count; ++i) {
        DirectoryName name{i + 1, kLastNames[pick(std::size(kLastNames))],
                           kFirstNames[pick(std::size(kFirstNames))], ""};
        // A key that begins with 0 leaves through the 0 action instead: the
        // generated extensions begin with 1 to 9, some share their start,
        // and some are missing.
        if (pick(5) != 0) {
            name.extension = std::to_string(1 + pick(9)) + std::to_string(pick(3)) +
                             (pick(2) ? std::to_string(pick(100)) : "");
        }
        names.push_back(std::move(name));
    }
    return names;
}

// The digits a reason part says a caller dials: "SMITH -> 76484 ..." for a
// name, leading digits for an extension; empty when it names none.
std::string Dialled(const std::string& part, bool extension) {
    std::size_t at = 0;
    if (!extension) {
        const std::size_t arrow = part.find(" -> ");
        if (arrow == std::string::npos || part.find(' ') < arrow) {
            return "";
        }
        at = arrow + 4;
    }
    std::size_t end = at;
    while (end < part.size() && part[end] >= '0' && part[end] <= '9') {
        ++end;
    }
    return part.substr(at, end - at);
}

void Dial(CallSimulator& simulator, const std::string& digits, int maxDigits,
          std::vector<CallStep>& steps) {
    for (char key : digits) {
        steps.push_back(simulator.Answer(CallEvent{key}));
    }
    if (!simulator.Ended() && static_cast<int>(digits.size()) < maxDigits) {
        steps.push_back(simulator.Answer(CallEvent{}));
    }
}

bool AnyNote(const std::vector<CallStep>& steps, const std::string& text) {
    for (const CallStep& step : steps) {
        for (const std::string& note : step.notes) {
            if (note.find(text) != std::string::npos) {
                return true;
            }
        }
    }
    return false;
}

// What the last steps must say for an unreachable name, from its reason.
std::string ExpectedEnd(const std::string& reason, const std::string& lastDigits) {
    for (const char* phrase : {"no number of digits is allowed", "shorter than the minimum"}) {
        if (const std::size_t at = reason.find(phrase); at != std::string::npos) {
            return reason.substr(at);
        }
    }
    if (const std::size_t at = reason.rfind(lastDigits + " matches "); at != std::string::npos) {
        return reason.substr(at, reason.find("; shared") - at);
    }
    return "";
}

TEST(CallProperty, DiallingAsTheCheckReasonsReachesExactlyTheReachableNames) {
    std::mt19937 random(20261125);
    int reached = 0;
    int unreachable = 0;
    for (int first = 1; first <= 4; ++first) {
        for (int second = 0; second <= 2; ++second) {
            for (int round = 0; round < 12; ++round) {
                auto digits = [&] { return std::uniform_int_distribution<int>(1, 6)(random); };
                const bool confirmation = round % 2 == 0;
                const int maxMatches = 1 + round % 9;
                CallPlan plan;
                plan.search = round == 11 ? DefaultLastNameSearch()
                                          : CustomSearch(static_cast<MatchMode>(first), digits(),
                                                         digits(), second, digits(), digits(),
                                                         confirmation, maxMatches);
                plan.retryLimit = 1;
                plan.names = Generate(random, 6 + round * 3);
                const std::vector<NameVerdict> verdicts = CheckDirectory(plan.search, plan.names);
                CallSimulator simulator(plan);
                const SearchSettings& search = plan.search;
                for (std::size_t name = 0; name < plan.names.size(); ++name) {
                    const std::string& reason = verdicts[name].reason;
                    const std::size_t then = reason.find("; then ");
                    const std::string firstDigits =
                        Dialled(reason, search.stages[0].mode == MatchMode::Extension);
                    std::vector<CallStep> steps{simulator.Start()};
                    std::string lastDigits = firstDigits;
                    if (!firstDigits.empty()) {
                        Dial(simulator, firstDigits, search.stages[0].maxDigits, steps);
                    }
                    if (then != std::string::npos && !simulator.Ended()) {
                        lastDigits = Dialled(reason.substr(then + 7), false);
                        Dial(simulator, lastDigits, search.stages[1].maxDigits, steps);
                    }
                    if (simulator.Ended() == false &&
                        steps.back().stage == CallStage::Confirmation) {
                        for (std::size_t i = 0; i < steps.back().matches.size(); ++i) {
                            if (steps.back().matches[i].index == name) {
                                steps.push_back(
                                    simulator.Answer(CallEvent{static_cast<char>('1' + i)}));
                            }
                        }
                    }
                    const std::optional<CallOutcome>& outcome = steps.back().outcome;
                    const bool connected = outcome && outcome->exit == CallExit::ValidMatch &&
                                           outcome->name && outcome->name->index == name;
                    const std::string context = plan.names[name].lastName + "/" +
                                                plan.names[name].firstName + "/" +
                                                plan.names[name].extension + ": " + reason;
                    ASSERT_EQ(connected, verdicts[name].Reachable()) << context;
                    if (connected) {
                        ++reached;
                        continue;
                    }
                    ++unreachable;
                    const std::string end = ExpectedEnd(reason, lastDigits);
                    if (!end.empty()) {
                        EXPECT_TRUE(AnyNote(steps, end)) << context << "\n"
                                                         << StepText(steps.back());
                    }
                }
            }
        }
    }
    // Both kinds were met often.
    EXPECT_GT(reached, 300);
    EXPECT_GT(unreachable, 300);
}

}  // namespace
}  // namespace dbn::directory
