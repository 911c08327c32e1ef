#pragma once

// Shared set-up of the window tests: one offscreen application for the test
// program, the demo database, and the editor opened through ShowNodeEditor
// with the test's actions run once its window is shown. Input is sent to the
// real widgets as the window system would send it.

#include "temp_database.h"

#include "form/gui.h"
#include "qt/form_view.h"
#include "qt/qt_form_services.h"
#include "session/business_rules.h"
#include "session/component_registration.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace dbn::testing {

// The test program's one application, made on first use and ended before the
// program exits (see qt_application.cpp).
QApplication& Application();

// A mouse press and release at a point of a widget.
inline void ClickAt(QWidget& widget, QPoint point) {
    const QPointF local(point);
    const QPointF global(widget.mapToGlobal(point));
    QMouseEvent press(QEvent::MouseButtonPress, local, global, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(&widget, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, local, global, Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(&widget, &release);
}

// Clicks a row of a tree widget in its middle.
inline void ClickRow(QTreeWidget& tree, int row) {
    ClickAt(*tree.viewport(), tree.visualItemRect(tree.topLevelItem(row)).center());
}

// Replaces the text of an edit field key by key, as typing over a selection.
inline void TypeKeys(QLineEdit& edit, const QString& text) {
    edit.selectAll();
    for (const QChar c : text) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(c));
        QApplication::sendEvent(&edit, &key);
    }
}

// Picks an entry of a combo box as its popup does.
inline void PickEntry(QComboBox& combo, const QString& text) {
    const int index = combo.findText(text);
    ASSERT_NE(index, -1) << text.toStdString();
    combo.setCurrentIndex(index);
    emit combo.activated(index);
}

class EditorWindowTest : public ::testing::Test {
protected:
    EditorWindowTest() {
        Application();
        // A box nobody expected is noted and closed, so that no test waits
        // for a person.
        services.whenAsked = [this](QMessageBox& box) {
            unexpectedBoxes.push_back(box.text().toStdString());
            box.escapeButton()->click();
        };
    }

    // Opens the editor on a demo node and runs body once its window is shown.
    void Open(std::int16_t node, std::function<void(form::GUI&, qt::FormView&)> body) {
        RegisterEditorComponents(services);
        services.whenShown = std::move(body);
        Business_Rules rules(services);
        rules.ShowNodeEditor(1, 1, node);
    }

    template <class Widget>
    static Widget& WidgetOf(const qt::FormView& view, const std::string& name) {
        auto* widget = view.WidgetAs<Widget>(name);
        if (widget == nullptr) {
            throw std::logic_error("no widget " + name);
        }
        return *widget;
    }

    TempDataRoot data{TempDataRoot::Content::Demo};
    qt::QtFormServices services;
    std::vector<std::string> unexpectedBoxes;
};

}  // namespace dbn::testing
