#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace dbn {

// A catalogue statement rewritten for one engine.
struct TranslatedStatement {
    std::string sql;
    // Distinct parameter names (blanks trimmed) in order of first appearance;
    // the name at index i is bound as ?(i+1).
    std::vector<std::string> parameters;
};

// Rewrites a catalogue statement: every Given_/GIVEN_ name, bare or inside
// grave accents (blanks inside the accents allowed), becomes ?N numbered by
// first appearance, a repeated name reusing its number (names compare without
// regard to case); every other grave-accented name becomes a double-quoted
// identifier. Text inside single quotes is kept as it is.
TranslatedStatement TranslateToSqlite(std::string_view text);

// The same for PostgreSQL: parameters become $N, grave-accented names are
// folded to lower case (as PostgreSQL folds the unquoted ones), and a bare
// parameter in the select list of INSERT ... SELECT is cast to the type of
// the column it fills.
TranslatedStatement TranslateToPostgres(std::string_view text);

}  // namespace dbn
