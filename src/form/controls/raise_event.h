#pragma once

#include <utility>

namespace dbn::form {

// Calls an event callback if one is wired. The callback is copied first, so
// that a handler may rewire or clear the event it is running from.
template <typename Event, typename... Args>
void RaiseEvent(const Event& event, Args&&... args) {
    if (!event) {
        return;
    }
    Event handler = event;
    handler(std::forward<Args>(args)...);
}

}  // namespace dbn::form
