// copy of the large partition's file to a server database, beside psql's own
// COPY of the same rows into the same tables (run only beside a server:
// scripts/bench's server pass).
#include "support/bench_data.h"
#include "support/child_process.h"
#include "support/editor_run.h"

#include "database/configuration_copy.h"
#include "database/schema_model.h"
#include "test_server.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <stdexcept>

namespace dbn::bench {
namespace {

constexpr const char* kCopyDatabase = "dbn_bench_copy";

std::string TableName(const SchemaTable& table) {
    std::string name = table.name;
    for (char& c : name) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return name;
}

void CopyLarge(benchmark::State& state) {
    try {
        const std::string uri = testing::UriOfDatabase(kCopyDatabase);
        ServerAdminSql(std::string("DROP DATABASE IF EXISTS ") + kCopyDatabase + " WITH (FORCE)");
        ServerAdminSql(std::string("CREATE DATABASE ") + kCopyDatabase);
        const DatabaseTarget from = DatabaseTarget::SqliteFile(LargeRoot().DatabasePath());
        std::size_t rows = 0;
        for (auto _ : state) {
            const Clock::time_point start = Clock::now();
            for (const CopiedTable& table :
                 CopyConfiguration(from, DatabaseTarget::Server(uri), ExistingDatabase::Replace)) {
                rows += table.rows;
            }
            state.SetIterationTime(Seconds(Clock::now() - start));
        }
        state.counters["rows"] = static_cast<double>(rows / state.iterations());
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

// psql loads the rows the copy wrote, from files in COPY's own format, into
// the emptied tables in one transaction: the floor of moving those rows.
void CopyLargeFloor(benchmark::State& state) {
    try {
        const std::string uri = testing::UriOfDatabase(kCopyDatabase);
        const std::string folder = LargeRoot().Root();
        std::ofstream dump(folder + "/dump.sql");
        std::ofstream load(folder + "/load.sql");
        load << "BEGIN;\n";
        for (const SchemaTable& table : ConfigurationSchema()) {
            const std::string file = folder + "/" + TableName(table) + ".copy";
            dump << "\\copy " << TableName(table) << " TO '" << file << "'\n";
            load << "TRUNCATE " << TableName(table) << ";\n\\copy " << TableName(table) << " FROM '"
                 << file << "'\n";
        }
        load << "COMMIT;\n";
        dump.close();
        load.close();
        if (RunChild({"/usr/bin/psql", "-X", "-q", "-v", "ON_ERROR_STOP=1", "-d", uri, "-f",
                      folder + "/dump.sql"})
                .exitStatus != 0) {
            throw std::runtime_error("psql could not dump the copied rows");
        }
        for (auto _ : state) {
            const ChildRun run = RunChild({"/usr/bin/psql", "-X", "-q", "-v", "ON_ERROR_STOP=1",
                                           "-d", uri, "-f", folder + "/load.sql"});
            if (run.exitStatus != 0) {
                throw std::runtime_error("psql could not load the rows");
            }
            state.SetIterationTime(std::chrono::duration<double>(run.wallTime).count());
        }
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

}  // namespace
}  // namespace dbn::bench

int main(int argc, char** argv) {
    using namespace dbn::bench;
    // The floor reads what the measured copy wrote: measured first.
    benchmark::RegisterBenchmark("copy/large", CopyLarge)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(5);
    benchmark::RegisterBenchmark("copy/large/floor", CopyLargeFloor)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(5);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
