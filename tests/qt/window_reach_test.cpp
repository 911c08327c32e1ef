// What the operator reaches in the editor window: the wheel over a box that
// has no focus, the buttons in a strip of their own, the focus after a save,
// mnemonics, and names for a screen reader.

#include "window_support.h"

#include "qt/screen_fit.h"

#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QWheelEvent>

namespace dbn::testing {
namespace {

constexpr std::int16_t kCustomNode = 1;
constexpr std::int16_t kDefaultLastName = 2;

void TurnWheel(QWidget& widget) {
    const QPointF at = QRectF(widget.rect()).center();
    QWheelEvent turn(at, widget.mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton,
                     Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &turn);
}

QRect OnScreen(const QWidget& widget) {
    return QRect(widget.mapToGlobal(QPoint(0, 0)), widget.size());
}

TEST_F(EditorWindowTest, TheWheelChangesOnlyAFocusedBoxAndOtherwiseScrollsTheForm) {
    Open(kCustomNode, [&](form::GUI& form, qt::FormView& view) {
        QApplication::setActiveWindow(&view);
        view.resize(view.width(), 300);
        auto& scroll = *view.findChild<QScrollArea*>();
        auto& method = WidgetOf<QComboBox>(view, "cmbMethod");
        auto& retries = WidgetOf<QComboBox>(view, "cmbRetryLimit");
        const std::string shown = form.cmbRetryLimit.Text();
        for (QComboBox* box : {&method, &retries}) {
            const int before = scroll.verticalScrollBar()->value();
            TurnWheel(*box);
            EXPECT_GT(scroll.verticalScrollBar()->value(), before)
                << box->objectName().toStdString();
        }
        EXPECT_EQ(form.cmbMethod.ListIndex(), 0);
        EXPECT_EQ(form.cmbRetryLimit.Text(), shown);
        EXPECT_FALSE(form.cmdApply.Enabled());
        retries.setFocus(Qt::MouseFocusReason);
        TurnWheel(retries);
        EXPECT_NE(retries.currentText().toStdString(), shown);
        form.DiscardChangesAndUnload();
    });
    EXPECT_TRUE(unexpectedBoxes.empty());
}

// OK, Cancel, Apply and the status bar lie below the scrolling form, never
// over it; the window keeps within the screen and scrolls sideways only
// where the form is wider than the screen.
TEST_F(EditorWindowTest, TheButtonsHaveAStripOfTheirOwnBelowTheForm) {
    for (const std::int16_t node : {kCustomNode, kDefaultLastName}) {
        Open(node, [&](form::GUI& gui, qt::FormView& view) {
            const QSize available = qt::AvailableClientSize(view);
            EXPECT_LE(view.height(), available.height()) << node;
            auto& scroll = *view.findChild<QScrollArea*>();
            // The status bar shows only while a save tells its progress.
            for (const bool status : {false, true}) {
                gui.StatusBar1.SetVisible(status);
                for (const QSize size : {view.size(), QSize(320, 240)}) {
                    view.resize(size);
                    QApplication::processEvents();
                    const QRect form = OnScreen(*scroll.viewport());
                    for (const char* name : {"cmdOK", "cmdCancel", "cmdApply", "StatusBar1"}) {
                        if (!status && std::string(name) == "StatusBar1") {
                            continue;
                        }
                        const QRect button = OnScreen(*view.WidgetOf(name));
                        EXPECT_FALSE(button.intersects(form)) << name << " of " << node;
                        EXPECT_TRUE(view.rect().contains(view.mapFromGlobal(button.bottomLeft())))
                            << name << " of " << node;
                    }
                }
            }
            gui.StatusBar1.SetVisible(false);
            // The tools below the actions list lie wholly inside the form's area.
            for (const char* tool : {"Directory Check", "Try as Caller"}) {
                auto* button = view.findChild<QPushButton*>(QString::fromUtf8(tool));
                ASSERT_NE(button, nullptr) << tool;
                EXPECT_TRUE(OnScreen(*button->parentWidget()).contains(OnScreen(*button)))
                    << tool << node;
                EXPECT_TRUE(view.FormArea().isAncestorOf(button)) << tool << node;
            }
            view.FitToScreen();
            QApplication::processEvents();
            const bool fitsInWidth = view.WidgetOf("Frame1")->parentWidget()->width() +
                                         scroll.verticalScrollBar()->sizeHint().width() <=
                                     available.width();
            EXPECT_EQ(scroll.horizontalScrollBar()->isVisible(), !fitsInWidth) << node;
        });
    }
    EXPECT_TRUE(unexpectedBoxes.empty());
}

QShortcut& SaveKey(qt::FormView& view) {
    for (QShortcut* shortcut : view.findChildren<QShortcut*>()) {
        if (shortcut->key() == QKeySequence(QKeySequence::Save)) {
            return *shortcut;
        }
    }
    throw std::logic_error("no Ctrl+S");
}

// After Ctrl+S, Apply, Esc at the save question and Cancel at the create
// question the focus is in the control the operator was in; a focused
// button looks unlike the default button.
TEST_F(EditorWindowTest, TheFocusStaysWhereTheOperatorWasAndShows) {
    Open(kCustomNode, [&](form::GUI& form, qt::FormView& view) {
        QApplication::setActiveWindow(&view);
        auto& label = WidgetOf<QLineEdit>(view, "txtDescription");
        auto& apply = WidgetOf<QPushButton>(view, "cmdApply");
        label.setFocus(Qt::TabFocusReason);
        TypeKeys(label, QStringLiteral("Front desk"));
        services.whenAsked = [](QMessageBox& box) { box.escapeButton()->click(); };
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(&label, &escape);  // Cancel at the save question
        EXPECT_TRUE(form.cmdApply.Enabled());
        EXPECT_EQ(view.focusWidget(), &label);
        QApplication::setActiveWindow(&view);  // the question box had it
        emit SaveKey(view).activated();
        EXPECT_FALSE(form.cmdApply.Enabled());
        EXPECT_EQ(view.focusWidget(), &label);

        auto& greeting = WidgetOf<QComboBox>(view, "cmbGreetingNumber");
        greeting.setFocus(Qt::MouseFocusReason);
        PickEntry(greeting, greeting.itemText(greeting.count() - 1));  // a missing node
        services.whenAsked = [](QMessageBox& box) { box.escapeButton()->click(); };
        apply.setFocus(Qt::MouseFocusReason);
        apply.click();
        EXPECT_TRUE(form.cmdApply.Enabled());
        EXPECT_TRUE(greeting.isAncestorOf(view.focusWidget()) || view.focusWidget() == &greeting);
        PickEntry(greeting, QStringLiteral("1"));
        services.whenAsked = [](QMessageBox& box) { box.buttons().front()->click(); };
        apply.setFocus(Qt::MouseFocusReason);
        apply.click();
        EXPECT_FALSE(form.cmdApply.Enabled());
        EXPECT_TRUE(greeting.isAncestorOf(view.focusWidget()) || view.focusWidget() == &greeting);

        auto& ok = WidgetOf<QPushButton>(view, "cmdOK");
        ASSERT_TRUE(ok.isDefault());
        const QImage asDefault = ok.grab().toImage();
        QApplication::setActiveWindow(&view);  // the question boxes had it
        ok.setFocus(Qt::TabFocusReason);
        EXPECT_TRUE(ok.isDefault());
        EXPECT_NE(ok.grab().toImage(), asDefault);
        form.DiscardChangesAndUnload();
    });
}

// Every labelled field and the window's buttons have a mnemonic of their
// own, but for the list buttons and the tools (F7 and F8) where the window's
// captions share too few letters; every shown focusable object a name of its
// own saying its field.
TEST_F(EditorWindowTest, FieldsHaveMnemonicsAndNamesOfTheirOwn) {
    for (const std::int16_t node : {kCustomNode, kDefaultLastName}) {
        Open(node, [&](form::GUI&, qt::FormView& view) {
            const auto letters = Mnemonics(view);
            EXPECT_EQ(SharedMnemonics(letters), std::vector<std::string>{}) << node;
            for (const auto& [text, letter] : letters) {
                const QString caption = QString(text).remove('&');
                const bool last = caption == "Edit" || caption == "Default" ||
                                  caption == "Directory Check" || caption == "Try as Caller";
                EXPECT_TRUE(!letter.isNull() || last) << text.toStdString();
            }
            EXPECT_EQ(WidgetOf<QLabel>(view, "lblGreeting").text(), "&Greeting:");
            EXPECT_EQ(AccessibleNameProblems(view), std::vector<std::string>{}) << node;
            const std::map<std::string, QString> names = {
                {"cmbGreetingNode", "Greeting type"},
                {"cmbGreetingNumber", "Greeting number"},
                {"cmbFirstMinDigits", "First match minimum digits"},
                {"cmdActionsEdit", "Actions: Edit"},
                {"cmdConfirmDefault", "Confirmation: Default"}};
            for (const auto& [control, name] : names) {
                EXPECT_EQ(view.WidgetOf(control)->accessibleName(), name);
            }
            EXPECT_EQ(WidgetOf<QComboBox>(view, "cmbGreetingNumber").lineEdit()->accessibleName(),
                      "Greeting number");
        });
    }
}

}  // namespace
}  // namespace dbn::testing
