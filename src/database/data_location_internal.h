#pragma once

// Pieces of the database location, exposed so that tests can put the
// machine-wide root anywhere.

#include <string>

namespace dbn::detail {

// The machine-wide data root ("/var/lib").
inline constexpr const char* kPrimaryDataRoot = "/var/lib";

// Joins two path parts with exactly one "/" between them.
std::string JoinPath(const std::string& left, const std::string& right);

// The per-user data root: $XDG_DATA_HOME, or $HOME/.local/share when that is
// unset or empty.
std::string UserDataRoot();

// <primaryRoot>/Corvell/Sonavis+/ when that folder exists, else the same
// folders under fallbackRoot (not checked). Trailing "/".
std::string ProductFolderUnder(const std::string& primaryRoot, const std::string& fallbackRoot);

}  // namespace dbn::detail
