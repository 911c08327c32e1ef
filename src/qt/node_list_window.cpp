#include "qt/node_list_window.h"

#include "core/component_error.h"
#include "database/database.h"
#include "qt/accessible_combo.h"
#include "qt/directory_check_window.h"
#include "qt/event_hook.h"
#include "qt/focus_frame.h"
#include "qt/node_text_actions.h"
#include "qt/screen_fit.h"
#include "qt/tool_window.h"
#include "qt/wheel_guard.h"
#include "session/history/change_watcher.h"
#include "session/nodes/directory_check.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QShortcut>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <set>

namespace dbn::qt {
namespace {

const QStringList kColumns = {QStringLiteral("Number"),   QStringLiteral("Label"),
                              QStringLiteral("Method"),   QStringLiteral("Directory"),
                              QStringLiteral("Modified"), QStringLiteral("Missing targets"),
                              QStringLiteral("Reachable")};

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

QTableWidgetItem* Cell(const QString& text, Qt::Alignment alignment = Qt::AlignLeft) {
    auto* item = new QTableWidgetItem(text);  // owned by the table
    item->setTextAlignment(alignment | Qt::AlignVCenter);
    return item;
}

}  // namespace

NodeListWindow::NodeListWindow(DataBase& db, std::string databasePath, OpenNode openNode,
                               QWidget* parent)
    : QMainWindow(parent),
      list_(db),
      databasePath_(std::move(databasePath)),
      openNode_(std::move(openNode)) {
    NameComboBoxesByField();
    setWindowTitle(Text(databasePath_) + QStringLiteral(" - Dial-by-Name Nodes"));
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    auto* choosers = new QHBoxLayout;

    auto addChooser = [&](const QString& caption, QWidget* field) {
        auto* label = new QLabel(caption, central);
        label->setBuddy(field);
        field->setAccessibleName(QString(caption).remove('&').remove(':'));
        choosers->addWidget(label);
        choosers->addWidget(field);
    };
    configurations_ = new QComboBox(central);
    configurations_->setObjectName(QStringLiteral("configurations"));
    partitionChooser_ = new QComboBox(central);
    partitionChooser_->setObjectName(QStringLiteral("partitions"));
    for (QComboBox* chooser : {configurations_, partitionChooser_}) {
        new WheelGuard(*chooser);  // owned by the chooser
    }
    filter_ = new QLineEdit(central);
    filter_->setObjectName(QStringLiteral("filter"));
    filter_->setPlaceholderText(QStringLiteral("Number or label"));
    filter_->setClearButtonEnabled(true);
    addChooser(QStringLiteral("&Configuration:"), configurations_);
    addChooser(QStringLiteral("&Partition:"), partitionChooser_);
    choosers->addSpacing(12);
    // Alt+F is the File menu's: the filter has its own letter, and Ctrl+F.
    addChooser(QStringLiteral("Fi&lter:"), filter_);
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, this, [this] {
        filter_->setFocus(Qt::ShortcutFocusReason);
        filter_->selectAll();
    });
    layout->addLayout(choosers);

    table_ = new QTableWidget(0, static_cast<int>(kColumns.size()), central);
    table_->setObjectName(QStringLiteral("nodes"));
    table_->setAccessibleName(QStringLiteral("Dial-by-name nodes"));
    table_->setHorizontalHeaderLabels(kColumns);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->verticalHeader()->hide();
    table_->setTabKeyNavigation(false);
    // Its selection looks the same with and without the focus.
    new FocusFrame(*table_);  // owned by the table
    // A label stays on one line; its column is as wide as the longest.
    table_->setWordWrap(false);
    table_->horizontalHeader()->setStretchLastSection(true);
    layout->addWidget(table_);
    empty_ = new QLabel(central);
    empty_->setObjectName(QStringLiteral("emptyDatabase"));
    empty_->setWordWrap(true);
    empty_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    empty_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    empty_->hide();
    layout->addWidget(empty_, 1);
    setCentralWidget(central);
    BuildMenus();

    connect(configurations_, &QComboBox::currentIndexChanged, this,
            [this] { FillPartitions(std::nullopt); });
    connect(partitionChooser_, &QComboBox::currentIndexChanged, this, [this] { ReadNodes(); });
    connect(filter_, &QLineEdit::textChanged, this, [this] { FillTable(true); });
    // Up and Down in the filter move the selection in the table.
    filterKeys_ = std::make_unique<EventHook>(*filter_, QEvent::KeyPress, [this](QEvent& event) {
        const int key = static_cast<QKeyEvent&>(event).key();
        if (key != Qt::Key_Up && key != Qt::Key_Down) {
            return false;
        }
        const int row = table_->currentRow() + (key == Qt::Key_Up ? -1 : 1);
        if (row >= 0 && row < table_->rowCount()) {
            table_->selectRow(row);
        }
        return true;
    });
    // Enter on a row and a double-click both activate it.
    connect(table_, &QTableWidget::activated, this, [this] { OpenSelected(); });
    connect(filter_, &QLineEdit::returnPressed, this, [this] { OpenSelected(); });
    resize(760, 420);
    Refresh();
    // A database this process may not change: told once the list shows, and
    // in the title for as long as it does.
    try {
        if (const std::optional<std::string> notice = db.ReadOnlyNotice()) {
            setWindowTitle(windowTitle() + QStringLiteral(" (read-only)"));
            QTimer::singleShot(0, this, [this, text = Text(*notice)] {
                QMessageBox::information(this, QStringLiteral("Information"), text);
            });
        }
    } catch (const ComponentError&) {
        // The list has told the database's failure already.
    }
    StartWatching();
    KeepOnScreen(*this);
    table_->setFocus();
}

NodeListWindow::~NodeListWindow() = default;

void NodeListWindow::BuildMenus() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    file->setToolTipsVisible(true);
    QAction* create = file->addAction(QStringLiteral("&New\u2026"), this, [this] { NewNode(); });
    create->setShortcut(QKeySequence::New);
    file->addAction(QStringLiteral("&Open"), this, [this] { OpenSelected(); });
    QAction* check =
        file->addAction(QStringLiteral("&Directory Check"), this, [this] { CheckSelected(); });
    check->setShortcut(Qt::Key_F7);
    QAction* history =
        file->addAction(QStringLiteral("&History\u2026"), this, [this] { ShowHistory(); });
    history->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_H));
    QAction* exportNodes = file->addAction(QStringLiteral("&Export\u2026"), this, [this] {
        if (auto shown = ShownPartition()) {
            ExportPartitionToFile(this, list_.Database(), *shown);
        }
    });
    nodeActions_ = {check, history, exportNodes};
    file->addAction(QStringLiteral("A&pply From File\u2026"), this, [this] {
        if (ApplyFromFile(this, list_.Database())) {
            Refresh();
        }
    });
    QAction* refresh = file->addAction(QStringLiteral("&Refresh"), this, [this] { Refresh(); });
    refresh->setShortcut(QKeySequence::Refresh);
    file->addSeparator();
    QAction* quit = file->addAction(QStringLiteral("&Quit"), this, [this] { close(); });
    quit->setShortcut(QKeySequence::Quit);
    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    help->addAction(QStringLiteral("&About"), this, [this] { ShowAbout(); });
}

std::optional<session::PartitionKey> NodeListWindow::ShownPartition() const {
    const int config = configurations_->currentData().toInt();
    const QVariant partition = partitionChooser_->currentData();
    if (configurations_->currentIndex() < 0 || !partition.isValid()) {
        return std::nullopt;
    }
    return session::PartitionKey{static_cast<std::int16_t>(config),
                                 static_cast<std::int16_t>(partition.toInt())};
}

void NodeListWindow::Refresh() {
    const std::optional<session::PartitionKey> shown = ShownPartition();
    const std::optional<std::int16_t> selected = SelectedNumber();
    if (!Guarded([this] { partitions_ = list_.Partitions(); })) {
        partitions_.clear();
    }
    {
        const QSignalBlocker block(configurations_);
        configurations_->clear();
        std::set<std::int16_t> configs;
        for (const session::PartitionKey& key : partitions_) {
            if (configs.insert(key.config).second) {
                configurations_->addItem(QString::number(key.config), key.config);
            }
        }
        if (shown) {
            configurations_->setCurrentIndex(std::max(0, configurations_->findData(shown->config)));
        }
    }
    FillPartitions(shown ? std::optional(shown->partition) : std::nullopt);
    if (selected) {
        SelectNumber(*selected);
    }
}

void NodeListWindow::FillPartitions(std::optional<std::int16_t> preferred) {
    const int config = configurations_->currentData().toInt();
    {
        const QSignalBlocker block(partitionChooser_);
        partitionChooser_->clear();
        for (const session::PartitionKey& key : partitions_) {
            if (key.config == config) {
                partitionChooser_->addItem(QString::number(key.partition), key.partition);
            }
        }
        if (preferred) {
            partitionChooser_->setCurrentIndex(
                std::max(0, partitionChooser_->findData(*preferred)));
        }
    }
    ReadNodes();
}

void NodeListWindow::ReadNodes() {
    rows_.clear();
    if (const std::optional<session::PartitionKey> shown = ShownPartition()) {
        Guarded([&] { rows_ = list_.Nodes(*shown); });
    }
    FillTable(false);
    ExplainEmptyDatabase();
}

void NodeListWindow::ExplainEmptyDatabase() {
    const bool empty = partitions_.empty();
    table_->setVisible(!empty);
    empty_->setVisible(empty);
    for (QAction* action : nodeActions_) {
        action->setEnabled(!empty);
        action->setToolTip(empty ? QStringLiteral("The database has no dial-by-name node.")
                                 : QString());
    }
    if (empty) {
        empty_->setText(WhyNoNodes());
    }
}

QString NodeListWindow::WhyNoNodes() {
    std::string why;
    Guarded([&] { why = list_.WhyNoNodes(); });
    return Text(why);
}

void NodeListWindow::FillTable(bool keepSelection) {
    const std::optional<std::int16_t> previous =
        keepSelection ? SelectedNumber() : std::optional<std::int16_t>();
    const std::vector<session::NodeListRow> shown =
        session::FilterNodeRows(rows_, filter_->text().toStdString());
    table_->setRowCount(static_cast<int>(shown.size()));
    for (int i = 0; i < static_cast<int>(shown.size()); ++i) {
        const session::NodeListRow& row = shown[static_cast<std::size_t>(i)];
        QTableWidgetItem* number =
            Cell(row.isTemplate ? QStringLiteral("0 (template)") : QString::number(row.number),
                 Qt::AlignRight);
        number->setData(Qt::UserRole, row.number);
        table_->setItem(i, 0, number);
        QTableWidgetItem* label = Cell(Text(row.label));
        label->setToolTip(Text(row.label));
        table_->setItem(i, 1, label);
        table_->setItem(i, 2, Cell(Text(row.method)));
        table_->setItem(i, 3, Cell(QString::number(row.directory), Qt::AlignRight));
        table_->setItem(i, 4, Cell(Text(row.modified)));
        table_->setItem(i, 5, Cell(QString::number(row.missingTargets), Qt::AlignRight));
        table_->setItem(i, 6,
                        Cell(row.reachable ? QStringLiteral("%1/%2")
                                                 .arg(row.reachable->reachable)
                                                 .arg(row.reachable->total)
                                           : QStringLiteral("no directory"),
                             Qt::AlignRight));
    }
    MarkRows(marked_);
    table_->resizeColumnsToContents();
    // The node selected before stays selected while it is shown; otherwise
    // the first row, or at the start the first node after the template.
    if (previous && SelectNumber(*previous)) {
        return;
    }
    int first = 0;
    if (!keepSelection && !shown.empty() && shown.front().isTemplate && shown.size() > 1) {
        first = 1;
    }
    if (table_->rowCount() > 0) {
        table_->selectRow(first);
    }
}

bool NodeListWindow::SelectNumber(std::int16_t number) {
    for (int row = 0; row < table_->rowCount(); ++row) {
        if (table_->item(row, 0)->data(Qt::UserRole).toInt() == number) {
            table_->selectRow(row);
            return true;
        }
    }
    return false;
}

std::vector<std::int16_t> NodeListWindow::ShownNumbers() const {
    std::vector<std::int16_t> numbers;
    for (int row = 0; row < table_->rowCount(); ++row) {
        numbers.push_back(
            static_cast<std::int16_t>(table_->item(row, 0)->data(Qt::UserRole).toInt()));
    }
    return numbers;
}

std::optional<std::int16_t> NodeListWindow::SelectedNumber() const {
    const int row = table_->currentRow();
    if (row < 0 || table_->item(row, 0) == nullptr) {
        return std::nullopt;
    }
    return static_cast<std::int16_t>(table_->item(row, 0)->data(Qt::UserRole).toInt());
}

void NodeListWindow::OpenSelected() {
    const std::optional<session::PartitionKey> shown = ShownPartition();
    const std::optional<std::int16_t> number = SelectedNumber();
    if (!shown || !number) {
        return;
    }
    openNode_(*shown, *number);
    Refresh();
}

void NodeListWindow::CheckSelected() {
    const std::optional<session::PartitionKey> shown = ShownPartition();
    const std::optional<std::int16_t> number = SelectedNumber();
    if (!shown || !number) {
        return;
    }
    if (!report_) {
        report_ = new DirectoryCheckWindow(this);  // owned by this window
    }
    try {
        report_->ShowReport(
            session::CheckStoredNode(list_.Database(), shown->config, shown->partition, *number));
    } catch (const ComponentError& error) {
        report_->ShowProblem(error.Description());
    }
    BringToFront(*report_);
}

void NodeListWindow::NewNode() {
    const std::optional<session::PartitionKey> shown = ShownPartition();
    if (!shown) {
        // No partition has a template to copy: say so rather than do nothing.
        QMessageBox::information(this, QStringLiteral("Information"), WhyNoNodes());
        return;
    }
    std::int16_t highest = 0;
    if (!Guarded([&] { highest = list_.HighestNodeNumber(*shown); })) {
        return;
    }
    bool accepted = false;
    const QString text = QInputDialog::getText(
        this, QStringLiteral("New Node"),
        QStringLiteral("Number of the new dial-by-name node (1 to %1):").arg(highest),
        QLineEdit::Normal, QString(), &accepted);
    if (!accepted) {
        return;
    }
    std::optional<std::string> refusal;
    if (!Guarded([&] { refusal = list_.RefusalOfNewNode(*shown, text.trimmed().toStdString()); })) {
        return;
    }
    if (refusal) {
        QMessageBox::information(this, QStringLiteral("Information"), Text(*refusal));
        return;
    }
    const auto number = static_cast<std::int16_t>(text.trimmed().toInt());
    if (!Guarded([&] { list_.CreateNode(*shown, number); })) {
        return;
    }
    Refresh();
    SelectNumber(number);
    OpenSelected();
}

void NodeListWindow::ShowAbout() {
    QMessageBox::about(this, QStringLiteral("About"),
                       QStringLiteral("%1 %2\n\nDatabase: %3")
                           .arg(QApplication::applicationDisplayName(),
                                QApplication::applicationVersion(), Text(databasePath_)));
}

bool NodeListWindow::Guarded(const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (const ComponentError& error) {
        QMessageBox::warning(this, QStringLiteral("Error"), Text(error.Description()));
    } catch (const std::exception& error) {
        QMessageBox::warning(this, QStringLiteral("Error"), QString::fromLocal8Bit(error.what()));
    }
    return false;
}

}  // namespace dbn::qt
