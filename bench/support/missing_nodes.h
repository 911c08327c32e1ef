#pragma once

// The ten nodes an Apply creates in the measurements: the edited node is
// pointed at nodes its partition lacks, and "Yes to All" creates them.

#include "support/bench_data.h"

#include "form/gui.h"

#include <cstdint>
#include <vector>

namespace dbn::bench {

// A node the edited node is pointed at that the demo partition lacks, with
// the tables its copy from the template fills.
struct MissingNode {
    const char* code;
    int typeID;
    int number;
    std::vector<const char*> tables;  // the node's own table first
};

const std::vector<MissingNode>& MissingNodes();

// Points the six pickers and the first four action rows at the missing nodes.
void PointAtMissingNodes(form::GUI& gui);

// Deletes the nodes the last save created, so that the next one creates
// them again.
void RemoveCreatedNodes(const BenchDataRoot& root, std::int16_t partition);

// How many of the missing nodes have a pool row.
long CreatedNodeCount(const BenchDataRoot& root, std::int16_t partition);

}  // namespace dbn::bench
