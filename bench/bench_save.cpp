// Saving: Apply on a changed node whose references all exist (check and
// save), and on one referring to ten missing nodes created under one "Yes to
// All"; each beside the same statements replayed in one bare transaction.
#include "support/bench_data.h"
#include "support/editor_run.h"
#include "support/missing_nodes.h"

#include "form/list_rows.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace dbn::bench {
namespace {

constexpr std::int16_t kPartition = 1;
constexpr std::int16_t kNode = 1;

// The saves that create nodes leave the node pointing at them, so they work
// on a demo database of their own.
BenchDataRoot& CreationRoot() {
    static BenchDataRoot root(BenchDataRoot::Content::Demo);
    return root;
}

BenchDataRoot& RootFor(bool missing) {
    return missing ? CreationRoot() : DemoRoot();
}

// One Apply after a change of the description; answers its time. With
// missing nodes they are first removed again and "Yes to All" is queued.
Clock::duration ApplyOnce(BenchServices& services, form::GUI& gui, bool missing, int round) {
    if (missing) {
        RemoveCreatedNodes(CreationRoot(), kPartition);
        services.confirmAnswers = {form::kConfirmYesToAll};
    }
    gui.txtDescription.SetText(round % 2 == 0 ? "Staff directory (saved)" : "Staff directory");
    const Clock::time_point start = Clock::now();
    gui.cmdApply_Click();
    const Clock::duration spent = Clock::now() - start;
    services.ExpectNoBoxes();
    if (gui.cmdApply.Enabled()) {
        throw std::runtime_error("the save did not commit");
    }
    if (missing &&
        (!services.confirmAnswers.empty() || CreatedNodeCount(CreationRoot(), kPartition) != 10)) {
        throw std::runtime_error("the ten missing nodes were not created under one answer");
    }
    return spent;
}

void Save(benchmark::State& state, bool missing) {
    try {
        RootFor(missing).Use();
        BenchServices services;
        OpenEditor(services, kPartition, kNode, [&](form::GUI& gui, Business_Rules& formRules) {
            if (missing) {
                PointAtMissingNodes(gui);
            }
            const long before = formRules.Db().ExecutedCount();
            int round = 0;
            for (auto _ : state) {
                state.SetIterationTime(Seconds(ApplyOnce(services, gui, missing, round++)));
            }
            state.counters["statements"] =
                static_cast<double>(formRules.Db().ExecutedCount() - before) /
                static_cast<double>(std::max(round, 1));
            state.counters["round_trips"] = 0;  // the floor's replay counts them
        });
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void SaveFloor(benchmark::State& state, bool missing) {
    try {
        RootFor(missing).Use();
        StatementTrace trace;
        BenchServices services;
        OpenEditor(services, kPartition, kNode, [&](form::GUI& gui, Business_Rules& formRules) {
            if (missing) {
                PointAtMissingNodes(gui);
            }
            trace.Attach(formRules.Db());
            ApplyOnce(services, gui, missing, 0);
            StatementTrace::Detach(formRules.Db());
        });
        DataBase db;
        Replay replay(db, trace.Steps(), Transactions::OneForAll);
        for (auto _ : state) {
            if (missing) {
                RemoveCreatedNodes(CreationRoot(), kPartition);
            }
            const Clock::time_point start = Clock::now();
            benchmark::DoNotOptimize(replay.Run());
            state.SetIterationTime(Seconds(Clock::now() - start));
        }
        if (missing && CreatedNodeCount(CreationRoot(), kPartition) != 10) {
            throw std::runtime_error("the replay did not create the ten nodes");
        }
        state.counters["statements"] = static_cast<double>(trace.Statements());
        state.counters["round_trips"] = static_cast<double>(replay.RoundTrips());
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void Register(const char* name, void (*measure)(benchmark::State&, bool), bool missing) {
    benchmark::RegisterBenchmark(name, [=](benchmark::State& s) { measure(s, missing); })
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

}  // namespace
}  // namespace dbn::bench

int main(int argc, char** argv) {
    using namespace dbn::bench;
    Register("save/check-and-save", Save, false);
    Register("save/check-and-save/floor", SaveFloor, false);
    Register("save/ten-created", Save, true);
    Register("save/ten-created/floor", SaveFloor, true);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
