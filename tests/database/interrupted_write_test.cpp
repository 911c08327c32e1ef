// A copy or init that is interrupted leaves nothing beside its target: the
// file it was writing goes with the signal, and one left by a run that was
// killed outright is removed, and told, by the next run.
#include "database/database_setup.h"
#include "database/temporary_files.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace dbn {
namespace {

namespace fs = std::filesystem;
using testing::TempDataRoot;

// The files beside path whose names begin with its name and ".new-".
std::vector<std::string> Temporaries(const std::string& path) {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(fs::path(path).parent_path())) {
        if (entry.path().filename().string().starts_with(fs::path(path).filename().string() +
                                                         ".new-")) {
            found.push_back(entry.path().filename().string());
        }
    }
    return found;
}

TEST(InterruptedWrite, ASignalRemovesTheFileBeingWrittenAndEndsTheProcess) {
    TempDataRoot root;
    const std::string path = root.Root() + "/target.mdb";
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            // The file and its journal exist when the signal comes.
            const std::string temporary = path + ".new-" + std::to_string(::getpid());
            std::ofstream(temporary) << "half";
            std::ofstream(temporary + "-journal") << "half";
            const detail::TemporaryFileGuard guard(temporary);
            ::raise(signal);
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        EXPECT_TRUE(Temporaries(path).empty()) << signal;
    }
}

TEST(InterruptedWrite, TheNextRunRemovesWhatAKilledOneLeftAndSaysSo) {
    TempDataRoot root;
    DBN_FILE_TEST_ONLY(root);
    const std::string path = root.DatabasePath();
    // A process that has ended: its number is free.
    const pid_t gone = ::fork();
    ASSERT_GE(gone, 0);
    if (gone == 0) {
        ::_exit(0);
    }
    ::waitpid(gone, nullptr, 0);
    const std::string left = path + ".new-" + std::to_string(gone);
    std::ofstream(left) << "half";
    std::ofstream(left + "-journal") << "half";
    // One of a run still going (this process) stays.
    const std::string running = path + ".new-" + std::to_string(::getppid());
    std::ofstream(running) << "busy";

    std::vector<std::string> told;
    SetDatabaseNoticeHandler([&told](const std::string& text) { told.push_back(text); });
    CreateConfigurationDatabase(path, false, ExistingDatabase::Replace);
    SetDatabaseNoticeHandler({});

    EXPECT_EQ(told, std::vector<std::string>{"removed " + left +
                                             " and its journal, left by an interrupted run "
                                             "(process " +
                                             std::to_string(gone) + ", which no longer exists)"});
    EXPECT_EQ(Temporaries(path), std::vector<std::string>{fs::path(running).filename().string()});
}

}  // namespace
}  // namespace dbn
