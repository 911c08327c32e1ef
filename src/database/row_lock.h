#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace dbn {

// The rows of one table whose key columns hold the given whole numbers.
struct RowLock {
    std::string table;
    std::vector<std::pair<std::string, std::int64_t>> key;
};

}  // namespace dbn
