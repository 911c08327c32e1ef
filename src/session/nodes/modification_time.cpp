#include "session/nodes/modification_time.h"

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

std::string LocalModificationTime(const std::string& isoUtc) {
    std::tm utc{};
    const char* end = strptime(isoUtc.c_str(), "%Y-%m-%dT%H:%M:%SZ", &utc);
    if (end == nullptr || *end != '\0') {
        return isoUtc;
    }
    const std::time_t when = timegm(&utc);
    std::tm local{};
    localtime_r(&when, &local);
    return FormatModificationTime(local);
}

}  // namespace dbn
