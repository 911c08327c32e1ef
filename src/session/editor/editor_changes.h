#pragma once
// What the editor shows when another program changes the node on show.

#include "session/nodes/node_history.h"

#include <optional>
#include <string>

namespace dbn::form {
class GUI;
}

namespace dbn::session {

// The bar's text for a heard change of the node the form shows, made by
// another program: "DBN 5 was changed by alice on ws1 at 14:02." (local
// time). Nothing for another node's change or for the form's own save (its
// state after is the state the form holds).
std::optional<std::string> ChangeBarText(form::GUI& gui, const HistoryEntry& entry);

// The change's fields against the state the form was loaded from, one per
// line, after who and when.
std::string ChangeBarDetails(form::GUI& gui, const HistoryEntry& entry);

// An ISO 8601 UTC time ("2026-11-25T14:02:07Z") as local "HH:MM"; the text
// itself when it is no such time.
std::string LocalClockTime(const std::string& isoUtc);

}  // namespace dbn::session
