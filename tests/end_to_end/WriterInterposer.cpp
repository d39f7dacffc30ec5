// Loaded into the console: plays another program that writes the job file once, at a moment that
// the console cannot foresee.
//   KELVANE_TEST_WRITE_AT   the console's call: "fsync", before it; "rename", after it
//   KELVANE_TEST_WRITTEN    the file whose text the other program writes
//   KELVANE_TEST_JOB_FILE   the file it writes to

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <unistd.h>

#include "tests/end_to_end/NextFunction.h"

namespace {

void writeAt(const char* call) {
  static bool done = false;
  const char* wanted = std::getenv("KELVANE_TEST_WRITE_AT");
  if (done || wanted == nullptr || std::strcmp(wanted, call) != 0) return;
  done = true;
  std::filesystem::copy_file(std::getenv("KELVANE_TEST_WRITTEN"),
                             std::getenv("KELVANE_TEST_JOB_FILE"),
                             std::filesystem::copy_options::overwrite_existing);
}

}  // namespace

extern "C" int fsync(int file) {
  writeAt("fsync");
  static const auto next = kelvane::test::nextFunction<int(int)>("fsync");
  return next(file);
}

extern "C" int rename(const char* from, const char* to) noexcept {
  static const auto next = kelvane::test::nextFunction<int(const char*, const char*)>("rename");
  const int result = next(from, to);
  writeAt("rename");
  return result;
}
