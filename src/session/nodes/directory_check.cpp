// The directory check of a stored dial-by-name node.
#include "session/nodes/directory_check.h"
#include "core/node_types.h"

#include "core/component_error.h"
#include "database/database.h"
#include "nodefields/node_fields.h"
#include "session/nodes/stored_values.h"

#include <algorithm>
#include <optional>
#include <string>

namespace dbn::session {
namespace {

// Reads a stored node's settings whole, whatever their size, as the editor
// shows them, noting each one shown through a fallback as "MaxMatch 40000
// -> 9".
class SettingsReader {
public:
    SettingsReader(const RowSet& node, std::vector<std::string>* notes)
        : node_(node), notes_(notes) {}

    std::int64_t Value(const char* column) const { return node_.Field(column).ToInt64(); }

    // The stored value when it lies in the range the editor's list offers
    // for the field, else the fallback.
    int InRange(const char* column, int fallback) const {
        const nodefields::FieldRule& rule = *nodefields::FieldOfColumn(column);
        const std::int64_t value = Value(column);
        if (value >= rule.low && value <= rule.high) {
            return static_cast<int>(value);
        }
        Note(column, value, std::to_string(fallback));
        return fallback;
    }

    void Note(const char* column, std::int64_t value, const std::string& shown) const {
        if (notes_ != nullptr) {
            notes_->push_back(std::string(column) + " " + std::to_string(value) + " -> " + shown);
        }
    }

private:
    const RowSet& node_;
    std::vector<std::string>* notes_;
};

directory::SearchSettings SearchSettingsOf(const RowSet& node, std::vector<std::string>* notes) {
    const SettingsReader read(node, notes);
    const std::int64_t method = read.Value("Method");
    if (method != 0 && method != 1) {
        read.Note("Method", method, "Default Last Name");
    }
    if (method != 0) {
        return directory::DefaultLastNameSearch();
    }
    const std::int64_t firstMode = read.Value("FirstMode");
    if (firstMode < 1 || firstMode > 4) {
        read.Note("FirstMode", firstMode, "Last Name");
    }
    const int firstMin = read.InRange("FirstMinDigits", 3);
    const int firstMax = read.InRange("FirstMaxDigits", 5);
    const std::int64_t secondMode = read.Value("SecondMode");
    if (secondMode < 0 || secondMode > 2) {
        read.Note("SecondMode", secondMode, "None");
    }
    const int secondMin = read.InRange("SecondMinDigits", 1);
    const int secondMax = read.InRange("SecondMaxDigits", 5);
    const std::int64_t confirm = read.Value("Confirm");
    if (confirm != 0 && confirm != 1) {
        read.Note("Confirm", confirm, "Yes");
    }
    // As the form shows Max Matches: the stored value from 1 to 9, else
    // nothing (0), except that with confirmation on one above 9 shows "9".
    const std::int64_t stored = read.Value("MaxMatch");
    int maxMatches = stored >= 1 && stored <= 9 ? static_cast<int>(stored) : 0;
    if (confirm != 0 && stored > 9) {
        maxMatches = 9;
    }
    if (stored < 1 || stored > 9) {
        read.Note("MaxMatch", stored, maxMatches == 9 ? "9" : "nothing");
    }
    return directory::CustomSearch(
        directory::MatchModeOfTag(static_cast<int>(std::clamp<std::int64_t>(firstMode, 0, 5))),
        firstMin, firstMax, secondMode >= 0 && secondMode <= 2 ? static_cast<int>(secondMode) : 0,
        secondMin, secondMax, confirm != 0, maxMatches);
}

}  // namespace

std::string MissingNodeText(const std::string& type, std::int16_t node, std::int16_t config,
                            std::int16_t partition) {
    return type + " " + std::to_string(node) + " doesn't exist in configuration " +
           std::to_string(config) + ", partition " + std::to_string(partition) + ".";
}

directory::SearchSettings StoredSearchSettings(const RowSet& node) {
    return SearchSettingsOf(node, nullptr);
}

std::int16_t StoredDirectoryNumber(const RowSet& node) {
    return static_cast<std::int16_t>(
        SettingsReader(node, nullptr).InRange("DirectoryNodeNumber", 1));
}

directory::DirectoryReport CheckStoredNode(DataBase& db, std::int16_t config,
                                           std::int16_t partition, std::int16_t node,
                                           std::string* shownAs) {
    db.Execute("Get_DBN_Node", {CommandArg(config), CommandArg(partition), CommandArg(node),
                                CommandArg(node_type::kDialByName)});
    RowSet& row = db.Recordset("Get_DBN_Node");
    RowSetCloser closer(row);
    if (row.Eof()) {
        RaiseError(kErrCheckedNodeMissing,
                   MissingNodeText(node_type::kDialByNameCode, node, config, partition));
    }
    std::vector<std::string> notes;
    directory::SearchSettings settings = SearchSettingsOf(row, &notes);
    // Told in the table's order, as the editor tells them: the directory
    // after the method.
    std::vector<std::string> directoryNote;
    const std::int16_t directory = static_cast<std::int16_t>(
        SettingsReader(row, &directoryNote).InRange("DirectoryNodeNumber", 1));
    const bool methodFirst = !notes.empty() && notes.front().starts_with("Method ");
    notes.insert(notes.begin() + (methodFirst ? 1 : 0), directoryNote.begin(), directoryNote.end());
    row.Close();
    if (shownAs != nullptr) {
        std::string items;
        for (const std::string& note : notes) {
            items += (items.empty() ? "" : "; ") + note;
        }
        *shownAs = notes.empty() ? std::string()
                                 : "Stored settings of DBN " + std::to_string(node) +
                                       " outside their range are shown as: " + items + ".";
    }
    // The directory node and its names in one batch.
    std::optional<ReadAheadScope> readAhead;
    if (!db.HasReadAhead()) {
        readAhead.emplace(db);
        db.ReadAhead({{"Get_DIR_Node",
                       {CommandArg(config), CommandArg(partition), CommandArg(directory),
                        CommandArg(node_type::kDirectory)}},
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
