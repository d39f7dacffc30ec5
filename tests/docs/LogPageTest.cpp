// docs/log.md shows what the worker really logs.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contract/Log.h"
#include "log/iLog.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/docs/Page.h"
#include "tests/docs/PageWorld.h"
#include "tests/support/JobFiles.h"
#include "tests/support/LogLine.h"

namespace kelvane::docs {
namespace {

using platform::Value;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

std::string logPage() { return readSource("docs/log.md"); }
std::string logPart(const char* heading) { return section(logPage(), heading); }
std::vector<Row> logTable(const char* heading) { return tableRows(logPart(heading)); }
std::vector<std::string> shownLogs() { return codeBlocks(logPart("## A log"), "text"); }

std::string withoutBackticks(const std::string& cell) { return cell.substr(1, cell.size() - 2); }

// --- the log

class LogPageRun : public PageWorld {};

TEST_F(LogPageRun, StartsAsThePageShows) {
  run(workedExample("updateSW").before);
  EXPECT_THAT(writtenLog(), StartsWith(comparableLog(shownLogs().at(0))));
}

TEST_F(LogPageRun, TellsOfAMissingJobFileAsThePageShows) {
  std::filesystem::remove(folder / test::kJobFile);
  runWorker({"17", folder / "Users/ann/Shared/"});
  EXPECT_EQ(writtenLog(), comparableLog(shownLogs().at(1)));
}

TEST_F(LogPageRun, StandsWhereThePageSaysAndIsNotCreatedThere) {
  const std::string path = "utility/logs/TarselVistrelUtility.txt";
  EXPECT_THAT(logPage().substr(0, logPage().find("\n## ")), HasSubstr("`" + path + "`"));
  std::filesystem::remove(shared() + path);
  run(workedExample("updateSW").before);
  EXPECT_FALSE(std::filesystem::exists(shared() + path));
  folder.write("shared/" + path, "");
  run(workedExample("updateSW").before);
  EXPECT_THAT(log(), Not(IsEmpty()));
}

TEST_F(LogPageRun, EndsAFirmwareJobWithTheLineOfThePage) {
  run(workedExample("updateFW").before);
  const std::string last = withoutBackticks(logTable("## What to look for").back().at(0));
  const std::string written = writtenLog();
  EXPECT_THAT(written.substr(written.rfind("[14:03:07]")), HasSubstr("[updateFW][debug] " + last));
}

TEST(LogPage, ShowsLinesThatCanBeTakenApart) {
  for (const std::string& block : shownLogs()) {
    EXPECT_TRUE(test::parseLogLine(test::splitLines(block).at(0))) << block;
  }
}

TEST(LogPage, NamesTheFieldsOfALine) {
  std::string line;
  for (const Row& row : logTable("## The line")) line += row.at(0) + " ";
  EXPECT_EQ(line, "time file line function level message ");
  EXPECT_THAT(logPart("## The line"),
              StartsWith("\n`[time] [file][line][function][level] message`"));
}

TEST(LogPage, NamesEveryLevelByItsNumber) {
  const auto levels = logTable("## Levels");
  ASSERT_THAT(levels, SizeIs(kLogCritical + 1));
  for (const Row& row : levels) {
    EXPECT_EQ(withoutBackticks(row.at(1)), _base_level_name(std::stoi(row.at(0))));
  }
}

// Every way in which the worker's log can end up with one of the page's texts.
class LogPageTexts : public PageWorld {
 protected:
  LogPageTexts() {
    runWorker({"\xFF", folder / "Users/ann/Shared/"});
    run(workedExample("getOnlineUpdateData").before);
    update("0x4301",
           R"({"cpld": "1.7", "faults": [{"flash": "firmware", "do": "fail", "at": 90}]})");
    update("0x4301", "{}", "zr_initializeFlashProcess", "0x8050");
    update("0x4301", "{}", "zr_verifyFlashImage", "0x0001");
    update("0x4301", "{}", "zr_mac_getNVRAM", "0x0001");
    update("0x4801", "{}", "zr_checkQVXFFlashImage", "0x0001");
    std::filesystem::remove(folder / test::kJobFile);
    runWorker({"17", folder / "Users/ann/Shared/"});
  }

 private:
  const Value untouched = fleet().get("controllers").at(0);

  // One firmware job of a controller of this product; what the controller has beside that, and the
  // call of the framework that fails.
  void update(const std::string& product, const std::string& more, const std::string& function = "",
              const std::string& status = "") const {
    Value controller = untouched;
    controller.set("product_id", product);
    controller.setAll(platform::parseJson(more));
    const Value failing = Value::dictionary({{"function", function}, {"status", status}});
    const Value faults = function.empty() ? Value::array() : Value::array({failing});
    writeFleet(*platform::printJson(Value::array({controller})), *platform::printJson(faults));
    run(workedExample("updateFW").before);
  }
};

TEST_F(LogPageTexts, AreAllLogged) {
  auto rows = logTable("## What to look for");
  ASSERT_THAT(rows, Not(IsEmpty()));
  for (const Row& row : rows) EXPECT_THAT(log(), HasSubstr(withoutBackticks(row.at(0))));
}

// --- objects

TEST(LogPage, ShowsAnObjectAsItIsLogged) {
  const std::string objects = logPart("## Objects");
  const Value object = platform::parseJson(codeBlocks(objects, "json").at(0));
  EXPECT_EQ(platform::describe(object) + "\n", codeBlocks(objects, "text").at(0));
}

TEST(LogPage, ShowsASingleValueAsItIsLogged) {
  const auto rows = logTable("## Objects");
  ASSERT_THAT(rows, Not(IsEmpty()));
  for (const Row& row : rows) {
    const Value list = platform::parseJson("[" + withoutBackticks(row.at(0)) + "]");
    EXPECT_EQ(platform::describe(list.at(0)), withoutBackticks(row.at(1)));
  }
  EXPECT_THAT(logPart("## Objects"), HasSubstr("`" + platform::describe(Value()) + "`"));
}

// --- sizes and rotation

TEST(LogPage, NamesGenerationsAsTheRotationDoes) {
  const auto rows = logTable("## Size and rotation");
  ASSERT_THAT(rows, Not(IsEmpty()));
  for (const Row& row : rows) {
    EXPECT_EQ(fileRename(withoutBackticks(row.at(0)), 3), Value(withoutBackticks(row.at(1))));
  }
}

TEST(LogPage, TellsTheLimits) {
  const std::string sizes = logPart("## Size and rotation");
  EXPECT_THAT(sizes, HasSubstr("A path of " + std::to_string(sizeof _logPath) + " bytes or more"));
  EXPECT_THAT(sizes, HasSubstr(std::to_string(logging::kRotatedFrom) + " bytes"));
  EXPECT_THAT(sizes, HasSubstr("of " + std::to_string(logging::kGenerations) + " generations"));
}

}  // namespace
}  // namespace kelvane::docs
