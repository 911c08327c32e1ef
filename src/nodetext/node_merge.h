#pragma once
// A file's node laid over the stored one, field by field from the table of
// fields, and the checks a save makes of the fields that changed.

#include "nodetext/text_form.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace dbn::nodetext {

// A file's reference as it will be stored, given the stored reference it
// replaces (which carries the stored type ID).
using RefResolver = std::function<StoredRef(const StoredRef& file, const StoredRef& before)>;

// The node as a save stores it: every column the stored node (or the
// template) has, overlaid with the file's fields, its references resolved
// and its languages settled as the save leaves them.
TextNode MergedNode(const TextNode& base, const TextNode& file, const RefResolver& resolve);

// Why the reference at `path` may not name its target, or nothing.
using TargetCheck = std::function<std::optional<Problem>(const std::string& path, TargetRole role,
                                                         const StoredRef& ref)>;

// The refusals of the fields among `changes`, each as its field's path:
// values beyond the field's rule, targets as `checkTarget` finds them.
std::vector<Problem> ChangedFieldRefusals(const TextNode& node,
                                          const std::vector<FieldChange>& changes,
                                          const TargetCheck& checkTarget);

// A stored whole number of the node, or `fallback`.
std::int64_t Column(const TextNode& node, const std::string& column, std::int64_t fallback = 0);

}  // namespace dbn::nodetext
