#pragma once

#include "database/database_setup.h"
#include "database/database_target.h"

#include <cstddef>
#include <string>
#include <vector>

namespace dbn {

struct CopiedTable {
    std::string name;
    std::size_t rows = 0;
};

// Copies every table of the configuration, every row exactly, from one
// database to another (either engine each), as one transaction on the
// target. A target without the schema gets it (a missing SQLite file is
// created); a target that holds configuration rows is refused unless
// existing is Replace. Answers the row count of each table in schema order.
// Raises ComponentError.
std::vector<CopiedTable> CopyConfiguration(const DatabaseTarget& from, const DatabaseTarget& to,
                                           ExistingDatabase existing);

}  // namespace dbn
