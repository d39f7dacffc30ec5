// Names in the log: the function that is cut out of a method's, the file without its folders, and
// the generations of a log that is rotated.

#include <string>

#include "contract/Log.h"
#include "log/iLog.h"
#include "platform/Value.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/MemoryDisk.h"
#include "tests/fuzz/laws/NameLaws.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

void rotate(const std::string& path, unsigned generations) {
  MemoryDisk disk;
  disk.put(path, "the log");
  if (!disk.bytesOf(path)) return;
  for (unsigned n = 1; n <= generations; ++n) disk.put(plainGeneration(path, n), "old");
  disk.pretendedSize = logging::kRotatedFrom;
  renameFile(Value(path));
  const auto moved = disk.bytesOf(plainGeneration(path, generations + 1));
  requireRotated({"the log", disk.bytesOf(path), moved}, generations >= logging::kGenerations);
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::Bytes bytes(data, size);
  const unsigned generations = bytes.pick(102);
  const std::string name = bytes.rest();
  const std::string asC = name.substr(0, name.find('\0'));  // as C reads it
  std::string cut = "what was there before";
  fuzz::require(_base_function_name(asC.c_str(), cut) == 1, "cutting a name succeeds");
  fuzz::requireFunction(asC, cut);
  fuzz::requireFile(asC, _base_file_name(asC.c_str()));
  fuzz::requireGeneration(name, generations,
                          fileRename(platform::Value(name), generations).string());
  // From the root on, without detours: what a log's path is.
  const bool isPlain = name.starts_with('/') && name.find("//") == std::string::npos &&
                       name.find("/.") == std::string::npos && !name.ends_with('/');
  if (isPlain && asC == name && name.size() < 200) fuzz::rotate(name, generations);
  return 0;
}
