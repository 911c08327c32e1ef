#include "host/play_state.h"

#include "form/controls/list_control.h"
#include "form/controls/list_view.h"
#include "form/controls/simple_controls.h"
#include "form/gui.h"

namespace dbn::host {

namespace {

using form::ControlKind;

std::string Flag(bool value) {
    return value ? "1" : "0";
}

std::string StateSuffix(const form::Control& control) {
    return " enabled=" + Flag(control.Enabled()) + " visible=" + Flag(control.Visible());
}

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::vector<std::string> DescribeListView(const form::ListView& list) {
    const form::ListItem* selected = list.SelectedItem();
    std::vector<std::string> lines{list.Name() + ": rows=" + std::to_string(list.ItemCount()) +
                                   " selected=" + (selected ? selected->Key() : "-")};
    for (int position = 0; position < list.ItemCount(); ++position) {
        const form::ListItem& row = list.ItemAt(position);
        std::string line = "  " + row.Key() + ": " + row.Text();
        for (int column = 1; column <= 6; ++column) {
            line += " | " + row.SubItem(column);
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace

std::optional<std::vector<std::string>> DescribeControl(const form::Control& control) {
    const std::string head = control.Name() + ":";
    switch (control.Kind()) {
        case ControlKind::ChoiceList:
        case ControlKind::EditableList: {
            const auto& list = static_cast<const form::ListControl&>(control);
            return std::vector<std::string>{head + " text=" + Quoted(list.Text()) +
                                            " index=" + std::to_string(list.ListIndex()) +
                                            " count=" + std::to_string(list.ListCount()) +
                                            StateSuffix(control)};
        }
        case ControlKind::TextField: {
            const auto& field = static_cast<const form::TextField&>(control);
            return std::vector<std::string>{head + " text=" + Quoted(field.Text()) +
                                            StateSuffix(control)};
        }
        case ControlKind::Label: {
            const auto& label = static_cast<const form::Label&>(control);
            return std::vector<std::string>{head + " caption=" + Quoted(label.Caption()) +
                                            StateSuffix(control)};
        }
        case ControlKind::Button: {
            const auto& button = static_cast<const form::Button&>(control);
            return std::vector<std::string>{head + " caption=" + Quoted(button.Caption()) +
                                            StateSuffix(control)};
        }
        case ControlKind::Frame:
            return std::vector<std::string>{head + StateSuffix(control)};
        case ControlKind::StatusBar: {
            const auto& bar = static_cast<const form::StatusBar&>(control);
            return std::vector<std::string>{head + " text=" + Quoted(bar.PanelText()) +
                                            " visible=" + Flag(control.Visible())};
        }
        case ControlKind::ListView:
            return DescribeListView(static_cast<const form::ListView&>(control));
        case ControlKind::PlainList:
        case ControlKind::ImageList:
            break;
    }
    return std::nullopt;
}

std::string DescribeForm(const form::GUI& form) {
    return "GUI: width=" + std::to_string(form.Width());
}

std::optional<std::string> DescribeEntries(const form::Control& control) {
    std::string line = control.Name() + ":";
    if (control.Kind() == ControlKind::ChoiceList || control.Kind() == ControlKind::EditableList) {
        const auto& list = static_cast<const form::ListControl&>(control);
        for (int index = 0; index < list.ListCount(); ++index) {
            line += " " + list.List(index) + "(" + std::to_string(list.ItemData(index)) + ")";
        }
        return line;
    }
    if (control.Kind() == ControlKind::PlainList) {
        // A plain list has no tags.
        const auto& list = static_cast<const form::PlainList&>(control);
        for (int index = 0; index < list.ListCount(); ++index) {
            line += " " + list.List(index) + "(0)";
        }
        return line;
    }
    return std::nullopt;
}

}  // namespace dbn::host
