#pragma once

#include <QFrame>

#include <memory>
#include <vector>

class QLabel;

namespace dbn {
struct DatabaseTarget;
namespace form {
class GUI;
}
namespace session {
class ChangeWatcher;
struct HistoryEntry;
}  // namespace session
}  // namespace dbn

namespace dbn::qt {

class FormView;
class LiveWatch;

// The bar the editor shows in its own row above its buttons as soon as
// another program changes the node on show: "DBN 5 was changed by USER on
// HOST at 14:02." with Show Changes and Reload. It goes away once the form
// shows the node as stored again (a load or a save). It hears the changes on a connection of its
// own: the server's announcements through a socket notifier, a file's
// change counter on a short timer.
class ChangeBar : public QFrame {
public:
    // Its buttons' captions; their mnemonics are chosen with the window's.
    static constexpr const char* kShowChanges = "Show Changes";
    static constexpr const char* kReload = "Reload";

    // Attaches a bar to the editor's window; nothing when the database keeps
    // no history or cannot be reached. The bar is owned by the window.
    static ChangeBar* Attach(FormView& view, form::GUI& form);

    ChangeBar(FormView& view, form::GUI& form, std::unique_ptr<session::ChangeWatcher> watcher);
    ~ChangeBar() override;

    // Reads the changes heard since the last call and shows the bar for one
    // of the node on show; a lost connection, and the watcher connecting
    // again, are told in the bar once.
    void TakeChanges();
    QString Text() const;
    QString Details() const;
    // Shows the node as it is stored now, dropping the edits, and hides the bar.
    void Reload();

private:
    void ShowBar(const QString& text, const QString& details);
    void ShowEntries(const std::vector<session::HistoryEntry>& entries);
    void ShowNotice(const QString& notice);
    void HideBar();

    FormView& view_;
    form::GUI& form_;
    LiveWatch* live_ = nullptr;
    QLabel* label_ = nullptr;
    QString details_;
    int formObserver_ = 0;
};

}  // namespace dbn::qt
