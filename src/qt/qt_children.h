#pragma once

namespace dbn::qt {

// Makes a Qt object owned by its parent, which deletes it with itself.
template <class Child, class Parent>
Child& MakeChild(Parent& parent) {
    return *new Child(&parent);
}

}  // namespace dbn::qt
