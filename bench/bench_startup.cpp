// Start-up: ShowNodeEditor from the call to the modal show, beside the
// replay of the statements it executed on a bare DataBase.
#include "support/bench_data.h"
#include "support/editor_run.h"

#include <benchmark/benchmark.h>

#include <exception>

namespace dbn::bench {
namespace {

struct StartUpCase {
    BenchDataRoot& (*root)();
    std::int16_t partition;
    std::int16_t node;
};

const StartUpCase kDemo{DemoRoot, 1, 1};
const StartUpCase kLarge{LargeRoot, kLargePartition, 1};

// One start-up with the host object's steps recorded (the form's own object
// shares the host's connection).
StatementTrace RecordStartUp(const StartUpCase& c) {
    StatementTrace trace;
    BenchServices services;
    OpenEditor(services, c.partition, c.node, {}, &trace);
    return trace;
}

void StartUp(benchmark::State& state, const StartUpCase& c) {
    try {
        c.root().Use();
        const long statements = RecordStartUp(c).Statements();
        BenchServices services;
        for (auto _ : state) {
            state.SetIterationTime(Seconds(OpenEditor(services, c.partition, c.node)));
        }
        state.counters["statements"] = static_cast<double>(statements);
        // Every run of one program reports the same counters (the table
        // shows the floor's round trips).
        state.counters["round_trips"] = 0;
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void StartUpFloor(benchmark::State& state, const StartUpCase& c) {
    try {
        c.root().Use();
        const StatementTrace trace = RecordStartUp(c);
        long roundTrips = 0;
        for (auto _ : state) {
            // A fresh connection each time, as each editor opens its own.
            DataBase db;
            Replay replay(db, trace.Steps());
            const Clock::time_point start = Clock::now();
            benchmark::DoNotOptimize(replay.Run());
            state.SetIterationTime(Seconds(Clock::now() - start));
            roundTrips = replay.RoundTrips();
        }
        state.counters["round_trips"] = static_cast<double>(roundTrips);
        state.counters["statements"] = static_cast<double>(trace.Statements());
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

}  // namespace
}  // namespace dbn::bench

int main(int argc, char** argv) {
    using namespace dbn::bench;
    for (const auto& [name, c] : {std::pair{"startup/demo", &kDemo}, {"startup/large", &kLarge}}) {
        const StartUpCase& which = *c;
        benchmark::RegisterBenchmark(name, [&which](benchmark::State& s) { StartUp(s, which); })
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark((std::string(name) + "/floor").c_str(),
                                     [&which](benchmark::State& s) { StartUpFloor(s, which); })
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
