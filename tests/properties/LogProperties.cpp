// A log that is followed as it is written tells what one that is read at once does.

#include <fstream>
#include <string>
#include <vector>

#include "console/job/LogFile.h"
#include "console/job/LogFollower.h"
#include "tests/properties/Drawn.h"
#include "tests/support/TempFolder.h"

namespace kelvane::properties {
namespace {

using console::LogEntry;

std::string inShort(const LogEntry& entry) {
  return entry.time + "|" + entry.file + "|" + entry.line + "|" + entry.function + "|" +
         entry.level + "|" + entry.message;
}

// Entries, and what is none, cut anywhere.
std::vector<std::string> drawnPieces() {
  return *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(std::vector<std::string>{
      "[14:03:07] [x.cpp][1][run][debug] one\n", "[14:03:07] [x.c", "pp][1][run][error] two {\n",
      "    more = \"of it\";\n", "}\n", "\n", "[", "14:03:08] [y.cpp][22][init][debug] \n",
      "no entry", "\xFF\n"}));
}

RC_GTEST_PROP(LogProperties, FollowingFindsEachEntryOnceAndWhole, ()) {
  const test::TempFolder folder;
  console::LogFollower log(folder / "log");
  std::string text;
  std::vector<std::string> found;
  const auto take = [&found](const std::vector<console::LogNews>& news) {
    for (const console::LogNews& one : news) {
      if (one.kind == console::LogNews::Kind::entry) found.push_back(inShort(one.entry));
    }
  };
  for (const std::string& piece : drawnPieces()) {
    std::ofstream(folder / "log", std::ios::app) << piece;
    text += piece;
    take(log.look());
  }
  take(log.rest());
  std::vector<std::string> expected;
  for (const LogEntry& entry : console::parseLog(text)) expected.push_back(inShort(entry));
  RC_ASSERT(found == expected);
}

}  // namespace
}  // namespace kelvane::properties
