#pragma once

#include "qt/control_binding.h"

#include <memory>
#include <vector>

namespace dbn::qt {

// Ties the editor window's labels to the controls they name and gives every
// focusable widget a name for assistive technology:
// - a label is the buddy of the input that follows it in the tab order in the
//   same container, and is centred on that input's text line (the record
//   position on the record selector's);
// - an input is named by its label; a list view by its frame's caption; a
//   button by its caption, the navigation pictures "First", "Previous",
//   "Next" and "Last"; anything else by its control name in words
//   (cmbSecondMinDigits: "Second Min Digits").
void NameControls(const std::vector<std::unique_ptr<ControlBinding>>& bindings);

}  // namespace dbn::qt
