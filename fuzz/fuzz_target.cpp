// One libFuzzer target: feeds each generated input to the check named by
// DBN_FUZZ_TARGET and stops the run with the check's finding.
#include "fuzz_checks.h"

#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string finding = dbn::fuzz::RunFuzzCheck(
        DBN_FUZZ_TARGET, std::string_view(reinterpret_cast<const char*>(data), size));
    if (!finding.empty()) {
        std::fprintf(stderr, "%s: %s\n", DBN_FUZZ_TARGET, finding.c_str());
        std::abort();
    }
    return 0;
}
