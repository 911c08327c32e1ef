#pragma once
// The JSON Schema of the nodes' text form, made from the table of fields.

#include <string>

namespace dbn::nodefields {

// The schema's text, two-space indented, ending with a line break.
std::string NodeSchemaText();

}  // namespace dbn::nodefields
