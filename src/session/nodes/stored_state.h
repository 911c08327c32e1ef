#pragma once

// The stored state of one dial-by-name node, as a fingerprint: the JSON of
// its Node_DBN row, its prompt rows and its Node_General_Pool row. The editor keeps the
// fingerprint of the node it loaded and compares it before every save, so
// that a change made meanwhile by another program is not overwritten unasked.

#include "database/database.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dbn::session {

// Reads the node's stored state; std::nullopt when its Node_DBN row is gone.
// Its three reads travel as one batch unless they were read ahead.
std::optional<std::string> ReadStoredState(DataBase& db, std::int16_t configID,
                                           std::int16_t partitionID, std::int16_t nodeNumber);

// Inside the save's transaction, before ReadStoredState: takes the row locks
// of the node's rows (its Node_DBN row, its prompt rows, its pool row), so
// that a change another program has not yet committed is waited for and
// then seen by the comparison, and none can follow before the save commits.
void LockStoredState(DataBase& db, std::int16_t configID, std::int16_t partitionID,
                     std::int16_t nodeNumber);

// The same for every dial-by-name node of a partition at once: a bulk write
// (apply) compares and writes its nodes under these locks.
void LockPartitionNodes(DataBase& db, std::int16_t configID, std::int16_t partitionID);

// The three reads of the stored state, to send in a batch of one's own.
std::vector<BatchStep> StoredStateReads(std::int16_t configID, std::int16_t partitionID,
                                        std::int16_t nodeNumber);

}  // namespace dbn::session
