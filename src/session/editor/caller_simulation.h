#pragma once

// The call simulation of a dial-by-name node: the plan of a call read from
// the settings the editor form shows now, saved or not, and from a stored
// node as the editor would show it after loading.

#include "directory/call_plan.h"

#include <cstdint>
#include <vector>

namespace dbn::form {
class GUI;
}

namespace dbn::session {

// The plan of a call under the settings, prompts and targets the form shows
// now, with the descriptions of the nodes they refer to and the names of
// the directory it shows. Raises kErrDirectoryMissing (directory_check.h).
directory::CallPlan FormCallPlan(form::GUI& form);
// The same on the names of the directory the form shows, read before.
directory::CallPlan FormCallPlan(form::GUI& form, std::vector<directory::DirectoryName> names);

// Raised when a stored node cannot be shown in the editor (it does not
// exist, or the database cannot be opened); the description says why.
inline constexpr long kErrNodeNotShown = 5003;

// The plan of a call through a stored node, read as the editor shows the
// node after loading it (without a display). Raises kErrNodeNotShown, or
// kErrDirectoryMissing when its directory node does not exist.
directory::CallPlan StoredCallPlan(std::int16_t config, std::int16_t partition, std::int16_t node);

}  // namespace dbn::session
