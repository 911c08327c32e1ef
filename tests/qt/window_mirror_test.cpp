// The loaded window shows the model: one widget per shown control, in place,
// with the model's entries, texts, captions, rows and states.

#include "window_support.h"

#include "qt/group_frame.h"
#include "qt/navigation_pictures.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

#include <algorithm>

namespace dbn::testing {
namespace {

using form::ControlKind;

// Compares the widget of one control with the control; empty when they agree.
std::string Mismatch(const form::Control& control, QWidget& widget, const qt::FormView& view) {
    const std::string name = control.Name() + ": ";
    const QRect expected = view.Scale().ToPixels(control.Bounds());
    // Labels keep their place across; their line is centred on their field's
    // (checked on its own).
    const bool placed = control.Kind() == ControlKind::Label
                            ? widget.x() == expected.x() && widget.width() == expected.width()
                            : widget.geometry() == expected;
    if (!placed) {
        return name + "geometry";
    }
    // What the form's width cuts off is hidden, whatever the control says.
    const bool cutOff = control.Container() == nullptr && control.Left() >= view.Form().Width();
    if (widget.isHidden() == (control.Visible() && !cutOff) ||
        widget.isEnabledTo(widget.parentWidget()) != control.Enabled()) {
        return name + "state";
    }
    switch (control.Kind()) {
        case ControlKind::ChoiceList:
        case ControlKind::EditableList: {
            const auto& list = static_cast<const form::ListControl&>(control);
            auto& combo = static_cast<QComboBox&>(widget);
            if (combo.count() != list.ListCount() || combo.currentIndex() != list.ListIndex()) {
                return name + "entries or selection";
            }
            for (int i = 0; i < list.ListCount(); ++i) {
                if (combo.itemText(i).toStdString() != list.List(i) ||
                    combo.itemData(i).toInt() != list.ItemData(i)) {
                    return name + "entry " + std::to_string(i);
                }
            }
            if (combo.currentText().toStdString() != list.Text()) {
                return name + "text";
            }
            break;
        }
        case ControlKind::TextField: {
            const auto& field = static_cast<const form::TextField&>(control);
            auto& edit = static_cast<QLineEdit&>(widget);
            if (edit.text().toStdString() != field.Text() ||
                edit.isReadOnly() != field.ReadOnly()) {
                return name + "text";
            }
            break;
        }
        case ControlKind::Label:
            // The shown caption marks its mnemonic letter.
            if (static_cast<QLabel&>(widget).text().remove('&').toStdString() !=
                static_cast<const form::Label&>(control).Caption()) {
                return name + "caption";
            }
            break;
        case ControlKind::Button:
            if (static_cast<QPushButton&>(widget).text().remove('&').toStdString() !=
                static_cast<const form::Button&>(control).Caption()) {
                return name + "caption";
            }
            break;
        case ControlKind::ListView: {
            const auto& list = static_cast<const form::ListView&>(control);
            auto& tree = static_cast<QTreeWidget&>(widget);
            if (tree.topLevelItemCount() != list.ItemCount()) {
                return name + "rows";
            }
            for (int row = 0; row < list.ItemCount(); ++row) {
                const form::ListItem& item = list.ItemAt(row);
                std::string cells = item.Text();
                std::string shown = tree.topLevelItem(row)->text(0).toStdString();
                for (int cell = 1; cell < list.ColumnCount(); ++cell) {
                    cells += "|" + item.SubItem(cell);
                    shown += "|" + tree.topLevelItem(row)->text(cell).toStdString();
                }
                if (cells != shown) {
                    return name + "row " + cells + " shown as " + shown;
                }
                if (tree.topLevelItem(row)->isSelected() != item.Selected()) {
                    return name + "selection";
                }
            }
            break;
        }
        default:
            break;
    }
    return {};
}

TEST_F(EditorWindowTest, EveryShownControlMirrorsTheModelAfterLoading) {
    for (const std::int16_t node : {1, 2}) {
        int checked = 0;
        Open(node, [&](form::GUI& form, qt::FormView& view) {
            EXPECT_EQ(view.windowTitle().toStdString(), "DBN " + std::to_string(node) + " " +
                                                            form.txtDescription.Text() +
                                                            " - configuration 1, partition 1");
            // The window shows the whole form, without scroll bars.
            const auto* scroll = view.findChild<QScrollArea*>();
            EXPECT_EQ(view.width(), view.Scale().ToPixels(form.Width()));
            EXPECT_EQ(scroll->viewport()->size(), scroll->widget()->size());
            for (const form::Control* control : form.Controls()) {
                QWidget* widget = view.WidgetOf(control->Name());
                const bool neverShown = control->Kind() == ControlKind::PlainList ||
                                        control->Kind() == ControlKind::ImageList ||
                                        control == &form.LVTemp;
                EXPECT_EQ(widget == nullptr, neverShown) << control->Name();
                if (widget != nullptr) {
                    EXPECT_EQ(Mismatch(*control, *widget, view), "");
                    ++checked;
                }
            }
        });
        EXPECT_GT(checked, 80) << "node " << node;
    }
    EXPECT_TRUE(unexpectedBoxes.empty());
}

// Every label names the input it belongs to and sits on its text line; every
// widget the operator can reach has a name for assistive technology.
TEST_F(EditorWindowTest, LabelsNameTheirInputsAndEveryFocusableWidgetHasAName) {
    Open(1, [&](form::GUI&, qt::FormView& view) {
        const struct {
            const char* label;
            const char* input;
        } buddies[] = {{"lblLabel", "txtDescription"},        {"lblGreeting", "cmbGreetingNode"},
                       {"lblDirectory", "cmbDirectory"},      {"lblMethod", "cmbMethod"},
                       {"lblMinDigits", "cmbFirstMinDigits"}, {"lblRetryLimit", "cmbRetryLimit"},
                       {"lblExitPrompt", "cmbExitPromptNode"}};
        for (const auto& pair : buddies) {
            auto* label = view.WidgetAs<QLabel>(pair.label);
            QWidget* input = view.WidgetOf(pair.input);
            ASSERT_NE(label, nullptr) << pair.label;
            EXPECT_EQ(label->buddy(), input) << pair.label;
            EXPECT_EQ(label->geometry().center().y(), input->geometry().center().y()) << pair.label;
        }
        auto* position = view.WidgetAs<QLabel>("lblRecordPosition");
        EXPECT_EQ(position->geometry().center().y(),
                  view.WidgetOf("cmbNode")->geometry().center().y());

        const std::map<std::string, QString> named = {
            {"cmdFirst", "First"},    {"cmdPrevious", "Previous"},
            {"cmdNext", "Next"},      {"cmdLast", "Last"},
            {"LVActions", "Actions"}, {"LVConfirm", "Confirmation prompts"}};
        for (const auto& [name, accessible] : named) {
            EXPECT_EQ(view.WidgetOf(name)->accessibleName(), accessible) << name;
        }
        int focusable = 0;
        for (const form::Control* control : view.Form().Controls()) {
            QWidget* widget = view.WidgetOf(control->Name());
            if (widget != nullptr && widget->focusPolicy() != Qt::NoFocus) {
                ++focusable;
                EXPECT_FALSE(widget->accessibleName().isEmpty()) << control->Name();
            }
        }
        EXPECT_GT(focusable, 40);
    });
}

TEST_F(EditorWindowTest, FontsPicturesAndButtonRoles) {
    Open(1, [&](form::GUI&, qt::FormView& view) {
        const QFont heading = WidgetOf<QLabel>(view, "lblFirstMatch").font();
        EXPECT_TRUE(heading.bold());
        EXPECT_TRUE(heading.underline());
        const QFont plain = WidgetOf<QLabel>(view, "lblMatch").font();
        EXPECT_FALSE(plain.bold());
        EXPECT_DOUBLE_EQ(plain.pointSizeF(), form::GUI::kFontPoints);
        // A frame paints its caption bold and keeps the regular font for its children.
        const auto* actions = dynamic_cast<qt::GroupFrame*>(view.WidgetOf("fraActions"));
        ASSERT_NE(actions, nullptr);
        EXPECT_TRUE(actions->CaptionFont().bold());
        EXPECT_FALSE(WidgetOf<QWidget>(view, "fraActions").font().bold());
        EXPECT_FALSE(WidgetOf<QWidget>(view, "cmbfirstMatch").font().bold());

        for (const char* name : {"cmdFirst", "cmdPrevious", "cmdNext", "cmdLast"}) {
            const auto& button = WidgetOf<QPushButton>(view, name);
            EXPECT_FALSE(button.icon().isNull()) << name;
            EXPECT_EQ(button.iconSize(), qt::kNavigationPictureSize) << name;
            EXPECT_TRUE(button.text().isEmpty()) << name;
        }
        EXPECT_TRUE(WidgetOf<QPushButton>(view, "cmdOK").isDefault());
        EXPECT_EQ(WidgetOf<QLineEdit>(view, "txtDescription").maxLength(), 30);
    });
}

}  // namespace
}  // namespace dbn::testing
