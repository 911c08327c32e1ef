// Navigation: cmdNext across the large partition, per node, beside the
// replay of the statements each step executed on a bare DataBase.
#include "support/bench_data.h"
#include "support/editor_run.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <vector>

namespace dbn::bench {
namespace {

// One pass from the first node to the last, with the form's steps recorded;
// boundaries[i] is where the steps of the i-th click begin.
struct RecordedPass {
    StatementTrace trace;
    std::vector<std::size_t> boundaries;

    std::size_t Clicks() const { return boundaries.size() - 1; }
};

// Moves on to the next node, or back to the first from the last (untimed).
// Answers the time of the move onto the next node.
Clock::duration StepForward(form::GUI& gui) {
    if (!gui.cmdNext.Enabled()) {
        gui.cmdFirst_Click();
    }
    const std::int16_t before = gui.nodeNumber();
    const Clock::time_point start = Clock::now();
    gui.cmdNext_Click();
    const Clock::duration spent = Clock::now() - start;
    if (gui.nodeNumber() != before + 1) {
        throw std::runtime_error("Next did not move to the following node");
    }
    return spent;
}

void RecordPass(RecordedPass& pass) {
    BenchServices services;
    OpenEditor(services, kLargePartition, 1, [&](form::GUI& gui, Business_Rules& formRules) {
        pass.trace.Attach(formRules.Db());
        pass.boundaries.push_back(0);
        while (gui.cmdNext.Enabled()) {
            StepForward(gui);
            pass.boundaries.push_back(pass.trace.Size());
        }
        StatementTrace::Detach(formRules.Db());
    });
    if (pass.Clicks() != kLargeNodeCount - 1) {
        throw std::runtime_error("the pass did not reach every node");
    }
}

void Navigation(benchmark::State& state) {
    try {
        LargeRoot().Use();
        BenchServices services;
        OpenEditor(services, kLargePartition, 1, [&](form::GUI& gui, Business_Rules&) {
            for (auto _ : state) {
                state.SetIterationTime(Seconds(StepForward(gui)));
            }
        });
        RecordedPass pass;
        RecordPass(pass);
        state.counters["statements"] =
            static_cast<double>(pass.trace.Statements()) / static_cast<double>(pass.Clicks());
        state.counters["round_trips"] = 0;  // the floor's replay counts them
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void NavigationFloor(benchmark::State& state) {
    try {
        LargeRoot().Use();
        RecordedPass pass;
        RecordPass(pass);
        DataBase db;
        Replay replay(db, pass.trace.Steps());
        // Opens the connection and warms the cache, as the editor's is.
        replay.Run();
        std::size_t click = 0;
        long roundTrips = 0;
        for (auto _ : state) {
            const Clock::time_point start = Clock::now();
            benchmark::DoNotOptimize(
                replay.Run(pass.boundaries[click], pass.boundaries[click + 1]));
            state.SetIterationTime(Seconds(Clock::now() - start));
            roundTrips = std::max(roundTrips, replay.RoundTrips());
            click = (click + 1) % pass.Clicks();
        }
        state.counters["round_trips"] = static_cast<double>(roundTrips);
        state.counters["statements"] =
            static_cast<double>(pass.trace.Statements()) / static_cast<double>(pass.Clicks());
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

}  // namespace
}  // namespace dbn::bench

BENCHMARK(dbn::bench::Navigation)
    ->Name("navigation/large")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(dbn::bench::NavigationFloor)
    ->Name("navigation/large/floor")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
