#pragma once

#include "core/component_error.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

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

// Succeeds when action raises the component's own error number with text.
inline ::testing::AssertionResult RaisesError(const std::function<void()>& action, long number,
                                              const std::string& text) {
    const ComponentError error = ErrorOf(action);
    if (error.Number() == 0) {
        return ::testing::AssertionFailure() << "raised nothing";
    }
    if (error.Number() == number && error.Description() == text &&
        error.Source() == kComponentSource) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "raised " << error.Number() << " " << error.what();
}

}  // namespace dbn::testing
