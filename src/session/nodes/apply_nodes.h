#pragma once
// Applying a text form to the database: every node of the document is
// compared with the stored node and checked as a save checks it; only when
// no node is refused are the differing nodes written, all in one
// transaction. Nodes not stored yet are created from the template.

#include "nodetext/node_text.h"
#include "nodetext/text_form.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dbn {

class DataBase;

namespace session {

struct ApplyOptions {
    bool dryRun = false;         // check and compare, write nothing
    bool force = false;          // write over nodes changed since the export
    bool createMissing = false;  // create referenced nodes that do not exist
};

enum class NodeOutcome { Unchanged, Changed, Created };

struct AppliedNode {
    std::int64_t number = 0;
    NodeOutcome outcome = NodeOutcome::Unchanged;
    std::vector<nodetext::FieldChange> changes;
};

struct ApplyResult {
    // Refusals, each with the JSON path of its node and field; when there
    // are any, nothing was written.
    std::vector<nodetext::Problem> problems;
    std::vector<AppliedNode> nodes;  // in the document's order
    // Referenced nodes ("MSG 12") created from their templates.
    std::vector<std::string> createdReferences;
    // Referenced nodes that do not exist after the apply.
    std::vector<std::string> missingReferences;
    bool written = false;
};

ApplyResult ApplyNodes(DataBase& db, const nodetext::NodeDocument& document,
                       const ApplyOptions& options);

// What a report tells: a run that wrote, a dry run, or the review before
// the question whether to write (its summary ends with the counts).
enum class ApplyReport { Written, DryRun, Review };

// One line per node ("DBN 5: changed: label") and the summary line; with
// fieldChanges, each changed field's old and new value below its node.
std::string ApplyReportText(const ApplyResult& result, ApplyReport report, bool fieldChanges);

}  // namespace session
}  // namespace dbn
