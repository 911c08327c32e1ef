#pragma once
// The node list's File > Export... and File > Apply From File...: the shown
// partition's nodes written as a JSON document, and a document's changes
// shown field by field and written only when the operator agrees.

#include "session/nodes/node_list.h"

class QWidget;

namespace dbn {
class DataBase;
}

namespace dbn::qt {

// Asks for a file and writes the partition's nodes into it; a failure is
// shown in one box.
void ExportPartitionToFile(QWidget* parent, DataBase& db, session::PartitionKey partition);

// Asks for a file, shows its changes or its problems, and on Yes writes the
// changes. Answers true when something was written.
bool ApplyFromFile(QWidget* parent, DataBase& db);

}  // namespace dbn::qt
