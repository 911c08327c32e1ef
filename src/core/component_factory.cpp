#include "core/component_factory.h"

#include "core/component_error.h"

#include <map>

namespace dbn {
namespace {

std::map<std::string, ComponentMaker>& Registry() {
    static std::map<std::string, ComponentMaker> registry;
    return registry;
}

}  // namespace

void RegisterComponent(const std::string& className, ComponentMaker maker) {
    Registry()[className] = std::move(maker);
}

void UnregisterComponent(const std::string& className) {
    Registry().erase(className);
}

std::unique_ptr<Component> CreateObject(const std::string& className) {
    auto found = Registry().find(className);
    if (found != Registry().end() && found->second) {
        if (auto object = found->second()) {
            return object;
        }
    }
    RaiseError(429, "Can't create object: " + className);
}

}  // namespace dbn
