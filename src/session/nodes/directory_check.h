#pragma once

// The directory check of a dial-by-name node: who in its directory callers
// can reach under its search settings. The check itself is the directory
// library's; these operations read what it needs, from the database or from
// the settings the editor form shows now.

#include "database/database.h"
#include "database/row_set.h"
#include "directory/directory_report.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dbn::form {
class GUI;
}

namespace dbn::session {

// Raised when the dial-by-name node, or the directory node it names, is not stored.
inline constexpr long kErrCheckedNodeMissing = 5001;
inline constexpr long kErrDirectoryMissing = 5002;

// "DBN 5 doesn't exist in configuration 1, partition 2.": a missing node's
// message, its type given by code.
std::string MissingNodeText(const std::string& type, std::int16_t node, std::int16_t config,
                            std::int16_t partition);

// The names of directory node `directory` (its Detail_DIR rows), in sequence
// order. Raises kErrDirectoryMissing when the partition has no such DIR node.
std::vector<directory::DirectoryName> ReadDirectoryNames(DataBase& db, std::int16_t config,
                                                         std::int16_t partition,
                                                         std::int16_t directory);

// The search settings of a stored node (the current row of a Node_DBN row
// set), read as the editor would show them: values outside the fixed lists
// give the same entries loading selects.
directory::SearchSettings StoredSearchSettings(const RowSet& node);
// The directory number of a stored node, 1..99 as the editor shows it.
std::int16_t StoredDirectoryNumber(const RowSet& node);

// The check of a stored node. Raises kErrCheckedNodeMissing or
// kErrDirectoryMissing (ComponentError) when a node is missing. Settings
// beyond the editor's lists are read as the editor shows them; with shownAs
// given, it tells them as the editor does ("Stored settings of DBN 1 outside
// their range are shown as: MaxMatch 40000 -> 9."), or is left empty.
directory::DirectoryReport CheckStoredNode(DataBase& db, std::int16_t config,
                                           std::int16_t partition, std::int16_t node,
                                           std::string* shownAs = nullptr);

// The search settings the form shows now, saved or not.
directory::SearchSettings FormSearchSettings(const form::GUI& form);

// The names of the directory the form shows now, read through the form's own
// session object. Raises kErrDirectoryMissing as above.
std::vector<directory::DirectoryName> ReadFormDirectoryNames(form::GUI& form);

// The check of the node on show in the form, under the settings and the
// directory the form shows now. Reads the directory through the form's own
// session object. Raises kErrDirectoryMissing as above.
directory::DirectoryReport CheckFormNode(form::GUI& form);

// How many of a stored node's directory names callers can reach, of how many.
struct ReachableCount {
    int reachable = 0;
    int total = 0;
};
ReachableCount CountReachableNames(DataBase& db, std::int16_t config, std::int16_t partition,
                                   std::int16_t node);

}  // namespace dbn::session
