// docs/result-codes.md, the console's table of results and the contract say the same.

#include <algorithm>
#include <set>
#include <string>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/explain/ResultCodes.h"
#include "contract/Framework.h"
#include "contract/JobFile.h"
#include "platform/Json.h"
#include "simulators/controllers/Status.h"
#include "tests/docs/Page.h"
#include "tests/docs/PageWorld.h"

namespace kelvane::docs {
namespace {

using console::findResultCode;
using console::ResultCode;
using console::resultCodes;
using platform::Value;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

constexpr std::int64_t kDownloadCode = 259;

std::string codesPage() { return readSource("docs/result-codes.md"); }

Row asRow(const ResultCode& code) {
  return {fmt::format("{}", code.code),
          fmt::format("0x{:04X}", code.code),
          fmt::format("`{}`", code.name),
          code.text,
          code.meaning,
          code.whoActs,
          code.advice,
          code.tryAgain ? "yes" : "no"};
}

TEST(ResultCodesPage, ShowsTheConsolesTableRowByRow) {
  std::vector<Row> rows;
  for (const ResultCode& code : resultCodes()) rows.push_back(asRow(code));
  EXPECT_THAT(tableRows(section(codesPage(), "## The codes")), ElementsAreArray(rows));
}

TEST(ResultCodesPage, TellsTheResultsOfEveryCommand) {
  const std::string beginning = codesPage().substr(0, codesPage().find("\n## "));
  EXPECT_THAT(namesOf(tableRows(beginning)), ElementsAreArray(job::kCommands));
}

TEST(ResultCodes, HoldEveryStatusOfTheFrameworkByItsName) {
  std::map<std::int64_t, std::string> known;
  for (const ResultCode& code : resultCodes()) known[code.code] = code.name;
  std::map<std::int64_t, std::string> laidDown = {{job::kFileNotFound, "kFileNotFound"}};
  for (const auto& [code, name] : framework::kStatuses) laidDown[code] = name;
  EXPECT_EQ(known, laidDown);
}

TEST(ResultCodes, WordTheFrameworksStatusesAsTheSimulatedOneDoes) {
  for (const auto& [code, name] : framework::kStatuses) {
    EXPECT_STREQ(findResultCode(code)->text, simulator::describeStatus(code)) << name;
  }
}

TEST(ResultCodes, StandInAscendingOrderOnceEach) {
  const auto codes = resultCodes();
  EXPECT_EQ(std::adjacent_find(codes.begin(), codes.end(),
                               [](const ResultCode& left, const ResultCode& right) {
                                 return left.code >= right.code;
                               }),
            codes.end());
}

TEST(ResultCodes, SayWhoActs) {
  const std::set<std::string> known = {"nobody", "user", "support"};
  for (const ResultCode& code : resultCodes()) EXPECT_TRUE(known.contains(code.whoActs));
}

TEST(ResultCodes, AreFoundByTheirNumber) {
  for (const ResultCode& code : resultCodes()) EXPECT_EQ(findResultCode(code.code), &code);
}

TEST(ResultCodes, HaveNoEntryForOtherNumbers) {
  for (const std::int64_t code : {std::int64_t{-1}, std::int64_t{1}, std::int64_t{0x100000000}}) {
    EXPECT_EQ(findResultCode(code), nullptr) << code;
  }
}

// What jobs of the real worker end with.
class ResultOfAJob : public PageWorld {
 protected:
  void expectResult(std::int64_t code) const {
    EXPECT_EQ(result(), code);
    EXPECT_EQ(jobs().at(0).get("resultStr"), Value(findResultCode(code)->text));
  }
  void update(const std::string& faults) const {
    writeFleet(controllers(), faults);
    run(workedExample("updateFW").before);
  }
  std::string controllers() const { return *platform::printJson(fleet().get("controllers")); }
};

TEST_F(ResultOfAJob, ThatDownloadsWhatTheServiceHasNotIs259) {
  folder.write("Applications/Manager.app/Contents/Resources/EngineRunner", "#!/bin/sh\n");
  run(workedExample("downloadOnlineUpdateFile").before);
  expectResult(kDownloadCode);
}

TEST_F(ResultOfAJob, WhoseControllerIsNotThereIsDeviceNotFound) {
  writeFleet("[]");
  run(workedExample("updateFW").before);
  expectResult(0x0402);
}

TEST_F(ResultOfAJob, WhoseControllerIsBusyIsFlashProcessRunning) {
  update(R"([{"function": "zr_initializeFlashProcess", "status": "0x8050"}])");
  expectResult(0x8050);
}

TEST_F(ResultOfAJob, WithAStatusOfTheFrameworksOwnIsThatNumber) {
  update(R"([{"function": "zr_discover", "status": "0x0103"}])");
  EXPECT_EQ(result(), kDownloadCode);
  EXPECT_NE(jobs().at(0).get("resultStr"), Value(findResultCode(kDownloadCode)->text));
  EXPECT_THAT(section(codesPage(), "## The codes"), HasSubstr("In a firmware job 259 is a status"));
}

TEST_F(ResultOfAJob, WhoseCpldCannotBeFlashedIsStill0) {
  update(R"([{"function": "zr_flashCPLDBin", "status": "0x8050"}])");
  expectResult(0);
  EXPECT_EQ(jobs().at(0).get("output").at(0).get("cpld_percentage").integerValue(), 0);
  EXPECT_EQ(jobs().at(0).get("output").at(0).get("fw_percentage").integerValue(), 100);
}

}  // namespace
}  // namespace kelvane::docs
