#pragma once

// Reading the values the editor form shows now, for the checks and the call
// simulation that run on unsaved settings.

#include "form/controls/list_control.h"

#include <charconv>
#include <string>

namespace dbn::session {

// A whole number's text as the number; 0 when it is none.
inline int WholeNumber(const std::string& text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

// The selected entry's text of a number list as a number; 0 when nothing
// (or no number) is selected.
inline int ShownNumber(const form::ListControl& list) {
    return WholeNumber(list.Text());
}

// The tag of the selected entry, or `none` when nothing is selected.
inline int ShownTag(const form::ListControl& list, int none) {
    return list.ListIndex() >= 0 ? list.ItemData(list.ListIndex()) : none;
}

}  // namespace dbn::session
