#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dbn::form {

// What a screen reader calls the editor's control by its control name:
// the field it sets, not its value ("Greeting type", "Greeting number",
// "First match minimum digits", "Actions: Edit"). Each name is used once;
// std::nullopt for a control that is not named here (labels, frames).
std::optional<std::string> FieldName(std::string_view control);

}  // namespace dbn::form
