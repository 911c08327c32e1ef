#include "session/editor/editor_changes.h"

#include "core/node_types.h"
#include "form/gui.h"
#include "nodestate/state_diff.h"

#include <ctime>
#include <stdexcept>

namespace dbn::session {
namespace {

bool ShowsNode(form::GUI& gui, const NodeKey& key) {
    return key.config == gui.ConfigID() && key.partition == gui.PartitionID() &&
           key.typeID == node_type::kDialByName && key.number == gui.nodeNumber();
}

std::optional<nodestate::NodeState> LoadedState(form::GUI& gui) {
    if (!gui.StoredState) {
        return std::nullopt;
    }
    try {
        return nodestate::FromJson(*gui.StoredState);
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
}

}  // namespace

std::optional<std::string> ChangeBarText(form::GUI& gui, const HistoryEntry& entry) {
    if (!ShowsNode(gui, entry.key)) {
        return std::nullopt;
    }
    if (entry.after && gui.StoredState && nodestate::ToJson(*entry.after) == *gui.StoredState) {
        return std::nullopt;  // the form's own save, or a change back to what it shows
    }
    return std::string(node_type::kDialByNameCode) + " " + std::to_string(entry.key.number) +
           " was changed by " + entry.user + " on " + entry.host + " at " +
           LocalClockTime(entry.time) + ".";
}

std::string ChangeBarDetails(form::GUI& gui, const HistoryEntry& entry) {
    std::string text = "Changed by " + entry.user + " on " + entry.host + " at " + entry.time +
                       " (" + entry.kind + ", " + entry.program + ")";
    const std::optional<nodestate::NodeState> loaded = LoadedState(gui);
    const auto changes = nodestate::Diff(loaded, entry.after);
    for (const std::string& line : nodestate::ChangeLines(changes, loaded, entry.after)) {
        text += "\n" + line;
    }
    return text;
}

std::string LocalClockTime(const std::string& isoUtc) {
    std::tm utc{};
    if (strptime(isoUtc.c_str(), "%Y-%m-%dT%H:%M:%SZ", &utc) == nullptr) {
        return isoUtc;
    }
    const std::time_t when = timegm(&utc);
    std::tm local{};
    localtime_r(&when, &local);
    char text[8];
    std::strftime(text, sizeof text, "%H:%M", &local);
    return text;
}

}  // namespace dbn::session
