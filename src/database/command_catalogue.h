#pragma once

#include <span>
#include <string_view>

namespace dbn {

enum class CommandKind { RowReturning, Action };

// One named statement of the catalogue, as the configuration database stores
// it: parameters are the Given_/GIVEN_ names, matched by position.
struct CatalogueCommand {
    std::string_view name;
    CommandKind kind;
    int parameterCount;
    std::string_view text;
};

// Every statement the editor executes, in a fixed order.
std::span<const CatalogueCommand> CommandCatalogue();

// The command of that exact name, or nullptr.
const CatalogueCommand* FindCatalogueCommand(std::string_view name);

}  // namespace dbn
