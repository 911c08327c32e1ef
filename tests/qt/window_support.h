#pragma once

// Shared set-up of the window tests: one offscreen application for the test
// program, the demo database, and the editor opened through ShowNodeEditor
// with the test's actions run once its window is shown. Input is sent to the
// real widgets as the window system would send it.

#include "temp_database.h"

#include "form/gui.h"
#include "qt/form_view.h"
#include "qt/qt_form_services.h"
#include "session/editor/business_rules.h"
#include "session/editor/component_registration.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <functional>
#include <map>
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

// Whether a view shows the focus frame once it gets the focus.
inline bool ShowsFocusFrame(QWidget& view) {
    QFocusEvent in(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(&view, &in);
    for (QWidget* child : view.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (child->isVisible() && child->testAttribute(Qt::WA_TransparentForMouseEvents)) {
            return true;
        }
    }
    return false;
}

// What a screen reader would find wrong in a window: a shown focusable
// object of its accessible tree without a name, or with another's name.
// The edit box of a combo box is its combo box and must carry its name.
// Item views are objects; their rows are their values.
inline std::vector<std::string> AccessibleNameProblems(QWidget& window) {
    std::vector<std::string> problems;
    std::map<QString, int> seen;
    std::function<void(QAccessibleInterface&)> walk = [&](QAccessibleInterface& node) {
        for (int i = 0; i < node.childCount(); ++i) {
            QAccessibleInterface* child = node.child(i);
            if (child == nullptr) {
                continue;
            }
            const QAccessible::State state = child->state();
            const QString name = child->text(QAccessible::Name);
            const QString what = child->object() ? child->object()->objectName() : QString();
            auto* combo =
                qobject_cast<QComboBox*>(child->object() ? child->object()->parent() : nullptr);
            if (state.focusable && !state.invisible) {
                if (combo != nullptr && qobject_cast<QLineEdit*>(child->object())) {
                    if (name != combo->accessibleName()) {
                        problems.push_back("edit box of " + combo->objectName().toStdString() +
                                           " named " + name.toStdString());
                    }
                } else if (name.isEmpty()) {
                    problems.push_back("no name: " + what.toStdString());
                } else if (++seen[name] == 2) {
                    problems.push_back(
                        "twice: " + name.toStdString() + " " +
                        (child->object() ? child->object()->metaObject()->className() : "?") + " " +
                        std::to_string(child->role()));
                }
            }
            if (!qobject_cast<QAbstractItemView*>(child->object())) {
                walk(*child);
            }
        }
    };
    walk(*QAccessible::queryAccessibleInterface(&window));
    return problems;
}

// The mnemonic letters of a window's labelled fields, buttons and menus,
// by their texts; a text without one maps to 0.
inline std::vector<std::pair<QString, QChar>> Mnemonics(QWidget& window) {
    std::vector<std::pair<QString, QChar>> letters;
    auto note = [&](const QString& text) {
        const qsizetype at =
            QString(text).replace(QStringLiteral("&&"), QStringLiteral("__")).indexOf('&');
        letters.emplace_back(text,
                             at >= 0 && at + 1 < text.size() ? text[at + 1].toLower() : QChar());
    };
    for (QLabel* label : window.findChildren<QLabel*>()) {
        if (label->buddy() != nullptr) {
            note(label->text());
        }
    }
    for (QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
        if (!button->text().isEmpty()) {
            note(button->text());
        }
    }
    for (QMenuBar* bar : window.findChildren<QMenuBar*>()) {
        for (QAction* menu : bar->actions()) {
            note(menu->text());
        }
    }
    return letters;
}

// The texts whose mnemonic another text of the window has too.
inline std::vector<std::string> SharedMnemonics(
    const std::vector<std::pair<QString, QChar>>& letters) {
    std::map<QChar, int> count;
    for (const auto& [text, letter] : letters) {
        count[letter] += letter.isNull() ? 0 : 1;
    }
    std::vector<std::string> shared;
    for (const auto& [text, letter] : letters) {
        if (count[letter] > 1) {
            shared.push_back(text.toStdString());
        }
    }
    return shared;
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
    void Open(std::int16_t node, std::function<void(form::GUI&, qt::FormView&)> body,
              std::int16_t partition = 1) {
        RegisterEditorComponents(services);
        services.whenShown = std::move(body);
        Business_Rules rules(services);
        rules.ShowNodeEditor(1, partition, node);
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
