#include "form/controls/operator_input.h"

#include "form/controls/raise_event.h"

namespace dbn::form::operator_input {

namespace {

// Gives an accepting control the focus, as the mouse click that starts every
// input does. Answers whether the control still accepts input once its
// GotFocus handler has run (the handler may have hidden or disabled it).
bool TakeFocus(Control& control) {
    if (!control.AcceptsInput()) {
        return false;
    }
    control.SetFocus();
    return control.AcceptsInput();
}

}  // namespace

bool Pick(ListControl& list, int index) {
    if (index < 0 || index >= list.ListCount() || !TakeFocus(list)) {
        return false;
    }
    // The GotFocus handler may have refilled the list.
    if (index >= list.ListCount()) {
        return false;
    }
    // Picking the entry the list already shows changes nothing: no Click,
    // so no handler refills or resets what depends on it.
    if (index == list.ListIndex() && list.Text() == list.List(index)) {
        return true;
    }
    list.SetListIndex(index);
    list.SetChangedByOperator(true);
    return true;
}

bool Type(ListControl& list, const std::string& text) {
    if (!list.IsEditable() || !TakeFocus(list)) {
        return false;
    }
    if (text != list.Text()) {
        list.SetText(text);
        list.SetChangedByOperator(true);
    }
    return true;
}

bool Type(TextField& field, const std::string& text) {
    if (field.ReadOnly() || !TakeFocus(field)) {
        return false;
    }
    const std::string before = field.Text();
    field.SetText(text);
    if (field.Text() != before) {
        field.SetChangedByOperator(true);
    }
    return true;
}

bool Press(Button& button) {
    if (!TakeFocus(button)) {
        return false;
    }
    RaiseEvent(button.Click);
    return true;
}

bool ClickRow(ListView& list, ListItem& row) {
    if (list.PositionOf(row) == -1 || !TakeFocus(list)) {
        return false;
    }
    // The GotFocus handler may have removed the row.
    if (list.PositionOf(row) == -1) {
        return false;
    }
    list.SetSelectedItem(&row);
    RaiseEvent(list.ItemClick, row);
    RaiseEvent(list.MouseUp);
    return true;
}

bool Focus(Control& control) {
    if (!control.AcceptsInput()) {
        return false;
    }
    control.SetFocus();
    return true;
}

bool PressHeader(ListView& list) {
    if (!list.AcceptsInput()) {
        return false;
    }
    RaiseEvent(list.HeaderPressed);
    return true;
}

bool Scroll(ListView& list) {
    if (!list.AcceptsInput()) {
        return false;
    }
    RaiseEvent(list.Scrolled);
    return true;
}

}  // namespace dbn::form::operator_input
