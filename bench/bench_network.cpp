// The editor across a network: each operation through the relay between the
// editor and the throwaway server, with no delay and with 10 ms added to
// every round trip. Reports the round trips the operation waits for; the
// table takes the time the 10 ms add from the two runs. Server runs only.
#include "network_relay.h"
#include "support/bench_data.h"
#include "support/editor_run.h"
#include "support/every_label_changed.h"
#include "support/missing_nodes.h"

#include "database/database.h"
#include "database/database_target.h"
#include "session/apply_nodes.h"
#include "session/directory_check.h"
#include "session/node_list.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>

namespace dbn::bench {
namespace {

using testing::NetworkRelay;

// The relay in front of a data root's server database, made the process's
// database for the life of the object.
class Relayed {
public:
    Relayed(const BenchDataRoot& root, std::chrono::milliseconds delay) {
        if (!BenchOnServer()) {
            throw std::runtime_error("runs on the server only");
        }
        root.Use();
        relay_ = std::make_unique<NetworkRelay>(NetworkRelay::UpstreamOfUri(root.ServerUri()));
        relay_->SetRoundTripDelay(delay);
        SetDatabaseOverride(relay_->RelayedUri(root.ServerUri()));
    }
    ~Relayed() { SetDatabaseOverride(std::nullopt); }
    Relayed(const Relayed&) = delete;
    Relayed& operator=(const Relayed&) = delete;

    NetworkRelay& Relay() { return *relay_; }

private:
    std::unique_ptr<NetworkRelay> relay_;
};

// One measured step: answers its time; the relay's counts are reset just
// before the part that is timed and noted in `roundTrips` at its end (before
// the connection's end, which waits for nothing).
using Step = std::function<Clock::duration(NetworkRelay&, long& roundTrips)>;

void Measure(benchmark::State& state, const BenchDataRoot& root, int delayMs, const Step& step) {
    try {
        Relayed relayed(root, std::chrono::milliseconds(delayMs));
        long roundTrips = 0;
        for (auto _ : state) {
            state.SetIterationTime(Seconds(step(relayed.Relay(), roundTrips)));
        }
        state.counters["round_trips"] = static_cast<double>(roundTrips);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

// A timed action while the demo node 1 of partition 1 shows.
Clock::duration WhileShown(NetworkRelay& relay, long& roundTrips,
                           const std::function<void(form::GUI&, BenchServices&)>& prepare,
                           const std::function<void(form::GUI&)>& action) {
    BenchServices services;
    Clock::duration spent{};
    OpenEditor(services, 1, 1, [&](form::GUI& gui, Business_Rules&) {
        if (prepare) {
            prepare(gui, services);
        }
        relay.ResetCounts();
        const Clock::time_point start = Clock::now();
        action(gui);
        spent = Clock::now() - start;
        roundTrips = relay.RoundTrips();
    });
    return spent;
}

Clock::duration StartUp(NetworkRelay& relay, long& roundTrips) {
    BenchServices services;
    relay.ResetCounts();
    const Clock::time_point start = Clock::now();
    OpenEditor(services, 1, 1,
               [&](form::GUI&, Business_Rules&) { roundTrips = relay.RoundTrips(); });
    return Clock::now() - start;
}

Clock::duration Next(NetworkRelay& relay, long& roundTrips) {
    return WhileShown(relay, roundTrips, {}, [](form::GUI& gui) { gui.cmdNext_Click(); });
}

Clock::duration Apply(NetworkRelay& relay, long& roundTrips) {
    static int round = 0;
    return WhileShown(
        relay, roundTrips,
        [](form::GUI& gui, BenchServices&) {
            gui.txtDescription.SetText(round++ % 2 == 0 ? "Staff directory (saved)"
                                                        : "Staff directory");
        },
        [](form::GUI& gui) { gui.cmdApply_Click(); });
}

BenchDataRoot& CreationRoot() {
    static BenchDataRoot root(BenchDataRoot::Content::Demo);
    return root;
}

Clock::duration ApplyCreatingTen(NetworkRelay& relay, long& roundTrips) {
    RemoveCreatedNodes(CreationRoot(), 1);
    const Clock::duration spent = WhileShown(
        relay, roundTrips,
        [](form::GUI& gui, BenchServices& services) {
            PointAtMissingNodes(gui);
            services.confirmAnswers = {form::kConfirmYesToAll};
        },
        [](form::GUI& gui) { gui.cmdApply_Click(); });
    if (CreatedNodeCount(CreationRoot(), 1) != 10) {
        throw std::runtime_error("the ten missing nodes were not created");
    }
    return spent;
}

Clock::duration NodeList(NetworkRelay& relay, long& roundTrips) {
    relay.ResetCounts();
    const Clock::time_point start = Clock::now();
    DataBase db;
    const auto rows = session::NodeList(db).Nodes({kLargeConfig, kLargePartition});
    if (rows.size() < static_cast<std::size_t>(kLargeNodeCount)) {
        throw std::runtime_error("the large partition is not listed whole");
    }
    roundTrips = relay.RoundTrips();
    return Clock::now() - start;
}

Clock::duration Check(NetworkRelay& relay, long& roundTrips) {
    relay.ResetCounts();
    const Clock::time_point start = Clock::now();
    DataBase db;
    benchmark::DoNotOptimize(session::CheckStoredNode(db, 1, 1, 1));
    roundTrips = relay.RoundTrips();
    return Clock::now() - start;
}

// apply of the large partition's text with every label changed: the text is
// made before the count starts, on a connection of its own.
Clock::duration ApplyNodesAsText(NetworkRelay& relay, long& roundTrips) {
    static long iteration = 0;
    const nodetext::NodeDocument document = [] {
        DataBase db;
        return EveryLabelChanged(db, ++iteration);
    }();
    relay.ResetCounts();
    const Clock::time_point start = Clock::now();
    DataBase db;
    const session::ApplyResult result = session::ApplyNodes(db, document, {});
    if (!result.problems.empty() || !result.written) {
        throw std::runtime_error("the text was not applied");
    }
    roundTrips = relay.RoundTrips();
    return Clock::now() - start;
}

}  // namespace
}  // namespace dbn::bench

int main(int argc, char** argv) {
    using namespace dbn::bench;
    struct Operation {
        const char* name;
        BenchDataRoot& (*root)();
        Step step;
    };
    const Operation operations[] = {{"startup", DemoRoot, StartUp},
                                    {"next", DemoRoot, Next},
                                    {"apply", DemoRoot, Apply},
                                    {"apply-ten", CreationRoot, ApplyCreatingTen},
                                    {"node-list", LargeRoot, NodeList},
                                    {"check", DemoRoot, Check},
                                    {"apply-text", LargeRoot, ApplyNodesAsText}};
    for (const Operation& operation : operations) {
        for (const int delay : {0, 10}) {
            const std::string name =
                std::string("network/") + operation.name + "/" + std::to_string(delay) + "ms";
            benchmark::RegisterBenchmark(name.c_str(),
                                         [&operation, delay](benchmark::State& state) {
                                             Measure(state, operation.root(), delay,
                                                     operation.step);
                                         })
                ->UseManualTime()
                ->Iterations(delay == 0 ? 20 : 5)
                ->Unit(benchmark::kMillisecond);
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
