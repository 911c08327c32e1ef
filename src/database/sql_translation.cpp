#include "database/sql_translation.h"

#include "database/schema_model.h"

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

// How one engine writes what the catalogue writes its own way.
struct Dialect {
    char parameterMark;    // '?' (SQLite ?N) or '$' (PostgreSQL $N)
    bool foldQuotedNames;  // grave-accented names to lower case
};

constexpr Dialect kSqlite{'?', false};
constexpr Dialect kPostgres{'$', true};

// Appends ?N or $N for a parameter name, giving a new name the next number.
void AppendParameter(TranslatedStatement& out, std::string_view name, const Dialect& dialect) {
    auto found = std::find_if(out.parameters.begin(), out.parameters.end(),
                              [name](const std::string& known) { return SameName(known, name); });
    std::size_t number = 0;
    if (found == out.parameters.end()) {
        out.parameters.emplace_back(name);
        number = out.parameters.size();
    } else {
        number = static_cast<std::size_t>(found - out.parameters.begin()) + 1;
    }
    out.sql += dialect.parameterMark;
    out.sql += std::to_string(number);
}

TranslatedStatement Translate(std::string_view text, const Dialect& dialect) {
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
                AppendParameter(out, name, dialect);
            } else {
                out.sql += '"';
                for (const char n : inner) {
                    out.sql += dialect.foldQuotedNames
                                   ? static_cast<char>(std::tolower(static_cast<unsigned char>(n)))
                                   : n;
                }
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
                AppendParameter(out, word, dialect);
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

// Splits a list at its top-level commas, each piece trimmed.
std::vector<std::string> SplitList(std::string_view list) {
    std::vector<std::string> items;
    int depth = 0;
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= list.size(); ++i) {
        const char c = i < list.size() ? list[i] : ',';
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (c == ',' && depth == 0) {
            items.emplace_back(Trim(list.substr(begin, i - begin)));
            begin = i + 1;
        }
    }
    return items;
}

std::string Upper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return upper;
}

std::string Unquoted(std::string_view name) {
    std::string plain(Trim(name));
    plain.erase(std::remove(plain.begin(), plain.end(), '"'), plain.end());
    return plain;
}

// PostgreSQL infers a parameter's type from where it stands, except in the
// select list of INSERT ... SELECT, where it would be taken as text. There
// each bare parameter is cast to the type of the column it fills.
std::string TypeSelectListParameters(const std::string& sql) {
    const std::string upper = Upper(sql);
    const std::size_t start = upper.find_first_not_of(' ');
    if (start == std::string::npos || upper.compare(start, 11, "INSERT INTO") != 0) {
        return sql;
    }
    const std::size_t open = upper.find('(', start);
    const std::size_t close = upper.find(')', open);
    const std::size_t select = upper.find_first_not_of(' ', close + 1);
    if (open == std::string::npos || close == std::string::npos || select == std::string::npos ||
        upper.compare(select, 7, "SELECT ") != 0) {
        return sql;
    }
    const std::size_t listBegin = select + 7;
    const std::size_t listEnd = upper.find(" FROM ", listBegin);
    if (listEnd == std::string::npos) {
        return sql;
    }
    const SchemaTable* table = FindSchemaTable(Unquoted(sql.substr(start + 11, open - start - 11)));
    const std::vector<std::string> columns = SplitList(sql.substr(open + 1, close - open - 1));
    const std::vector<std::string> items = SplitList(sql.substr(listBegin, listEnd - listBegin));
    if (table == nullptr || columns.size() != items.size()) {
        return sql;
    }
    std::string list;
    for (std::size_t i = 0; i < items.size(); ++i) {
        std::string item = items[i];
        const SchemaColumn* column = table->Column(Unquoted(columns[i]));
        if (item.starts_with('$') && column != nullptr) {
            item = "CAST(" + item + " AS " + PostgresColumnType(*column) + ")";
        }
        list += (i == 0 ? "" : ", ") + item;
    }
    return sql.substr(0, listBegin) + list + sql.substr(listEnd);
}

}  // namespace

TranslatedStatement TranslateToSqlite(std::string_view text) {
    return Translate(text, kSqlite);
}

TranslatedStatement TranslateToPostgres(std::string_view text) {
    TranslatedStatement statement = Translate(text, kPostgres);
    statement.sql = TypeSelectListParameters(statement.sql);
    return statement;
}

}  // namespace dbn
