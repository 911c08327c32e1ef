#pragma once

#include "core/component_error.h"

#include <functional>
#include <memory>
#include <string>

namespace dbn {

// Base of every object that can be created by its class name.
class Component {
public:
    virtual ~Component() = default;
};

using ComponentMaker = std::function<std::unique_ptr<Component>()>;

// Registers (or replaces) the maker of a class name such as
// "CVL_Validate_TEXTField.Business_Rules".
void RegisterComponent(const std::string& className, ComponentMaker maker);

// Forgets a class name; creating it afterwards fails.
void UnregisterComponent(const std::string& className);

// Creates an object by class name. An unknown name, or a maker that returns
// nothing, raises error 429 "Can't create object: <name>".
std::unique_ptr<Component> CreateObject(const std::string& className);

// Creates an object by class name and checks that it has the expected type
// (error 13 "Type mismatch" otherwise).
template <class T>
std::unique_ptr<T> CreateObjectAs(const std::string& className);

template <class T>
std::unique_ptr<T> CreateObjectAs(const std::string& className) {
    std::unique_ptr<Component> object = CreateObject(className);
    if (auto* typed = dynamic_cast<T*>(object.get())) {
        object.release();
        return std::unique_ptr<T>(typed);
    }
    RaiseTypeMismatch();
}

}  // namespace dbn
