// Changes made by another program, offscreen: the node list shows them
// without F5 and marks their rows, its History window lists and restores
// entries, and the editor shows its bar above the buttons.
#include "window_support.h"

#include "database/database.h"
#include "qt/change_bar.h"
#include "qt/history_window.h"
#include "qt/node_list_window.h"
#include "qt/screen_fit.h"
#include "session/nodes/modification_time.h"
#include "session/nodes/node_history.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTableWidget>
#include <QTimer>

#include <cstdlib>
#include <ctime>

namespace dbn::testing {
namespace {

// Processes events until done() holds or two seconds have passed.
bool WithinTwoSeconds(const std::function<bool()>& done) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < 2000) {
        QApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    return done();
}

// Saves a node's description the way another program does: through its own
// editor session, so that the history entry is written.
void SaveElsewhere(std::int16_t partition, std::int16_t node, const std::string& description,
                   const std::string& greeting = "") {
    qt::QtFormServices services;
    RegisterEditorComponents(services);
    services.whenShown = [&](form::GUI& gui, qt::FormView&) {
        gui.txtDescription.SetText(description);
        if (!greeting.empty()) {
            gui.cmbGreetingNumber.SetText(greeting);
        }
        gui.cmdApply_Click();
    };
    Business_Rules(services).ShowNodeEditor(1, partition, node);
}

class LiveChanges : public ::testing::Test {
protected:
    LiveChanges() { Application(); }
    TempDataRoot root{TempDataRoot::Content::Demo};
};

QString LabelOf(qt::NodeListWindow& window, std::int16_t number) {
    auto& table = *window.findChild<QTableWidget*>(QStringLiteral("nodes"));
    for (int row = 0; row < table.rowCount(); ++row) {
        if (table.item(row, 0)->data(Qt::UserRole).toInt() == number) {
            return table.item(row, 1)->text();
        }
    }
    return {};
}

TEST_F(LiveChanges, TheNodeListShowsAnotherProgramsChangeAndMarksItsRow) {
    DataBase db;
    qt::NodeListWindow window(db, root.DatabasePath(), [](session::PartitionKey, std::int16_t) {});
    window.show();
    ASSERT_EQ(LabelOf(window, 1), QStringLiteral("Staff directory"));
    SaveElsewhere(1, 1, "Front desk");
    EXPECT_TRUE(WithinTwoSeconds([&] { return LabelOf(window, 1) == "Front desk"; }));
    EXPECT_EQ(window.MarkedNumbers(), std::set<std::int16_t>{1});
}

// Local times and the details' names in the list; Enter restores nothing,
// and the restore question answers No unless Yes is chosen.
TEST_F(LiveChanges, HistoryWindowListsEntriesAndRestoresOne) {
    SaveElsewhere(1, 1, "Front desk");
    SaveElsewhere(1, 1, "Back desk", "2");
    DataBase db;
    qt::HistoryWindow history(db, {1, 1, 15, 1});
    history.show();
    ASSERT_EQ(history.EntryCount(), 2);
    EXPECT_TRUE(history.ChangesText().contains(
        QStringLiteral("NodeDescription: \"Front desk\" -> \"Back desk\"")))
        << history.ChangesText().toStdString();
    auto& table = *history.findChild<QTableWidget*>(QStringLiteral("entries"));
    EXPECT_EQ(table.item(0, 3)->text(), "NodeDescription, Greeting");
    const std::string utc =
        session::ReadNodeHistoryChanges(db, {1, 1, 15, 1}, std::nullopt).front().time;
    EXPECT_EQ(table.item(0, 0)->text().toStdString(), LocalModificationTime(utc));
    setenv("TZ", "XYZ-3", 1);
    tzset();
    EXPECT_EQ(LocalModificationTime("2026-11-25T22:30:00Z"), "2026-11-26 01:30:00");
    unsetenv("TZ");
    tzset();

    std::vector<bool> noByDefault;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            noByDefault.push_back(box->defaultButton() == box->button(QMessageBox::No));
            box->button(QMessageBox::No)->click();
        }
    });
    watch.start(0);
    history.SelectEntry(1);
    table.setFocus();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&table, &press);
    }
    EXPECT_TRUE(noByDefault.empty());
    for (QPushButton* button : history.findChildren<QPushButton*>()) {
        if (button->text() == "&Restore this version") {
            button->click();
        }
    }
    EXPECT_EQ(noByDefault, std::vector<bool>{true});
    EXPECT_EQ(history.EntryCount(), 2);
    EXPECT_EQ(SharedMnemonics(Mnemonics(history)), std::vector<std::string>{});
    // Tab leaves the entries at once; they and the changes show the focus.
    table.setCurrentCell(table.currentRow(), 0);
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QApplication::sendEvent(&table, &tab);
    EXPECT_EQ(table.currentColumn(), 0);
    EXPECT_TRUE(ShowsFocusFrame(table));
    EXPECT_TRUE(ShowsFocusFrame(*history.findChild<QPlainTextEdit*>("changes")));
    EXPECT_EQ(AccessibleNameProblems(history), std::vector<std::string>{});

    EXPECT_TRUE(history.RestoreSelected(true));
    EXPECT_EQ(history.EntryCount(), 3);
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_DBN WHERE ConfigID = 1 AND "
                             "PartID = 1 AND NodeNumber = 1"),
              "Front desk");
}

// An entry that cannot be read says why, in the list and the details, and
// restoring it is refused with that reason, without the question.
TEST_F(LiveChanges, HistoryWindowNamesADamagedEntryAndRefusesItsRestore) {
    SaveElsewhere(1, 1, "Front desk");
    DataBase db;
    const std::string entry = std::to_string(session::LastHistoryEntry(db));
    root.Exec("UPDATE Node_History SET Changes = '[{oops' WHERE EntryID = " + entry);
    qt::HistoryWindow history(db, {1, 1, 15, 1});
    const QString why = QString::fromStdString("entry " + entry +
                                               " cannot be read: its list of changes is not valid");
    EXPECT_EQ(history.findChild<QTableWidget*>(QStringLiteral("entries"))->item(0, 3)->text(), why);
    EXPECT_TRUE(history.ChangesText().contains(why)) << history.ChangesText().toStdString();
    std::vector<QString> told;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            told.push_back(box->text());
            box->reject();
        }
    });
    watch.start(0);
    EXPECT_FALSE(history.RestoreSelected());
    EXPECT_EQ(told, std::vector<QString>{"History " + why + ". Nothing was restored."});
}

QRect OnScreen(const QWidget& widget) {
    return QRect(widget.mapToGlobal(QPoint(0, 0)), widget.size());
}

// The bar takes its own row between the form and the buttons, within the
// screen; Reload (from the keyboard) hides it and gives the focus back.
TEST_F(LiveChanges, TheEditorShowsABarForAnotherProgramsChangeAndReloads) {
    qt::QtFormServices services;
    RegisterEditorComponents(services);
    services.whenShown = [&](form::GUI& gui, qt::FormView& view) {
        auto* bar = view.findChild<qt::ChangeBar*>(QStringLiteral("changeBar"));
        ASSERT_NE(bar, nullptr);
        const int height = view.height();
        // The editor's own save shows no bar once the bar has taken the
        // change it heard.
        gui.txtDescription.SetText("Mine");
        gui.cmdApply_Click();
        bar->TakeChanges();
        EXPECT_TRUE(bar->Text().isEmpty()) << bar->Text().toStdString();

        QApplication::setActiveWindow(&view);
        QWidget* label = view.WidgetOf("txtDescription");
        label->setFocus(Qt::TabFocusReason);
        SaveElsewhere(1, 1, "Theirs");
        ASSERT_TRUE(WithinTwoSeconds([&] { return !bar->Text().isEmpty(); }));
        EXPECT_TRUE(bar->Text().startsWith(QStringLiteral("DBN 1 was changed by ")));
        EXPECT_TRUE(bar->Details().contains(QStringLiteral("\"Mine\" -> \"Theirs\"")))
            << bar->Details().toStdString();
        QApplication::processEvents();
        EXPECT_GT(view.height(), height);
        EXPECT_LE(view.height(), qt::AvailableClientSize(view).height());
        EXPECT_TRUE(bar->findChild<QLabel*>()->wordWrap());
        const QRect shown = OnScreen(*bar);
        EXPECT_LE(OnScreen(*view.findChild<QScrollArea*>()).bottom(), shown.top());
        for (const char* name : {"cmdOK", "cmdCancel", "cmdApply"}) {
            EXPECT_GT(OnScreen(*view.WidgetOf(name)).top(), shown.bottom()) << name;
        }
        QPushButton* reload = nullptr;
        for (QPushButton* button : bar->findChildren<QPushButton*>()) {
            reload = button->text().remove('&') == "Reload" ? button : reload;
        }
        ASSERT_NE(reload, nullptr);
        reload->setFocus(Qt::TabFocusReason);
        reload->click();
        EXPECT_EQ(gui.txtDescription.Text(), "Theirs");
        EXPECT_TRUE(bar->isHidden());
        EXPECT_EQ(view.height(), height);
        EXPECT_EQ(view.focusWidget(), label);
    };
    Business_Rules(services).ShowNodeEditor(1, 1, 1);
}

// Either answer that shows the node as stored ends the bar; Cancel keeps it.
TEST_F(LiveChanges, TheBarGoesOnceTheSaveOverQuestionShowsTheStoredNode) {
    for (const QString answer : {"Save Over It", "Discard My Changes", "Cancel"}) {
        qt::QtFormServices services;
        RegisterEditorComponents(services);
        services.whenAsked = [&](QMessageBox& box) {
            for (QAbstractButton* button : box.buttons()) {
                if (button->text().remove('&') == answer) {
                    button->click();
                }
            }
        };
        services.whenShown = [&](form::GUI& gui, qt::FormView& view) {
            auto* bar = view.findChild<qt::ChangeBar*>(QStringLiteral("changeBar"));
            SaveElsewhere(1, 1, "Theirs " + answer.toStdString());
            ASSERT_TRUE(WithinTwoSeconds([&] { return !bar->Text().isEmpty(); }));
            // A label of this round's own: one the node already had would
            // leave nothing to save.
            TypeKeys(*view.WidgetAs<QLineEdit>("txtDescription"), "Mine " + answer);
            gui.cmdApply_Click();
            EXPECT_EQ(bar->isHidden(), answer != "Cancel") << answer.toStdString();
            gui.DiscardChangesAndUnload();
        };
        Business_Rules(services).ShowNodeEditor(1, 1, 1);
    }
}

}  // namespace
}  // namespace dbn::testing
