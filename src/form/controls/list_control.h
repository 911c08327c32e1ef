#pragma once

#include "form/controls/control.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dbn::form {

// A drop-down list, either a choice list (pick only) or an editable list
// (pick or type). Entries are texts with a 32-bit tag.
//
// Event rules:
// - Clear and AddItem raise nothing; Clear leaves no selection and an empty text.
// - SetListIndex(-1 .. count-1) sets the text to that entry's text (empty for
//   -1) and always raises Click, also when the index does not change. Other
//   indexes raise error 380 "Invalid property value".
// - SetText on a choice list selects the first entry whose text matches
//   ignoring case and raises Click as above; no match raises error 383
//   "'Text' property is read-only" and changes nothing.
// - SetText on an editable list raises Change only when the text differs;
//   the selected index stays.
class ListControl : public Control {
public:
    ListControl(ControlKind kind, std::string name, Control* container, Rect rect, int tabIndex);

    bool IsEditable() const noexcept { return Kind() == ControlKind::EditableList; }

    void Clear();
    void AddItem(std::string text);
    int ListCount() const noexcept { return static_cast<int>(entries_.size()); }
    // Entry text; an index out of range raises error 381 "Invalid property array index".
    const std::string& List(int index) const;
    // The index of the entry last added (-1 when none since the last Clear).
    int NewIndex() const noexcept { return newIndex_; }
    std::int32_t ItemData(int index) const;
    void SetItemData(int index, std::int32_t tag);

    int ListIndex() const noexcept { return listIndex_; }
    void SetListIndex(int index);

    const std::string& Text() const noexcept { return text_; }
    void SetText(const std::string& text);

    int SelStart() const noexcept { return selStart_; }
    void SetSelStart(int position);

    // Index of the first entry whose text equals text ignoring case, or -1.
    int FindEntry(const std::string& text) const;
    // Index of the first entry whose text is exactly text, or -1.
    int FindExactEntry(const std::string& text) const;

    std::function<void()> Click;
    std::function<void()> Change;

private:
    struct Entry {
        std::string text;
        std::int32_t tag = 0;
    };
    void CheckIndex(int index) const;

    std::vector<Entry> entries_;
    int newIndex_ = -1;
    int listIndex_ = -1;
    std::string text_;
    int selStart_ = 0;
};

}  // namespace dbn::form
