#pragma once

#include "session/nodes/node_list.h"

#include <QMainWindow>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QSocketNotifier;
class QTableWidget;
class QTimer;

namespace dbn {
class DataBase;
namespace session {
struct HistoryEntry;
}
}  // namespace dbn

namespace dbn::qt {

class DirectoryCheckWindow;
class EventHook;
class LiveWatch;

// The program's main window: the dial-by-name nodes of one partition of the
// configuration database, with a configuration and a partition chooser and
// a filter. Enter or a double-click opens the selected node in the editor
// (through openNode, which returns when the editor closes); the table is
// then read again. File > New... creates a node from the template and opens it;
// File > Directory Check (F7) shows who callers can reach in the selected
// node's directory; File > History... (Ctrl+H) the selected node's changes.
// Changes committed by other programs show within two seconds, their rows
// marked for a few seconds.
class NodeListWindow : public QMainWindow {
public:
    using OpenNode = std::function<void(session::PartitionKey, std::int16_t)>;

    NodeListWindow(DataBase& db, std::string databasePath, OpenNode openNode,
                   QWidget* parent = nullptr);
    ~NodeListWindow() override;

    // Reads the partitions and the shown partition's nodes again.
    void Refresh();
    // Opens the selected node, when there is one.
    void OpenSelected();
    // Opens the directory check of the selected node in the report window.
    void CheckSelected();
    DirectoryCheckWindow* ReportWindow() const noexcept { return report_; }
    // Asks for a number, creates that node from the template and opens it.
    void NewNode();
    void ShowAbout();
    // Opens the history of the selected node; answers the window (owned by
    // this one) or nullptr when no node is selected.
    class HistoryWindow* ShowHistory(bool modal = true);
    // Reads the changes other programs committed and shows them (called by
    // the watch's socket or timer).
    void TakeChanges();
    // The node numbers whose rows are marked as just changed.
    const std::set<std::int16_t>& MarkedNumbers() const noexcept { return marked_; }

    // The node number of each shown row, in order.
    std::vector<std::int16_t> ShownNumbers() const;

private:
    void BuildMenus();
    // Starts hearing other programs' changes (when the database keeps
    // history) once the list has painted, from the newest entry as the list
    // was read.
    void StartWatching();
    void Listen(long from);
    void ShowChanges(const std::vector<session::HistoryEntry>& entries);
    void MarkRows(const std::set<std::int16_t>& numbers);
    // Fills the partition chooser for the chosen configuration, choosing
    // `preferred` when it is there, and reads that partition's nodes.
    void FillPartitions(std::optional<std::int16_t> preferred);
    void ReadNodes();
    // Fills the table from the rows that pass the filter. keepSelection keeps
    // the selected node selected while it is shown.
    void FillTable(bool keepSelection);
    // A database without dial-by-name nodes shows why in place of the table.
    void ExplainEmptyDatabase();
    QString WhyNoNodes();
    bool SelectNumber(std::int16_t number);
    std::optional<std::int16_t> SelectedNumber() const;
    std::optional<session::PartitionKey> ShownPartition() const;
    // Runs a database step; an error is shown in one box and answers false.
    bool Guarded(const std::function<void()>& step);

    session::NodeList list_;
    std::string databasePath_;
    OpenNode openNode_;
    std::vector<session::PartitionKey> partitions_;
    std::vector<session::NodeListRow> rows_;
    QComboBox* configurations_ = nullptr;
    QComboBox* partitionChooser_ = nullptr;
    QLineEdit* filter_ = nullptr;
    QTableWidget* table_ = nullptr;
    DirectoryCheckWindow* report_ = nullptr;
    LiveWatch* live_ = nullptr;
    std::set<std::int16_t> marked_;
    QLabel* empty_ = nullptr;
    // What needs a node: disabled, saying why, while the database has none.
    std::vector<QAction*> nodeActions_;
    std::unique_ptr<EventHook> filterKeys_;
};

}  // namespace dbn::qt
