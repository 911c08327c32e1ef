#pragma once

#include <string>

namespace dbn {

// What to do when the database file is there already.
enum class ExistingDatabase { Refuse, Replace };

// Creates a configuration database at filePath: the missing folders (owner
// and group may write, others not), the file with the full schema and, when
// asked, the demo content. The file is built under a temporary name and
// renamed into place, so a failure leaves no half-made database. An
// existing file raises an error unless existing is Replace. Raises
// ComponentError.
void CreateConfigurationDatabase(const std::string& filePath, bool withDemoContent,
                                 ExistingDatabase existing);

// The same, refusing to touch an existing file.
void CreateConfigurationDatabase(const std::string& filePath, bool withDemoContent);

}  // namespace dbn
