#include "form/text_validator.h"

#include <memory>

namespace dbn::form {

bool TextValidator::IsValidText(const std::string& text) const {
    return text.find('"') == std::string::npos && text.find("''") == std::string::npos;
}

void RegisterTextValidator() {
    RegisterComponent(kTextValidatorClass, [] { return std::make_unique<TextValidator>(); });
}

}  // namespace dbn::form
