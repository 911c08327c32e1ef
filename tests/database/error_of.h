#pragma once

#include "core/component_error.h"

#include <functional>

namespace dbn::testing {

// The error an action raises; number 0 when it raises none.
inline ComponentError ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const ComponentError& error) {
        return error;
    }
    return ComponentError(0, "", "");
}

}  // namespace dbn::testing
