// Nodes as text on the large partition: export of its 999 nodes beside the
// bare reads of the same rows, and apply of the export with the label of
// every node changed beside the same writes in one bare transaction.
#include "support/bench_data.h"
#include "support/editor_run.h"
#include "support/every_label_changed.h"

#include "database/database.h"
#include "nodetext/text_form.h"
#include "session/nodes/apply_nodes.h"
#include "session/nodes/node_text_store.h"

#include <benchmark/benchmark.h>

#include <exception>
#include <stdexcept>
#include <string>

namespace dbn::bench {
namespace {

void Export(benchmark::State& state) {
    try {
        LargeRoot().Use();
        DataBase db;
        std::size_t bytes = 0;
        for (auto _ : state) {
            const Clock::time_point start = Clock::now();
            const std::string text =
                nodetext::DocumentText(session::ExportNodes(db, kLargeConfig, kLargePartition));
            state.SetIterationTime(Seconds(Clock::now() - start));
            bytes = text.size();
        }
        state.counters["bytes"] = static_cast<double>(bytes);
        state.counters["statements"] = 0;  // every run reports the same counters
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void ExportFloor(benchmark::State& state) {
    try {
        LargeRoot().Use();
        DataBase db;
        for (auto _ : state) {
            const Clock::time_point start = Clock::now();
            benchmark::DoNotOptimize(session::ReadStoredNodes(db, kLargeConfig, kLargePartition));
            state.SetIterationTime(Seconds(Clock::now() - start));
        }
        state.counters["bytes"] = 0;  // every run reports the same counters
        state.counters["statements"] = 0;
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void Apply(benchmark::State& state) {
    try {
        LargeRoot().Use();
        DataBase db;
        long iteration = 0;
        long statements = 0;
        for (auto _ : state) {
            const nodetext::NodeDocument document = EveryLabelChanged(db, ++iteration);
            const long before = db.ExecutedCount();
            const Clock::time_point start = Clock::now();
            const session::ApplyResult result = session::ApplyNodes(db, document, {});
            state.SetIterationTime(Seconds(Clock::now() - start));
            statements = db.ExecutedCount() - before;
            if (!result.written) {
                throw std::runtime_error("the apply wrote nothing");
            }
        }
        state.counters["statements"] = static_cast<double>(statements);
        state.counters["bytes"] = 0;  // every run reports the same counters
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

// The writes alone: every node's row, pool entry, label and history row in
// one bare transaction, with nothing compared or checked.
void ApplyFloor(benchmark::State& state) {
    try {
        LargeRoot().Use();
        DataBase db;
        long iteration = 0;
        for (auto _ : state) {
            const nodetext::NodeDocument document = EveryLabelChanged(db, ++iteration);
            auto stored = session::ReadStoredNodes(db, kLargeConfig, kLargePartition);
            for (const nodetext::TextNode& node : document.nodes) {
                stored[node.number].columns["NodeDescription"] = node.columns.at("NodeDescription");
            }
            const Clock::time_point start = Clock::now();
            db.BeginTrans();
            std::vector<session::NodeWrite> writes;
            for (const auto& [number, node] : stored) {
                writes.push_back({&node, false, session::ChangeKind::Saved});
            }
            session::WriteNodes(db, kLargeConfig, kLargePartition, writes);
            db.CommitTrans();
            state.SetIterationTime(Seconds(Clock::now() - start));
        }
        state.counters["bytes"] = 0;  // every run reports the same counters
        state.counters["statements"] = 0;
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

}  // namespace
}  // namespace dbn::bench

BENCHMARK(dbn::bench::Export)
    ->Name("node-text/export")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(dbn::bench::ExportFloor)
    ->Name("node-text/export/floor")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(dbn::bench::Apply)
    ->Name("node-text/apply")
    ->UseManualTime()
    ->Iterations(4)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(dbn::bench::ApplyFloor)
    ->Name("node-text/apply/floor")
    ->UseManualTime()
    ->Iterations(4)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
