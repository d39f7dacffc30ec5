#include "console/explain/ImageNote.h"

#include <cstddef>

#include "console/checks/Access.h"
#include "contract/JobFile.h"
#include "platform/File.h"

namespace kelvane::console {

using platform::Value;

namespace {

// The worker takes no more of an image's path.
constexpr std::size_t kMostPathBytes = 255;

}  // namespace

std::string imageFault(const std::string& path) {
  if (path.empty()) return " is empty";
  if (path.front() != '/') return " is relative: it is looked for in the worker's current folder";
  if (path.size() > kMostPathBytes) return " is longer than 255 bytes: the rest of it is cut off";
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

std::string imageNote(const Value& record, const FailedController& failed) {
  const Value& inputs = record.get(job::kInputParameters);
  if (!inputs.isArray() || failed.index >= inputs.count()) return {};
  const Value& input = inputs.at(failed.index);
  if (!input.isDictionary() || !input.has(job::kFilePath)) return "its image: none is given";
  if (!input.get(job::kFilePath).isString()) return "its image: file_path is no string";
  const std::string& path = input.get(job::kFilePath).string();
  std::string note = "its image: " + path + imageFault(path);
  if (failed.product.empty()) return note;
  return note.append("; product 0x")
      .append(failed.product)
      .append(" takes ")
      .append(failed.isQvxf ? "QVXF images" : "standard images");
}

}  // namespace kelvane::console
