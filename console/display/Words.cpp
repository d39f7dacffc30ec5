#include "console/display/Words.h"

namespace kelvane::console {

std::string joined(const std::vector<std::string>& words, const std::string& separator) {
  std::string all;
  for (const std::string& word : words) all += (all.empty() ? "" : separator) + word;
  return all;
}

}  // namespace kelvane::console
