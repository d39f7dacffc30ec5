// Rotation of a log file by its size, into numbered generations beside it.

#include <cstdint>
#include <string>

#include "contract/Log.h"
#include "log/iLog.h"
#include "platform/File.h"
#include "platform/Text.h"

namespace kelvane {

using platform::Value;

namespace {

// The file name with "(n)" in front of its last extension, or at its end where it has none.
std::string generationName(const std::string& name, unsigned long n) {
  const std::string generation = platform::format("(%ld)", n);
  const bool isHidden = name.rfind('.', 0) == 0;
  const Value parts = platform::split(name, '.');
  const std::size_t last = parts.count() - 1;
  const std::size_t first = isHidden ? 1 : 0;
  std::string made = isHidden ? "." : "";
  if (last <= first) return made + parts.at(last).string() + generation;
  for (std::size_t i = first; i <= last; ++i) {
    made += parts.at(i).string();
    if (i + 1 == last) made += generation;
    if (i != last) made += ".";
  }
  return made;
}

}  // namespace

Value fileRename(const Value& path, unsigned long n) {
  std::string folder;
  try {
    const Value components = platform::split(path.string(), '/');
    const std::size_t last = components.count() - 1;
    const std::string name = generationName(components.at(last).string(), n);
    for (std::size_t i = 1; i < last; ++i) folder += "/" + components.at(i).string();
    folder += "/" + name;
  } catch (const std::exception& caught) {
    iLog_tellCaught(__FILE__, __LINE__, "String *fileRename(String *path, unsigned n)", caught);
  }
  return folder;
}

void renameFile(const Value& path) {
  if (!path.isString()) return;
  const std::string& file = path.string();
  // Of what is not there the size is 0.
  if (platform::isFolder(file) || platform::fileSize(file) < logging::kRotatedFrom) return;
  for (unsigned long n = 1; n <= logging::kGenerations; ++n) {
    const std::string generation = fileRename(path, n).string();
    // Where no name could be built there is none to move to, and emptying the file would lose it.
    if (generation.empty() || platform::exists(generation)) continue;
    platform::movePath(file, generation);
    platform::createEmptyFile(file);
    return;
  }
}

}  // namespace kelvane
