#pragma once

#include "core/component_factory.h"

#include <string>

namespace dbn::form {

// The class name under which the label validator is created.
inline constexpr const char* kTextValidatorClass = "CVL_Validate_TEXTField.Business_Rules";

// Checks a label text before it is saved: a double quote, or two single
// quotes in a row, would break the statements the text ends up in; a
// control character would break the lists it is shown in.
class TextValidator : public Component {
public:
    // False for a text holding a double quote, two consecutive single quotes
    // or a control character (code points below 32, and 127).
    bool IsValidText(const std::string& text) const;
};

// Registers TextValidator under kTextValidatorClass; calling it again only
// registers it again.
void RegisterTextValidator();

}  // namespace dbn::form
