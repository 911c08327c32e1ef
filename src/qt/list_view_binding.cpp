#include "qt/list_view_binding.h"

#include "form/controls/operator_input.h"
#include "form/in_place_pickers.h"
#include "qt/focus_frame.h"
#include "qt/form_fonts.h"
#include "qt/qt_children.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

#include <algorithm>
#include <memory>

namespace dbn::qt {

// Draws the cells, with grid lines when the list asks for them.
class GridDelegate : public QStyledItemDelegate {
public:
    explicit GridDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

    bool gridLines = false;

    // Rows keep a little room above and below their text, so that an
    // in-place picker laid over a row covers its text.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        constexpr int kRowPadding = 2;
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(std::max(size.height(), option.fontMetrics.height() + 2 * kRowPadding));
        return size;
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        // The current row of the focused list gets a line above and below in
        // the highlight's dark shade, as the focused field elsewhere does.
        if (option.state.testFlag(QStyle::State_HasFocus)) {
            painter->save();
            painter->setPen(
                option.palette.color(QPalette::Active, QPalette::Highlight).darker(160));
            painter->drawLine(option.rect.topLeft(), option.rect.topRight());
            painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
            painter->restore();
        }
        if (!gridLines) {
            return;
        }
        painter->save();
        painter->setPen(option.palette.color(QPalette::Midlight));
        painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
        painter->restore();
    }
};

namespace {

// Columns 2 and beyond hold the row's sub-items.
constexpr int kMaxSubItems = 6;

Qt::Alignment AlignmentOf(form::ColumnAlignment alignment) {
    switch (alignment) {
        case form::ColumnAlignment::Right:
            return Qt::AlignRight | Qt::AlignVCenter;
        case form::ColumnAlignment::Center:
            return Qt::AlignHCenter | Qt::AlignVCenter;
        case form::ColumnAlignment::Left:
            break;
    }
    return Qt::AlignLeft | Qt::AlignVCenter;
}

QString CellText(const form::ListItem& row, int column) {
    if (column == 0) {
        return QString::fromStdString(row.Text());
    }
    return column <= kMaxSubItems ? QString::fromStdString(row.SubItem(column)) : QString();
}

}  // namespace

ListViewBinding::ListViewBinding(form::ListView& list, QTreeWidget& tree, const TwipsScale& scale)
    : ControlBinding(list, tree, scale),
      list_(list),
      tree_(tree),
      grid_(MakeChild<GridDelegate>(tree)) {
    tree.setItemDelegate(&grid_);
    new FocusFrame(tree);  // owned by the tree
    tree.setRootIsDecorated(false);
    tree.setIndentation(0);
    tree.setUniformRowHeights(true);
    tree.setItemsExpandable(false);
    tree.setEditTriggers(QAbstractItemView::NoEditTriggers);
    // The model has one selected row, whatever its multi-select switch says;
    // a tree that toggled rows on each press would show others.
    tree.setSelectionMode(QAbstractItemView::SingleSelection);
    tree.setAllColumnsShowFocus(true);
    tree.header()->setMinimumSectionSize(0);
    tree.header()->setStretchLastSection(false);
    tree.header()->setSectionsMovable(false);
    tree.header()->setFont(FormFont());
    tree.setColumnCount(0);

    WatchFocus(tree);
    QObject::connect(&tree, &QTreeWidget::itemPressed, Context(),
                     [this](QTreeWidgetItem* item, int) { ClickRow(item); });
    // Keyboard moves of the current row count as row clicks; a mouse press
    // is already told by itemPressed.
    QObject::connect(&tree, &QTreeWidget::currentItemChanged, Context(),
                     [this](QTreeWidgetItem* item, QTreeWidgetItem*) {
                         if (!mousePressed_) {
                             ClickRow(item);
                         }
                     });
    Hook(*tree.viewport(), QEvent::MouseButtonPress, [this](QEvent&) {
        mousePressed_ = true;
        return false;
    });
    Hook(*tree.viewport(), QEvent::MouseButtonRelease, [this](QEvent&) {
        mousePressed_ = false;
        return false;
    });
    // Any press on the header, on a section or on a divider.
    Hook(*tree.header()->viewport(), QEvent::MouseButtonPress, [this](QEvent&) {
        Input([this] { return form::operator_input::PressHeader(list_); });
        return false;
    });
    QObject::connect(tree.verticalScrollBar(), &QScrollBar::valueChanged, Context(),
                     [this](int value) {
                         scrollValue_ = value;
                         Input([this] { return form::operator_input::Scroll(list_); });
                     });

    list.SetRowGeometry(
        [this](const form::ListView&, int position) { return RowPosition(position); });
}

ListViewBinding::~ListViewBinding() {
    list_.SetRowGeometry(nullptr);
}

void ListViewBinding::Sync(form::ChangeAspect aspect) {
    // The view's parts signal on their own; none of them may echo a write.
    const QSignalBlocker scrollBlocker(tree_.verticalScrollBar());
    switch (aspect) {
        case form::ChangeAspect::Columns:
            // Dropping columns drops the tree's selection with them.
            SyncColumns();
            SyncRows();
            SyncSelection();
            KeepScrollPosition();
            break;
        case form::ChangeAspect::Rows:
            SyncRows();
            SyncSelection();
            KeepScrollPosition();
            break;
        case form::ChangeAspect::Selection:
            SyncSelection();
            break;
        case form::ChangeAspect::State:
            ControlBinding::Sync(aspect);
            tree_.setFocusPolicy(list_.TabStop() ? Qt::StrongFocus : Qt::ClickFocus);
            break;
        default:
            ControlBinding::Sync(aspect);
            break;
    }
}

void ListViewBinding::SyncColumns() {
    const form::ListViewDisplay& display = list_.Display();
    const int count = list_.ColumnCount();
    tree_.setColumnCount(std::max(count, 1));
    QTreeWidgetItem* header = tree_.headerItem();
    header->setText(0, QString());
    for (int column = 0; column < count; ++column) {
        const form::ColumnHeader& model = list_.Column(column);
        header->setText(column, QString::fromStdString(model.text));
        header->setTextAlignment(column, AlignmentOf(model.alignment));
        tree_.setColumnWidth(column, Scale().ToPixels(model.width));
    }
    tree_.setHeaderHidden(display.hideColumnHeaders);
    tree_.setSelectionBehavior(display.fullRowSelect ? QAbstractItemView::SelectRows
                                                     : QAbstractItemView::SelectItems);
    grid_.gridLines = display.gridLines;
    tree_.viewport()->update();
}

void ListViewBinding::SyncRows() {
    const int rows = list_.ItemCount();
    while (tree_.topLevelItemCount() > rows) {
        const std::unique_ptr<QTreeWidgetItem> removed(
            tree_.takeTopLevelItem(tree_.topLevelItemCount() - 1));
    }
    while (tree_.topLevelItemCount() < rows) {
        // The tree owns its items.
        tree_.addTopLevelItem(std::make_unique<QTreeWidgetItem>().release());
    }
    const int columns = tree_.columnCount();
    for (int position = 0; position < rows; ++position) {
        const form::ListItem& row = list_.ItemAt(position);
        QTreeWidgetItem* item = tree_.topLevelItem(position);
        for (int column = 0; column < columns; ++column) {
            const QString text = CellText(row, column);
            if (item->text(column) != text) {
                item->setText(column, text);
            }
            const Qt::Alignment alignment = column < list_.ColumnCount()
                                                ? AlignmentOf(list_.Column(column).alignment)
                                                : AlignmentOf(form::ColumnAlignment::Left);
            item->setTextAlignment(column, alignment);
        }
    }
    // The list scrolls only when asked to, once per request: a row change
    // after the operator scrolled leaves the rows where they are.
    if (list_.EnsureVisibleRequests() != scrollRequestsDone_) {
        scrollRequestsDone_ = list_.EnsureVisibleRequests();
        if (list_.EnsuredVisible() >= 0 && list_.EnsuredVisible() < rows) {
            tree_.scrollToItem(tree_.topLevelItem(list_.EnsuredVisible()));
        }
        scrollValue_ = tree_.verticalScrollBar()->value();
    }
}

void ListViewBinding::KeepScrollPosition() {
    // Columns dropped and added again while a row is clicked make the
    // horizontal scroll bar come and go, and with it the vertical range,
    // which clamps the position; the rows go back to where the operator left
    // them.
    QScrollBar& scroll = *tree_.verticalScrollBar();
    if (scroll.value() != scrollValue_) {
        tree_.doItemsLayout();
        scroll.setValue(scrollValue_);
    }
}

void ListViewBinding::SyncSelection() {
    const form::ListItem* selected = list_.SelectedItem();
    QTreeWidgetItem* item =
        selected != nullptr ? tree_.topLevelItem(list_.PositionOf(*selected)) : nullptr;
    if (item == nullptr) {
        tree_.clearSelection();
        tree_.setCurrentItem(nullptr);
        return;
    }
    // The whole row, also the columns added since it was selected; and
    // explicitly, since a current item need not be a selected one.
    const int row = tree_.indexOfTopLevelItem(item);
    if (tree_.currentItem() != item || !tree_.selectionModel()->isRowSelected(row, {})) {
        tree_.setCurrentItem(item, 0,
                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
}

void ListViewBinding::ClickRow(QTreeWidgetItem* item) {
    const int position = item != nullptr ? tree_.indexOfTopLevelItem(item) : -1;
    if (position < 0 || position >= list_.ItemCount()) {
        SyncAll();
        return;
    }
    Input(
        [this, position] { return form::operator_input::ClickRow(list_, list_.ItemAt(position)); });
}

form::RowPosition ListViewBinding::RowPosition(int position) const {
    QTreeWidgetItem* item = tree_.topLevelItem(position);
    if (item == nullptr) {
        return {};
    }
    // The row's rectangle lies in the viewport, below the header and inside
    // the frame; the model wants it relative to the whole list. The form lays
    // a row's pickers, which are taller than the row, a fixed drop below the
    // top it is given: that top is chosen so that they come out centred on
    // the row as drawn, covering it and no more of its neighbours than needed.
    const QRect row = tree_.visualItemRect(item);
    const QPoint topLeft = tree_.viewport()->mapTo(&tree_, row.topLeft());
    const int pickerTop =
        topLeft.y() - (Scale().ToPixels(form::kInPlacePickerHeight) - row.height()) / 2;
    return {Scale().ToTwips(topLeft.x()), Scale().ToTwips(pickerTop) - form::kInPlacePickerDrop};
}

}  // namespace dbn::qt
