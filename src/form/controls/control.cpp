#include "form/controls/control.h"

#include "core/component_error.h"
#include "form/controls/raise_event.h"

#include <algorithm>
#include <utility>

namespace dbn::form {

Control::Control(ControlKind kind, std::string name, Control* container, Rect rect, int tabIndex)
    : kind_(kind),
      name_(std::move(name)),
      container_(container),
      rect_(rect),
      tabIndex_(tabIndex) {}

namespace {

// Writes value into field; answers whether it changed.
bool Assign(int& field, int value) {
    if (field == value) {
        return false;
    }
    field = value;
    return true;
}

}  // namespace

void Control::SetLeft(int left) {
    if (Assign(rect_.left, left)) {
        NotifyChanged(ChangeAspect::Geometry);
    }
}

void Control::SetTop(int top) {
    if (Assign(rect_.top, top)) {
        NotifyChanged(ChangeAspect::Geometry);
    }
}

void Control::SetWidth(int width) {
    if (Assign(rect_.width, width)) {
        NotifyChanged(ChangeAspect::Geometry);
    }
}

void Control::SetHeight(int height) {
    if (Assign(rect_.height, height)) {
        NotifyChanged(ChangeAspect::Geometry);
    }
}

void Control::SetVisible(bool visible) {
    if (visible_ != visible) {
        visible_ = visible;
        NotifyChanged(ChangeAspect::State);
    }
}

void Control::SetEnabled(bool enabled) {
    if (enabled_ != enabled) {
        enabled_ = enabled;
        NotifyChanged(ChangeAspect::State);
    }
}

bool Control::AcceptsInput() const {
    for (const Control* control = this; control != nullptr; control = control->container_) {
        if (!control->visible_ || !control->enabled_) {
            return false;
        }
    }
    return true;
}

void Control::SetFocus() {
    if (!AcceptsInput()) {
        RaiseError(5, "Invalid procedure call or argument");
    }
    if (focusScope_ != nullptr) {
        focusScope_->MoveTo(*this);
    } else {
        RaiseEvent(GotFocus);
    }
}

bool Control::HasFocus() const {
    return focusScope_ != nullptr && focusScope_->Focused() == this;
}

int Control::Observe(ChangeObserver observer) {
    const int handle = nextObserver_++;
    observers_.emplace_back(handle, std::move(observer));
    return handle;
}

void Control::Unobserve(int handle) {
    std::erase_if(observers_, [handle](const auto& entry) { return entry.first == handle; });
}

void Control::NotifyChanged(ChangeAspect aspect) {
    // A copy, so that an observer may observe or unobserve while being told.
    const auto observers = observers_;
    for (const auto& [handle, observer] : observers) {
        if (observer) {
            observer(*this, aspect);
        }
    }
}

void FocusScope::MoveTo(Control& control) {
    if (focused_ == &control) {
        return;
    }
    Control* previous = std::exchange(focused_, &control);
    if (previous != nullptr) {
        previous->NotifyChanged(ChangeAspect::Focus);
    }
    control.NotifyChanged(ChangeAspect::Focus);
    RaiseEvent(FocusChanged, &control);
    RaiseEvent(control.GotFocus);
}

}  // namespace dbn::form
