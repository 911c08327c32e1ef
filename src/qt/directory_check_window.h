#pragma once

#include "directory/directory_report.h"

#include <QWidget>

#include <string>

class QLabel;
class QTableWidget;

namespace dbn::qt {

class FormView;

// The report of the directory check in a window of its own: the heading with
// the settings used, a table of every name the operator can sort by any
// column (by its header, or from the keyboard with "Sort by" and
// "Descending"), and the summary. F7 in the editor window opens it for the settings
// the form shows now; pressing F7 again after a change shows the new answer.
// Escape and Ctrl+W close it.
class DirectoryCheckWindow : public QWidget {
    Q_OBJECT

public:
    static constexpr const char* kTitle = "Directory Check";

    explicit DirectoryCheckWindow(QWidget* parent = nullptr);

    void ShowReport(const directory::DirectoryReport& report);
    // When there is nothing to check: says why, with an empty table.
    void ShowProblem(const std::string& message);

    QTableWidget& Table() const noexcept { return *table_; }
    QString Heading() const;
    QString Summary() const;

private:
    QLabel* heading_;
    QTableWidget* table_;
    QLabel* summary_;
};

// Runs the check of the form on show in `view` and shows the report window.
DirectoryCheckWindow& ShowDirectoryCheck(FormView& view);

}  // namespace dbn::qt
