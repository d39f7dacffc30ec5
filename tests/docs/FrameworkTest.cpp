// The contract's list of the framework's functions, held against the built worker.

#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "contract/Framework.h"
#include "tests/support/Program.h"

namespace kelvane::docs {
namespace {

// What the program asks of its libraries, as far as it is C; with the versions cut off.
std::set<std::string> askedFor(const std::string& program) {
  const auto listed =
      test::runProgram({"/usr/bin/env", "nm", "-D", "--undefined-only", "-P", program}, "/");
  EXPECT_EQ(listed.exitStatus, 0) << listed.err;
  std::istringstream lines(listed.out);
  std::set<std::string> names;
  for (std::string line; std::getline(lines, line);) names.insert(line.substr(0, line.find(' ')));
  return names;
}

bool isFrameworks(const std::string& name) {
  return name.rfind("zr_", 0) == 0 || name.rfind("decod_", 0) == 0 || name == "getErrorDescription";
}

TEST(Framework, HasEveryFunctionThatTheWorkerCallsAndNoOther) {
  std::set<std::string> called;
  for (const std::string& name : askedFor(KELVANE_WORKER)) {
    if (isFrameworks(name)) called.insert(name);
  }
  std::set<std::string> laidDown;
  for (const auto& function : framework::kFunctions) laidDown.insert(function.name);
  EXPECT_EQ(called, laidDown);
}

}  // namespace
}  // namespace kelvane::docs
