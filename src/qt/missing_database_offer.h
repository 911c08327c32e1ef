#pragma once

#include <string>

namespace dbn::qt {

// When there is no configuration database at path: asks in one box whether
// to create the demo database there, an empty one, or to quit, and creates
// the one chosen. Answers false when the operator quits.
bool OfferToCreateDatabase(const std::string& path);

}  // namespace dbn::qt
