// The directory check of a stored node whose directory holds 1,000, 10,000 or
// 100,000 generated names, beside a floor of reading the same rows and
// sorting the keypad keys the node searches by.
#include "support/bench_data.h"

#include "database/database.h"
#include "directory/keypad_keys.h"
#include "session/nodes/directory_check.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace dbn::bench {
namespace {

constexpr std::int16_t kPartition = 1;
constexpr int kSizes[] = {1000, 10000, 100000};

// Directory and dial-by-name node numbers of each size: DIR 2, 3, 4 and DBN
// 3, 4, 5, each node a copy of demo node 1 (Last Name 3 to 5 digits, First
// Name second, three matches offered) pointed at its directory.
int Slot(int size) {
    return size == 1000 ? 0 : size == 10000 ? 1 : 2;
}
std::int16_t DirectoryOf(int size) {
    return static_cast<std::int16_t>(2 + Slot(size));
}
std::int16_t NodeOf(int size) {
    return static_cast<std::int16_t>(3 + Slot(size));
}

// One syllable of a generated name, chosen by a hash of the row number and a
// salt, so that the syllables of a name vary independently.
std::string Syllable(int salt) {
    return "substr('ba be bi bo bu ka ke ki ko ku ma me mi mo mu sa se si so su ta te ti to tu "
           "la le li lo lu ', ((i * 2654435761 + " +
           std::to_string(salt * 40503) + ") % 4294967291 / 1024 % 30) * 3 + 1, 2)";
}

// Last names of three syllables, first names of two: as in a real directory,
// the larger it is, the more names share their first digits, so that more of
// them need the second stage.
std::string GenerateSql(int size) {
    const std::string dir = std::to_string(DirectoryOf(size));
    const std::string node = std::to_string(NodeOf(size));
    return "INSERT INTO Node_DIR SELECT ConfigID, PartID, NodeTypeID, " + dir +
           ", AccessCode, UsePasswords, NodeType, 'Generated', StartingPromptNumber FROM Node_DIR "
           "WHERE ConfigID = 1 AND PartID = 1 AND NodeNumber = 1;"
           "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
           std::to_string(size) + ") INSERT INTO Detail_DIR SELECT 1, 1, i, " + Syllable(1) +
           " || " + Syllable(2) + " || " + Syllable(3) + ", " + Syllable(4) + " || " + Syllable(5) +
           ", printf('%06d', i), '', '', " + dir +
           " FROM n;"
           "CREATE TEMP TABLE copy AS SELECT * FROM Node_DBN WHERE ConfigID = 1 AND PartID = 1 "
           "AND NodeNumber = 1;"
           "UPDATE copy SET NodeNumber = " +
           node + ", DirectoryNodeNumber = " + dir +
           ";"
           "INSERT INTO Node_DBN SELECT * FROM copy; DROP TABLE copy;";
}

BenchDataRoot& DirectoryRoot() {
    static BenchDataRoot root(BenchDataRoot::Content::Demo);
    static const bool filled = [] {
        for (int size : kSizes) {
            ExecSql(root.DatabasePath(), GenerateSql(size));
        }
        return true;
    }();
    (void)filled;
    return root;
}

void Check(benchmark::State& state, int size) {
    try {
        DirectoryRoot().Use();
        DataBase db;
        for (auto _ : state) {
            const session::ReachableCount count =
                session::CountReachableNames(db, 1, kPartition, NodeOf(size));
            if (count.total != size) {
                throw std::runtime_error("the directory does not hold the generated names");
            }
            benchmark::DoNotOptimize(count.reachable);
        }
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void ReadAndSortKeys(benchmark::State& state, int size) {
    try {
        DirectoryRoot().Use();
        DataBase db;
        for (auto _ : state) {
            const std::vector<directory::DirectoryName> names =
                session::ReadDirectoryNames(db, 1, kPartition, DirectoryOf(size));
            // The node searches by last name, then by first name: the floor
            // makes both keys of every name and sorts them.
            directory::KeypadSpeller speller;
            std::vector<std::string> lastKeys;
            std::vector<std::string> firstKeys;
            lastKeys.reserve(names.size());
            firstKeys.reserve(names.size());
            for (const directory::DirectoryName& name : names) {
                lastKeys.push_back(speller.NameKey(name.lastName).digits);
                firstKeys.push_back(speller.NameKey(name.firstName).digits);
            }
            std::sort(lastKeys.begin(), lastKeys.end());
            std::sort(firstKeys.begin(), firstKeys.end());
            benchmark::DoNotOptimize(lastKeys.data());
            benchmark::DoNotOptimize(firstKeys.data());
        }
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

const bool kRegistered = [] {
    for (int size : kSizes) {
        const std::string name = "directory/" + std::to_string(size);
        benchmark::RegisterBenchmark(name.c_str(), Check, size)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "/floor").c_str(), ReadAndSortKeys, size)
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace
}  // namespace dbn::bench

BENCHMARK_MAIN();
