#include "qt/live_watch.h"

#include "core/component_error.h"
#include "session/history/change_watcher.h"

#include <QSocketNotifier>
#include <QTimer>

namespace dbn::qt {
namespace {

// How often a file (or a server being connected to again) is asked.
constexpr int kCheckMilliseconds = 500;

}  // namespace

LiveWatch::LiveWatch(std::unique_ptr<session::ChangeWatcher> watcher, QObject* parent,
                     Entries onEntries, Notice onNotice)
    : QObject(parent),
      watcher_(std::move(watcher)),
      onEntries_(std::move(onEntries)),
      onNotice_(std::move(onNotice)),
      timer_(new QTimer(this)) {
    connect(timer_, &QTimer::timeout, this, [this] { Check(); });
    Arm();
}

LiveWatch::~LiveWatch() = default;

void LiveWatch::Arm() {
    const int socket = watcher_->Socket();
    if (socket != armed_) {
        delete notifier_;
        notifier_ = nullptr;
        if (socket >= 0) {
            notifier_ = new QSocketNotifier(socket, QSocketNotifier::Read, this);
            connect(notifier_, &QSocketNotifier::activated, this, [this] { Check(); });
        }
        armed_ = socket;
    }
    if (socket >= 0) {
        timer_->stop();
    } else if (!timer_->isActive()) {
        timer_->start(kCheckMilliseconds);
    }
}

void LiveWatch::Check() {
    std::vector<session::HistoryEntry> entries;
    try {
        entries = watcher_->NewChanges();
    } catch (const ComponentError&) {
        // Heard again on the next change.
    }
    // The socket a lost connection leaves is never watched again.
    Arm();
    if (const std::optional<std::string> notice = watcher_->TakeNotice()) {
        onNotice_(*notice);
    }
    if (!entries.empty()) {
        onEntries_(entries);
    }
}

}  // namespace dbn::qt
