#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace dbn::form {

// The form's link to its own session object (FormBusinessRules): loading
// another node and saving go through it. The session layer implements it.
class BusinessRulesLink {
public:
    virtual ~BusinessRulesLink() = default;
    // Loads a node into the form; true when it was found.
    virtual bool LoadData(std::int16_t nodeNumber) = 0;
    // Saves the node shown; true when the save committed.
    virtual bool SaveChanges(std::int16_t nodeNumber) = 0;
    // The description of a node of the shown partition, or nothing when the
    // node does not exist.
    virtual std::optional<std::string> NodeDescription(std::int32_t typeID, std::int16_t number) {
        static_cast<void>(typeID);
        static_cast<void>(number);
        return std::nullopt;
    }
};

}  // namespace dbn::form
