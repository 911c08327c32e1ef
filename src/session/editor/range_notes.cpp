#include "session/editor/range_notes.h"

#include <algorithm>
#include <array>

namespace dbn::session {

namespace {

// The columns of Node_DBN that hold a setting with a range, in table order.
// clang-format off
constexpr std::array<std::string_view, 23> kColumnOrder = {
    "NodeDescription", "Method", "DirectoryNodeNumber", "FirstLanguage", "SecondLanguage", "GreetingNodeNumber",
    "FirstMode", "FirstMinDigits", "FirstMaxDigits", "FirstPromptNodeNumber",
    "SecondMode", "SecondMinDigits", "SecondMaxDigits", "SecondPromptNodeNumber",
    "TimeoutNodeNumber", "InvalidNodeNumber", "DigitTimeout", "SelectionTimeout", "RetryLimit",
    "Confirm", "MaxMatch", "PlayName", "ConfirmationExitNodeNumber"};
// clang-format on

int OrderOf(std::string_view column) {
    const auto* found = std::find(kColumnOrder.begin(), kColumnOrder.end(), column);
    return static_cast<int>(found - kColumnOrder.begin());
}

}  // namespace

void RangeNotes::Note(std::string_view column, std::int64_t value, const form::ListControl& shown) {
    notes_.push_back({OrderOf(column), std::string(column), value, &shown, {}, {}});
}

void RangeNotes::NoteText(std::string_view column, std::string stored, std::string shown) {
    notes_.push_back(
        {OrderOf(column), std::string(column), 0, nullptr, std::move(stored), std::move(shown)});
}

std::string RangeNotes::Message(const std::string& node) const {
    if (notes_.empty()) {
        return {};
    }
    std::vector<Entry> ordered = notes_;
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const Entry& a, const Entry& b) { return a.order < b.order; });
    std::string items;
    for (const Entry& note : ordered) {
        items += items.empty() ? "" : "; ";
        if (note.shown == nullptr) {
            items += note.column + " \"" + note.storedText + "\" -> \"" + note.shownText + "\"";
            continue;
        }
        const std::string shown = note.shown->ListIndex() < 0 ? "nothing" : note.shown->Text();
        items += note.column + " " + std::to_string(note.value) + " -> " + shown;
    }
    return "Stored settings of " + node + " outside their range are shown as: " + items +
           ". They are kept as stored unless changed.";
}

}  // namespace dbn::session
