#pragma once

#include "session/nodes/node_history.h"

#include <QDialog>

#include <vector>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTableWidget;

namespace dbn {
class DataBase;
}

namespace dbn::qt {

// The history of one dial-by-name node: its entries (local time, who, kind
// and the changed fields as the details name them), newest first, and the
// field-by-field changes of the selected one. "Restore this version" writes
// back the state after the selected entry, after asking (No by default);
// Enter presses no button. An entry that cannot be read shows why in place
// of its changes, and its restore is refused with that reason.
class HistoryWindow : public QDialog {
public:
    HistoryWindow(DataBase& db, session::NodeKey key, QWidget* parent = nullptr);

    // Reads the entries again.
    void Refresh();
    // Restores the selected entry's state after asking (answerYes skips the
    // question, for tests); answers true when it was restored.
    bool RestoreSelected(bool answerYes = false);
    int EntryCount() const;
    void SelectEntry(int row);
    QString ChangesText() const;

private:
    void ShowSelected();

    DataBase& db_;
    session::NodeKey key_;
    std::vector<session::HistoryEntry> entries_;
    QTableWidget* table_ = nullptr;
    QPlainTextEdit* changes_ = nullptr;
    QPushButton* restore_ = nullptr;
};

}  // namespace dbn::qt
