#include "core/component_error.h"

namespace dbn {

ComponentError::ComponentError(long number, std::string source, std::string description)
    : std::runtime_error(description),
      number_(number),
      source_(std::move(source)),
      description_(std::move(description)) {}

void RaiseError(long number, std::string description) {
    throw ComponentError(number, kComponentSource, std::move(description));
}

void RaiseObjectNotSet() {
    RaiseError(91, "Object variable or With block variable not set");
}

void RaiseTypeMismatch() {
    RaiseError(13, "Type mismatch");
}

void RaiseOverflow() {
    RaiseError(6, "Overflow");
}

}  // namespace dbn
