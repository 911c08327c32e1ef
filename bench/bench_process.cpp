// Whole processes: the editor's window shown and captured offscreen beside an
// empty dialog of the same size; the editor's first painted frame beside an
// empty dialog's and a same-widgets dialog's; and the peak memory of a scripted run that
// opens the large partition; and `history` of a node with 10,000 entries.
#include "support/bench_data.h"
#include "support/child_process.h"
#include "support/editor_run.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

namespace dbn::bench {
namespace {

const ChildOptions kOffscreen{{"QT_QPA_PLATFORM=offscreen"}, {}};

std::string InRoot(const std::string& name) {
    return DemoRoot().Root() + "/" + name;
}

// Width and height of a PNG file (from its header chunk).
std::pair<std::uint32_t, std::uint32_t> PngSize(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    unsigned char header[24] = {};
    if (!file.read(reinterpret_cast<char*>(header), sizeof header) || header[1] != 'P' ||
        header[12] != 'I') {
        throw std::runtime_error("no PNG picture in " + path);
    }
    auto word = [&header](int at) {
        return std::uint32_t{header[at]} << 24 | std::uint32_t{header[at + 1]} << 16 |
               std::uint32_t{header[at + 2]} << 8 | std::uint32_t{header[at + 3]};
    };
    return {word(16), word(20)};
}

std::vector<std::string> EditCommand() {
    return {DBN_EDITOR_PATH,
            "edit",
            "--data-root",
            DemoRoot().Root(),
            "--screenshot",
            InRoot("editor.png"),
            "1",
            "1",
            "1"};
}

ChildRun RunOrThrow(const std::vector<std::string>& argv, const ChildOptions& options) {
    const ChildRun run = RunChild(argv, options);
    if (run.exitStatus != 0) {
        throw std::runtime_error(argv[0] + " ended with status " + std::to_string(run.exitStatus));
    }
    return run;
}

void TimeRuns(benchmark::State& state, const std::vector<std::string>& argv) {
    RunOrThrow(argv, kOffscreen);  // loads the program and its libraries into the cache
    long peak = 0;
    for (auto _ : state) {
        const ChildRun run = RunOrThrow(argv, kOffscreen);
        state.SetIterationTime(Seconds(run.wallTime));
        peak = std::max(peak, run.peakResidentKiB);
    }
    state.counters["peak_kib"] = static_cast<double>(peak);
}

void Window(benchmark::State& state) {
    try {
        TimeRuns(state, EditCommand());
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void WindowFloor(benchmark::State& state) {
    try {
        RunOrThrow(EditCommand(), kOffscreen);
        const auto [width, height] = PngSize(InRoot("editor.png"));
        TimeRuns(state, {DBN_EMPTY_DIALOG_PATH, std::to_string(width), std::to_string(height),
                         InRoot("empty.png")});
        const auto [floorWidth, floorHeight] = PngSize(InRoot("empty.png"));
        if (floorWidth != width || floorHeight != height) {
            throw std::runtime_error("the empty dialog is not the size of the editor");
        }
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

// From the process start to the first painted frame, no picture taken: the
// editor, an empty dialog of its size, and its widgets built directly with Qt.
void FirstFrame(benchmark::State& state, const std::vector<std::string>& argv) {
    try {
        TimeRuns(state, argv);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void FirstFrameEmpty(benchmark::State& state) {
    try {
        RunOrThrow(EditCommand(), kOffscreen);
        const auto [width, height] = PngSize(InRoot("editor.png"));
        TimeRuns(state,
                 {DBN_FIRST_FRAME_PATH, "empty", std::to_string(width), std::to_string(height)});
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

// `play` opening one node and closing it again; peak memory over the runs.
void PlayMemory(benchmark::State& state, BenchDataRoot& (*root)(), std::int16_t partition) {
    try {
        const std::string script = root().Root() + "/open.play";
        std::ofstream(script) << "open 1 " << partition << " 1\nclose\n";
        TimeRuns(state, {DBN_EDITOR_PATH, "play", "--data-root", root().Root(), script});
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

// A demo database whose DBN 1 has 10,000 history entries: one save by
// play, repeated by SQL.
BenchDataRoot& HistoryRoot() {
    static BenchDataRoot root(BenchDataRoot::Content::Demo);
    static const bool filled = [] {
        const std::string script = root.Root() + "/save.play";
        std::ofstream(script)
            << "open 1 1 1\ntype txtDescription \"Front desk\"\nclick cmdApply\nclick cmdOK\n";
        RunOrThrow({DBN_EDITOR_PATH, "play", "--data-root", root.Root(), script}, kOffscreen);
        ExecSql(root.DatabasePath(),
                "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 9999) "
                "INSERT INTO Node_History SELECT EntryID + i, ConfigID, PartID, NodeTypeID, "
                "NodeNumber, NodeType, ChangedAt, OsUser, Host, DbUser, Program, Kind, Changes, "
                "ChangeText, StateBefore, StateAfter FROM Node_History, n");
        if (QueryNumber(root.DatabasePath(), "SELECT count(*) FROM Node_History") != 10000) {
            throw std::runtime_error("the history was not filled");
        }
        return true;
    }();
    (void)filled;
    return root;
}

// `history` of that node, whole process, beside the same command for a node
// without entries.
void History(benchmark::State& state, const char* node) {
    try {
        TimeRuns(state,
                 {DBN_EDITOR_PATH, "history", "--data-root", HistoryRoot().Root(), "1", "1", node});
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void Register(const char* name, const std::function<void(benchmark::State&)>& measure) {
    benchmark::RegisterBenchmark(name, measure)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(20);
}

}  // namespace
}  // namespace dbn::bench

int main(int argc, char** argv) {
    using namespace dbn::bench;
    Register("window/demo", Window);
    Register("window/demo/floor", WindowFloor);
    Register("first-frame/editor", [](benchmark::State& s) {
        FirstFrame(s, {DBN_FIRST_FRAME_PATH, "editor", DemoRoot().Root()});
    });
    Register("first-frame/editor/floor", FirstFrameEmpty);
    Register("first-frame/same-widgets", [](benchmark::State& s) {
        FirstFrame(s, {DBN_FIRST_FRAME_PATH, "widgets"});
    });
    Register("memory/play-large",
             [](benchmark::State& s) { PlayMemory(s, LargeRoot, kLargePartition); });
    Register("memory/play-demo", [](benchmark::State& s) { PlayMemory(s, DemoRoot, 1); });
    Register("history/10000", [](benchmark::State& s) { History(s, "1"); });
    Register("history/10000/floor", [](benchmark::State& s) { History(s, "2"); });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
