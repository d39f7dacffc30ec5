// Many consoles, and other programs, at one job file: nobody's job is lost.

#include <map>
#include <set>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "contract/JobFile.h"
#include "platform/Json.h"
#include "tests/end_to_end/Installation.h"
#include "tests/support/JobFiles.h"

namespace kelvane {
namespace {

using platform::Value;

class Submission : public Installation {
 protected:
  // All at once; each with a controller of its own. How many ended with another status than 0.
  int failuresOf(int count, const std::vector<std::string>& more) const {
    std::vector<pid_t> consoles;
    for (int i = 0; i < count; ++i) {
      const pid_t child = ::fork();
      if (child == 0) {
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        test::becomeProgram(command("W" + std::to_string(i), more), folder.path(), {});
      }
      consoles.push_back(child);
    }
    int failures = 0;
    for (const pid_t console : consoles) {
      int status = 0;
      if (::waitpid(console, &status, 0) != console || status != 0) ++failures;
    }
    return failures;
  }
  std::vector<std::string> command(const std::string& wwn,
                                   const std::vector<std::string>& more) const {
    std::vector<std::string> argv = {KELVANE_CONSOLE, "update-fw", "--shared", shared()};
    argv.insert(argv.end(), more.begin(), more.end());
    argv.push_back(wwn + "=" + (folder / "image"));
    return argv;
  }
  std::set<std::string> wwns() const {
    std::set<std::string> found;
    const Value records = jobs();
    for (const Value& record : records.elements()) {
      found.insert(record.get(job::kInputParameters).at(0).get(job::kWwn).string());
    }
    return found;
  }
  std::set<std::string> logIds() const {
    std::set<std::string> found;
    const Value records = jobs();
    for (const Value& record : records.elements()) found.insert(record.get(job::kLogId).string());
    return found;
  }

  std::string image = folder.write("image", "of none of the controllers");
};

TEST_F(Submission, FiftyConsolesAtOnceLoseNothing) {
  EXPECT_EQ(failuresOf(50, {"--worker", "/bin/true", "--even-so", "--no-wait"}), 0);
  EXPECT_EQ(jobs().count(), 50U);
  EXPECT_EQ(logIds().size(), 50U);
  EXPECT_EQ(wwns().size(), 50U);
}

// Each worker would take the others' versions of the file for its own otherwise.
TEST_F(Submission, ConsolesThatWaitRunTheirWorkersOneAfterTheOther) {
  const std::string script = folder.write("worker", R"(#!/bin/sh
mkdir "$2at work" || echo together >> "$2faults"
file=$2utility/command/BGPLog.json
sed "/\"log_id\": \"$1\"/,/state_id/s/WAIT/FREE\", \"result\": 0, \"resultStr\": \"no error/" \
  "$file" > "$file.new"
rmdir "$2at work"
mv "$file.new" "$file"
)");
  ::chmod(script.c_str(), 0755);
  EXPECT_EQ(failuresOf(20, {"--worker", script, "--wait"}), 0);
  EXPECT_EQ(folder.read("shared/faults"), "");
  EXPECT_EQ(wwns().size(), 20U);
  const Value records = jobs();
  for (const Value& record : records.elements()) {
    EXPECT_EQ(record.get(job::kStateId), Value(job::kFree));
  }
}

class SubmissionBesideAnotherProgram : public Submission,
                                       public ::testing::WithParamInterface<const char*> {};

// Before the new file has its name, or after that: then the console's record is not in it any more.
TEST_P(SubmissionBesideAnotherProgram, TakesTheNextLogIdAndLosesNeitherJob) {
  writeJobs("[]");
  const std::string other =
      folder.write("other", test::waitingJob("updateSW", Value::dictionary(), "1"));
  const std::map<std::string, std::string> variables = {
      {"LD_PRELOAD", KELVANE_WRITER_INTERPOSER},
      // The interposer comes before a sanitizer's runtime, which minds by default.
      {"ASAN_OPTIONS", "verify_asan_link_order=0"},
      {"KELVANE_TEST_WRITE_AT", GetParam()},
      {"KELVANE_TEST_WRITTEN", other},
      {"KELVANE_TEST_JOB_FILE", folder / test::kJobFile}};
  const test::Ended ended = test::runProgram(command("W", {"--worker", "/bin/true", "--no-wait"}),
                                             folder.path(), variables);
  EXPECT_EQ(ended.out, "2\n") << ended.err;
  ASSERT_EQ(jobs().count(), 2U);
  EXPECT_EQ(jobs().at(0).get(job::kJobId), Value("updateSW"));
  EXPECT_EQ(jobs().at(1).get(job::kJobId), Value("updateFW"));
  EXPECT_EQ(jobs().at(1).get(job::kLogId), Value("2"));
}

INSTANTIATE_TEST_SUITE_P(At, SubmissionBesideAnotherProgram, ::testing::Values("fsync", "rename"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
}  // namespace kelvane
