// Running a program as a measured child process.
#include "support/child_process.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

namespace dbn::bench {
namespace {

TEST(ChildProcess, ReportsExitStatusMemoryAndTheGivenInputAndEnvironment) {
    EXPECT_EQ(RunChild({"/bin/sh", "-c", "exit 3"}).exitStatus, 3);
    EXPECT_EQ(RunChild({"/bin/sh", "-c", "kill -9 $$"}).exitStatus, -1);

    const ChildRun run =
        RunChild({"/bin/sh", "-c", "test \"$DBN_PROBE\" = yes"}, {{"DBN_PROBE=yes"}, {}});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_GT(run.peakResidentKiB, 0);
    EXPECT_GT(run.wallTime.count(), 0);

    const std::string input = ::testing::TempDir() + "child_input.txt";
    std::ofstream(input) << "hello\n";
    EXPECT_EQ(
        RunChild({"/bin/sh", "-c", "read line && test \"$line\" = hello"}, {{}, input}).exitStatus,
        0);
    // Without an input file the child reads an empty one.
    EXPECT_EQ(RunChild({"/bin/sh", "-c", "read line"}).exitStatus, 1);
}

TEST(ChildProcess, AProgramThatCannotStartIsAnError) {
    EXPECT_THROW(RunChild({"/nonexistent/program"}), std::runtime_error);
}

}  // namespace
}  // namespace dbn::bench
