#pragma once

#include "form/controls/simple_controls.h"

#include <QIcon>
#include <QSize>

namespace dbn::qt {

// Size of the pictures the record-navigation buttons carry.
inline const QSize kNavigationPictureSize{17, 19};

// A first, previous, next or last symbol drawn by the program; a null icon
// for ButtonPicture::None.
QIcon NavigationPicture(form::ButtonPicture picture);

}  // namespace dbn::qt
