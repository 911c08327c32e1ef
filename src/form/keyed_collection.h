#pragma once

#include <string>
#include <utility>
#include <vector>

namespace dbn::form {

// A collection of texts keyed by text (a node-type ID in decimal), kept in
// the order of adding. Reading a missing key raises error 5 "Invalid
// procedure call or argument"; adding a key twice raises error 457 "This key
// is already associated with an element of this collection".
class KeyedCollection {
public:
    void Add(std::string item, std::string key);
    const std::string& Item(const std::string& key) const;
    bool Contains(const std::string& key) const;
    int Count() const noexcept { return static_cast<int>(entries_.size()); }
    // Items in the order they were added (0-based).
    const std::string& ItemAt(int position) const;
    const std::string& KeyAt(int position) const;

private:
    std::vector<std::pair<std::string, std::string>> entries_;  // key, item
};

}  // namespace dbn::form
