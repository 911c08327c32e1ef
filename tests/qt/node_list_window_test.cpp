// The node list window, offscreen: what it shows, the choosers and the
// filter, opening a node with Enter and a double-click, New..., Refresh and
// the accessible names of its controls.
#include "window_support.h"

#include "database/data_location.h"
#include "database/database.h"
#include "qt/directory_check_window.h"
#include "qt/missing_database_offer.h"
#include "qt/node_list_window.h"

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QShortcut>
#include <QTableWidget>
#include <QTimer>

#include <filesystem>

namespace dbn::testing {
namespace {

using session::PartitionKey;

class NodeListWindowTest : public ::testing::Test {
protected:
    NodeListWindowTest() : root(TempDataRoot::Content::Demo) { Application(); }

    std::unique_ptr<qt::NodeListWindow> MakeWindow() {
        auto window = std::make_unique<qt::NodeListWindow>(
            db, root.DatabasePath(), [this](PartitionKey where, std::int16_t number) {
                opened.push_back(std::to_string(where.partition) + "/" + std::to_string(number));
                onOpen();
            });
        window->show();
        return window;
    }

    static QTableWidget& Table(qt::NodeListWindow& window) {
        return *window.findChild<QTableWidget*>(QStringLiteral("nodes"));
    }

    static QString Cell(qt::NodeListWindow& window, int row, int column) {
        return Table(window).item(row, column)->text();
    }

    // Runs `answer` on the next modal dialog once it shows.
    static void WhenModal(const std::function<void(QWidget&)>& answer) {
        QTimer::singleShot(0, [answer] {
            if (QWidget* modal = QApplication::activeModalWidget()) {
                answer(*modal);
            }
        });
    }

    TempDataRoot root;
    DataBase db;
    std::vector<std::string> opened;
    std::function<void()> onOpen = [] {};
};

TEST_F(NodeListWindowTest, ShowsThePartitionsNodesAndFiltersThem) {
    auto window = MakeWindow();
    EXPECT_TRUE(window->windowTitle().startsWith(QString::fromStdString(root.DatabasePath())));
    EXPECT_EQ(window->ShownNumbers(), (std::vector<std::int16_t>{0, 1, 2}));
    EXPECT_EQ(Cell(*window, 0, 0), "0 (template)");
    EXPECT_EQ(Cell(*window, 1, 1), "Staff directory");
    EXPECT_EQ(Cell(*window, 2, 2), "Default Last Name");
    QStringList headers;
    for (int column = 0; column < Table(*window).columnCount(); ++column) {
        headers << Table(*window).horizontalHeaderItem(column)->text();
    }
    EXPECT_EQ(headers.join(','),
              "Number,Label,Method,Directory,Modified,Missing targets,Reachable");
    EXPECT_EQ(Cell(*window, 1, 6), "5/5");

    auto* partitions = window->findChild<QComboBox*>(QStringLiteral("partitions"));
    partitions->setCurrentIndex(partitions->findText(QStringLiteral("2")));
    EXPECT_EQ(window->ShownNumbers(), (std::vector<std::int16_t>{0, 5}));
    partitions->setCurrentIndex(0);

    const struct {
        const char* text;
        std::vector<std::int16_t> numbers;
    } filters[] = {{"sales", {2}}, {"1", {1}}, {"nothing like it", {}}, {"", {0, 1, 2}}};
    auto* filter = window->findChild<QLineEdit*>(QStringLiteral("filter"));
    for (const auto& filterCase : filters) {
        TypeKeys(*filter, QString::fromLatin1(filterCase.text));
        if (QString::fromLatin1(filterCase.text).isEmpty()) {
            filter->clear();
        }
        EXPECT_EQ(window->ShownNumbers(), filterCase.numbers) << filterCase.text;
    }
}

TEST_F(NodeListWindowTest, EnterAndDoubleClickOpenTheNodeAndTheTableIsReadAgain) {
    auto window = MakeWindow();
    QTableWidget& table = Table(*window);
    onOpen = [&] { root.Exec("UPDATE Node_DBN SET NodeDescription = 'Changed' WHERE PartID = 1"); };
    table.setCurrentCell(1, 1);
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(&table, &enter);
    EXPECT_EQ(opened, std::vector<std::string>{"1/1"});
    EXPECT_EQ(Cell(*window, 1, 1), "Changed");
    EXPECT_EQ(table.currentRow(), 1);

    const QPoint middle = table.visualItemRect(table.item(2, 1)).center();
    QMouseEvent doubleClick(QEvent::MouseButtonDblClick, middle,
                            table.viewport()->mapToGlobal(middle), Qt::LeftButton, Qt::LeftButton,
                            Qt::NoModifier);
    ClickAt(*table.viewport(), middle);
    QApplication::sendEvent(table.viewport(), &doubleClick);
    EXPECT_EQ(opened, (std::vector<std::string>{"1/1", "1/2"}));
}

TEST_F(NodeListWindowTest, F7ShowsTheSelectedNodesDirectoryCheck) {
    root.Exec("UPDATE Node_DBN SET DirectoryNodeNumber = 9 WHERE PartID = 1 AND NodeNumber = 2");
    auto window = MakeWindow();
    EXPECT_EQ(Cell(*window, 2, 6), "no directory");
    QTableWidget& table = Table(*window);
    const struct {
        int row;
        const char* summary;
    } cases[] = {{1, "5 of 5 names reachable"}, {2, ""}};
    for (const auto& c : cases) {
        table.setCurrentCell(c.row, 0);
        // The File menu's action bound to F7, as the window system runs it.
        for (QAction* action : window->findChildren<QAction*>()) {
            if (action->shortcut() == QKeySequence(Qt::Key_F7)) {
                action->trigger();
            }
        }
        ASSERT_NE(window->ReportWindow(), nullptr);
        EXPECT_TRUE(window->ReportWindow()->isVisible());
        EXPECT_EQ(window->ReportWindow()->Summary(), c.summary) << c.row;
    }
    EXPECT_TRUE(window->ReportWindow()->Heading().contains("DIR 9"));
}

TEST_F(NodeListWindowTest, NewAsksForAFreeNumberCreatesTheNodeAndOpensIt) {
    auto window = MakeWindow();
    std::vector<std::string> told;
    WhenModal([&](QWidget& dialog) {
        auto& input = dynamic_cast<QInputDialog&>(dialog);
        input.setTextValue(QStringLiteral("2"));  // taken
        WhenModal([&](QWidget& box) {
            told.push_back(dynamic_cast<QMessageBox&>(box).text().toStdString());
            dynamic_cast<QMessageBox&>(box).accept();
        });
        input.accept();
    });
    window->NewNode();
    EXPECT_EQ(told, std::vector<std::string>{"DBN 2 exists already."});
    EXPECT_TRUE(opened.empty());

    WhenModal([](QWidget& dialog) {
        auto& input = dynamic_cast<QInputDialog&>(dialog);
        input.setTextValue(QStringLiteral("9"));
        input.accept();
    });
    window->NewNode();
    EXPECT_EQ(opened, std::vector<std::string>{"1/9"});
    EXPECT_EQ(window->ShownNumbers(), (std::vector<std::int16_t>{0, 1, 2, 9}));
    EXPECT_EQ(Cell(*window, 3, 1), "DBN template");
}

TEST_F(NodeListWindowTest, RefreshReadsTheDatabaseAgainAndControlsHaveAccessibleNames) {
    auto window = MakeWindow();
    root.Exec("DELETE FROM Node_DBN WHERE PartID = 1 AND NodeNumber = 2");
    QAction* refresh = nullptr;
    for (QAction* action : window->findChildren<QAction*>()) {
        if (action->shortcut() == QKeySequence(Qt::Key_F5)) {
            refresh = action;
        }
    }
    ASSERT_NE(refresh, nullptr);
    refresh->trigger();
    EXPECT_EQ(window->ShownNumbers(), (std::vector<std::int16_t>{0, 1}));

    EXPECT_EQ(AccessibleNameProblems(*window), std::vector<std::string>{});
    EXPECT_EQ(window->findChild<QComboBox*>(QStringLiteral("partitions"))->accessibleName(),
              "Partition");
}

// Alt+F is the File menu's alone; Ctrl+F reaches the filter.
TEST_F(NodeListWindowTest, EveryMnemonicIsUniqueAndCtrlFReachesTheFilter) {
    auto window = MakeWindow();
    const auto letters = Mnemonics(*window);
    EXPECT_EQ(SharedMnemonics(letters), std::vector<std::string>{});
    EXPECT_EQ(letters.size(), 5u);  // File, Help, Configuration, Partition, Filter
    for (QShortcut* shortcut : window->findChildren<QShortcut*>()) {
        if (shortcut->key() == QKeySequence(QKeySequence::Find)) {
            emit shortcut->activated();
        }
    }
    EXPECT_EQ(window->focusWidget(), window->findChild<QLineEdit*>(QStringLiteral("filter")));
}

// Start-up and the filter from the keyboard: the focus in the table on the
// first node after the template, Enter opening it, and the filter keeping or
// moving the selection.
TEST_F(NodeListWindowTest, TheKeyboardReachesEveryNodeFromTheTableAndTheFilter) {
    auto window = MakeWindow();
    QTableWidget& table = Table(*window);
    EXPECT_EQ(window->focusWidget(), &table);
    EXPECT_EQ(table.currentRow(), 1);
    EXPECT_TRUE(ShowsFocusFrame(table));
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(window->focusWidget(), &enter);
    EXPECT_EQ(opened, std::vector<std::string>{"1/1"});

    auto* filter = window->findChild<QLineEdit*>(QStringLiteral("filter"));
    auto selected = [&] { return window->ShownNumbers().at(table.currentRow()); };
    const struct {
        const char* typed;  // nullptr: a key instead
        Qt::Key key;
        std::int16_t selected;
    } steps[] = {{"directory", Qt::Key_unknown, 1},  // still shown: stays
                 {"sales", Qt::Key_unknown, 2},      // gone: the first match
                 {"", Qt::Key_unknown, 2},           // shown again: stays
                 {nullptr, Qt::Key_Up, 1},          {nullptr, Qt::Key_Up, 0},
                 {nullptr, Qt::Key_Up, 0},          {nullptr, Qt::Key_Down, 1},
                 {nullptr, Qt::Key_Down, 2},        {nullptr, Qt::Key_Down, 2}};
    for (const auto& step : steps) {
        if (step.typed == nullptr) {
            QKeyEvent key(QEvent::KeyPress, step.key, Qt::NoModifier);
            QApplication::sendEvent(filter, &key);
        } else if (*step.typed == '\0') {
            filter->clear();
        } else {
            TypeKeys(*filter, QString::fromLatin1(step.typed));
        }
        EXPECT_EQ(selected(), step.selected) << (step.typed ? step.typed : "key");
    }
    EXPECT_EQ(filter->text(), QString());
    QApplication::sendEvent(filter, &enter);
    EXPECT_EQ(opened, (std::vector<std::string>{"1/1", "1/2"}));
}

TEST_F(NodeListWindowTest, ALongLabelShowsWholeOnOneLineAndInItsTooltip) {
    const QString label = QStringLiteral("Main office after-hours staff!");  // 30 characters
    root.Exec("UPDATE Node_DBN SET NodeDescription = '" + label.toStdString() +
              "' WHERE PartID = 1 AND NodeNumber = 1");
    auto window = MakeWindow();
    QTableWidget& table = Table(*window);
    EXPECT_FALSE(table.wordWrap());
    EXPECT_EQ(Cell(*window, 1, 1), label);
    EXPECT_EQ(table.item(1, 1)->toolTip(), label);
    EXPECT_GE(table.columnWidth(1), table.fontMetrics().horizontalAdvance(label));
    EXPECT_EQ(table.rowHeight(1), table.rowHeight(2));
}

// A database without any dial-by-name node says why instead of an empty table,
// and File > New says why no node can be made.
TEST_F(NodeListWindowTest, ADatabaseWithoutNodesSaysWhyAndNewSaysWhyNot) {
    const struct {
        const char* sql;
        const char* says;
    } cases[] = {
        {"DELETE FROM Node_DBN", "a copy of DBN 0 of its partition"},
        {"DELETE FROM Node_Type_Max", "dbn-node-editor init"},
    };
    for (const auto& emptied : cases) {
        root.Exec(emptied.sql);
        auto window = MakeWindow();
        auto* why = window->findChild<QLabel*>(QStringLiteral("emptyDatabase"));
        ASSERT_NE(why, nullptr);
        EXPECT_TRUE(why->isVisible()) << emptied.sql;
        EXPECT_FALSE(Table(*window).isVisible());
        EXPECT_TRUE(why->text().contains(QString::fromLatin1(emptied.says))) << emptied.sql;
        EXPECT_TRUE(why->text().contains(QStringLiteral("dbn-node-editor copy")));

        QString told;
        WhenModal([&](QWidget& box) {
            told = dynamic_cast<QMessageBox&>(box).text();
            dynamic_cast<QMessageBox&>(box).accept();
        });
        window->NewNode();
        EXPECT_EQ(told, why->text());
        // What needs a node is disabled and says why.
        for (QAction* action : window->findChildren<QAction*>()) {
            const QString text = action->text();
            if (text == "&Export\u2026" || text == "&Directory Check" || text == "&History\u2026") {
                EXPECT_FALSE(action->isEnabled()) << text.toStdString();
                EXPECT_EQ(action->toolTip(), "The database has no dial-by-name node.");
            }
        }
    }
}

TEST_F(NodeListWindowTest, AMissingDatabaseIsCreatedAsChosenOrTheOperatorQuits) {
    const struct {
        const char* button;
        bool created;
        long long dbnNodes;
    } choices[] = {{"&Quit", false, 0},
                   {"Create &Empty Database", true, 0},
                   {"Create &Demo Database", true, 5}};
    for (const auto& choice : choices) {
        std::filesystem::remove(root.DatabasePath());
        std::string asked;
        WhenModal([&](QWidget& dialog) {
            auto& box = dynamic_cast<QMessageBox&>(dialog);
            asked = box.text().toStdString();
            for (QAbstractButton* button : box.buttons()) {
                if (button->text() == QString::fromLatin1(choice.button)) {
                    button->click();
                }
            }
        });
        EXPECT_EQ(qt::OfferToCreateDatabase(root.DatabasePath()), choice.created);
        EXPECT_EQ(asked.rfind("There is no configuration database at " + root.DatabasePath(), 0),
                  0u);
        EXPECT_EQ(std::filesystem::exists(root.DatabasePath()), choice.created) << choice.button;
        if (choice.created) {
            EXPECT_EQ(root.QueryInt("SELECT COUNT(*) FROM Node_DBN"), choice.dbnNodes);
        }
    }
}

// File > Export... and File > Apply From File..., answered at their dialogs:
// Cancel at the file dialog does nothing; the export writes the partition's
// nodes; the file, changed, is applied once the question is answered Yes.
TEST_F(NodeListWindowTest, ExportAndApplyFromFileGoThroughTheirFileDialogs) {
    auto window = MakeWindow();
    const QString path = QString::fromStdString(
        (std::filesystem::path(root.DatabasePath()).parent_path() / "nodes.json").string());
    auto run = [&](const char* text, const std::function<void(QFileDialog&)>& answer) {
        WhenModal([&](QWidget& dialog) { answer(dynamic_cast<QFileDialog&>(dialog)); });
        for (QAction* action : window->findChildren<QAction*>()) {
            if (action->text() == QString::fromUtf8(text)) {
                action->trigger();
            }
        }
    };
    auto choose = [&](QFileDialog& files) {
        files.selectFile(path);
        static_cast<QDialog&>(files).accept();  // as its Save or Open button does
    };
    const std::string label =
        "SELECT NodeDescription FROM Node_DBN WHERE PartID = 1 AND NodeNumber = 1";
    for (const char* action : {"&Export\u2026", "A&pply From File\u2026"}) {
        run(action, [](QFileDialog& files) { files.reject(); });
    }
    EXPECT_FALSE(QFile::exists(path));

    run("&Export\u2026", choose);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QString text = QString::fromUtf8(file.readAll());
    file.close();
    EXPECT_TRUE(text.contains(QStringLiteral("\"format\": \"dbn-nodes\"")));
    ASSERT_TRUE(text.contains(QStringLiteral("\"label\": \"Staff directory\"")));
    text.replace(QStringLiteral("Staff directory"), QStringLiteral("Front desk"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text.toUtf8());
    file.close();

    // No at the question writes nothing; Yes writes the one change.
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        std::vector<std::string> told;
        run("A&pply From File\u2026", [&](QFileDialog& files) {
            WhenModal([&, answer](QWidget& question) {
                auto& box = dynamic_cast<QMessageBox&>(question);
                told.push_back(box.text().toStdString());
                EXPECT_EQ(box.informativeText(), "3 nodes: 0 created, 1 changed, 2 unchanged.");
                EXPECT_FALSE(box.detailedText().contains(QStringLiteral("dry run")));
                if (answer == QMessageBox::Yes) {
                    WhenModal([&](QWidget& report) {
                        told.push_back(dynamic_cast<QMessageBox&>(report).text().toStdString());
                        dynamic_cast<QMessageBox&>(report).accept();
                    });
                }
                box.button(answer)->click();
            });
            choose(files);
        });
        ASSERT_FALSE(told.empty());
        EXPECT_EQ(told.front(), "Write these changes to the configuration database?");
        EXPECT_EQ(told.size(), answer == QMessageBox::Yes ? 2u : 1u);
        EXPECT_EQ(root.QueryText(label),
                  answer == QMessageBox::Yes ? "Front desk" : "Staff directory");
    }
    EXPECT_EQ(Cell(*window, 1, 1), "Front desk");

    // A file that cannot be read is an error.
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("{ not json");
    file.close();
    QString title;
    run("A&pply From File\u2026", [&](QFileDialog& files) {
        WhenModal([&](QWidget& box) {
            title = box.windowTitle();
            dynamic_cast<QMessageBox&>(box).accept();
        });
        choose(files);
    });
    EXPECT_EQ(title, "Error");
}

}  // namespace
}  // namespace dbn::testing
