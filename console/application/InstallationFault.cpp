#include "console/application/InstallationFault.h"

#include "console/application/TreeDifference.h"
#include "platform/File.h"

namespace kelvane::console {
namespace {

std::string listed(const TreeDifferences& found) {
  std::string text;
  for (const std::string& difference : found.first) {
    if (!text.empty()) text += ", ";
    text += difference;
  }
  const std::size_t more = found.count - found.first.size();
  return more == 0 ? text : text + ", and " + std::to_string(more) + " more differences";
}

}  // namespace

std::string installationFault(const std::string& package, const std::string& installed) {
  if (!platform::exists(installed)) {
    return "no application stands at " + installed +
           ": the new one was not copied, or was removed since";
  }
  const TreeDifferences found = treeDifferences(package, installed);
  if (found.count == 0) return {};
  return "what stands at " + installed + " is not the package: " + listed(found);
}

}  // namespace kelvane::console
