#pragma once

#include <ctime>
#include <string>

namespace dbn {

// A modification time as the node pool stores it: local time written as
// "YYYY-MM-DD HH:MM:SS", which the database's date functions read.
std::string FormatModificationTime(const std::tm& local);

// The current local time in that form.
std::string CurrentModificationTime();

}  // namespace dbn
