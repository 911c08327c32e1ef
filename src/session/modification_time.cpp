#include "session/modification_time.h"

#include <array>

namespace dbn {

std::string FormatModificationTime(const std::tm& local) {
    std::array<char, 32> text{};
    std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
    return std::string(text.data(), length);
}

std::string CurrentModificationTime() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return FormatModificationTime(local);
}

}  // namespace dbn
