// The operator's input on the real widgets reaches the model's handlers, and
// what the handlers change comes back to the widgets.

#include "window_support.h"

#include <QAbstractItemView>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollBar>

#include <cstdlib>
#include <tuple>

namespace dbn::testing {
namespace {

// The widgets of the actions list's in-place pickers.
const char* const kActionPickers[] = {"cmbValidMatchNode", "cmbValidMatchNumber", "cmbAbortNode",
                                      "cmbAbortNumber",    "cmbStarNode",         "cmbStarNumber",
                                      "cmbPoundNode",      "cmbPoundNumber",      "cmbZeroNode",
                                      "cmbZeroNumber"};

int VisiblePickers(const qt::FormView& view) {
    int visible = 0;
    for (const char* name : kActionPickers) {
        visible += view.WidgetOf(name)->isVisible() ? 1 : 0;
    }
    return visible;
}

// Whether a picker lies over a row as drawn: centred on it, and no lower
// than its neighbours' text.
bool PickerOverRow(const qt::FormView& view, const QTreeWidget& tree, int row,
                   const std::string& picker) {
    const QRect rect = tree.visualItemRect(tree.topLevelItem(row));
    const int rowCentre = tree.viewport()->mapTo(&view, rect.center()).y();
    const QWidget* widget = view.WidgetOf(picker);
    const int pickerCentre = widget->mapTo(&view, widget->rect().center()).y();
    return std::abs(pickerCentre - rowCentre) <= 1 && tree.selectionModel()->isRowSelected(row, {});
}

TEST_F(EditorWindowTest, PickingAMethodRunsItsHandlerAndResizesTheWindow) {
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        const int wide = view.width();
        auto& apply = WidgetOf<QPushButton>(view, "cmdApply");
        ASSERT_FALSE(apply.isEnabled());

        // Picking the entry already shown changes nothing.
        const int rows = form.LVConfirm.ItemCount();
        PickEntry(WidgetOf<QComboBox>(view, "cmbConfirmation"), "Yes");
        PickEntry(WidgetOf<QComboBox>(view, "cmbMethod"), "Custom");
        EXPECT_FALSE(apply.isEnabled());
        EXPECT_EQ(form.LVConfirm.ItemCount(), rows);
        EXPECT_EQ(view.width(), wide);

        PickEntry(WidgetOf<QComboBox>(view, "cmbMethod"), "Default Last Name");
        EXPECT_EQ(form.cmbMethod.Text(), "Default Last Name");
        EXPECT_TRUE(form.cmdApply.Enabled());
        EXPECT_TRUE(apply.isEnabled());
        EXPECT_EQ(view.width(), view.Scale().ToPixels(form.Width()));
        EXPECT_LT(view.width(), wide);
        EXPECT_GE(WidgetOf<QWidget>(view, "fraCustomSettings").x(), view.width());
        EXPECT_TRUE(WidgetOf<QWidget>(view, "fraLanguage").isEnabled());

        PickEntry(WidgetOf<QComboBox>(view, "cmbMethod"), "Custom");
        EXPECT_EQ(view.width(), wide);
    });
}

TEST_F(EditorWindowTest, TypingGoesToTheModelAndItsCorrectionComesBack) {
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        auto& description = WidgetOf<QLineEdit>(view, "txtDescription");
        TypeKeys(description, "Front desk");
        EXPECT_EQ(form.txtDescription.Text(), "Front desk");
        EXPECT_TRUE(WidgetOf<QPushButton>(view, "cmdApply").isEnabled());

        // A number beyond the list's last entry is cut back by the model to
        // the digits that fit, and the edit field shows the cut number.
        auto& retries = WidgetOf<QComboBox>(view, "cmbRetryLimit");
        const std::string last = form.cmbRetryLimit.List(form.cmbRetryLimit.ListCount() - 1);
        ASSERT_LT(std::stoi(last), 10);
        TypeKeys(*retries.lineEdit(), QString::fromStdString(last) + "5");
        EXPECT_EQ(form.cmbRetryLimit.Text(), last);
        EXPECT_EQ(retries.currentText().toStdString(), last);

        // Typing an entry's text and leaving the field picks nothing.
        const int selected = form.cmbRetryLimit.ListIndex();
        TypeKeys(*retries.lineEdit(), "2");
        QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(retries.lineEdit(), &leave);
        EXPECT_EQ(form.cmbRetryLimit.Text(), "2");
        EXPECT_EQ(retries.currentText(), "2");
        EXPECT_EQ(form.cmbRetryLimit.ListIndex(), selected);
    });
}

TEST_F(EditorWindowTest, EditButtonRowClicksAndHeaderPressMoveThePickers) {
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        auto& edit = WidgetOf<QPushButton>(view, "cmdActionsEdit");
        auto& tree = WidgetOf<QTreeWidget>(view, "LVActions");
        edit.click();
        EXPECT_TRUE(form.ActionsEditMode());
        EXPECT_EQ(edit.text().remove('&'), "Edit Off");
        EXPECT_FALSE(WidgetOf<QPushButton>(view, "cmdActionsDefault").isEnabled());
        EXPECT_EQ(VisiblePickers(view), 2);
        EXPECT_TRUE(view.WidgetOf("cmbValidMatchNode")->isVisible());
        EXPECT_TRUE(PickerOverRow(view, tree, 0, "cmbValidMatchNode"));

        ClickRow(tree, 2);
        EXPECT_EQ(form.LVActions.SelectedItem(), &form.LVActions.ItemAt(2));
        EXPECT_TRUE(tree.topLevelItem(2)->isSelected());
        EXPECT_TRUE(view.WidgetOf("cmbStarNode")->isVisible());
        EXPECT_FALSE(view.WidgetOf("cmbValidMatchNode")->isVisible());
        EXPECT_TRUE(PickerOverRow(view, tree, 2, "cmbStarNode"));
        EXPECT_EQ(WidgetOf<QComboBox>(view, "cmbStarNode").currentText().toStdString(),
                  form.LVActions.ItemAt(2).SubItem(4));

        ClickAt(*tree.header()->viewport(), QPoint(5, 5));
        EXPECT_EQ(VisiblePickers(view), 0);
        EXPECT_TRUE(form.ActionsEditMode());
    });
}

TEST_F(EditorWindowTest, ArrowKeysMoveTheEditedRowAndItsPickers) {
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        auto& tree = WidgetOf<QTreeWidget>(view, "LVActions");
        WidgetOf<QPushButton>(view, "cmdActionsEdit").click();
        ASSERT_TRUE(view.WidgetOf("cmbValidMatchNode")->isVisible());
        for (const auto& [key, row, picker] : {std::tuple{Qt::Key_Down, 1, "cmbAbortNode"},
                                               std::tuple{Qt::Key_Down, 2, "cmbStarNode"},
                                               std::tuple{Qt::Key_Up, 1, "cmbAbortNode"}}) {
            SCOPED_TRACE(picker);
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(&tree, &press);
            EXPECT_EQ(form.LVActions.SelectedItem(), &form.LVActions.ItemAt(row));
            EXPECT_TRUE(view.WidgetOf(picker)->isVisible());
            EXPECT_FALSE(view.WidgetOf("cmbValidMatchNode")->isVisible());
        }
    });
}

TEST_F(EditorWindowTest, OperatorFocusOnAnInputEndsTheListEditing) {
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        auto& edit = WidgetOf<QPushButton>(view, "cmdActionsEdit");
        auto& description = WidgetOf<QLineEdit>(view, "txtDescription");
        edit.click();
        ASSERT_TRUE(form.ActionsEditMode());

        // The window getting active again is not the operator's move.
        QFocusEvent windowBack(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
        QApplication::sendEvent(&description, &windowBack);
        EXPECT_TRUE(form.ActionsEditMode());

        QFocusEvent click(QEvent::FocusIn, Qt::MouseFocusReason);
        QApplication::sendEvent(&description, &click);
        EXPECT_TRUE(form.txtDescription.HasFocus());
        EXPECT_FALSE(form.ActionsEditMode());
        EXPECT_EQ(edit.text().remove('&'), "Edit");
        EXPECT_EQ(VisiblePickers(view), 0);
    });
}

TEST_F(EditorWindowTest, ScrollingTheConfirmationListHidesItsPickers) {
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        WidgetOf<QPushButton>(view, "cmdConfirmEdit").click();
        auto& tree = WidgetOf<QTreeWidget>(view, "LVConfirm");
        ClickRow(tree, 1);
        ASSERT_TRUE(view.WidgetOf("cmbConfirmNode")->isVisible());
        EXPECT_TRUE(PickerOverRow(view, tree, 1, "cmbConfirmNode"));

        ASSERT_GT(tree.verticalScrollBar()->maximum(), 0);
        tree.verticalScrollBar()->setValue(1);
        EXPECT_FALSE(form.cmbConfirmNode.Visible());
        EXPECT_FALSE(view.WidgetOf("cmbConfirmNode")->isVisible());
    });
}

// Wherever the confirmation list is scrolled, a click edits the row clicked:
// the list stays where it is and the pickers lie over that row; in and out of
// edit mode alike.
TEST_F(EditorWindowTest, ARowScrolledIntoViewIsEditedWhereItIs) {
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        auto& tree = WidgetOf<QTreeWidget>(view, "LVConfirm");
        QScrollBar& scroll = *tree.verticalScrollBar();
        ASSERT_GT(scroll.maximum(), 0);
        for (const bool editFirst : {false, true}) {
            scroll.setValue(scroll.maximum());
            const int scrolled = scroll.value();
            const int last = tree.topLevelItemCount() - 1;
            if (editFirst) {
                ClickRow(tree, last);
                WidgetOf<QPushButton>(view, "cmdConfirmEdit").click();
            } else {
                ClickRow(tree, last - 1);
                ClickRow(tree, last);
            }
            EXPECT_EQ(scroll.value(), scrolled) << "edit first " << editFirst;
            EXPECT_EQ(form.LVConfirm.SelectedItem(), &form.LVConfirm.ItemAt(last));
            if (form.ConfirmEditMode()) {
                EXPECT_TRUE(view.WidgetOf("cmbConfirmNode")->isVisible());
                EXPECT_TRUE(PickerOverRow(view, tree, last, "cmbConfirmNode"));
            } else {
                WidgetOf<QPushButton>(view, "cmdConfirmEdit").click();
                EXPECT_EQ(scroll.value(), scrolled);
                EXPECT_TRUE(PickerOverRow(view, tree, last, "cmbConfirmNode"));
            }
            WidgetOf<QPushButton>(view, "cmdConfirmEdit").click();  // edit off
            scroll.setValue(0);
        }
    });
}

// An opened drop-down highlights the entry its field shows.
TEST_F(EditorWindowTest, ADropDownOpensOnTheEntryItShows) {
    Open(1, [&](form::GUI&, qt::FormView& view) {
        WidgetOf<QPushButton>(view, "cmdActionsEdit").click();
        ClickRow(WidgetOf<QTreeWidget>(view, "LVActions"), 1);
        for (const char* name :
             {"cmbAbortNode", "cmbAbortNumber", "cmbMethod", "cmbDirectory", "cmbGreetingNumber"}) {
            auto& combo = WidgetOf<QComboBox>(view, name);
            ASSERT_TRUE(combo.isVisible()) << name;
            combo.showPopup();
            const QModelIndex highlighted = combo.view()->currentIndex();
            EXPECT_EQ(highlighted.data().toString(), combo.currentText()) << name;
            combo.hidePopup();
        }
    });
}

// The focused list view shows a frame in the highlight colour; the others none.
TEST_F(EditorWindowTest, TheFocusedListViewIsFramed) {
    Open(1, [&](form::GUI&, qt::FormView& view) {
        auto frameShown = [&](const char* name) {
            auto& tree = WidgetOf<QTreeWidget>(view, name);
            for (QWidget* child : tree.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
                if (child->testAttribute(Qt::WA_TransparentForMouseEvents) && child->isVisible()) {
                    return child->geometry() == tree.rect();
                }
            }
            return false;
        };
        for (const char* focused : {"LVActions", "LVConfirm"}) {
            QFocusEvent in(QEvent::FocusIn, Qt::TabFocusReason);
            QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
            for (const char* other : {"LVActions", "LVConfirm"}) {
                if (std::string(other) != focused) {
                    QApplication::sendEvent(view.WidgetOf(other), &out);
                }
            }
            QApplication::sendEvent(view.WidgetOf(focused), &in);
            EXPECT_TRUE(frameShown(focused)) << focused;
            EXPECT_FALSE(
                frameShown(std::string(focused) == "LVActions" ? "LVConfirm" : "LVActions"));
        }
    });
}

TEST_F(EditorWindowTest, EscPressesCancelAndClosesTheWindow) {
    bool closed = false;
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(&view, &escape);
        closed = !form.IsLoaded() && !view.isVisible();
    });
    EXPECT_TRUE(closed);
    EXPECT_TRUE(unexpectedBoxes.empty());
}

}  // namespace
}  // namespace dbn::testing
