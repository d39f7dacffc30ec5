// What the console's check looks for is what the worker's sources lay down.

#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/checks/Framework.h"
#include "console/checks/RecordChecks.h"
#include "console/checks/SettingsChecks.h"
#include "platform/Value.h"
#include "tests/docs/HeaderNames.h"

namespace kelvane::docs {
namespace {

using platform::Value;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(Checks, LookForEveryFunctionOfTheFrameworksHeader) {
  EXPECT_THAT(console::kFrameworkFunctions, ElementsAreArray(frameworkFunctions()));
}

TEST(Checks, LookForEveryProductSetting) {
  std::set<std::string> looked;
  for (const console::ProductSetting& setting : console::productSettings()) {
    looked.insert(setting.key);
  }
  const auto constants = constantsOf("settings");
  EXPECT_EQ(looked, std::set<std::string>(constants.begin(), constants.end()));
}

TEST(Checks, KnowEveryCommand) {
  const auto fault = [](const std::string& command) {
    return console::whyNotStarted(Value::dictionary(
        {{"job_id", command}, {"state_id", "WAIT"}, {"input_parameters", Value::array()}}));
  };
  for (const std::string& command : commandNames()) {
    EXPECT_THAT(fault(command), Not(HasSubstr("no command of the worker's"))) << command;
  }
  EXPECT_THAT(fault("updateHW"), HasSubstr("no command of the worker's"));
}

}  // namespace
}  // namespace kelvane::docs
