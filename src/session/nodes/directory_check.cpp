// The directory check of a stored dial-by-name node.
#include "session/nodes/directory_check.h"
#include "core/node_types.h"

#include "core/component_error.h"
#include "database/database.h"
#include "nodefields/node_fields.h"
#include "session/nodes/stored_values.h"

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
        const std::int64_t value = Value(column);
        if (Offered(Rule(column), value)) {
            return static_cast<int>(value);
        }
        Note(column, value, std::to_string(fallback));
        return fallback;
    }

    // The stored value when the field's list names it, else nothing: the
    // list shows its entry `fallback`.
    std::optional<int> Listed(const char* column, const char* fallback) const {
        const std::int64_t value = Value(column);
        for (const auto& [stored, name] : Rule(column).names) {
            if (stored == value) {
                return stored;
            }
        }
        Note(column, value, fallback);
        return std::nullopt;
    }

    void Note(const char* column, std::int64_t value, const std::string& shown) const {
        if (notes_ != nullptr) {
            notes_->push_back(std::string(column) + " " + std::to_string(value) + " -> " + shown);
        }
    }

    static const nodefields::FieldRule& Rule(const char* column) {
        return *nodefields::FieldOfColumn(column);
    }
    static bool Offered(const nodefields::FieldRule& rule, std::int64_t value) {
        return value >= rule.low && value <= rule.high;
    }

private:
    const RowSet& node_;
    std::vector<std::string>* notes_;
};

directory::SearchSettings SearchSettingsOf(const RowSet& node, std::vector<std::string>* notes) {
    const SettingsReader read(node, notes);
    if (read.Listed("Method", "Default Last Name") != 0) {
        return directory::DefaultLastNameSearch();
    }
    const int firstMode = read.Listed("FirstMode", "Last Name").value_or(1);
    const int firstMin = read.InRange("FirstMinDigits", 3);
    const int firstMax = read.InRange("FirstMaxDigits", 5);
    const int secondMode = read.Listed("SecondMode", "None").value_or(0);
    const int secondMin = read.InRange("SecondMinDigits", 1);
    const int secondMax = read.InRange("SecondMaxDigits", 5);
    const bool confirm = read.Listed("Confirm", "Yes").value_or(1) != 0;
    // As the form shows Max Matches: the stored value inside its list, else
    // nothing (0), except that with confirmation on one above the list's top
    // shows the top.
    const nodefields::FieldRule& maxMatch = SettingsReader::Rule("MaxMatch");
    const std::int64_t stored = read.Value("MaxMatch");
    int maxMatches = SettingsReader::Offered(maxMatch, stored) ? static_cast<int>(stored) : 0;
    if (confirm && stored > maxMatch.high) {
        maxMatches = maxMatch.high;
    }
    if (!SettingsReader::Offered(maxMatch, stored)) {
        read.Note("MaxMatch", stored, maxMatches != 0 ? std::to_string(maxMatches) : "nothing");
    }
    return directory::CustomSearch(directory::MatchModeOfTag(firstMode), firstMin, firstMax,
                                   secondMode, secondMin, secondMax, confirm, maxMatches);
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
