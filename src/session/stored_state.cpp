#include "session/stored_state.h"
#include "core/node_types.h"

#include "database/database.h"
#include "session/load_helpers.h"

#include <variant>

namespace dbn::session {

namespace {

// Appends every row of a command's row set: each value with its column name
// and its kind, so that 1, "1" and Null never read alike.
void AppendRows(std::string& state, RowSet& rows) {
    RowSetCloser closer(rows);
    const std::size_t columns = rows.Columns().size();
    state += rows.Name() + ":" + std::to_string(rows.RowCount()) + "\n";
    for (; !rows.Eof(); rows.MoveNext()) {
        for (std::size_t column = 0; column < columns; ++column) {
            const std::string& name = rows.Columns()[column];
            const FieldValue value = rows.Field(name);
            state += name + "=" + std::to_string(value.Raw().index()) + ":" + value.ToText();
            state += '\x1f';
        }
        state += '\n';
    }
    rows.Close();
}

}  // namespace

std::vector<BatchStep> StoredStateReads(std::int16_t configID, std::int16_t partitionID,
                                        std::int16_t nodeNumber) {
    return {{"Get_DBN_Node",
             {CommandArg(configID), CommandArg(partitionID), CommandArg(nodeNumber),
              CommandArg(node_type::kDialByName)}},
            {"Get_DBN_PromptsNode",
             {CommandArg(configID), CommandArg(partitionID), CommandArg(nodeNumber)}},
            {"Get_Description",
             {CommandArg(configID), CommandArg(partitionID), CommandArg(node_type::kDialByName),
              CommandArg(nodeNumber)}}};
}

std::optional<std::string> StoredStateOf(BatchAnswer& node, BatchAnswer& prompts,
                                         BatchAnswer& pool) {
    if (node.rows.Eof()) {
        return std::nullopt;
    }
    std::string state;
    AppendRows(state, node.rows);
    AppendRows(state, prompts.rows);
    AppendRows(state, pool.rows);
    return state;
}

std::optional<std::string> ReadStoredState(DataBase& db, std::int16_t configID,
                                           std::int16_t partitionID, std::int16_t nodeNumber) {
    std::optional<ReadAheadScope> readAhead;
    if (!db.HasReadAhead()) {
        readAhead.emplace(db);
        db.ReadAhead(StoredStateReads(configID, partitionID, nodeNumber));
    }
    std::string state;
    db.Execute("Get_DBN_Node", {CommandArg(configID), CommandArg(partitionID),
                                CommandArg(nodeNumber), CommandArg(node_type::kDialByName)});
    RowSet& node = db.Recordset("Get_DBN_Node");
    if (node.Eof()) {
        node.Close();
        return std::nullopt;
    }
    AppendRows(state, node);
    db.Execute("Get_DBN_PromptsNode",
               {CommandArg(configID), CommandArg(partitionID), CommandArg(nodeNumber)});
    AppendRows(state, db.Recordset("Get_DBN_PromptsNode"));
    db.Execute("Get_Description", {CommandArg(configID), CommandArg(partitionID),
                                   CommandArg(node_type::kDialByName), CommandArg(nodeNumber)});
    AppendRows(state, db.Recordset("Get_Description"));
    return state;
}

void LockStoredState(DataBase& db, std::int16_t configID, std::int16_t partitionID,
                     std::int16_t nodeNumber) {
    const std::int64_t config = configID;
    const std::int64_t partition = partitionID;
    const std::int64_t number = nodeNumber;
    const std::int64_t type = node_type::kDialByName;
    db.LockRows({
        {"Node_DBN",
         {{"ConfigID", config},
          {"PartID", partition},
          {"NodeTypeID", type},
          {"NodeNumber", number}}},
        {"Detail_DBN_Prompts",
         {{"ConfigID", config}, {"PartID", partition}, {"NodeMasterID", number}}},
        {"Node_General_Pool",
         {{"ConfigID", config},
          {"PartID", partition},
          {"NodeTypeID", type},
          {"NodeNumber", number}}},
    });
}

}  // namespace dbn::session
