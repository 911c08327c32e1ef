#pragma once

// The in-place pickers that float over a row of a list view while it is
// edited: every picker is this high, and sits this far below the top of the
// row it edits (twips).

namespace dbn::form {

inline constexpr int kInPlacePickerHeight = 315;
inline constexpr int kInPlacePickerDrop = 50;

}  // namespace dbn::form
