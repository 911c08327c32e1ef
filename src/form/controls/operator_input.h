#pragma once

#include "form/controls/list_control.h"
#include "form/controls/list_view.h"
#include "form/controls/simple_controls.h"

#include <string>

namespace dbn::form {

// What the operator does to the form, as opposed to what code does. Input
// reaches only a control that accepts input (visible and enabled, and so are
// its containers); otherwise the call answers false and changes nothing.
// Accepted input first gives the control the focus (GotFocus when it did not
// have it), as a mouse click does, then acts. A pick or text that changes the
// control's value marks it changed by the operator.
namespace operator_input {

// Picks entry index of a list: selects it (Click). The entry the list already
// shows stays as it is, with no Click.
bool Pick(ListControl& list, int index);
// Replaces the whole text of an editable list (one Change).
bool Type(ListControl& list, const std::string& text);
// Replaces the whole text of a text field (one Change; cut to its maximum length).
bool Type(TextField& field, const std::string& text);
// Presses a button (Click).
bool Press(Button& button);
// Clicks a row: it becomes the selected row, then ItemClick, then MouseUp.
bool ClickRow(ListView& list, ListItem& row);
// Moves the focus to a control.
bool Focus(Control& control);
// Presses the mouse on a list view's column header.
bool PressHeader(ListView& list);
// Scrolls a list view vertically.
bool Scroll(ListView& list);

}  // namespace operator_input
}  // namespace dbn::form
