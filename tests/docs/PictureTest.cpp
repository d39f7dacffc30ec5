// docs/console.svg, the picture in the README: it shows what the console of today would draw.

#include <chrono>
#include <filesystem>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/command_line/CommandTable.h"
#include "console/display/Layout.h"
#include "platform/Json.h"
#include "tests/docs/Page.h"
#include "tests/support/LogLine.h"

namespace kelvane::docs {
namespace {

using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::StartsWith;

using Lines = std::vector<std::string>;

constexpr std::size_t kCommandLines = 3;

// The lines of text that the picture shows, from the top.
Lines shown() {
  Lines found;
  for (const std::string& line : test::splitLines(readSource("docs/console.svg"))) {
    if (line.rfind("<text ", 0) != 0) continue;
    const std::size_t start = line.find('>') + 1;
    found.push_back(line.substr(start, line.rfind("</text>") - start));
  }
  return found;
}

Lines command() {
  const Lines all = shown();
  return {all.begin(), all.begin() + kCommandLines};
}

Lines screen() {
  const Lines all = shown();
  return {all.begin() + kCommandLines, all.end()};
}

// Of a text that begins with a time, such as "0:04 left".
std::chrono::milliseconds timeIn(const std::string& text) {
  return std::chrono::minutes(std::stoi(text)) +
         std::chrono::seconds(std::stoi(text.substr(text.find(':') + 1)));
}

// The time at the end of the screen's first line.
std::chrono::milliseconds elapsed() {
  const std::string line = screen().front();
  return timeIn(line.substr(line.rfind(' ') + 1));
}

// The time in its last line.
std::chrono::milliseconds left() {
  return timeIn(screen().back().substr(std::string("about ").size()));
}

// The job that is half way: a controller that is done, one in its firmware's flash, one waiting.
console::Look halfWay() {
  console::Look look;
  look.record = platform::parseJson(R"({"log_id": "1", "job_id": "updateFW", "state_id": "RUN",
    "output": [
      {"wwn": "50000000000000A1", "cpld_percentage": 100, "fw_percentage": 100,
       "total_percentage": 100},
      {"wwn": "50000000000000B2", "cpld_percentage": 100, "fw_percentage": 50,
       "total_percentage": 75},
      {"wwn": "50000000000000C3", "cpld_percentage": 0, "fw_percentage": 0,
       "total_percentage": 0}]})");
  look.status = console::statusOf(look.record);
  look.elapsed = elapsed();
  look.left = console::TimeLeft{"50000000000000B2", "firmware", left(), left()};
  return look;
}

TEST(Picture, ShowsTheScreenThatTheConsoleDraws) {
  EXPECT_THAT(screen(), ElementsAreArray(statusLines(halfWay(), {80, 24}, console::Charset::utf8)));
}

TEST(Picture, ShowsACommandThatTheConsoleTakes) {
  std::set<std::string> options;
  for (const console::Option& option : console::commandNamed("update-fw").options) {
    options.insert(option.names.begin(), option.names.end());
  }
  std::istringstream words(command().at(0));
  for (std::string word; words >> word;) {
    if (word.rfind("--", 0) != 0) continue;
    EXPECT_TRUE(options.contains(word)) << word;
  }
  EXPECT_THAT(command().at(0), StartsWith("$ kelvane-console update-fw "));
}

TEST(Picture, StandsInTheReadme) {
  EXPECT_THAT(section(readSource("README.md"), "## The console at work"),
              HasSubstr("](docs/console.svg)"));
}

// Every room of the map's table is there.
TEST(Architecture, NamesOnlyRoomsThatExist) {
  const auto exists = [](const std::string& room) {
    for (const char* above : {"", "Modules/Mac/FWUpdater/", "simulators/"}) {
      if (std::filesystem::exists(KELVANE_SOURCES + (above + room))) return true;
    }
    return false;
  };
  const auto rooms = namesOf(tableRows(section(readSource("ARCHITECTURE.md"), "## The map")));
  EXPECT_GT(rooms.size(), 8U);
  for (const std::string& room : rooms) EXPECT_TRUE(exists(room)) << room;
}

}  // namespace
}  // namespace kelvane::docs
