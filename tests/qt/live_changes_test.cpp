// Changes made by another program, offscreen: the node list shows them
// without F5 and marks their rows, its History window lists and restores
// entries, and the editor shows its bar above the buttons.
#include "window_support.h"

#include "database/database.h"
#include "qt/change_bar.h"
#include "qt/history_window.h"
#include "qt/node_list_window.h"
#include "session/node_history.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QTableWidget>

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
void SaveElsewhere(std::int16_t partition, std::int16_t node, const std::string& description) {
    qt::QtFormServices services;
    RegisterEditorComponents(services);
    services.whenShown = [&](form::GUI& gui, qt::FormView&) {
        gui.txtDescription.SetText(description);
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

TEST_F(LiveChanges, HistoryWindowListsEntriesAndRestoresOne) {
    SaveElsewhere(1, 1, "Front desk");
    SaveElsewhere(1, 1, "Back desk");
    DataBase db;
    qt::HistoryWindow history(db, {1, 1, 15, 1});
    ASSERT_EQ(history.EntryCount(), 2);
    EXPECT_TRUE(history.ChangesText().contains(
        QStringLiteral("NodeDescription: \"Front desk\" -> \"Back desk\"")))
        << history.ChangesText().toStdString();
    history.SelectEntry(1);
    EXPECT_TRUE(history.RestoreSelected(true));
    EXPECT_EQ(history.EntryCount(), 3);
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_DBN WHERE ConfigID = 1 AND "
                             "PartID = 1 AND NodeNumber = 1"),
              "Front desk");
}

TEST_F(LiveChanges, TheEditorShowsABarForAnotherProgramsChangeAndReloads) {
    qt::QtFormServices services;
    RegisterEditorComponents(services);
    services.whenShown = [&](form::GUI& gui, qt::FormView& view) {
        auto* bar = view.findChild<qt::ChangeBar*>(QStringLiteral("changeBar"));
        ASSERT_NE(bar, nullptr);
        const int height = view.height();
        // The editor's own save shows no bar.
        gui.txtDescription.SetText("Mine");
        gui.cmdApply_Click();
        QApplication::processEvents();
        WithinTwoSeconds([] { return false; });
        EXPECT_TRUE(bar->Text().isEmpty()) << bar->Text().toStdString();

        SaveElsewhere(1, 1, "Theirs");
        ASSERT_TRUE(WithinTwoSeconds([&] { return !bar->Text().isEmpty(); }));
        EXPECT_TRUE(bar->Text().startsWith(QStringLiteral("DBN 1 was changed by ")));
        EXPECT_TRUE(bar->Details().contains(QStringLiteral("\"Mine\" -> \"Theirs\"")))
            << bar->Details().toStdString();
        EXPECT_GT(view.height(), height);
        bar->Reload();
        EXPECT_EQ(gui.txtDescription.Text(), "Theirs");
        EXPECT_EQ(view.height(), height);
    };
    Business_Rules(services).ShowNodeEditor(1, 1, 1);
}

}  // namespace
}  // namespace dbn::testing
