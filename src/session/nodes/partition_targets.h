#pragma once
// What a partition lets a dial-by-name node refer to, read from the
// database as the editor's pickers read it: the node-type codes, the types
// offered for prompts and for instructions, and each type's highest number.

#include "nodetext/node_text.h"
#include "nodetext/text_form.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace dbn {

class DataBase;

namespace session {

class PartitionTargets {
public:
    PartitionTargets(DataBase& db, std::int16_t config, std::int16_t partition);

    // The type ID of a code (letter case ignored), if the catalogue has it.
    std::optional<std::int16_t> TypeID(const std::string& code) const;

    // Why the reference may not be stored in a field of this role, as
    // (JSON path suffix, reason): ".type" or ".number"; nothing when it may.
    std::optional<std::pair<std::string, std::string>> Refusal(
        nodetext::TargetRole role, const nodetext::StoredRef& ref) const;

    // The highest dial-by-name node number the partition allows.
    std::int32_t DialByNameLimit() const;

private:
    std::optional<std::int32_t> Limit(std::int16_t typeID) const;

    std::map<std::string, std::int16_t> idByCode_;
    std::map<std::int16_t, std::int32_t> limits_;
    std::set<std::int16_t> promptTypes_;
    std::set<std::int16_t> instructionTypes_;
};

}  // namespace session
}  // namespace dbn
