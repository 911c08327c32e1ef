#pragma once

#include "qt/control_binding.h"

#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace dbn::qt {

// Ties the editor window's labels to the controls they name and gives every
// focusable widget a name for assistive technology:
// - a label is the buddy of the input that follows it in the tab order in the
//   same container, and is centred on that input's text line (the record
//   position on the record selector's);
// - a control is named by the field it sets (form::FieldName), the edit box
//   of a combo box as its combo box; a control without such a name by its
//   label, frame caption or caption, else by its control name in words;
// - every label with a field and every button with a caption gets a
//   mnemonic letter unique in the window, shared with the window's captions
//   outside the form: `otherCaptions` before the form's buttons other than
//   OK, Cancel and Apply, `lastCaptions` after them. Their marked texts are
//   answered in that order.
std::vector<QString> NameControls(const std::vector<std::unique_ptr<ControlBinding>>& bindings,
                                  const std::vector<std::string>& otherCaptions,
                                  const std::vector<std::string>& lastCaptions);

}  // namespace dbn::qt
