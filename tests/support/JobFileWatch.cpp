// Holds every version of a job file that the code under test puts in place against the schema.
// rename() is replaced for the whole program, because that is how a job file is put in place; a
// file that a test writes by itself is not looked at.

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/JobFileSchema.h"

extern "C" int __real_rename(const char* from, const char* to);
extern "C" int __wrap_rename(const char* from, const char* to);

namespace {

bool isJobFile(std::string_view path) { return path.ends_with("/BGPLog.json"); }

void examine(const char* path) {
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  for (const std::string& violation : kelvane::test::validateJobFile(text)) {
    ADD_FAILURE() << violation << " in the job file\n" << text;
  }
}

}  // namespace

int __wrap_rename(const char* from, const char* to) {
  const int result = __real_rename(from, to);
  if (result == 0 && isJobFile(to)) examine(to);
  return result;
}
