// A suggestion for a name that is not known.
#pragma once

#include <string>
#include <vector>

namespace kelvane::console {

// The WWN of these that is most like the given one, of several the first; empty where none is
// alike. Case, and signs that are neither letter nor digit, make no difference.
std::string nearestWwn(const std::string& wwn, const std::vector<std::string>& known);

}  // namespace kelvane::console
