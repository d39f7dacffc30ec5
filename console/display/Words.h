// Lists of words.
#pragma once

#include <string>
#include <vector>

namespace kelvane::console {

// The words with a separator between them.
std::string joined(const std::vector<std::string>& words, const std::string& separator);

}  // namespace kelvane::console
