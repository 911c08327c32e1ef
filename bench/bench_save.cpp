// Saving: Apply on a changed node whose references all exist (check and
// save), and on one referring to ten missing nodes created under one "Yes to
// All"; each beside the same statements replayed in one bare transaction.
#include "support/bench_data.h"
#include "support/editor_run.h"

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

// A node the edited node is pointed at that the demo partition lacks, with
// the tables its copy from the template fills.
struct MissingNode {
    const char* code;
    int typeID;
    int number;
    std::vector<const char*> tables;  // the node's own table first
};

const std::vector<MissingNode>& MissingNodes() {
    static const std::vector<MissingNode> nodes = {
        {"MSG", 0, 50, {"Node_MSG"}},
        {"LIST", 8, 15, {"Node_LIST", "Detail_LIST"}},
        {"MSG", 0, 51, {"Node_MSG"}},
        {"VOX", 7, 8, {"Node_VOX", "Detail_VOX_Prompts", "Detail_VOX_Action"}},
        {"XFER", 4, 40, {"Node_XFER"}},
        {"MSG", 0, 52, {"Node_MSG"}},
        {"CMD", 1, 15, {"Node_CMD", "Detail_CMD"}},
        {"TIME", 2, 15, {"Node_TIME", "Detail_TIME"}},
        {"DTMF", 6, 25, {"Node_DTMF", "Detail_DTMF_Prompts", "Detail_DTMF_Action"}},
        {"AUTO", 9, 25, {"Node_AUTO", "Detail_AUTO_Prompts", "Detail_AUTO_Action"}},
    };
    return nodes;
}

// Points the six pickers and the first four action rows at the missing nodes.
void PointAtMissingNodes(form::GUI& gui) {
    const std::vector<MissingNode>& nodes = MissingNodes();
    const std::vector<std::pair<form::ListControl*, form::ListControl*>> pickers = {
        {&gui.cmbGreetingNode, &gui.cmbGreetingNumber},
        {&gui.cmbFirstMatchPrompt, &gui.cmbFirstMatchPromptNumber},
        {&gui.cmbSecondMatchPrompt, &gui.cmbSecondMatchPromptNumber},
        {&gui.cmbTimeoutNode, &gui.cmbTimeoutNumber},
        {&gui.cmbInvalidNode, &gui.cmbInvalidNumber},
        {&gui.cmbExitPromptNode, &gui.cmbExitPromptNumber}};
    std::size_t next = 0;
    for (const auto& [node, number] : pickers) {
        node->SetText(nodes[next].code);
        number->SetText(std::to_string(nodes[next].number));
        if (number->Text() != std::to_string(nodes[next].number)) {
            throw std::runtime_error(std::string("cannot pick ") + nodes[next].code);
        }
        ++next;
    }
    for (int row = 0; next < nodes.size(); ++row, ++next) {
        const MissingNode& target = nodes[next];
        form::ListItem& item = gui.LVActions.ItemAt(row);
        item.SetSubItem(form::list_rows::kCommandNode,
                        std::string(target.code) + " " + std::to_string(target.number));
        item.SetSubItem(form::list_rows::kNodeName, target.code);
        item.SetSubItem(form::list_rows::kNodeTypeID, std::to_string(target.typeID));
        item.SetSubItem(form::list_rows::kNodeNumber, std::to_string(target.number));
    }
}

// Deletes the nodes the last save created, so that the next one creates
// them again.
void RemoveCreatedNodes() {
    std::string sql = "BEGIN;";
    const std::string where = " WHERE ConfigID = 1 AND PartID = " + std::to_string(kPartition);
    for (const MissingNode& node : MissingNodes()) {
        const std::string number = std::to_string(node.number);
        for (const std::string table : node.tables) {
            const char* key = table.starts_with("Detail_") ? "NodeMasterID" : "NodeNumber";
            sql += "DELETE FROM " + table + where + " AND " + key + " = " + number + ";";
        }
        sql += "DELETE FROM Node_General_Pool" + where +
               " AND NodeTypeID = " + std::to_string(node.typeID) + " AND NodeNumber = " + number +
               ";";
    }
    CreationRoot().Exec(sql + "COMMIT;");
}

long CreatedNodeCount() {
    long count = 0;
    for (const MissingNode& node : MissingNodes()) {
        count += CreationRoot().QueryNumber(
            "SELECT count(*) FROM Node_General_Pool WHERE ConfigID = 1 AND "
            "PartID = " +
            std::to_string(kPartition) + " AND NodeTypeID = " + std::to_string(node.typeID) +
            " AND NodeNumber = " + std::to_string(node.number));
    }
    return count;
}

// One Apply after a change of the description; answers its time. With
// missing nodes they are first removed again and "Yes to All" is queued.
Clock::duration ApplyOnce(BenchServices& services, form::GUI& gui, bool missing, int round) {
    if (missing) {
        RemoveCreatedNodes();
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
    if (missing && (!services.confirmAnswers.empty() || CreatedNodeCount() != 10)) {
        throw std::runtime_error("the ten missing nodes were not created under one answer");
    }
    return spent;
}

void Save(benchmark::State& state, bool missing) {
    try {
        RootFor(missing).Use();
        BenchServices services;
        StatementTrace trace;
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
            // One more save, traced, for its round trips.
            trace.Attach(formRules.Db());
            ApplyOnce(services, gui, missing, round);
            StatementTrace::Detach(formRules.Db());
        });
        // Every row of a CSV report carries the same counters: the round
        // trips of one save's statements, as the floor counts them.
        if (missing) {
            RemoveCreatedNodes();
        }
        DataBase db;
        Replay replay(db, trace.Steps(), Transactions::OneForAll);
        replay.Run();
        state.counters["round_trips"] = static_cast<double>(replay.RoundTrips());
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
                RemoveCreatedNodes();
            }
            const Clock::time_point start = Clock::now();
            benchmark::DoNotOptimize(replay.Run());
            state.SetIterationTime(Seconds(Clock::now() - start));
        }
        if (missing && CreatedNodeCount() != 10) {
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
