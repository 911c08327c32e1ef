#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QSocketNotifier;
class QTimer;

namespace dbn::session {
class ChangeWatcher;
struct HistoryEntry;
}  // namespace dbn::session

namespace dbn::qt {

// Runs a change watcher on the event loop: the server's announcements
// through a socket notifier, made again whenever the watcher connects again;
// a file's changes, and the tries to connect again, on a short timer.
class LiveWatch : public QObject {
public:
    using Entries = std::function<void(const std::vector<session::HistoryEntry>&)>;
    using Notice = std::function<void(const std::string&)>;

    LiveWatch(std::unique_ptr<session::ChangeWatcher> watcher, QObject* parent, Entries onEntries,
              Notice onNotice);
    ~LiveWatch() override;

    // Reads what the watcher heard: the entries go to onEntries, a notice
    // (connection lost or made again, file replaced) to onNotice.
    void Check();

private:
    // Watches the watcher's socket, or runs the timer while it has none.
    void Arm();

    std::unique_ptr<session::ChangeWatcher> watcher_;
    Entries onEntries_;
    Notice onNotice_;
    QSocketNotifier* notifier_ = nullptr;
    int armed_ = -1;
    QTimer* timer_ = nullptr;
};

}  // namespace dbn::qt
