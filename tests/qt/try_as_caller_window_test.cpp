// F8 in the editor window opens "Try as Caller": a call through the node on
// show under the settings the form shows now, driven by its keypad or by the
// keyboard, started again by a change in the editor.
#include "window_support.h"

#include "qt/try_as_caller_window.h"

#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>

#include <set>

namespace dbn::testing {
namespace {

qt::TryAsCallerWindow& PressF8(qt::FormView& view) {
    for (QShortcut* shortcut : view.findChildren<QShortcut*>()) {
        if (shortcut->key() == QKeySequence(Qt::Key_F8)) {
            emit shortcut->activated();
        }
    }
    auto* window = view.findChild<qt::TryAsCallerWindow*>();
    EXPECT_NE(window, nullptr);
    return *window;
}

// A key typed on the keyboard while `widget` has the focus.
void Type(QWidget& widget, char c) {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(QChar(c)));
    QApplication::sendEvent(&widget, &key);
}

QPushButton& Button(QWidget& window, const QString& name) {
    for (QPushButton* button : window.findChildren<QPushButton*>()) {
        if (button->accessibleName() == name) {
            return *button;
        }
    }
    ADD_FAILURE() << name.toStdString() << " is missing";
    throw std::runtime_error("no button");
}

TEST_F(EditorWindowTest, KeypadAndKeyboardDriveTheCallAndAChangeStartsItAgain) {
    Open(1, [&](form::GUI&, qt::FormView& view) {
        qt::TryAsCallerWindow& window = PressF8(view);
        EXPECT_TRUE(window.isVisible());
        EXPECT_EQ(window.windowTitle(), "Try as Caller");
        EXPECT_EQ(window.State(), "first stage, Last Name: no digits, 5 names");

        Button(window, "Key 2").click();
        Type(window, '3');
        // The keyboard works as the keypad wherever the focus is.
        Button(window, "Restart").setFocus();
        Type(Button(window, "Restart"), '2');
        EXPECT_EQ(window.Matches(), QStringList{"Grace Adams 2101"});
        Button(window, "Silence").click();
        EXPECT_EQ(window.State(), "confirmation: 1 name offered: 1 Grace Adams 2101");
        EXPECT_EQ(window.Matches(), QStringList{"1  Grace Adams 2101"});
        Type(window, '1');
        EXPECT_EQ(window.State(),
                  "exit Valid Match: XFER 1 \"Operator transfer\", extension 2101 (Grace Adams)");
        EXPECT_TRUE(window.Transcript().startsWith("0 start\n  play: MSG 1 \"Main greeting\"\n"));
        EXPECT_TRUE(window.Transcript().contains("\n4 silence\n  note: 232 matches 1 name\n"));

        // An unsaved change starts the call again under the new settings.
        PickEntry(WidgetOf<QComboBox>(view, "cmbfirstMatch"), "Extension");
        QCoreApplication::processEvents();
        EXPECT_EQ(window.State(), "first stage, Extension: no digits, 5 names");
        Type(window, '*');
        EXPECT_EQ(window.State(), "exit *: NOOP");
        Button(window, "Restart").click();
        EXPECT_EQ(window.Transcript().count("\n"), 4);

        // Every part the keyboard reaches has a name of its own; the editor
        // shows both tool buttons.
        std::set<QString> names;
        for (QWidget* widget : window.findChildren<QWidget*>()) {
            if (widget->focusPolicy() & Qt::TabFocus) {
                EXPECT_FALSE(widget->accessibleName().isEmpty());
                EXPECT_TRUE(names.insert(widget->accessibleName()).second)
                    << widget->accessibleName().toStdString();
            }
        }
        EXPECT_EQ(names.size(), 16u);
        // The transcript and the matches show when they have the focus.
        EXPECT_TRUE(ShowsFocusFrame(*window.findChild<QPlainTextEdit*>()));
        EXPECT_TRUE(ShowsFocusFrame(*window.findChild<QListWidget*>()));
        // (The window's captions leave them no letter: F7 and F8 open them.)
        EXPECT_EQ(Button(view, "Try as Caller").text(), "Try as Caller");
        EXPECT_EQ(Button(view, "Directory Check").text(), "Directory Check");
    });
    EXPECT_TRUE(unexpectedBoxes.empty());
}

}  // namespace
}  // namespace dbn::testing
