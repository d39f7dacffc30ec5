// The platform's files in memory: defined in place of platform/File.cpp, which the linker then
// leaves out; a function of its that is missing here makes the linker take both, and complain.
// There is a job file, a log that tells each of its lines, and the product's settings: all that a
// firmware job needs, without a disk.
#pragma once

#include <functional>
#include <string>

namespace kelvane::dialogues {

struct MemoryFiles {
  MemoryFiles();
  ~MemoryFiles();
  MemoryFiles(const MemoryFiles&) = delete;
  MemoryFiles& operator=(const MemoryFiles&) = delete;

  std::string jobFile;
  // "read", "write [...]", "log run: ..."; nothing is told where it is not set.
  std::function<void(std::string event)> tell;
};

inline constexpr char kProductFolder[] = "/A/B.app/Contents/Resources";

}  // namespace kelvane::dialogues
