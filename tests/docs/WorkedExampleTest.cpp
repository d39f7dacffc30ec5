// The examples of docs/job-file.md, run: the worker writes what the page shows, letter by letter.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contract/JobFile.h"
#include "platform/Json.h"
#include "tests/docs/Page.h"
#include "tests/docs/PageWorld.h"
#include "tests/support/JobFileSchema.h"

namespace kelvane::docs {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;

class WorkedExampleOf : public PageWorld, public ::testing::WithParamInterface<std::string> {};

TEST_P(WorkedExampleOf, IsWhatTheWorkerWrites) {
  const WorkedExample example = workedExample(GetParam());
  run(example.before);
  EXPECT_THAT(writtenVersions(), Contains(example.during));
  EXPECT_EQ(writtenVersions().back(), example.after);
  EXPECT_THAT(violations(), IsEmpty());
}

TEST_P(WorkedExampleOf, IsValidInEveryState) {
  const WorkedExample example = workedExample(GetParam());
  for (const std::string& text : {example.before, example.during, example.after}) {
    EXPECT_THAT(test::validateJobFile(text), IsEmpty()) << text;
  }
}

TEST_P(WorkedExampleOf, StartsWithAValidWaitingJob) {
  const platform::Value jobs = platform::parseJson(workedExample(GetParam()).before);
  ASSERT_EQ(jobs.count(), 1U);
  EXPECT_THAT(test::validateWaitingJob(*platform::printJson(jobs.at(0))), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Page, WorkedExampleOf,
                         ::testing::ValuesIn(std::vector<std::string>(std::begin(job::kCommands),
                                                                      std::end(job::kCommands))),
                         [](const auto& test) { return test.param; });

}  // namespace
}  // namespace kelvane::docs
