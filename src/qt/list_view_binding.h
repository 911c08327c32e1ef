#pragma once

#include "form/controls/list_view.h"
#include "qt/control_binding.h"

#include <QTreeWidget>

namespace dbn::qt {

class GridDelegate;

// A list view as a tree widget in report form: the model's columns, widths,
// display switches, rows and cells. A press on a row is a ClickRow, a press
// on the header a PressHeader, vertical scrolling a Scroll. The binding also
// tells the model where each row really lies, so that the in-place pickers
// can be placed over it.
class ListViewBinding : public ControlBinding {
public:
    ListViewBinding(form::ListView& list, QTreeWidget& tree, const TwipsScale& scale);
    ~ListViewBinding() override;

protected:
    void Sync(form::ChangeAspect aspect) override;

private:
    void SyncColumns();
    void SyncRows();
    void SyncSelection();
    void KeepScrollPosition();
    void ClickRow(QTreeWidgetItem* item);
    form::RowPosition RowPosition(int position) const;

    form::ListView& list_;
    QTreeWidget& tree_;
    GridDelegate& grid_;
    // Between a mouse press on the rows and its release.
    bool mousePressed_ = false;
    // The model's EnsureVisible requests the tree has followed.
    int scrollRequestsDone_ = 0;
    // Where the operator, or a request of the model, last scrolled the rows.
    int scrollValue_ = 0;
};

}  // namespace dbn::qt
