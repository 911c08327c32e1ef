// Reading the names of a directory node for the directory check.
#include "core/component_error.h"
#include "core/node_types.h"
#include "session/nodes/directory_check.h"
#include "session/nodes/stored_values.h"

namespace dbn::session {

std::vector<directory::DirectoryName> ReadDirectoryNames(DataBase& db, std::int16_t config,
                                                         std::int16_t partition,
                                                         std::int16_t directory) {
    db.Execute("Get_DIR_Node", {CommandArg(config), CommandArg(partition), CommandArg(directory),
                                CommandArg(node_type::kDirectory)});
    RowSet& node = db.Recordset("Get_DIR_Node");
    const bool exists = !node.Eof();
    node.Close();
    if (!exists) {
        RaiseError(kErrDirectoryMissing,
                   MissingNodeText(node_type::kDirectoryCode, directory, config, partition));
    }

    db.Execute("Get_DIR_Names", {CommandArg(config), CommandArg(partition), CommandArg(directory)});
    RowSet& rows = db.Recordset("Get_DIR_Names");
    RowSetCloser closer(rows);
    std::vector<directory::DirectoryName> names;
    names.reserve(rows.RowCount());
    for (; !rows.Eof(); rows.MoveNext()) {
        names.push_back({rows.Field("SequenceNo").ToInt32(), rows.Field("LastName").ToText(),
                         rows.Field("FirstName").ToText(), rows.Field("Extension").ToText()});
    }
    return names;
}

}  // namespace dbn::session
