#include "core/text_validator.h"

#include <algorithm>
#include <memory>

namespace dbn::form {

bool TextValidator::IsValidText(const std::string& text) const {
    // Control characters (below 32, and DEL) would corrupt the lists and
    // files the label is shown in.
    const bool control = std::any_of(text.begin(), text.end(), [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return code < 32 || code == 127;
    });
    return !control && text.find('"') == std::string::npos && text.find("''") == std::string::npos;
}

void RegisterTextValidator() {
    RegisterComponent(kTextValidatorClass, [] { return std::make_unique<TextValidator>(); });
}

}  // namespace dbn::form
