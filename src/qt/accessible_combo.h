#pragma once

namespace dbn::qt {

// Makes assistive technology hear a combo box by its accessible name (its
// field) with its current text as its value; left to itself the toolkit
// names a combo box by its value on this platform. Once per program; every
// window with combo boxes calls it.
void NameComboBoxesByField();

}  // namespace dbn::qt
