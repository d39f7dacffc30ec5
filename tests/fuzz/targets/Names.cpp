// Names in the log: the function that is cut out of a method's, the file without its folders, and
// the generations of a log that is rotated.

#include <cstring>
#include <string>

#include "contract/Log.h"
#include "log/iLog.h"
#include "platform/Text.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/MemoryDisk.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

void cutFunction(const std::string& name) {
  std::string cut = "what was there before";
  require(_base_function_name(name.c_str(), cut) == 1, "cutting a name succeeds");
  const std::string whole = name.substr(0, name.find_first_of("(:"));
  std::string expected = whole.substr(std::min(whole.find(' '), whole.size()));
  std::erase(expected, ' ');
  requireSame(expected, cut, "a function is cut out of its name");
}

void cutFile(const std::string& path) {
  const std::string name = _base_file_name(path.c_str());
  require(name.find('/') == std::string::npos && path.ends_with(name) &&
              (name.size() == path.size() || path[path.size() - name.size() - 1] == '/'),
          "a file's name is its path's last part", name);
}

std::string generationOf(const std::string& path, unsigned long n) {
  const std::size_t slash = path.find('/');
  std::string made = "/" + (slash == std::string::npos ? path : path.substr(slash + 1));
  const std::size_t start = made.rfind('/') + 1;
  const std::size_t dot = made.rfind('.');
  const bool hasEnding = dot != std::string::npos && dot > start;
  return made.insert(hasEnding ? dot : made.size(), "(" + std::to_string(n) + ")");
}

void rotate(const std::string& path, unsigned generations) {
  MemoryDisk disk;
  disk.put(path, "the log");
  if (!disk.bytesOf(path)) return;
  for (unsigned n = 1; n <= generations; ++n) disk.put(generationOf(path, n), "old");
  disk.pretendedSize = logging::kRotatedFrom;
  renameFile(Value(path));
  const bool isFull = generations >= logging::kGenerations;
  const auto moved = disk.bytesOf(generationOf(path, generations + 1));
  requireSame(isFull ? "the log" : "", disk.bytesOf(path).value_or("(gone)"),
              "a log that was rotated begins anew");
  require(isFull ? !moved : moved == "the log", "a log is moved to its lowest free generation",
          path);
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::Bytes bytes(data, size);
  const unsigned generations = bytes.pick(102);
  const std::string name = bytes.rest();
  const std::string asC = name.substr(0, name.find('\0'));  // as C reads it
  fuzz::cutFunction(asC);
  fuzz::cutFile(asC);
  fuzz::requireSame(fuzz::generationOf(name, generations),
                    fileRename(platform::Value(name), generations).string(),
                    "a generation has its number in front of its ending");
  // From the root on, without detours: what a log's path is.
  const bool isPlain = name.starts_with('/') && name.find("//") == std::string::npos &&
                       name.find("/.") == std::string::npos && !name.ends_with('/');
  if (isPlain && asC == name && name.size() < 200) fuzz::rotate(name, generations);
  return 0;
}
