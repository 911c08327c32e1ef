#pragma once

#include "form/controls/simple_controls.h"

#include <QFont>

namespace dbn::qt {

// The form's font: its own family where installed, else the platform's
// sans-serif, always at the form's point size.
QFont FormFont(form::FontStyle style = form::FontStyle::Regular);

}  // namespace dbn::qt
