#pragma once

// Small pieces shared by the session's operations on stored values: reading
// stored references, describing targets, command arguments and numbers as
// stored. Internal to the session layer.

#include "database/row_set.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

class DataBase;

namespace session {

// A reference as stored: the role's NodeType, NodeNumber and NodeTypeID.
struct StoredRef {
    std::string code;
    std::int16_t number = 0;
    std::int16_t typeID = 0;
};

// Reads <role>NodeType, <role>NodeNumber and <role>NodeTypeID of the current row.
StoredRef ReadRef(const RowSet& rows, const std::string& role);

// The target as the operator sees it: "MSG 12", or the code alone for 814.
std::string TargetText(const StoredRef& ref);

// The NodeDescription of a node's Node_General_Pool row ("" when there is
// none or it is Null), through Get_Description.
std::string LookUpDescription(DataBase& db, std::int16_t configID, std::int16_t partitionID,
                              std::int16_t typeID, std::int16_t number);

// The descriptions of the targets a load shows, read before the load
// changes the form, so that a read that fails leaves the form as it was.
class TargetDescriptions {
public:
    TargetDescriptions(DataBase& db, std::int16_t configID, std::int16_t partitionID)
        : db_(db), configID_(configID), partitionID_(partitionID) {}
    // Reads the description of the current row's `role` target. A reference
    // that does not read is left to the filling, which reports it in its place.
    void Read(const RowSet& rows, const std::string& role);
    // The description read for ref (looked up now when it was not read).
    std::string Of(const StoredRef& ref);

private:
    DataBase& db_;
    std::int16_t configID_;
    std::int16_t partitionID_;
    std::map<std::pair<std::int16_t, std::int16_t>, std::string> read_;
};

// The text with ASCII letters in lower case (a column name as either engine
// spells it).
std::string LowerCase(std::string_view text);

// A stored whole number brought into the 32-bit range the lists compare
// with (values beyond it lie outside every list's range all the same).
std::int32_t Clamped(std::int64_t value);

// Decimal text of a 16-bit value, as every command argument is passed.
inline std::string CommandArg(std::int32_t value) {
    return std::to_string(value);
}

// The text composed when a stored target's type is not available.
std::string MaxNumberWarning(const std::string& code);

// Closes a row set when the scope ends, whatever the path, so that an
// operation that stops on an error does not leave its command unusable.
class RowSetCloser {
public:
    explicit RowSetCloser(RowSet& rows) : rows_(rows) {}
    ~RowSetCloser() {
        if (rows_.IsOpen()) {
            rows_.Close();
        }
    }
    RowSetCloser(const RowSetCloser&) = delete;
    RowSetCloser& operator=(const RowSetCloser&) = delete;

private:
    RowSet& rows_;
};

}  // namespace session
}  // namespace dbn
