#pragma once
// How history entries are printed by history and watch.

#include "session/nodes/node_history.h"

#include <ostream>

namespace dbn::host {

// "7  2026-11-25T01:35:12Z  alice@ws1  dbn-node-editor 1.0.0  saved", then
// one indented line per changed field.
void PrintHistoryEntry(std::ostream& out, const session::HistoryEntry& entry);

// One line: "7 1/2 DBN 5 alice@ws1 saved: NodeDescription, MaxMatch".
void PrintChangeLine(std::ostream& out, const session::HistoryEntry& entry);

}  // namespace dbn::host
