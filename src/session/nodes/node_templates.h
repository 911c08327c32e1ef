#pragma once
// The pieces of the referenced-node check that work on the database alone:
// which references are gathered and how, whether a node exists, and
// creating a node by copying its type's template (node 0). The editor's
// check and the node list share them.

#include "database/batch_step.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

class DataBase;

namespace session {

// A node another node refers to, as gathered: its key text ("MSG 12"), its
// type ID and its number, all as text.
struct RequiredNode {
    std::string key;
    std::string typeID;
    std::string number;
    bool operator==(const RequiredNode&) const = default;
};

// One reference as the check gathers it: nothing for the types that carry
// no node (814, 816, 999); types 817 and 818 become the message node of the
// same number (type "0", key "MSG N").
std::optional<RequiredNode> GatheredReference(std::string key, std::string typeID,
                                              std::string number);

// The pool-row reads (Get_Description) that tell whether each node exists,
// with the type ID its lookup uses; one answer a node, in order.
std::vector<BatchStep> ExistenceReads(std::int16_t config, std::int16_t partition,
                                      const std::vector<RequiredNode>& nodes);

// True when Node_General_Pool has the node (Get_Description); types 817 and
// 818 are looked up as messages.
bool NodeExists(DataBase& db, std::int16_t config, std::int16_t partition, std::string typeID,
                const std::string& number);

// The type a reference is looked up and created as: the message type for
// types 817 and 818, the type itself otherwise.
std::string LookedUpTypeID(std::string typeID);

// A whole number written as text, when the text holds one.
std::optional<long> WholeNumber(std::string_view text);

// True when nodes of this type can be copied from a template.
bool CanCopyNodeType(std::string_view typeID);

// Copies node templateNumber of the type to newNumber: the node row, its
// detail rows and its pool row, inside the caller's transaction. A message
// node gets its own sound-file name. Answers false for an unknown type
// (nothing written) or a template without a node row in its type's table
// (then the caller undoes the rest of the copy). Adds a `created` history
// row unless told not to.
bool CopyTemplateNode(DataBase& db, std::int16_t config, std::int16_t partition,
                      const std::string& templateNumber, const std::string& newNumber,
                      std::string typeID, bool recordCreation = true);

// Several such copies in one batch, in order: for each, whether it created
// its node. A failing copy fails the batch, and with it the caller's unit of
// work.
struct TemplateCopy {
    std::string templateNumber;
    std::string newNumber;
    std::string typeID;
};
std::vector<bool> CopyTemplateNodes(DataBase& db, std::int16_t config, std::int16_t partition,
                                    const std::vector<TemplateCopy>& copies,
                                    bool recordCreation = true);

}  // namespace session
}  // namespace dbn
