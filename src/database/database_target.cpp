#include "database/database_target.h"

#include "database/data_location.h"

#include <libpq-fe.h>

#include <cctype>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace dbn {
namespace {

std::optional<std::string>& DatabaseOverride() {
    static std::optional<std::string> target;
    return target;
}

struct OptionsFree {
    void operator()(PQconninfoOption* options) const { PQconninfoFree(options); }
};
using ConnOptions = std::unique_ptr<PQconninfoOption, OptionsFree>;

ConnOptions ParseConnInfo(const std::string& text) {
    char* error = nullptr;
    ConnOptions options(PQconninfoParse(text.c_str(), &error));
    PQfreemem(error);
    return options;
}

bool LooksLikeKeyValue(const std::string& text) {
    // "word=" at the start, as in "host=db dbname=config"; a path begins
    // with "/", "." or a name without "=" before its first "/".
    const auto equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        return false;
    }
    for (std::size_t i = 0; i < equals; ++i) {
        const char c = text[i];
        if (!(std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == ' ')) {
            return false;
        }
    }
    return ParseConnInfo(text) != nullptr;
}

// Quotes a key/value value when libpq needs it to.
std::string ConnValue(std::string_view value) {
    const bool plain = !value.empty() && value.find_first_of(" '\\") == std::string_view::npos;
    if (plain) {
        return std::string(value);
    }
    std::string quoted = "'";
    for (const char c : value) {
        if (c == '\'' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + "'";
}

}  // namespace

DatabaseTarget ParseDatabaseTarget(const std::string& text) {
    if (text.starts_with("postgresql://") || text.starts_with("postgres://") ||
        LooksLikeKeyValue(text)) {
        return DatabaseTarget::Server(text);
    }
    return DatabaseTarget::SqliteFile(text);
}

void SetDatabaseOverride(std::optional<std::string> target) {
    DatabaseOverride() = std::move(target);
}

DatabaseTarget ResolveDatabaseTarget() {
    if (const auto& target = DatabaseOverride()) {
        return ParseDatabaseTarget(*target);
    }
    if (const char* variable = std::getenv("DBN_DATABASE");
        variable != nullptr && *variable != '\0') {
        return ParseDatabaseTarget(variable);
    }
    return DatabaseTarget::SqliteFile(GetDatabaseFilePath());
}

std::string DisplayName(const DatabaseTarget& target) {
    if (!target.IsServer()) {
        return target.location;
    }
    const ConnOptions options = ParseConnInfo(target.location);
    if (!options) {
        return "(an unreadable server connection string)";
    }
    std::string shown;
    for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
        if (option->val == nullptr || std::string_view(option->keyword) == "password") {
            continue;
        }
        if (!shown.empty()) {
            shown += ' ';
        }
        shown += std::string(option->keyword) + "=" + ConnValue(option->val);
    }
    return shown;
}

namespace {

// The password of a connection string that libpq may not be able to read:
// "user:PASSWORD@" of a URI, or the value of "password=" (quoted or not).
std::string PasswordIn(const std::string& conninfo) {
    if (const auto scheme = conninfo.find("://"); scheme != std::string::npos) {
        const auto at = conninfo.find('@', scheme + 3);
        const auto colon = conninfo.find(':', scheme + 3);
        if (at != std::string::npos && colon != std::string::npos && colon < at) {
            return conninfo.substr(colon + 1, at - colon - 1);
        }
    }
    const auto key = conninfo.find("password");
    if (key == std::string::npos) {
        return {};
    }
    auto start = conninfo.find('=', key);
    if (start == std::string::npos) {
        return {};
    }
    ++start;
    while (start < conninfo.size() && conninfo[start] == ' ') {
        ++start;
    }
    if (start < conninfo.size() && conninfo[start] == '\'') {
        const auto end = conninfo.find('\'', start + 1);
        return conninfo.substr(start + 1, end == std::string::npos ? end : end - start - 1);
    }
    const auto end = conninfo.find_first_of(" &", start);
    return conninfo.substr(start, end == std::string::npos ? end : end - start);
}

}  // namespace

std::string WithoutPassword(std::string text, const std::string& conninfo) {
    const std::string password = PasswordIn(conninfo);
    if (password.empty()) {
        return text;
    }
    for (auto at = text.find(password); at != std::string::npos; at = text.find(password, at + 4)) {
        text.replace(at, password.size(), "****");
    }
    return text;
}

std::optional<std::string> ConnectionStringProblem(const std::string& conninfo) {
    char* error = nullptr;
    ConnOptions options(PQconninfoParse(conninfo.c_str(), &error));
    if (options) {
        PQfreemem(error);
        // libpq reads the time-out only once a server answers; an unusable
        // one is told before, in libpq's words.
        for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
            if (std::string_view(option->keyword) != "connect_timeout" || option->val == nullptr) {
                continue;
            }
            const std::string_view value = option->val;
            const bool whole =
                !value.empty() && value.find_first_not_of(" 0123456789") == std::string_view::npos;
            if (!whole) {
                return "invalid integer value \"" + std::string(value) +
                       "\" for connection option \"connect_timeout\"";
            }
        }
        return std::nullopt;
    }
    std::string reason = error != nullptr ? error : "it is not a connection string";
    PQfreemem(error);
    while (!reason.empty() && (reason.back() == '\n' || reason.back() == ' ')) {
        reason.pop_back();
    }
    return WithoutPassword(std::move(reason), conninfo);
}

bool HasPassword(const DatabaseTarget& target) {
    if (!target.IsServer()) {
        return false;
    }
    const ConnOptions options = ParseConnInfo(target.location);
    if (!options) {
        return !PasswordIn(target.location).empty();
    }
    for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
        if (std::string_view(option->keyword) == "password" && option->val != nullptr &&
            *option->val != '\0') {
            return true;
        }
    }
    return false;
}

}  // namespace dbn
