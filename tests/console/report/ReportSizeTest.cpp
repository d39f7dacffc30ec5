// How large a report gets, whatever is long in what it is made of.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/report/ReportPage.h"
#include "platform/Json.h"
#include "tests/console/report/TimedLog.h"

namespace kelvane::console {
namespace {

using platform::Value;
using ::testing::AllOf;
using ::testing::HasSubstr;

constexpr std::size_t kMostBytes = 8UL << 20U;
constexpr std::size_t kLong = 4UL << 20U;

class ReportSize : public ::testing::Test {
 protected:
  ReportSize() {
    matter.record = platform::parseJson(
        R"({"log_id": "17", "job_id": "updateFW", "state_id": "FREE", "result": 0})");
    matter.log.isFound = true;
  }

  void addLongLines() {
    const std::string line = "[14:03:07] [x][1][updateFW][debug] " + std::string(kLong, '"');
    matter.entries = parseLog(line);
    matter.log.lastStep = matter.entries.front().message;
    matter.log.startErrors = {matter.log.lastStep};
    matter.standardError = {matter.log.lastStep};
  }

  void addErrors() {
    for (int i = 0; i < 20000; ++i) {
      matter.log.errors.push_back(std::to_string(i).append(300, 'x'));
      matter.findings.push_back(
          {Code::jobFaulty, Severity::error, std::string(300, '"'), "", "", ""});
    }
  }

  // Each with a key of its own.
  void addParameters() {
    Value inputs = Value::array();
    for (int i = 0; i < 400; ++i) {
      inputs.append(
          Value::dictionary({{"wwn", "5000"}, {std::to_string(i), std::string(5000, '<')}}));
    }
    matter.record.set("input_parameters", inputs);
  }

  void addEntries() {
    std::string log;
    for (int i = 0; i < 5000; ++i) {
      log += "[14:03:07] [x][1][updateFW][debug] " + std::string(1000, '<') + "\n" +
             std::to_string(i).append(1000, '"') + "\n";
    }
    matter.entries = parseLog(log);
  }

  void addControllers() {
    constexpr int kCount = 100;
    std::vector<std::string> wwns;
    for (int i = 0; i < kCount; ++i) wwns.push_back(std::to_string(5000000000000000 + i));
    test::TimedLog log(wwns);
    for (int i = 0; i < kCount; ++i) {
      log.step("updateFW", "devId = 0, filePath = a.img");
      for (int step = 0; step < 300; ++step) log.pass(1).step("flashCPLD", "flashCPLD start");
    }
    matter.history = log.history();
  }

  std::string page() const { return reportPage(matter, false).text; }

  ReportMatter matter;
};

TEST_F(ReportSize, WithLongLinesItIsInBounds) {
  addLongLines();
  EXPECT_LT(page().size(), kMostBytes);
  EXPECT_THAT(page(), AllOf(HasSubstr(" bytes are left out)</dd>"),
                            HasSubstr(" bytes are left out)</pre>")));
}

TEST_F(ReportSize, WithManyErrorsItIsInBounds) {
  addErrors();
  EXPECT_LT(page().size(), kMostBytes);
  EXPECT_THAT(page(), AllOf(HasSubstr("<p>19900 others are left out.</p>"),
                            HasSubstr("<p>19800 others are left out.</p>")));
}

TEST_F(ReportSize, WithManyParametersItIsInBounds) {
  addParameters();
  EXPECT_LT(page().size(), kMostBytes);
  EXPECT_THAT(page(), AllOf(HasSubstr("<p>371 other keys are left out.</p>"),
                            HasSubstr("<p>200 others are left out.</p>")));
}

TEST_F(ReportSize, WithManyControllersItIsInBounds) {
  addControllers();
  addLongLines();
  EXPECT_LT(page().size(), kMostBytes);
  EXPECT_THAT(page(), HasSubstr(" other controllers are left out.</p>"));
}

TEST_F(ReportSize, WithAllOfThisItIsInBounds) {
  addControllers();
  addLongLines();
  addErrors();
  addParameters();
  addEntries();
  EXPECT_LT(page().size(), kMostBytes);
}

}  // namespace
}  // namespace kelvane::console
