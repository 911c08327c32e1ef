// F7 in the editor window opens the directory check for the settings the form
// shows now, in a window of its own with a table the operator can sort.
#include "window_support.h"

#include "qt/directory_check_window.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QShortcut>
#include <QTableWidget>

namespace dbn::testing {
namespace {

// Runs a window's key as the window system does once it sees the key.
void PressShortcut(QWidget& window, const QKeySequence& keys) {
    for (QShortcut* shortcut : window.findChildren<QShortcut*>()) {
        if (shortcut->key() == keys && shortcut->parent() == &window) {
            emit shortcut->activated();
            return;
        }
    }
    ADD_FAILURE() << keys.toString().toStdString() << " is not bound in the window";
}

void PressF7(qt::FormView& view) {
    PressShortcut(view, QKeySequence(Qt::Key_F7));
}

// The table's column as texts, top to bottom.
std::vector<std::string> ColumnOf(const QTableWidget& table, int column) {
    std::vector<std::string> texts;
    for (int row = 0; row < table.rowCount(); ++row) {
        texts.push_back(table.item(row, column)->text().toStdString());
    }
    return texts;
}

TEST_F(EditorWindowTest, F7ShowsTheReportOfTheUnsavedSettingsAndSortsByAnyColumn) {
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        PickEntry(WidgetOf<QComboBox>(view, "cmbFirstMinDigits"), "5");
        ASSERT_EQ(form.cmbFirstMinDigits.Text(), "5");
        PressF7(view);
        auto* window = view.findChild<qt::DirectoryCheckWindow*>();
        ASSERT_NE(window, nullptr);
        EXPECT_TRUE(window->isVisible());
        EXPECT_TRUE(window->Heading().contains("First stage: Last Name, 5 to 5 digits"));
        EXPECT_EQ(window->Summary(), "4 of 5 names reachable");
        QTableWidget& table = window->Table();
        ASSERT_EQ(table.rowCount(), 5);
        EXPECT_EQ(ColumnOf(table, 0), (std::vector<std::string>{"1", "2", "3", "4", "5"}));
        EXPECT_EQ(ColumnOf(table, 4), (std::vector<std::string>{"direct", "direct", "unreachable",
                                                                "direct", "direct"}));

        // By the header or from the keyboard, which follows the header.
        auto& sortBy = *window->findChild<QComboBox*>(QStringLiteral("sortBy"));
        auto& descending = *window->findChild<QCheckBox*>(QStringLiteral("descending"));
        PickEntry(sortBy, QStringLiteral("Verdict"));
        descending.click();
        EXPECT_EQ(ColumnOf(table, 1).front(), "Chen");
        table.horizontalHeader()->setSortIndicator(0, Qt::DescendingOrder);
        EXPECT_EQ(ColumnOf(table, 0), (std::vector<std::string>{"5", "4", "3", "2", "1"}));
        EXPECT_EQ(sortBy.currentText(), "#");
        EXPECT_TRUE(descending.isChecked());
        EXPECT_EQ(SharedMnemonics(Mnemonics(*window)), std::vector<std::string>{});
        EXPECT_EQ(AccessibleNameProblems(*window), std::vector<std::string>{});

        // A second check after another change reuses the same window.
        PickEntry(WidgetOf<QComboBox>(view, "cmbFirstMinDigits"), "3");
        EXPECT_EQ(&qt::ShowDirectoryCheck(view), window);
        EXPECT_EQ(window->Summary(), "5 of 5 names reachable");

        // A directory that does not exist: said in the window, nothing listed.
        PickEntry(WidgetOf<QComboBox>(view, "cmbDirectory"), "9");
        qt::ShowDirectoryCheck(view);
        EXPECT_EQ(window->Heading().toStdString(),
                  "DIR 9 doesn't exist in configuration 1, partition 1.");
        EXPECT_EQ(table.rowCount(), 0);
    });
    EXPECT_TRUE(unexpectedBoxes.empty());
}

TEST_F(EditorWindowTest, TheReportWindowClosesFromTheKeyboardAndFitsItsColumns) {
    Open(1, [&](form::GUI&, qt::FormView& view) {
        qt::DirectoryCheckWindow& window = qt::ShowDirectoryCheck(view);
        QTableWidget& table = window.Table();
        ASSERT_GT(table.rowCount(), 0);
        for (int column = 0; column + 1 < table.columnCount(); ++column) {
            for (int row = 0; row < table.rowCount(); ++row) {
                EXPECT_GT(table.columnWidth(column),
                          table.fontMetrics().horizontalAdvance(table.item(row, column)->text()))
                    << column;
            }
            EXPECT_GE(table.columnWidth(column), table.horizontalHeader()->sectionSizeHint(column))
                << column;
        }
        EXPECT_LT(window.minimumWidth(), window.width());  // resizable
        // Tab goes as the window reads and leaves the table at once.
        std::vector<QWidget*> stops;
        for (QWidget* at = window.nextInFocusChain(); at != &window; at = at->nextInFocusChain()) {
            if ((at->focusPolicy() & Qt::TabFocus) && at->isVisibleTo(&window)) {
                stops.push_back(at);
            }
        }
        EXPECT_EQ(stops,
                  (std::vector<QWidget*>{window.findChild<QComboBox*>("sortBy"),
                                         window.findChild<QCheckBox*>("descending"), &table}));
        table.setCurrentCell(0, 0);
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QApplication::sendEvent(&table, &tab);
        EXPECT_EQ(table.currentColumn(), 0);
        EXPECT_TRUE(ShowsFocusFrame(table));
        for (const QKeySequence& keys :
             {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)}) {
            qt::ShowDirectoryCheck(view);
            ASSERT_TRUE(window.isVisible());
            PressShortcut(window, keys);
            EXPECT_FALSE(window.isVisible()) << keys.toString().toStdString();
        }
    });
    EXPECT_TRUE(unexpectedBoxes.empty());
}

}  // namespace
}  // namespace dbn::testing
