// The worker killed before any of its system calls: the job file is always whole.

#include <set>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "platform/Json.h"
#include "tests/end_to_end/Installation.h"
#include "tests/support/JobFiles.h"
#include "tests/support/SystemCallKiller.h"

namespace kelvane {
namespace {

constexpr char kWaiting[] = R"([{"log_id":"17","job_id":"updateFW","state_id":"WAIT",
    "input_parameters":[{"wwn":"unknown","file_path":"/i"}]}])";

using Crash = Installation;

TEST_F(Crash, AtAnySystemCallLeavesTheJobFileInOneOfItsVersions) {
  writeFleet("[]");
  writeJobs(kWaiting);
  ASSERT_EQ(runWorker({"17", shared()}).exitStatus, 0);
  std::set<std::string> versionTexts = {kWaiting};
  for (const platform::Value& version : versions()) {
    versionTexts.insert(*platform::printJson(version));
  }
  ASSERT_EQ(versionTexts.size(), 3U);  // waiting, running, free

  const std::string program = bundle / "Contents/Resources/Kelvane";
  const std::string folderArgument = shared();
  std::set<std::string> seen;
  int n = 1;
  for (bool killed = true; killed; ++n) {
    writeJobs(kWaiting);
    killed = test::killedBeforeSystemCall(n, [&] {
      ::setenv("ZORAPI_FLEET", (folder / "fleet.json").c_str(), 1);
      ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // the leak check traces, too
      ::execl(program.c_str(), program.c_str(), "17", folderArgument.c_str(), nullptr);
    });
    const std::string left = folder.read(test::kJobFile);
    ASSERT_TRUE(versionTexts.contains(left)) << "killed before system call " << n << ": " << left;
    seen.insert(left);
  }
  EXPECT_EQ(seen, versionTexts);
}

}  // namespace
}  // namespace kelvane
