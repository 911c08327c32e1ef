#pragma once

// The stored state of one dial-by-name node, as a fingerprint: the JSON of
// its Node_DBN row, its prompt rows and its Node_General_Pool row. The editor keeps the
// fingerprint of the node it loaded and compares it before every save, so
// that a change made meanwhile by another program is not overwritten unasked.

#include <cstdint>
#include <optional>
#include <string>

namespace dbn {

class DataBase;

namespace session {

// Reads the node's stored state; std::nullopt when its Node_DBN row is gone.
std::optional<std::string> ReadStoredState(DataBase& db, std::int16_t configID,
                                           std::int16_t partitionID, std::int16_t nodeNumber);

}  // namespace session
}  // namespace dbn
