#include "session/nodes/stored_values.h"
#include "core/node_types.h"

#include "core/component_error.h"
#include "database/database.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace dbn::session {

StoredRef ReadRef(const RowSet& rows, const std::string& role) {
    StoredRef ref;
    ref.code = rows.Field(role + "NodeType").ToText();
    ref.number = rows.Field(role + "NodeNumber").ToInt16();
    ref.typeID = rows.Field(role + "NodeTypeID").ToInt16();
    return ref;
}

std::string TargetText(const StoredRef& ref) {
    if (ref.typeID == node_type::kNoNumber) {
        return ref.code;
    }
    return ref.code + " " + std::to_string(ref.number);
}

std::string LookUpDescription(DataBase& db, std::int16_t configID, std::int16_t partitionID,
                              std::int16_t typeID, std::int16_t number) {
    db.Execute("Get_Description", {CommandArg(configID), CommandArg(partitionID),
                                   CommandArg(typeID), CommandArg(number)});
    RowSet& rows = db.Recordset("Get_Description");
    RowSetCloser closer(rows);
    if (rows.Eof()) {
        return {};
    }
    return rows.Field("NodeDescription").ToText();
}

void TargetDescriptions::Read(const RowSet& rows, const std::string& role) {
    StoredRef ref;
    try {
        ref = ReadRef(rows, role);
    } catch (const ComponentError&) {
        return;
    }
    const std::pair key{ref.typeID, ref.number};
    if (!read_.contains(key)) {
        read_[key] = LookUpDescription(db_, configID_, partitionID_, ref.typeID, ref.number);
    }
}

std::string TargetDescriptions::Of(const StoredRef& ref) {
    const auto found = read_.find({ref.typeID, ref.number});
    if (found != read_.end()) {
        return found->second;
    }
    return LookUpDescription(db_, configID_, partitionID_, ref.typeID, ref.number);
}

std::string MaxNumberWarning(const std::string& code) {
    return "Please check the \"Max Number of each Node\" Section for " + code +
           " Node in Partition Settings.";
}

std::string LowerCase(std::string_view text) {
    std::string lowered(text);
    for (char& c : lowered) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return lowered;
}

std::int32_t Clamped(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(
        value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

}  // namespace dbn::session
