// bench_first_frame MODE ...: from the process start to the first painted
// frame of a window, then closes it; no picture is taken.
//   editor ROOT    the editor on node 1 of configuration 1, partition 1
//   empty W H      an empty dialog of W x H pixels
//   widgets        a dialog holding the editor's widgets, built directly with
//                  Qt from the control table, with no model behind them
#include "database/data_location.h"
#include "form/control_table.h"
#include "qt/form_fonts.h"
#include "qt/form_view.h"
#include "qt/qt_form_services.h"
#include "qt/twips.h"
#include "session/editor/business_rules.h"
#include "session/editor/component_registration.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>
#include <QTreeWidget>

#include <functional>
#include <iostream>
#include <map>
#include <string>

namespace {

// Runs `then` once, as soon as any widget has painted.
class FirstPaint : public QObject {
public:
    explicit FirstPaint(std::function<void()> then) : then_(std::move(then)) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        // A window wholly covered by its children (the editor's scroll area)
        // is never painted itself: the first widget painted counts.
        if (!painted_ && event->type() == QEvent::Paint && watched->isWidgetType()) {
            painted_ = true;
            QTimer::singleShot(0, this, then_);
        }
        return false;
    }
    bool Painted() const noexcept { return painted_; }

private:
    std::function<void()> then_;
    bool painted_ = false;
};

int Editor(const std::string& root) {
    dbn::SetDataRootOverride(root);
    dbn::qt::QtFormServices services;
    services.whenAsked = [](QMessageBox& box) { box.reject(); };
    FirstPaint firstPaint([&services] {
        if (dbn::qt::FormView* view = services.ShownView()) {
            view->Form().DiscardChangesAndUnload();
        }
    });
    qApp->installEventFilter(&firstPaint);
    dbn::RegisterEditorComponents(services);
    dbn::Business_Rules rules(services);
    rules.ShowNodeEditor(1, 1, 1);
    return firstPaint.Painted() ? 0 : 1;
}

int Shown(QDialog& dialog) {
    FirstPaint firstPaint([&dialog] { dialog.done(QDialog::Accepted); });
    qApp->installEventFilter(&firstPaint);
    dialog.exec();
    return firstPaint.Painted() ? 0 : 1;
}

// Every control of the table as the Qt widget of its kind, placed as on the form.
void AddTableWidgets(QDialog& dialog) {
    using dbn::form::ControlKind;
    const dbn::qt::TwipsScale scale(dbn::qt::ScreenDpi());
    std::map<std::string, QWidget*> widgets{{"Form", &dialog}};
    const auto add = [&](ControlKind kind, const char* name, const char* container,
                         dbn::form::Rect rect, const char* caption) {
        QWidget* parent = widgets.at(container);
        QWidget* widget = nullptr;
        switch (kind) {
            case ControlKind::ChoiceList:
                widget = new QComboBox(parent);
                break;
            case ControlKind::EditableList: {
                auto* combo = new QComboBox(parent);
                combo->setEditable(true);
                widget = combo;
                break;
            }
            case ControlKind::TextField:
                widget = new QLineEdit(QString::fromUtf8(caption), parent);
                break;
            case ControlKind::Label:
                widget = new QLabel(QString::fromUtf8(caption), parent);
                break;
            case ControlKind::Button:
                widget = new QPushButton(QString::fromUtf8(caption), parent);
                break;
            case ControlKind::Frame:
                widget = new QGroupBox(QString::fromUtf8(caption), parent);
                break;
            case ControlKind::ListView: {
                auto* tree = new QTreeWidget(parent);
                tree->setColumnCount(7);
                widget = tree;
                break;
            }
            case ControlKind::PlainList:
                widget = new QListWidget(parent);
                widget->hide();
                break;
            case ControlKind::StatusBar:
                widget = new QStatusBar(parent);
                widget->hide();
                break;
            case ControlKind::ImageList:
                return;
        }
        widget->setGeometry(scale.ToPixels(rect));
        widgets[name] = widget;
    };
#define DBN_ADD_WIDGET(kind, name, container, left, top, width, height, tab, caption, start) \
    add(ControlKind::kind, #name, #container, {left, top, width, height}, caption);
    DBN_GUI_CONTROLS(DBN_ADD_WIDGET)
#undef DBN_ADD_WIDGET
    dialog.setFixedSize(scale.ToPixels(10515), scale.ToPixels(8415));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "editor" && argc == 3) {
        return Editor(argv[2]);
    }
    if (mode == "empty" && argc == 4) {
        QDialog dialog;
        dialog.resize(std::stoi(argv[2]), std::stoi(argv[3]));
        return Shown(dialog);
    }
    if (mode == "widgets" && argc == 2) {
        QDialog dialog;
        dialog.setFont(dbn::qt::FormFont());
        AddTableWidgets(dialog);
        return Shown(dialog);
    }
    std::cerr << "usage: bench_first_frame editor ROOT | empty WIDTH HEIGHT | widgets\n";
    return 2;
}
