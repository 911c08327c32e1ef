// The directory check of a stored dial-by-name node.
#include "session/directory_check.h"
#include "core/node_types.h"

#include "core/component_error.h"
#include "database/database.h"
#include "session/load_helpers.h"

#include <optional>

namespace dbn::session {
namespace {

// A stored value when it lies in low..high, else the entry loading falls back to.
int InRange(const RowSet& node, const char* column, int low, int high, int fallback) {
    const int value = node.Field(column).ToInt16();
    return value >= low && value <= high ? value : fallback;
}

}  // namespace

directory::SearchSettings StoredSearchSettings(const RowSet& node) {
    if (node.Field("Method").ToInt16() != 0) {
        return directory::DefaultLastNameSearch();
    }
    const bool confirmation = node.Field("Confirm").ToInt16() != 0;
    // As the form shows Max Matches: the stored value from 1 to 9, else
    // nothing (0), except that with confirmation on one above 9 shows "9".
    const int stored = node.Field("MaxMatch").ToInt16();
    int maxMatches = stored >= 1 && stored <= 9 ? stored : 0;
    if (confirmation && stored > 9) {
        maxMatches = 9;
    }
    return directory::CustomSearch(
        directory::MatchModeOfTag(node.Field("FirstMode").ToInt16()),
        InRange(node, "FirstMinDigits", 1, 9, 3), InRange(node, "FirstMaxDigits", 1, 9, 5),
        InRange(node, "SecondMode", 0, 2, 0), InRange(node, "SecondMinDigits", 1, 9, 1),
        InRange(node, "SecondMaxDigits", 1, 9, 5), confirmation, maxMatches);
}

std::int16_t StoredDirectoryNumber(const RowSet& node) {
    return static_cast<std::int16_t>(InRange(node, "DirectoryNodeNumber", 1, 99, 1));
}

directory::DirectoryReport CheckStoredNode(DataBase& db, std::int16_t config,
                                           std::int16_t partition, std::int16_t node) {
    db.Execute("Get_DBN_Node", {CommandArg(config), CommandArg(partition), CommandArg(node),
                                CommandArg(node_type::kDialByName)});
    RowSet& row = db.Recordset("Get_DBN_Node");
    RowSetCloser closer(row);
    if (row.Eof()) {
        RaiseError(kErrCheckedNodeMissing,
                   "DBN " + std::to_string(node) + " doesn't exist in configuration " +
                       std::to_string(config) + ", partition " + std::to_string(partition) + ".");
    }
    directory::SearchSettings settings = StoredSearchSettings(row);
    const std::int16_t directory = StoredDirectoryNumber(row);
    row.Close();
    // The directory node and its names in one batch.
    std::optional<ReadAheadScope> readAhead;
    if (!db.HasReadAhead()) {
        readAhead.emplace(db);
        db.ReadAhead({{"Get_DIR_Node",
                       {CommandArg(config), CommandArg(partition), CommandArg(directory),
                        CommandArg(kDirTypeID)}},
                      {"Get_DIR_Names",
                       {CommandArg(config), CommandArg(partition), CommandArg(directory)}}});
    }
    return directory::MakeDirectoryReport(config, partition, node, directory, std::move(settings),
                                          ReadDirectoryNames(db, config, partition, directory));
}

ReachableCount CountReachableNames(DataBase& db, std::int16_t config, std::int16_t partition,
                                   std::int16_t node) {
    const directory::DirectoryReport report = CheckStoredNode(db, config, partition, node);
    return {report.ReachableCount(), report.Total()};
}

}  // namespace dbn::session
