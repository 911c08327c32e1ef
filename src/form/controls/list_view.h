#pragma once

#include "form/controls/control.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace dbn::form {

class ListView;

enum class ColumnAlignment { Left, Right, Center };

struct ColumnHeader {
    std::string text;
    int width = 1440;  // twips
    ColumnAlignment alignment = ColumnAlignment::Left;
};

// The list's display switches, as a reset sets them.
struct ListViewDisplay {
    bool manualLabelEdit = false;
    bool fullRowSelect = false;
    bool gridLines = false;
    bool reportView = false;
    bool multiSelect = false;
    bool hideColumnHeaders = false;
    std::string smallIcons;  // name of the image list

    // This display as the editor's row lists show: a report with headers,
    // grid lines, whole-row selection and labels edited only from code.
    ListViewDisplay AsRowList(bool multiSelectRows) const {
        ListViewDisplay display = *this;
        display.manualLabelEdit = true;
        display.fullRowSelect = true;
        display.gridLines = true;
        display.reportView = true;
        display.multiSelect = multiSelectRows;
        display.hideColumnHeaders = false;
        return display;
    }

    bool operator==(const ListViewDisplay&) const = default;
};

// One row: a key, its own text and up to six sub-item texts (columns 2..7).
class ListItem {
public:
    ListItem(ListView& owner, std::string key, std::string text);

    const std::string& Key() const noexcept { return key_; }
    const std::string& Text() const noexcept { return text_; }
    void SetText(const std::string& text);
    // Sub-items are numbered from 1: the second column is sub-item 1.
    // Reading one that was never written gives the empty text.
    const std::string& SubItem(int index) const;
    void SetSubItem(int index, const std::string& text);
    int SubItemCount() const noexcept { return static_cast<int>(subItems_.size()); }
    // 0-based position in the list.
    int Index() const;
    bool Selected() const noexcept { return selected_; }

private:
    friend class ListView;
    ListView& owner_;
    std::string key_;
    std::string text_;
    std::vector<std::string> subItems_;
    bool selected_ = false;
};

// A row's position inside the list, in twips, as the display lays it out.
struct RowPosition {
    int left = 0;
    int top = 0;
};

// A multi-column list in report form with keyed rows.
//
// Rules: adding a row whose key is present raises error 35602 "Key is not
// unique in collection"; adding a row to a list without a selected row makes
// it the selected, marked row; removing the selected row or clearing the list
// leaves none selected.
class ListView : public Control {
public:
    ListView(std::string name, Control* container, Rect rect, int tabIndex);

    // Columns
    void ClearColumns();
    void AddColumn(ColumnHeader column);
    int ColumnCount() const noexcept { return static_cast<int>(columns_.size()); }
    const ColumnHeader& Column(int index) const;  // 0-based
    const ListViewDisplay& Display() const noexcept { return display_; }
    void SetDisplay(const ListViewDisplay& display);

    // Rows (positions are 0-based)
    ListItem& AddItem(const std::string& key, const std::string& text);
    void RemoveItem(int position);
    void ClearItems();
    int ItemCount() const noexcept { return static_cast<int>(items_.size()); }
    ListItem& ItemAt(int position);  // error 35600 "Index out of bounds"
    const ListItem& ItemAt(int position) const;
    ListItem* FindItem(const std::string& key);
    int PositionOf(const ListItem& item) const;

    // The selected row ("selected item"), or nullptr.
    ListItem* SelectedItem() const noexcept { return selected_; }
    // Makes item the selected, marked row (nullptr: none).
    void SetSelectedItem(ListItem* item);

    // Position of a row inside the list, from the row-geometry provider.
    RowPosition RowPositionOf(const ListItem& item) const;
    using RowGeometry = std::function<RowPosition(const ListView&, int position)>;
    // Replaces the provider (a view supplies real row rectangles). The default
    // lays out a header of 285 twips and rows of 255 twips.
    void SetRowGeometry(RowGeometry geometry);

    // Scrolls so that item is visible (the view follows; the model only records it).
    // Notifies Rows on every call, so that the view scrolls again to a row it
    // was already told about.
    void EnsureVisible(const ListItem& item);
    int EnsuredVisible() const noexcept { return ensuredVisible_; }
    // How many times EnsureVisible was called: a view scrolls once per call,
    // not again on every later change of the rows.
    int EnsureVisibleRequests() const noexcept { return ensureVisibleRequests_; }

    // The container's tab-stop flag of the list.
    bool TabStop() const noexcept { return tabStop_; }
    void SetTabStop(bool tabStop);

    // Events
    std::function<void(ListItem&)> ItemClick;
    std::function<void()> MouseUp;
    // A mouse press on the column header, and vertical scrolling.
    std::function<void()> HeaderPressed;
    std::function<void()> Scrolled;

    // Used by ListItem to report cell changes.
    void NotifyRowsChanged() { NotifyChanged(ChangeAspect::Rows); }

private:
    std::vector<ColumnHeader> columns_;
    ListViewDisplay display_;
    std::vector<std::unique_ptr<ListItem>> items_;
    ListItem* selected_ = nullptr;
    RowGeometry rowGeometry_;
    int ensuredVisible_ = -1;
    int ensureVisibleRequests_ = 0;
    bool tabStop_ = true;
};

}  // namespace dbn::form
