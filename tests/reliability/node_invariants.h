#pragma once

// What every dial-by-name node of the database must satisfy after any save:
// its prompt rows are numbered 1, 2, ... without gaps (at least nine), every
// stored reference's type code is the catalogue's code for its type ID, and
// its pool row carries its description.

#include "temp_database.h"

#include <string>

namespace dbn::testing {

// The roles whose references Node_DBN stores as code, number and type ID.
inline constexpr const char* kReferenceRoles[] = {
    "Greeting",         "ValidMatch",   "Abort",   "Star",    "Pound",        "Zero",
    "FirstPrompt",      "SecondPrompt", "Timeout", "Invalid", "BeforePrompt", "AfterPrompt",
    "ConfirmationExit",
};

// One line per broken rule, empty when every node is consistent.
inline std::string NodeInvariantViolations(const TempDataRoot& root) {
    std::string references;
    for (const char* role : kReferenceRoles) {
        const std::string r(role);
        references += (references.empty() ? "" : " UNION ALL ") +
                      ("SELECT PartID, NodeNumber, '" + r + "' AS role, " + r +
                       "NodeType AS code, " + r + "NodeTypeID AS id FROM Node_DBN");
    }
    references +=
        " UNION ALL SELECT PartID, NodeMasterID, 'Prompt' || PromptNumber, PromptNodeType, "
        "PromptNodeTypeID FROM Detail_DBN_Prompts";
    const std::string node = "'partition ' || d.PartID || ' node ' || d.NodeNumber";
    return root.QueryText(
        "SELECT group_concat(line, char(10)) FROM ("
        // Prompt numbering.
        "SELECT " +
        node +
        " || ': prompt rows ' || ifnull(p.n, 0) || ' numbered ' || "
        "ifnull(p.low, '-') || '..' || ifnull(p.high, '-') AS line "
        "FROM Node_DBN d LEFT JOIN (SELECT ConfigID, PartID, NodeMasterID, count(*) AS n, "
        "count(DISTINCT PromptNumber) AS distinctNumbers, min(PromptNumber) AS low, "
        "max(PromptNumber) AS high FROM Detail_DBN_Prompts GROUP BY 1, 2, 3) p "
        "ON p.ConfigID = d.ConfigID AND p.PartID = d.PartID AND p.NodeMasterID = d.NodeNumber "
        "WHERE NOT (p.n >= 9 AND p.distinctNumbers = p.n AND p.low = 1 AND p.high = p.n) "
        // References against the catalogue.
        "UNION ALL SELECT 'partition ' || r.PartID || ' node ' || r.NodeNumber || ': ' || "
        "r.role || ' is ' || quote(r.code) || ' with type ID ' || quote(r.id) "
        "FROM (" +
        references +
        ") r WHERE r.code IS NOT "
        "(SELECT English_Name FROM SR_Node_Type_Names WHERE ID = r.id) "
        // The pool row's description.
        "UNION ALL SELECT " +
        node +
        " || ': label ' || quote(d.NodeDescription) || "
        "' but pool ' || quote(g.NodeDescription) FROM Node_DBN d LEFT JOIN Node_General_Pool "
        "g ON g.ConfigID = d.ConfigID AND g.PartID = d.PartID AND g.NodeTypeID = 15 AND "
        "g.NodeNumber = d.NodeNumber WHERE g.NodeDescription IS NOT d.NodeDescription)");
}

}  // namespace dbn::testing
