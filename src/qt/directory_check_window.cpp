#include "qt/directory_check_window.h"

#include "core/component_error.h"
#include "qt/accessible_combo.h"
#include "qt/focus_frame.h"
#include "qt/form_view.h"
#include "qt/tool_window.h"
#include "qt/wheel_guard.h"
#include "session/nodes/directory_check.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include <exception>

namespace dbn::qt {
namespace {

enum Column { Sequence, LastName, FirstName, Extension, Verdict, Digits, Matches, Reason, Count };

QTableWidgetItem* TextItem(const std::string& text) {
    auto* item = new QTableWidgetItem(QString::fromStdString(text));
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    return item;
}

// A number that sorts as a number.
QTableWidgetItem* NumberItem(int value) {
    auto* item = new QTableWidgetItem;
    item->setData(Qt::DisplayRole, value);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    return item;
}

}  // namespace

DirectoryCheckWindow::DirectoryCheckWindow(QWidget* parent)
    : QWidget(parent, Qt::Window),
      heading_(new QLabel(this)),
      table_(new QTableWidget(0, Column::Count, this)),
      summary_(new QLabel(this)) {
    setWindowTitle(kTitle);
    NameComboBoxesByField();
    heading_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    table_->setHorizontalHeaderLabels(
        {"#", "Last name", "First name", "Extension", "Verdict", "Digits", "Matches", "Reason"});
    table_->verticalHeader()->hide();
    // Every column as wide as its contents; the reason takes what is left.
    table_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table_->horizontalHeader()->setSectionResizeMode(Column::Reason, QHeaderView::Stretch);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSortingEnabled(true);
    table_->sortByColumn(Column::Sequence, Qt::AscendingOrder);
    table_->setAccessibleName(QStringLiteral("Names"));
    // The order the header's clicks choose, chosen from the keyboard too.
    auto* sortBy = new QComboBox(this);
    sortBy->setObjectName(QStringLiteral("sortBy"));
    sortBy->setAccessibleName(QStringLiteral("Sort by"));
    for (int column = 0; column < Column::Count; ++column) {
        sortBy->addItem(table_->horizontalHeaderItem(column)->text());
    }
    new WheelGuard(*sortBy);  // owned by the chooser
    auto* descending = new QCheckBox(QStringLiteral("&Descending"), this);
    descending->setObjectName(QStringLiteral("descending"));
    auto* sortLabel = new QLabel(QStringLiteral("&Sort by:"), this);
    sortLabel->setBuddy(sortBy);
    auto sortAsChosen = [this, sortBy, descending] {
        table_->sortByColumn(sortBy->currentIndex(),
                             descending->isChecked() ? Qt::DescendingOrder : Qt::AscendingOrder);
    };
    connect(sortBy, &QComboBox::currentIndexChanged, this, sortAsChosen);
    connect(descending, &QCheckBox::toggled, this, sortAsChosen);
    connect(table_->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this,
            [sortBy, descending](int column, Qt::SortOrder order) {
                const QSignalBlocker blockChooser(sortBy);
                const QSignalBlocker blockBox(descending);
                sortBy->setCurrentIndex(column);
                descending->setChecked(order == Qt::DescendingOrder);
            });
    auto* sorting = new QHBoxLayout;
    sorting->addWidget(sortLabel);
    sorting->addWidget(sortBy);
    sorting->addWidget(descending);
    sorting->addStretch(1);
    // Tab goes as the window reads, the sort order above the table, and
    // leaves the table rather than walking its cells.
    QWidget::setTabOrder(sortBy, descending);
    QWidget::setTabOrder(descending, table_);
    table_->setTabKeyNavigation(false);
    new FocusFrame(*table_);  // owned by the table
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading_);
    layout->addLayout(sorting);
    layout->addWidget(table_, 1);
    layout->addWidget(summary_);
    resize(900, 480);
    CloseOnKeys(*this);
}

void DirectoryCheckWindow::ShowReport(const directory::DirectoryReport& report) {
    QStringList lines;
    for (const std::string& line : directory::ReportHeading(report)) {
        lines << QString::fromStdString(line);
    }
    heading_->setText(lines.join('\n'));
    // Rows go in unsorted, then the operator's chosen order is applied again.
    table_->setSortingEnabled(false);
    table_->setRowCount(static_cast<int>(report.names.size()));
    for (std::size_t i = 0; i < report.names.size(); ++i) {
        const directory::DirectoryName& name = report.names[i];
        const directory::NameVerdict& verdict = report.verdicts[i];
        const int row = static_cast<int>(i);
        table_->setItem(row, Column::Sequence, NumberItem(name.sequence));
        table_->setItem(row, Column::LastName, TextItem(name.lastName));
        table_->setItem(row, Column::FirstName, TextItem(name.firstName));
        table_->setItem(row, Column::Extension, TextItem(name.extension));
        table_->setItem(row, Column::Verdict, TextItem(directory::VerdictName(verdict.verdict)));
        table_->setItem(row, Column::Digits, TextItem(verdict.digits));
        table_->setItem(row, Column::Matches, NumberItem(verdict.matches));
        table_->setItem(row, Column::Reason, TextItem(verdict.reason));
    }
    table_->setSortingEnabled(true);
    table_->resizeColumnsToContents();
    summary_->setText(QString::fromStdString(directory::ReportSummary(report)));
}

void DirectoryCheckWindow::ShowProblem(const std::string& message) {
    heading_->setText(QString::fromStdString(message));
    table_->setRowCount(0);
    summary_->clear();
}

QString DirectoryCheckWindow::Heading() const {
    return heading_->text();
}

QString DirectoryCheckWindow::Summary() const {
    return summary_->text();
}

DirectoryCheckWindow& ShowDirectoryCheck(FormView& view) {
    auto* window = view.findChild<DirectoryCheckWindow*>();
    if (window == nullptr) {
        window = new DirectoryCheckWindow(&view);
    }
    try {
        window->ShowReport(session::CheckFormNode(view.Form()));
    } catch (const ComponentError& error) {
        window->ShowProblem(error.Description());
    } catch (const std::exception& error) {
        window->ShowProblem(error.what());
    }
    BringToFront(*window);
    return *window;
}

}  // namespace dbn::qt
