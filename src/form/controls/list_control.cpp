#include "form/controls/list_control.h"

#include "core/component_error.h"
#include "form/controls/raise_event.h"
#include "form/controls/text_rules.h"

#include <algorithm>
#include <utility>

namespace dbn::form {

ListControl::ListControl(ControlKind kind, std::string name, Control* container, Rect rect,
                         int tabIndex)
    : Control(kind, std::move(name), container, rect, tabIndex) {}

void ListControl::Clear() {
    const bool hadEntries = !entries_.empty();
    const bool hadSelection = listIndex_ != -1;
    const bool hadText = !text_.empty();
    entries_.clear();
    newIndex_ = -1;
    listIndex_ = -1;
    text_.clear();
    selStart_ = 0;
    if (hadEntries) {
        NotifyChanged(ChangeAspect::Entries);
    }
    if (hadSelection) {
        NotifyChanged(ChangeAspect::Selection);
    }
    if (hadText) {
        NotifyChanged(ChangeAspect::Text);
    }
}

void ListControl::AddItem(std::string text) {
    entries_.push_back(Entry{std::move(text), 0});
    newIndex_ = ListCount() - 1;
    NotifyChanged(ChangeAspect::Entries);
}

void ListControl::CheckIndex(int index) const {
    if (index < 0 || index >= ListCount()) {
        RaiseError(381, "Invalid property array index");
    }
}

const std::string& ListControl::List(int index) const {
    CheckIndex(index);
    return entries_[static_cast<std::size_t>(index)].text;
}

std::int32_t ListControl::ItemData(int index) const {
    CheckIndex(index);
    return entries_[static_cast<std::size_t>(index)].tag;
}

void ListControl::SetItemData(int index, std::int32_t tag) {
    CheckIndex(index);
    auto& entry = entries_[static_cast<std::size_t>(index)];
    if (entry.tag != tag) {
        entry.tag = tag;
        NotifyChanged(ChangeAspect::Entries);
    }
}

void ListControl::SetListIndex(int index) {
    if (index < -1 || index >= ListCount()) {
        RaiseError(380, "Invalid property value");
    }
    const bool selectionChanged = listIndex_ != index;
    listIndex_ = index;
    std::string text = index == -1 ? std::string() : entries_[static_cast<std::size_t>(index)].text;
    const bool textChanged = text_ != text;
    if (textChanged) {
        text_ = std::move(text);
        selStart_ = std::min(selStart_, CharacterCount(text_));
    }
    if (selectionChanged) {
        NotifyChanged(ChangeAspect::Selection);
    }
    if (textChanged) {
        NotifyChanged(ChangeAspect::Text);
    }
    // Writing the index always counts as a pick, also when it stays the same.
    RaiseEvent(Click);
}

void ListControl::SetText(const std::string& text) {
    if (!IsEditable()) {
        const int index = FindEntry(text);
        if (index == -1) {
            RaiseError(383, "'Text' property is read-only");
        }
        SetListIndex(index);
        return;
    }
    if (text_ == text) {
        return;
    }
    text_ = text;
    selStart_ = std::min(selStart_, CharacterCount(text_));
    NotifyChanged(ChangeAspect::Text);
    RaiseEvent(Change);
}

void ListControl::SetSelStart(int position) {
    const int clamped = std::clamp(position, 0, CharacterCount(text_));
    if (selStart_ != clamped) {
        selStart_ = clamped;
        NotifyChanged(ChangeAspect::Text);
    }
}

int ListControl::FindEntry(const std::string& text) const {
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        return EqualsIgnoringCase(entry.text, text);
    });
    return found == entries_.end() ? -1 : static_cast<int>(found - entries_.begin());
}

int ListControl::FindExactEntry(const std::string& text) const {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Entry& entry) { return entry.text == text; });
    return found == entries_.end() ? -1 : static_cast<int>(found - entries_.begin());
}

}  // namespace dbn::form
