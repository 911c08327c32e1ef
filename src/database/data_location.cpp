#include "database/data_location.h"

#include "database/data_location_internal.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace dbn {
namespace {

constexpr const char* kCompanyFolder = "Corvell";
constexpr const char* kProductFolder = "Sonavis+";
constexpr const char* kDatabaseFolder = "Database";
constexpr const char* kDatabaseFile = "NewDB.mdb";
constexpr const char* kProviderPrefix = "Provider=SQLite;Data Source=";

std::optional<std::string>& DataRootOverride() {
    static std::optional<std::string> root;
    return root;
}

std::string WithTrailingSlash(std::string path) {
    if (path.empty() || path.back() != '/') {
        path += '/';
    }
    return path;
}

}  // namespace

namespace detail {

std::string JoinPath(const std::string& left, const std::string& right) {
    std::string::size_type end = left.size();
    while (end > 0 && left[end - 1] == '/') {
        --end;
    }
    std::string::size_type begin = 0;
    while (begin < right.size() && right[begin] == '/') {
        ++begin;
    }
    return left.substr(0, end) + "/" + right.substr(begin);
}

std::string UserDataRoot() {
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg != nullptr && *xdg != '\0') {
        return xdg;
    }
    const char* home = std::getenv("HOME");
    return JoinPath(home == nullptr ? "" : home, ".local/share");
}

std::string ProductFolderUnder(const std::string& primaryRoot, const std::string& fallbackRoot) {
    const std::string primary =
        WithTrailingSlash(JoinPath(JoinPath(primaryRoot, kCompanyFolder), kProductFolder));
    std::error_code error;
    if (std::filesystem::is_directory(primary, error)) {
        return primary;
    }
    return WithTrailingSlash(JoinPath(JoinPath(fallbackRoot, kCompanyFolder), kProductFolder));
}

}  // namespace detail

void SetDataRootOverride(std::optional<std::string> dir) {
    DataRootOverride() = std::move(dir);
}

std::string GetProductFolder() {
    if (const auto& root = DataRootOverride()) {
        return detail::ProductFolderUnder(*root, *root);
    }
    return detail::ProductFolderUnder(detail::kPrimaryDataRoot, detail::UserDataRoot());
}

std::string GetDatabaseFolder() {
    return WithTrailingSlash(detail::JoinPath(GetProductFolder(), kDatabaseFolder));
}

std::string GetDatabaseFilePath() {
    return GetDatabaseFolder() + kDatabaseFile;
}

std::string BuildConnectionString() {
    return std::string(kProviderPrefix) + GetDatabaseFilePath();
}

}  // namespace dbn
