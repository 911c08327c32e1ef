#pragma once

#include <cstdint>

namespace dbn::form {

// The form's link to its own session object (FormBusinessRules): loading
// another node and saving go through it. The session layer implements it.
class BusinessRulesLink {
public:
    virtual ~BusinessRulesLink() = default;
    // Loads a node into the form; true when it was found.
    virtual bool LoadData(std::int16_t nodeNumber) = 0;
    // True when the last LoadData stopped on a database failure before it
    // changed the form (it showed the failure).
    virtual bool LoadFailed() const noexcept { return false; }
    // Saves the node shown; true when the save committed.
    virtual bool SaveChanges(std::int16_t nodeNumber) = 0;
};

}  // namespace dbn::form
