#pragma once

#include "form/controls/control.h"
#include "qt/control_binding.h"
#include "qt/twips.h"

#include <QWidget>

#include <memory>

namespace dbn::qt {

// Makes the widget of a control, by its kind, as a child of parent, and the
// binding that mirrors the control in it. Kinds that are never shown (plain
// lists, image lists) get nothing.
std::unique_ptr<ControlBinding> BindControl(form::Control& control, QWidget& parent,
                                            const TwipsScale& scale);

}  // namespace dbn::qt
