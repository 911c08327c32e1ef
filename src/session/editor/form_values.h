#pragma once

// Reading the values the editor form shows now, for the checks and the call
// simulation that run on unsaved settings.

#include "form/controls/list_control.h"
#include "session/nodes/node_templates.h"

#include <optional>
#include <string>
#include <utility>

namespace dbn::session {

// A whole number's text as the number; 0 when it is none (or beyond an int).
inline int WholeNumberOr0(const std::string& text) {
    const std::optional<long> value = WholeNumber(text);
    return value && std::in_range<int>(*value) ? static_cast<int>(*value) : 0;
}

// The selected entry's text of a number list as a number; 0 when nothing
// (or no number) is selected.
inline int ShownNumber(const form::ListControl& list) {
    return WholeNumberOr0(list.Text());
}

// The tag of the selected entry, or `none` when nothing is selected.
inline int ShownTag(const form::ListControl& list, int none) {
    return list.ListIndex() >= 0 ? list.ItemData(list.ListIndex()) : none;
}

}  // namespace dbn::session
