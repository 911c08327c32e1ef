#include "database/sql_translation.h"

#include <algorithm>
#include <cctype>

namespace dbn {
namespace {

bool IsIdentifierStart(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool IsIdentifierChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool IsParameterName(std::string_view name) {
    return name.starts_with("Given_") || name.starts_with("GIVEN_");
}

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    const auto last = text.find_last_not_of(' ');
    return text.substr(first, last - first + 1);
}

bool SameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) ==
               std::tolower(static_cast<unsigned char>(y));
    });
}

// Appends ?N for a parameter name, giving a new name the next number.
void AppendParameter(TranslatedStatement& out, std::string_view name) {
    auto found = std::find_if(out.parameters.begin(), out.parameters.end(),
                              [name](const std::string& known) { return SameName(known, name); });
    std::size_t number = 0;
    if (found == out.parameters.end()) {
        out.parameters.emplace_back(name);
        number = out.parameters.size();
    } else {
        number = static_cast<std::size_t>(found - out.parameters.begin()) + 1;
    }
    out.sql += '?';
    out.sql += std::to_string(number);
}

}  // namespace

TranslatedStatement TranslateToSqlite(std::string_view text) {
    TranslatedStatement out;
    out.sql.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (c == '\'') {
            // A literal runs to the next quote that is not doubled.
            std::size_t end = i + 1;
            while (end < text.size()) {
                if (text[end] == '\'' && (end + 1 >= text.size() || text[end + 1] != '\'')) {
                    break;
                }
                end += text[end] == '\'' ? 2 : 1;
            }
            end = std::min(end + 1, text.size());
            out.sql.append(text.substr(i, end - i));
            i = end;
        } else if (c == '`') {
            const std::size_t close = text.find('`', i + 1);
            const std::size_t end = close == std::string_view::npos ? text.size() : close;
            const std::string_view inner = text.substr(i + 1, end - i - 1);
            const std::string_view name = Trim(inner);
            if (IsParameterName(name)) {
                AppendParameter(out, name);
            } else {
                out.sql += '"';
                out.sql.append(inner);
                out.sql += '"';
            }
            i = close == std::string_view::npos ? text.size() : close + 1;
        } else if (IsIdentifierStart(c)) {
            std::size_t end = i + 1;
            while (end < text.size() && IsIdentifierChar(text[end])) {
                ++end;
            }
            const std::string_view word = text.substr(i, end - i);
            if (IsParameterName(word)) {
                AppendParameter(out, word);
            } else {
                out.sql.append(word);
            }
            i = end;
        } else {
            out.sql += c;
            ++i;
        }
    }
    return out;
}

}  // namespace dbn
