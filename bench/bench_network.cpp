// The editor across a network: each operation through the relay between the
// editor and the throwaway server, run again and again with no delay and
// with 10 ms added to every round trip, the two interleaved (in turn
// first), so that both see the same conditions. Reports the round trips the
// operation waits for, the median of the paired differences (the time the
// 10 ms add) and the round trips times 10 ms beside it. Server runs only.
#include "network_relay.h"
#include "support/bench_data.h"
#include "support/editor_run.h"
#include "support/every_label_changed.h"
#include "support/missing_nodes.h"

#include "database/database.h"
#include "database/database_target.h"
#include "qt/node_list_window.h"
#include "session/nodes/apply_nodes.h"
#include "session/nodes/directory_check.h"
#include "session/nodes/node_list.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
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

constexpr std::chrono::milliseconds kDelay{10};

// Each iteration runs the step with no delay and with kDelay, in turn first;
// the iteration's time is the undelayed run's.
void Measure(benchmark::State& state, const BenchDataRoot& root, const Step& step) {
    try {
        Relayed relayed(root, std::chrono::milliseconds(0));
        long roundTrips = 0;
        std::vector<double> added;  // milliseconds, one a pair
        bool delayedFirst = false;
        for (auto _ : state) {
            Clock::duration times[2]{};
            for (const bool delayed : {delayedFirst, !delayedFirst}) {
                relayed.Relay().SetRoundTripDelay(delayed ? kDelay : std::chrono::milliseconds(0));
                times[delayed ? 1 : 0] = step(relayed.Relay(), roundTrips);
            }
            delayedFirst = !delayedFirst;
            added.push_back(std::chrono::duration<double, std::milli>(times[1] - times[0]).count());
            state.SetIterationTime(Seconds(times[0]));
        }
        std::nth_element(added.begin(), added.begin() + added.size() / 2, added.end());
        state.counters["round_trips"] = static_cast<double>(roundTrips);
        state.counters["added_ms"] = added.empty() ? 0.0 : added[added.size() / 2];
        state.counters["expected_ms"] = static_cast<double>(roundTrips * kDelay.count());
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

// Notes the time and the relay's round trips at the first paint of `window`
// or of a widget in it.
class FirstPaint : public QObject {
public:
    FirstPaint(QWidget& window, NetworkRelay& relay) : window_(window), relay_(relay) {
        QCoreApplication::instance()->installEventFilter(this);
    }
    ~FirstPaint() override { QCoreApplication::instance()->removeEventFilter(this); }
    bool Painted() const noexcept { return painted_; }
    Clock::time_point At() const noexcept { return at_; }
    long RoundTrips() const noexcept { return roundTrips_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (!painted_ && event->type() == QEvent::Paint && watched->isWidgetType() &&
            (watched == &window_ || window_.isAncestorOf(static_cast<QWidget*>(watched)))) {
            painted_ = true;
            at_ = Clock::now();
            roundTrips_ = relay_.RoundTrips();
        }
        return false;
    }

private:
    QWidget& window_;
    NetworkRelay& relay_;
    bool painted_ = false;
    Clock::time_point at_{};
    long roundTrips_ = 0;
};

// Processes events until done() holds (at most ten seconds).
void ProcessUntil(const std::function<bool()>& done, const char* what) {
    const Clock::time_point end = Clock::now() + std::chrono::seconds(10);
    while (!done() && Clock::now() < end) {
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    if (!done()) {
        throw std::runtime_error(std::string("the node list never ") + what);
    }
}

// The node list window as browse starts it: its connection, its reads, up to
// its first paint. The live-change listener opens after that, on a second
// connection, while the operator already sees the list.
long listenerRoundTrips = 0;
Clock::duration BrowseWindow(NetworkRelay& relay, long& roundTrips) {
    relay.ResetCounts();
    const Clock::time_point start = Clock::now();
    DataBase db;
    qt::NodeListWindow window(db, "bench", [](session::PartitionKey, std::int16_t) {});
    FirstPaint painted(window, relay);
    window.show();
    ProcessUntil([&] { return painted.Painted(); }, "painted");
    roundTrips = painted.RoundTrips();
    // The listener's connection and LISTEN, then its first read of the
    // history on the way.
    ProcessUntil([&] { return relay.Connections() >= 2 && relay.RoundTrips() >= roundTrips + 3; },
                 "listened");
    for (int turn = 0; turn < 20; ++turn) {
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    listenerRoundTrips = relay.RoundTrips() - roundTrips;
    return painted.At() - start;
}

}  // namespace
}  // namespace dbn::bench

int main(int argc, char** argv) {
    using namespace dbn::bench;
    QApplication application(argc, argv);
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
                                    {"apply-text", LargeRoot, ApplyNodesAsText},
                                    {"browse", DemoRoot, BrowseWindow}};
    for (const Operation& operation : operations) {
        const std::string name = std::string("network/") + operation.name;
        const bool large = operation.root == LargeRoot;
        benchmark::RegisterBenchmark(name.c_str(),
                                     [&operation](benchmark::State& state) {
                                         Measure(state, operation.root(), operation.step);
                                         // Every run has every counter.
                                         state.counters["listener_round_trips"] =
                                             std::string(operation.name) == "browse"
                                                 ? static_cast<double>(listenerRoundTrips)
                                                 : 0.0;
                                     })
            ->UseManualTime()
            ->Iterations(large ? 8 : 15)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
