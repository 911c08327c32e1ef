#pragma once

// Helpers for the control-model tests: error checks, event counters and a
// recorder of change notifications.

#include "core/component_error.h"
#include "form/controls/control.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace dbn::testing {

// Succeeds when action raises the component's error number with description.
template <typename Action>
::testing::AssertionResult RaisesError(Action&& action, long number, const std::string& text) {
    try {
        action();
    } catch (const ComponentError& error) {
        if (error.Number() == number && error.Description() == text &&
            error.Source() == kComponentSource) {
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure() << "raised " << error.Number() << " " << error.what();
    }
    return ::testing::AssertionFailure() << "raised nothing";
}

struct EventCount {
    int count = 0;
    std::function<void()> Handler() {
        return [this] { ++count; };
    }
};

// The aspects a control reports, in order.
struct ChangeLog {
    explicit ChangeLog(form::Control& control) {
        control.Observe([this](form::Control&, form::ChangeAspect a) { aspects.push_back(a); });
    }
    std::vector<form::ChangeAspect> aspects;
};

}  // namespace dbn::testing
