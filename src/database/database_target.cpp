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

}  // namespace dbn
