// The node list's live part: other programs' changes heard and shown, and
// the history of the selected node.
#include "core/component_error.h"
#include "core/node_types.h"
#include "qt/history_window.h"
#include "qt/live_watch.h"
#include "qt/node_list_window.h"
#include "session/history/change_watcher.h"

#include <QBrush>
#include <QCoreApplication>
#include <QEvent>
#include <QPalette>
#include <QStatusBar>
#include <QTableWidget>
#include <QTimer>

#include <functional>
#include <utility>

namespace dbn::qt {
namespace {

// How long a changed row stays marked.
constexpr int kMarkMilliseconds = 4000;

// Calls a function once, on the event loop's turn after the first paint of
// the window or of any widget in it (a window wholly covered by its children
// is never painted itself).
class AfterFirstPaint : public QObject {
public:
    AfterFirstPaint(QWidget& window, std::function<void()> then)
        : QObject(&window), window_(window), then_(std::move(then)) {
        QCoreApplication::instance()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (then_ && event->type() == QEvent::Paint && watched->isWidgetType() &&
            (watched == &window_ || window_.isAncestorOf(static_cast<QWidget*>(watched)))) {
            QCoreApplication::instance()->removeEventFilter(this);
            QTimer::singleShot(0, parent(), std::exchange(then_, {}));
            deleteLater();
        }
        return false;
    }

private:
    QWidget& window_;
    std::function<void()> then_;
};

}  // namespace

void NodeListWindow::StartWatching() {
    long from = 0;
    try {
        from = session::LastHistoryEntry(list_.Database());
    } catch (const ComponentError&) {
        // No live changes without a database; the list says why on Refresh.
        return;
    }
    // The listener's connection is made after the first paint, so that the
    // list shows as soon as it is read.
    new AfterFirstPaint(*this, [this, from] { Listen(from); });  // owned by this window
}

void NodeListWindow::Listen(long from) {
    if (live_ != nullptr) {
        return;
    }
    std::unique_ptr<session::ChangeWatcher> watcher;
    try {
        watcher = std::make_unique<session::ChangeWatcher>(list_.Database().Target(), from);
    } catch (const ComponentError&) {
        return;
    }
    if (!watcher->Active()) {
        return;
    }
    live_ = new LiveWatch(
        std::move(watcher), this,
        [this](const std::vector<session::HistoryEntry>& entries) { ShowChanges(entries); },
        [this](const std::string& notice) {
            statusBar()->showMessage(QString::fromStdString(notice));
        });
    live_->Check();  // what was committed since the list was read
}

void NodeListWindow::TakeChanges() {
    if (live_ != nullptr) {
        live_->Check();
    }
}

void NodeListWindow::ShowChanges(const std::vector<session::HistoryEntry>& entries) {
    const std::optional<session::PartitionKey> shown = ShownPartition();
    std::set<std::int16_t> changed;
    bool affectsShown = false;
    for (const session::HistoryEntry& entry : entries) {
        if (shown && entry.key.config == shown->config && entry.key.partition == shown->partition) {
            affectsShown = true;
            if (entry.key.typeID == node_type::kDialByName) {
                changed.insert(entry.key.number);
            }
        }
    }
    if (!affectsShown) {
        return;
    }
    marked_.insert(changed.begin(), changed.end());
    Refresh();
    QTimer::singleShot(kMarkMilliseconds, this, [this, changed] {
        for (std::int16_t number : changed) {
            marked_.erase(number);
        }
        FillTable(true);
    });
}

void NodeListWindow::MarkRows(const std::set<std::int16_t>& numbers) {
    const QBrush marked = palette().brush(QPalette::Highlight).color().lighter(170);
    for (int row = 0; row < table_->rowCount(); ++row) {
        const auto number =
            static_cast<std::int16_t>(table_->item(row, 0)->data(Qt::UserRole).toInt());
        const bool on = numbers.contains(number);
        for (int column = 0; column < table_->columnCount(); ++column) {
            if (QTableWidgetItem* item = table_->item(row, column)) {
                item->setBackground(on ? marked : QBrush());
            }
        }
    }
}

HistoryWindow* NodeListWindow::ShowHistory(bool modal) {
    const std::optional<session::PartitionKey> shown = ShownPartition();
    const std::optional<std::int16_t> number = SelectedNumber();
    if (!shown || !number) {
        return nullptr;
    }
    auto* window =
        new HistoryWindow(list_.Database(), {shown->config, shown->partition, 15, *number},
                          this);  // owned by this window
    window->setAttribute(Qt::WA_DeleteOnClose, modal);
    if (modal) {
        window->exec();
        Refresh();
        return nullptr;
    }
    window->show();
    return window;
}

}  // namespace dbn::qt
