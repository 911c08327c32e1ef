#pragma once

#include <ctime>
#include <string>

namespace dbn {

// A modification time as the node pool stores it: local time written as
// "YYYY-MM-DD HH:MM:SS", which the database's date functions read.
std::string FormatModificationTime(const std::tm& local);

// The current local time in that form.
std::string CurrentModificationTime();

// An ISO 8601 UTC time ("2026-11-25T14:02:07Z") as local time in that form;
// the text itself when it is no such time.
std::string LocalModificationTime(const std::string& isoUtc);

}  // namespace dbn
