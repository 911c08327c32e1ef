#include "form/keyed_collection.h"

#include "core/component_error.h"

#include <algorithm>

namespace dbn::form {

void KeyedCollection::Add(std::string item, std::string key) {
    if (Contains(key)) {
        RaiseError(457, "This key is already associated with an element of this collection");
    }
    entries_.emplace_back(std::move(key), std::move(item));
}

const std::string& KeyedCollection::Item(const std::string& key) const {
    auto found = std::find_if(entries_.begin(), entries_.end(),
                              [&](const auto& entry) { return entry.first == key; });
    if (found == entries_.end()) {
        RaiseError(5, "Invalid procedure call or argument");
    }
    return found->second;
}

bool KeyedCollection::Contains(const std::string& key) const {
    return std::any_of(entries_.begin(), entries_.end(),
                       [&](const auto& entry) { return entry.first == key; });
}

const std::string& KeyedCollection::ItemAt(int position) const {
    if (position < 0 || position >= Count()) {
        RaiseError(9, "Subscript out of range");
    }
    return entries_[static_cast<std::size_t>(position)].second;
}

const std::string& KeyedCollection::KeyAt(int position) const {
    if (position < 0 || position >= Count()) {
        RaiseError(9, "Subscript out of range");
    }
    return entries_[static_cast<std::size_t>(position)].first;
}

}  // namespace dbn::form
