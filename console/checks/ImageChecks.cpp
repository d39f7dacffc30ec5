#include "console/checks/ImageChecks.h"

#include <cstddef>

#include "console/checks/Access.h"
#include "platform/File.h"

namespace kelvane::console {
namespace {

// The worker takes no more of an image's path.
constexpr std::size_t kMostPathBytes = 255;

}  // namespace

std::string imagePathFault(const std::string& path) {
  if (path.empty()) return " is empty";
  if (path.front() != '/') return " is relative: it is looked for in the worker's current folder";
  if (path.size() > kMostPathBytes) return " is longer than 255 bytes: the rest of it is cut off";
  return {};
}

std::string imageFault(const std::string& path) {
  if (std::string fault = imagePathFault(path); !fault.empty()) return fault;
  switch (kindOf(path)) {
    case EntryKind::missing:
      return " does not exist";
    case EntryKind::folder:
      return " is a folder";
    case EntryKind::other:
      return " is no regular file";
    case EntryKind::unreachable:
    case EntryKind::file:
      break;
  }
  if (const std::string cause = refusal(path, Access::read); !cause.empty()) {
    return " cannot be read: " + cause;
  }
  return platform::fileSize(path) == 0 ? " has no bytes" : "";
}

std::string imageFaultOf(const platform::Value& path, bool isCopy) {
  if (!path.isString()) return {};
  return isCopy ? imagePathFault(path.string()) : imageFault(path.string());
}

}  // namespace kelvane::console
