// A simulated call through a node whose directory holds 100,000 generated
// names: the time to answer one caller event, beside a floor of counting
// the matches of the same digits in the same index.
#include "directory/call_simulation.h"
#include "directory/stage_matcher.h"

#include <benchmark/benchmark.h>

#include <numeric>
#include <string>
#include <vector>

namespace dbn::bench {
namespace {

constexpr int kNames = 100000;

// Last names of three syllables and first names of two, chosen by a hash of
// the row number, as the directory check's measurement makes them.
std::string Syllables(int row, int count, int salt) {
    static const char* const kSyllables[] = {
        "ba", "be", "bi", "bo", "bu", "ka", "ke", "ki", "ko", "ku", "ma", "me", "mi", "mo", "mu",
        "sa", "se", "si", "so", "su", "ta", "te", "ti", "to", "tu", "la", "le", "li", "lo", "lu"};
    std::string text;
    for (int i = 0; i < count; ++i) {
        const unsigned long long hash =
            (static_cast<unsigned long long>(row) * 2654435761ULL + (salt + i) * 40503ULL) %
            4294967291ULL;
        text += kSyllables[hash / 1024 % 30];
    }
    return text;
}

// Demo node 1's settings: Last Name 3 to 5 digits, then First Name 1 to 5,
// three matches offered.
directory::CallPlan LargePlan() {
    directory::CallPlan plan;
    plan.search = directory::CustomSearch(directory::MatchMode::LastName, 3, 5, 2, 1, 5, true, 3);
    plan.greeting = {"MSG 1", "Main greeting"};
    plan.stagePrompts = {{"MSG 2", "Spell the name"}, {"MSG 2", "Spell the name"}};
    plan.namePrompts.assign(3, {"MSG 7", "Name prompt"});
    plan.retryLimit = 5;
    for (int row = 1; row <= kNames; ++row) {
        plan.names.push_back(
            {row, Syllables(row, 3, 1), Syllables(row, 2, 4), std::to_string(100000 + row)});
    }
    return plan;
}

// A caller spelling names: the first digits match thousands of names, the
// longer ones few; the second stage and the offer are met on the way.
const std::vector<directory::CallEvent>& Events() {
    static const std::vector<directory::CallEvent> events = [] {
        std::string why;
        return *directory::ParseCallEvents(
            "5 2 6 2 5 2 silence 2 silence 1 "
            "2 2 2 silence 6 2 silence 1 "
            "7 2 8 2 silence 8 6 silence 1",
            why);
    }();
    return events;
}

void AnswerEvent(benchmark::State& state) {
    directory::CallSimulator simulator(LargePlan());
    simulator.Start();
    std::size_t next = 0;
    for (auto _ : state) {
        if (simulator.Ended()) {
            simulator.Start();
        }
        benchmark::DoNotOptimize(simulator.Answer(Events()[next]));
        next = (next + 1) % Events().size();
    }
}

// The floor: the match count of the first stage's digits dialled so far,
// from the same index.
void CountMatches(benchmark::State& state) {
    const directory::CallPlan plan = LargePlan();
    const std::vector<directory::NameKeys> keys = directory::MakeNameKeys(plan.search, plan.names);
    std::vector<directory::NameIndex> everyone(plan.names.size());
    std::iota(everyone.begin(), everyone.end(), directory::NameIndex{0});
    const directory::StageMatcher matcher(directory::MatchMode::LastName, keys, everyone);
    const std::string prefixes[] = {"5", "52", "526", "5262", "52625"};
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(matcher.Count(prefixes[next]));
        next = (next + 1) % std::size(prefixes);
    }
}

const bool kRegistered = [] {
    benchmark::RegisterBenchmark("simulate/100000", AnswerEvent)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("simulate/100000/floor", CountMatches)
        ->Unit(benchmark::kMicrosecond);
    return true;
}();

}  // namespace
}  // namespace dbn::bench

BENCHMARK_MAIN();
