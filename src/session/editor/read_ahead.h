#pragma once

// The reads of an operation gathered into batches, so that on a server they
// cost one round trip per step that depends on an answer, not one per
// statement. The operations still execute their commands one by one; the
// answers are already there (DataBase::ReadAhead).

#include "database/database.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace dbn::session {

// What the answers of a first batch make the second one read.
using DependentReads = std::function<std::vector<BatchStep>(std::vector<BatchAnswer>& answers)>;

// Reads ahead, in two batches, what loading a dial-by-name node reads: its
// row, prompt rows and pool row with `independent`; then the description of
// every target they name, with what `dependent` adds from the first
// answers (which follow the node's three in the order given).
void ReadNodeAhead(DataBase& db, std::int16_t config, std::int16_t partition, std::int16_t number,
                   std::vector<BatchStep> independent = {}, const DependentReads& dependent = {});

// The Get_Description reads of every target a node's row and prompt rows name.
std::vector<BatchStep> TargetDescriptionReads(std::int16_t config, std::int16_t partition,
                                              RowSet& node, RowSet& prompts);

}  // namespace dbn::session
