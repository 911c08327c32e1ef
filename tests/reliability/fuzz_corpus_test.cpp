// Every input kept under fuzz/corpus (the seeds and each input a fuzzer
// once broke the code with) passes its target's check in the normal run.
#include "fuzz_checks.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace dbn::fuzz {
namespace {

namespace fs = std::filesystem;

TEST(FuzzCorpus, EveryKeptInputPassesItsCheck) {
    for (const char* target : {kNumberClampTarget, kSqlTranslationTarget, kScriptLineTarget}) {
        const fs::path folder = fs::path(DBN_FUZZ_CORPUS) / target;
        ASSERT_TRUE(fs::is_directory(folder)) << folder;
        int inputs = 0;
        for (const fs::directory_entry& file : fs::directory_iterator(folder)) {
            std::ifstream in(file.path(), std::ios::binary);
            const std::string input{std::istreambuf_iterator<char>(in),
                                    std::istreambuf_iterator<char>()};
            EXPECT_EQ(RunFuzzCheck(target, input), "") << file.path();
            ++inputs;
        }
        EXPECT_GT(inputs, 0) << "no seed for " << target;
    }
}

}  // namespace
}  // namespace dbn::fuzz
