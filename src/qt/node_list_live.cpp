// The node list's live part: other programs' changes heard and shown, and
// the history of the selected node.
#include "core/component_error.h"
#include "qt/history_window.h"
#include "qt/node_list_window.h"
#include "session/change_watcher.h"

#include <QBrush>
#include <QPalette>
#include <QSocketNotifier>
#include <QTableWidget>
#include <QTimer>

namespace dbn::qt {
namespace {

// How often a file is asked whether another program changed it, and how
// long a changed row stays marked.
constexpr int kFileCheckMilliseconds = 500;
constexpr int kMarkMilliseconds = 4000;

}  // namespace

void NodeListWindow::StartWatching() {
    try {
        watcher_ = std::make_unique<session::ChangeWatcher>(list_.Database().Target());
    } catch (const ComponentError&) {
        // No live changes without a database; the list says why on Refresh.
        return;
    }
    if (!watcher_->Active()) {
        return;
    }
    if (watcher_->Socket() >= 0) {
        notifier_ = new QSocketNotifier(watcher_->Socket(), QSocketNotifier::Read, this);
        connect(notifier_, &QSocketNotifier::activated, this, [this] { TakeChanges(); });
    } else {
        checkTimer_ = new QTimer(this);
        connect(checkTimer_, &QTimer::timeout, this, [this] { TakeChanges(); });
        checkTimer_->start(kFileCheckMilliseconds);
    }
}

void NodeListWindow::TakeChanges() {
    if (!watcher_) {
        return;
    }
    std::vector<session::HistoryEntry> entries;
    try {
        entries = watcher_->NewChanges();
    } catch (const ComponentError&) {
        return;  // heard again on the next change
    }
    const std::optional<session::PartitionKey> shown = ShownPartition();
    std::set<std::int16_t> changed;
    bool affectsShown = false;
    for (const session::HistoryEntry& entry : entries) {
        if (shown && entry.key.config == shown->config && entry.key.partition == shown->partition) {
            affectsShown = true;
            if (entry.key.typeID == 15) {
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
