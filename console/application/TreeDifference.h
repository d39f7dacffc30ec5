// In what one tree of files differs from another.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kelvane::console {

struct TreeDifferences {
  // "Contents/a is missing", "Contents/b differs"; the first ones, in the order of their paths.
  std::vector<std::string> first;
  std::size_t count = 0;  // of all
};

inline constexpr std::size_t kMostDifferencesTold = 5;

// What a copy of the tree `original` would have and the tree `copy` has not, or otherwise: names,
// kinds, bytes, where links lead, and whether a file may be executed. Of what is not there, or of
// another kind, nothing below is looked at. Links are not followed, but the trees' own paths are.
TreeDifferences treeDifferences(const std::string& original, const std::string& copy);

}  // namespace kelvane::console
