#include "host/history_output.h"

#include "nodestate/state_diff.h"

namespace dbn::host {

void PrintHistoryEntry(std::ostream& out, const session::HistoryEntry& entry) {
    out << entry.entry << "  " << entry.time << "  " << session::WhoText(entry) << "  "
        << entry.program << "  " << entry.kind << "\n";
    if (!entry.damage.empty()) {
        out << "    " << entry.damage << "\n";
    }
    for (const std::string& line : entry.changeLines) {
        out << "    " << line << "\n";
    }
}

void PrintChangeLine(std::ostream& out, const session::HistoryEntry& entry) {
    out << entry.entry << " " << entry.key.config << "/" << entry.key.partition << " "
        << entry.typeCode << " " << entry.key.number << " " << session::WhoText(entry) << " "
        << entry.kind;
    std::string fields;
    for (const nodestate::FieldChange& change : entry.changes) {
        fields += (fields.empty() ? ": " : ", ") + change.field;
    }
    out << fields << (entry.damage.empty() ? "" : ": " + entry.damage) << "\n";
}

}  // namespace dbn::host
