// The editor under an operator who works from the keyboard: the focus chain,
// what is out of view staying out of reach, the whole form disabled while a
// save asks, and the title naming the node.

#include "window_support.h"

#include <QPushButton>
#include <QShortcut>

#include <algorithm>
#include <map>

namespace dbn::testing {
namespace {

constexpr std::int16_t kCustomNode = 1;       // "Staff directory"
constexpr std::int16_t kDefaultLastName = 2;  // "Sales directory"

// The form control whose widget holds the focus widget.
const form::Control* ControlOf(const qt::FormView& view, QWidget* widget) {
    for (; widget != nullptr && widget != &view; widget = widget->parentWidget()) {
        if (const form::Control* control =
                view.Form().FindControl(widget->objectName().toStdString());
            control != nullptr && view.WidgetOf(control->Name()) == widget) {
            return control;
        }
    }
    return nullptr;
}

bool Inside(const form::Control& control, const std::string& container) {
    for (const form::Control* up = &control; up != nullptr; up = up->Container()) {
        if (up->Name() == container) {
            return true;
        }
    }
    return false;
}

void Press(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(&widget, &press);
}

// The two tool buttons beside OK, named by their captions.
bool IsTool(const QWidget* widget) {
    const QString name = widget != nullptr ? widget->objectName() : QString();
    return name == "Directory Check" || name == "Try as Caller";
}

// A stop's name: its control's, or a tool's caption.
std::string StopName(const qt::FormView& view, QWidget* widget) {
    const form::Control* control = ControlOf(view, widget);
    return control != nullptr ? control->Name()
                              : (IsTool(widget) ? widget->objectName().toStdString() : "");
}

// Where a stop lies in the tab order: its control's tab index; the two
// tools after every control of the form, before OK.
double Rank(const qt::FormView& view, const std::string& stop) {
    const int ok = view.Form().cmdOK.TabIndex();
    if (stop == "Directory Check" || stop == "Try as Caller") {
        return ok - (stop == "Directory Check" ? 0.5 : 0.25);
    }
    return view.Form().FindControl(stop)->TabIndex();
}

// The stops Tab (or Shift+Tab) visits from the focus, once round.
std::vector<std::string> TabStops(qt::FormView& view, bool backward) {
    std::vector<std::string> stops;
    for (int step = 0; step < 200; ++step) {
        const std::string stop = StopName(view, view.focusWidget());
        if (stop.empty() || (!stops.empty() && stop == stops.front())) {
            break;
        }
        stops.push_back(stop);
        Press(*view.focusWidget(), backward ? Qt::Key_Backtab : Qt::Key_Tab,
              backward ? Qt::ShiftModifier : Qt::NoModifier);
    }
    return stops;
}

TEST_F(EditorWindowTest, TabVisitsTheShownEnabledControlsInTheFormsOrder) {
    for (const std::int16_t node : {kCustomNode, kDefaultLastName}) {
        Open(node, [&](form::GUI& form, qt::FormView& view) {
            ASSERT_EQ(ControlOf(view, view.focusWidget()), &form.txtDescription) << node;
            const std::vector<std::string> forward = TabStops(view, false);
            ASSERT_GT(forward.size(), 10u) << node;
            for (const std::string& stop : forward) {
                const form::Control* control = form.FindControl(stop);
                QWidget* widget = control != nullptr
                                      ? view.WidgetOf(stop)
                                      : view.findChild<QWidget*>(QString::fromStdString(stop));
                EXPECT_TRUE(widget->isVisible() && widget->isEnabled()) << stop;
                EXPECT_NE(stop, "txtDIR");
                EXPECT_FALSE(widget->accessibleName().isEmpty()) << stop;
                EXPECT_FALSE(
                    control != nullptr && node == kDefaultLastName &&
                    (Inside(*control, "fraCustomSettings") || Inside(*control, "fraErrorSettings")))
                    << stop;
            }
            // Round from the first stop of the form, the ranks ascend; both
            // tools are stops.
            std::vector<std::string> round = forward;
            std::rotate(round.begin(),
                        std::min_element(round.begin(), round.end(),
                                         [&](const auto& a, const auto& b) {
                                             return Rank(view, a) < Rank(view, b);
                                         }),
                        round.end());
            for (std::size_t i = 1; i < round.size(); ++i) {
                EXPECT_LT(Rank(view, round[i - 1]), Rank(view, round[i])) << round[i];
            }
            for (const char* tool : {"Directory Check", "Try as Caller"}) {
                EXPECT_EQ(std::count(round.begin(), round.end(), tool), 1) << tool;
            }
            EXPECT_EQ(view.WidgetOf("txtDescription")->accessibleName(), "Label");
            EXPECT_EQ(view.WidgetOf("cmbGreetingNode")->accessibleName(), "Greeting type");
            // Shift+Tab walks the same stops the other way round.
            std::vector<std::string> backward = TabStops(view, true);
            ASSERT_FALSE(backward.empty());
            std::reverse(backward.begin() + 1, backward.end());
            EXPECT_EQ(backward, forward) << node;
        });
    }
    EXPECT_TRUE(unexpectedBoxes.empty());
}

// Tab then Down, forty times, on a "Default Last Name" node: no setting of
// the section out of view changes, and none of its controls is ever reached.
TEST_F(EditorWindowTest, KeysNeverReachTheSectionOutOfView) {
    Open(kDefaultLastName, [&](form::GUI& form, qt::FormView& view) {
        std::map<std::string, std::string> hidden;
        for (const form::Control* control : form.Controls()) {
            const auto* list = dynamic_cast<const form::ListControl*>(control);
            if (list != nullptr &&
                (Inside(*control, "fraCustomSettings") || Inside(*control, "fraErrorSettings"))) {
                hidden[control->Name()] = list->Text();
            }
        }
        ASSERT_GT(hidden.size(), 10u);
        EXPECT_FALSE(view.WidgetOf("fraCustomSettings")->isVisible());
        for (int round = 0; round < 40; ++round) {
            Press(*view.focusWidget(), Qt::Key_Tab);
            const std::string reached = StopName(view, view.focusWidget());
            ASSERT_FALSE(reached.empty());
            EXPECT_EQ(hidden.count(reached), 0u) << reached;
            Press(*view.focusWidget(), Qt::Key_Down);
        }
        for (const auto& [name, text] : hidden) {
            EXPECT_EQ(dynamic_cast<form::ListControl*>(form.FindControl(name))->Text(), text)
                << name;
        }
        form.DiscardChangesAndUnload();
    });
}

// The question whether to create a missing node: while it waits nothing of
// the form can be used; Escape cancels the save, which keeps the changes.
TEST_F(EditorWindowTest, EscapeAtTheCreateQuestionSavesNothingAndKeepsTheChanges) {
    const auto storedGreeting = [&] {
        return data.QueryInt(
            "SELECT GreetingNodeNumber FROM Node_DBN WHERE PartID = 1 AND NodeNumber = 1");
    };
    const long long before = storedGreeting();
    Open(kCustomNode, [&](form::GUI& form, qt::FormView& view) {
        auto& greeting = WidgetOf<QComboBox>(view, "cmbGreetingNumber");
        PickEntry(greeting, greeting.itemText(greeting.count() - 1));
        std::vector<std::string> usable;
        int asked = 0;
        services.whenAsked = [&](QMessageBox& box) {
            ++asked;
            for (const char* name : {"txtDescription", "fraLanguage", "txtDIR", "fraCustomSettings",
                                     "fraErrorSettings", "LVActions", "cmdOK"}) {
                if (view.WidgetOf(name)->isEnabled()) {
                    usable.push_back(name);
                }
            }
            Press(box, Qt::Key_Escape);
        };
        for (const char* button : {"cmdApply", "cmdOK"}) {
            WidgetOf<QPushButton>(view, button).click();
            EXPECT_TRUE(form.IsLoaded()) << button;
            EXPECT_TRUE(form.cmdApply.Enabled()) << button;
        }
        EXPECT_EQ(asked, 2);
        EXPECT_TRUE(usable.empty()) << usable.front();
        EXPECT_TRUE(view.WidgetOf("fraCustomSettings")->isEnabled());
        EXPECT_EQ(form.cmbGreetingNumber.Text(),
                  greeting.itemText(greeting.count() - 1).toStdString());
        form.DiscardChangesAndUnload();
    });
    EXPECT_EQ(storedGreeting(), before);
}

TEST_F(EditorWindowTest, TheTitleNamesTheNodeAsStoredAndCtrlSApplies) {
    Open(kCustomNode, [&](form::GUI& form, qt::FormView& view) {
        EXPECT_EQ(view.windowTitle(), "DBN 1 Staff directory - configuration 1, partition 1");
        TypeKeys(WidgetOf<QLineEdit>(view, "txtDescription"), QStringLiteral("Front desk"));
        EXPECT_EQ(view.windowTitle(), "DBN 1 Staff directory - configuration 1, partition 1");
        QShortcut* save = nullptr;
        for (QShortcut* shortcut : view.findChildren<QShortcut*>()) {
            if (shortcut->key() == QKeySequence(QKeySequence::Save)) {
                save = shortcut;
            }
        }
        ASSERT_NE(save, nullptr);
        EXPECT_EQ(save->key(), QKeySequence(Qt::CTRL | Qt::Key_S));
        emit save->activated();
        EXPECT_FALSE(form.cmdApply.Enabled());
        EXPECT_EQ(view.windowTitle(), "DBN 1 Front desk - configuration 1, partition 1");
        WidgetOf<QPushButton>(view, "cmdNext").click();
        EXPECT_EQ(view.windowTitle(), "DBN 2 Sales directory - configuration 1, partition 1");
    });
    Open(
        5,
        [&](form::GUI&, qt::FormView& view) {
            EXPECT_TRUE(view.windowTitle().endsWith(" - configuration 1, partition 2"))
                << view.windowTitle().toStdString();
        },
        2);
    EXPECT_TRUE(unexpectedBoxes.empty());
}

}  // namespace
}  // namespace dbn::testing
