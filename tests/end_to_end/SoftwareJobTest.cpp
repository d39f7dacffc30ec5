// The application replaced by the real executable, with the system's own tools.

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/end_to_end/Installation.h"

namespace kelvane {
namespace {

using SoftwareJob = Installation;

TEST_F(SoftwareJob, ReplacesTheInstalledBundleByTheNewOne) {
  folder.write("Manager.app/Contents/old", "old");
  folder.write("New.app/Contents/new", "new");
  bundle.write("Contents/Resources/Config/setting.json",
               R"({"AppPath": ")" + (folder / "Manager.app") + "\"}");
  writeJobs(R"([{"log_id":"17","job_id":"updateSW","state_id":"WAIT","input_parameters":
                {"file_path":")" +
            (folder / "New.app") + "\"}}]");
  const test::Ended ended = runWorker({"17", shared()});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.err, "");
  EXPECT_EQ(folder.names("Manager.app/Contents"), std::vector<std::string>{"new"});
  ASSERT_EQ(versions().size(), 2U);
  EXPECT_EQ(versions()[0].at(0).get("state_id"), platform::Value("RUN"));
  EXPECT_EQ(versions()[1].at(0).get("state_id"), platform::Value("FREE"));
  EXPECT_EQ(result(), 0);
}

TEST_F(SoftwareJob, AnEmptyPathRemovesTheApplicationAndOnlyTheStandardErrorTells) {
  folder.write("Manager.app/Contents/old", "old");
  bundle.write("Contents/Resources/Config/setting.json",
               R"({"AppPath": ")" + (folder / "Manager.app") + "\"}");
  writeJobs(R"([{"log_id":"17","job_id":"updateSW","state_id":"WAIT","input_parameters":
                {"file_path":""}}])");
  const test::Ended ended = runWorker({"17", shared()});
  EXPECT_EQ(result(), 0);
  EXPECT_FALSE(std::filesystem::exists(folder / "Manager.app"));
  EXPECT_NE(ended.err.find("cp: "), std::string::npos);
  EXPECT_EQ(log().find("cp: "), std::string::npos);
}

}  // namespace
}  // namespace kelvane
