#include "form/controls/list_view.h"

#include "core/component_error.h"

#include <algorithm>
#include <utility>

namespace dbn::form {

namespace {

constexpr int kSubItemCount = 6;    // columns 2..7
constexpr int kHeaderHeight = 285;  // twips
constexpr int kRowHeight = 255;     // twips

[[noreturn]] void RaiseIndexOutOfBounds() {
    RaiseError(35600, "Index out of bounds");
}

}  // namespace

ListItem::ListItem(ListView& owner, std::string key, std::string text)
    : owner_(owner), key_(std::move(key)), text_(std::move(text)) {}

void ListItem::SetText(const std::string& text) {
    if (text_ != text) {
        text_ = text;
        owner_.NotifyRowsChanged();
    }
}

const std::string& ListItem::SubItem(int index) const {
    static const std::string kEmpty;
    if (index < 1 || index > kSubItemCount) {
        RaiseError(380, "Invalid property value");
    }
    const auto slot = static_cast<std::size_t>(index - 1);
    return slot < subItems_.size() ? subItems_[slot] : kEmpty;
}

void ListItem::SetSubItem(int index, const std::string& text) {
    if (SubItem(index) == text) {
        return;
    }
    const auto slot = static_cast<std::size_t>(index - 1);
    if (subItems_.size() <= slot) {
        subItems_.resize(slot + 1);
    }
    subItems_[slot] = text;
    owner_.NotifyRowsChanged();
}

int ListItem::Index() const {
    return owner_.PositionOf(*this);
}

ListView::ListView(std::string name, Control* container, Rect rect, int tabIndex)
    : Control(ControlKind::ListView, std::move(name), container, rect, tabIndex) {}

void ListView::ClearColumns() {
    if (!columns_.empty()) {
        columns_.clear();
        NotifyChanged(ChangeAspect::Columns);
    }
}

void ListView::AddColumn(ColumnHeader column) {
    columns_.push_back(std::move(column));
    NotifyChanged(ChangeAspect::Columns);
}

const ColumnHeader& ListView::Column(int index) const {
    if (index < 0 || index >= ColumnCount()) {
        RaiseIndexOutOfBounds();
    }
    return columns_[static_cast<std::size_t>(index)];
}

void ListView::SetDisplay(const ListViewDisplay& display) {
    if (!(display_ == display)) {
        display_ = display;
        NotifyChanged(ChangeAspect::Columns);
    }
}

ListItem& ListView::AddItem(const std::string& key, const std::string& text) {
    if (!key.empty() && FindItem(key) != nullptr) {
        RaiseError(35602, "Key is not unique in collection");
    }
    items_.push_back(std::make_unique<ListItem>(*this, key, text));
    ListItem& added = *items_.back();
    NotifyChanged(ChangeAspect::Rows);
    // A list without a selected row selects the first row it receives.
    if (selected_ == nullptr) {
        SetSelectedItem(&added);
    }
    return added;
}

void ListView::RemoveItem(int position) {
    if (position < 0 || position >= ItemCount()) {
        RaiseIndexOutOfBounds();
    }
    const auto at = items_.begin() + position;
    const bool wasSelected = at->get() == selected_;
    if (wasSelected) {
        selected_ = nullptr;
    }
    items_.erase(at);
    if (ensuredVisible_ >= ItemCount()) {
        ensuredVisible_ = -1;
    }
    NotifyChanged(ChangeAspect::Rows);
    if (wasSelected) {
        NotifyChanged(ChangeAspect::Selection);
    }
}

void ListView::ClearItems() {
    if (items_.empty()) {
        return;
    }
    const bool hadSelection = selected_ != nullptr;
    selected_ = nullptr;
    items_.clear();
    ensuredVisible_ = -1;
    NotifyChanged(ChangeAspect::Rows);
    if (hadSelection) {
        NotifyChanged(ChangeAspect::Selection);
    }
}

ListItem& ListView::ItemAt(int position) {
    if (position < 0 || position >= ItemCount()) {
        RaiseIndexOutOfBounds();
    }
    return *items_[static_cast<std::size_t>(position)];
}

const ListItem& ListView::ItemAt(int position) const {
    if (position < 0 || position >= ItemCount()) {
        RaiseIndexOutOfBounds();
    }
    return *items_[static_cast<std::size_t>(position)];
}

ListItem* ListView::FindItem(const std::string& key) {
    if (key.empty()) {
        return nullptr;
    }
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const auto& item) { return item->Key() == key; });
    return found == items_.end() ? nullptr : found->get();
}

int ListView::PositionOf(const ListItem& item) const {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const auto& owned) { return owned.get() == &item; });
    return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

void ListView::SetSelectedItem(ListItem* item) {
    if (item == selected_) {
        return;
    }
    if (item != nullptr && PositionOf(*item) == -1) {
        RaiseError(5, "Invalid procedure call or argument");
    }
    if (selected_ != nullptr) {
        selected_->selected_ = false;
    }
    selected_ = item;
    if (selected_ != nullptr) {
        selected_->selected_ = true;
    }
    NotifyChanged(ChangeAspect::Selection);
}

RowPosition ListView::RowPositionOf(const ListItem& item) const {
    const int position = PositionOf(item);
    if (rowGeometry_) {
        return rowGeometry_(*this, position);
    }
    return RowPosition{0, kHeaderHeight + position * kRowHeight};
}

void ListView::SetRowGeometry(RowGeometry geometry) {
    rowGeometry_ = std::move(geometry);
}

void ListView::EnsureVisible(const ListItem& item) {
    ensuredVisible_ = PositionOf(item);
    ++ensureVisibleRequests_;
    NotifyChanged(ChangeAspect::Rows);
}

void ListView::SetTabStop(bool tabStop) {
    if (tabStop_ != tabStop) {
        tabStop_ = tabStop;
        NotifyChanged(ChangeAspect::State);
    }
}

}  // namespace dbn::form
