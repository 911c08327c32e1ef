#include "qt/history_window.h"

#include "core/component_error.h"
#include "nodestate/state_diff.h"
#include "qt/focus_frame.h"
#include "session/history/node_restore.h"
#include "session/nodes/modification_time.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace dbn::qt {
namespace {

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

// The changed fields' names as the details pane names them ("Valid Match"
// for a reference's three columns), for the entries' list; for an entry that
// cannot be read, why.
QString Summary(const session::HistoryEntry& entry) {
    if (!entry.damage.empty()) {
        return Text(entry.damage);
    }
    QStringList fields;
    for (const std::string& line : entry.changeLines) {
        const QString name = Text(line.substr(0, line.find(": ")));
        if (!name.isEmpty() && !fields.contains(name)) {
            fields << name;
        }
    }
    return fields.isEmpty() ? QStringLiteral("no field changed")
                            : fields.join(QStringLiteral(", "));
}

}  // namespace

HistoryWindow::HistoryWindow(DataBase& db, session::NodeKey key, QWidget* parent)
    : QDialog(parent), db_(db), key_(key) {
    setWindowTitle(QStringLiteral("History of DBN %1").arg(key.number));
    auto* layout = new QVBoxLayout(this);
    table_ = new QTableWidget(0, 4, this);
    table_->setObjectName(QStringLiteral("entries"));
    table_->setAccessibleName(QStringLiteral("History entries"));
    table_->setHorizontalHeaderLabels({QStringLiteral("Time"), QStringLiteral("Who"),
                                       QStringLiteral("Kind"), QStringLiteral("Changed")});
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->verticalHeader()->hide();
    // Tab leaves the entries rather than walking their cells.
    table_->setTabKeyNavigation(false);
    layout->addWidget(table_, 2);
    changes_ = new QPlainTextEdit(this);
    changes_->setObjectName(QStringLiteral("changes"));
    changes_->setAccessibleName(QStringLiteral("Changes of the selected entry"));
    changes_->setReadOnly(true);
    // Neither view shows the focus on its own.
    new FocusFrame(*table_);    // owned by the table
    new FocusFrame(*changes_);  // owned by the pane
    layout->addWidget(changes_, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    restore_ =
        buttons->addButton(QStringLiteral("&Restore this version"), QDialogButtonBox::ActionRole);
    QPushButton* close = buttons->button(QDialogButtonBox::Close);
    close->setText(QStringLiteral("&Close"));
    // Enter presses no button: only the restore button or its mnemonic
    // asks whether to restore.
    for (QPushButton* button : {restore_, close}) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(restore_, &QPushButton::clicked, this, [this] { RestoreSelected(); });
    connect(table_, &QTableWidget::itemSelectionChanged, this, [this] { ShowSelected(); });
    resize(720, 460);
    Refresh();
}

void HistoryWindow::Refresh() {
    try {
        entries_ = session::ReadNodeHistoryChanges(db_, key_, std::nullopt);
    } catch (const ComponentError& error) {
        entries_.clear();
        QMessageBox::warning(this, QStringLiteral("Error"), Text(error.Description()));
    }
    table_->setRowCount(static_cast<int>(entries_.size()));
    for (int row = 0; row < static_cast<int>(entries_.size()); ++row) {
        const session::HistoryEntry& entry = entries_[static_cast<std::size_t>(row)];
        const QStringList cells{Text(LocalModificationTime(entry.time)),
                                Text(session::WhoText(entry)), Text(entry.kind), Summary(entry)};
        for (int column = 0; column < cells.size(); ++column) {
            table_->setItem(row, column, new QTableWidgetItem(cells[column]));  // owned by table
        }
    }
    table_->resizeColumnsToContents();
    table_->horizontalHeader()->setSectionResizeMode(3, QHeaderView::Stretch);
    restore_->setEnabled(!entries_.empty());
    if (!entries_.empty()) {
        table_->selectRow(0);
    }
    ShowSelected();
}

void HistoryWindow::ShowSelected() {
    const int row = table_->currentRow();
    if (row < 0 || row >= static_cast<int>(entries_.size())) {
        changes_->clear();
        return;
    }
    const session::HistoryEntry& entry = entries_[static_cast<std::size_t>(row)];
    QStringList lines{
        QStringLiteral("Entry %1, %2 by %3 with %4")
            .arg(entry.entry)
            .arg(Text(entry.kind), Text(session::WhoText(entry)), Text(entry.program))};
    if (!entry.damage.empty()) {
        lines << Text(entry.damage);
    }
    for (const std::string& line : entry.changeLines) {
        lines << Text(line);
    }
    changes_->setPlainText(lines.join('\n'));
}

bool HistoryWindow::RestoreSelected(bool answerYes) {
    const int row = table_->currentRow();
    if (row < 0 || row >= static_cast<int>(entries_.size())) {
        return false;
    }
    const long entry = entries_[static_cast<std::size_t>(row)].entry;
    // An entry that cannot be read is refused with its reason, unasked.
    const bool damaged = !entries_[static_cast<std::size_t>(row)].damage.empty();
    if (!answerYes && !damaged &&
        QMessageBox::question(this, QStringLiteral("Confirmation"),
                              QStringLiteral("Restore DBN %1 to the state after entry %2?")
                                  .arg(key_.number)
                                  .arg(entry),
                              QMessageBox::Yes | QMessageBox::No,
                              QMessageBox::No) != QMessageBox::Yes) {
        return false;
    }
    try {
        const session::RestoreResult result = session::RestoreNodeVersion(db_, key_, entry, false);
        if (!result.missing.empty()) {
            QStringList names;
            for (const std::string& name : result.missing) {
                names << Text(name);
            }
            QMessageBox::information(
                this, QStringLiteral("Information"),
                QStringLiteral("DBN %1 was restored. These references point at nodes that do "
                               "not exist: %2.")
                    .arg(key_.number)
                    .arg(names.join(QStringLiteral(", "))));
        }
    } catch (const ComponentError& error) {
        QMessageBox::warning(this, QStringLiteral("Error"), Text(error.Description()));
        return false;
    }
    Refresh();
    return true;
}

int HistoryWindow::EntryCount() const {
    return static_cast<int>(entries_.size());
}

void HistoryWindow::SelectEntry(int row) {
    table_->selectRow(row);
}

QString HistoryWindow::ChangesText() const {
    return changes_->toPlainText();
}

}  // namespace dbn::qt
