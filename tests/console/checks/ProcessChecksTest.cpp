// The checks of programs that outlived their worker.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/checks/ProcessChecks.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/support/JobFiles.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using platform::RunningProcess;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ProcessChecks : public ::testing::Test {
 protected:
  ProcessChecks() {
    folder.write(test::kJobFile, "[]");
    folder.write("Manager.app/Contents/Resources/Kelvane", "");
    folder.write("Manager.app/Contents/Resources/Config/setting.json",
                 R"({"AppPath": "/Applications/Manager.app"})");
  }
  RunningProcess engine(const std::string& jobFile) const {
    return {41,
            {"/a/EngineRunner", "dryrun", "-productid", "p", "-version", "1", "-url", "u",
             "-folder", "/f", "-logId", "18", "-logPath", jobFile, "-log", "/l"},
            folder.path()};
  }
  RunningProcess worker() const {
    return {40, {bundle + "/Contents/Resources/Kelvane", "18", shared}, folder.path()};
  }
  std::vector<std::string> engines(const std::vector<RunningProcess>& processes) const {
    return inShort(engineProcessFindings(shared, processes));
  }
  std::vector<std::string> tools(const std::vector<RunningProcess>& processes) const {
    return inShort(installationProcessFindings(bundle, processes));
  }

  test::TempFolder folder;
  std::string shared = folder / "shared/";
  std::string bundle = folder / "Manager.app";
  RunningProcess remover{42, {"/bin/rm", "-Rf", "/Applications/Manager.app"}, "/"};
  RunningProcess copier{43, {"/bin/cp", "-Rf", "/new.app", "/Applications/Manager.app"}, "/"};
};

TEST_F(ProcessChecks, AnEngineWithoutItsWorkerIsNamed) {
  const std::string told =
      "warning: an update engine runs for job 18 (process 41), and no worker for it is seen";
  EXPECT_THAT(engines({engine(shared + "utility/command/BGPLog.json")}), ElementsAre(told));
  EXPECT_THAT(engines({engine("shared/./utility/command/BGPLog.json")}), ElementsAre(told));
}

TEST_F(ProcessChecks, TwoWorkersAtOnceAreAnError) {
  const std::string program = bundle + "/Contents/Resources/Kelvane";
  const RunningProcess other = {44, {program, "19", shared}, "/"};
  const RunningProcess again = {45, {program, "18", "shared"}, folder.path()};
  const RunningProcess behind = {46, {"/bin/timeout", "9", program, "18", shared}, "/"};
  const auto found = [this](const std::vector<RunningProcess>& processes) {
    return inShort(workerProcessFindings(shared, {"18", "19", "20"}, processes));
  };
  EXPECT_THAT(found({worker(), other}),
              ElementsAre("error: 2 workers run at once, for jobs 18, 19"));
  EXPECT_THAT(found({worker(), again}),
              ElementsAre("error: 2 workers run at once, for jobs 18, 18"));
  EXPECT_THAT(found({worker(), behind}), IsEmpty());
  EXPECT_THAT(found({worker()}), IsEmpty());
  EXPECT_THAT(found({}), IsEmpty());
}

TEST_F(ProcessChecks, AnEngineWithItsWorkerIsNoFinding) {
  EXPECT_THAT(engines({worker(), engine(shared + "utility/command/BGPLog.json")}), IsEmpty());
}

TEST_F(ProcessChecks, AnEngineOfAnotherFolderIsNoFinding) {
  folder.write("other/utility/command/BGPLog.json", "[]");
  EXPECT_THAT(engines({engine(folder / "other/utility/command/BGPLog.json")}), IsEmpty());
  EXPECT_THAT(engines({{44, {"cat", "-logPath"}, "/"}, {45, {"cat"}, "/"}}), IsEmpty());
}

TEST_F(ProcessChecks, ToolsWithoutAWorkerAreNamed) {
  EXPECT_THAT(tools({remover, copier}),
              ElementsAre("warning: /bin/rm (process 42) still removes /Applications/Manager.app, "
                          "and no worker is seen",
                          "warning: /bin/cp (process 43) still copies to "
                          "/Applications/Manager.app, and no worker is seen"));
}

TEST_F(ProcessChecks, ToolsOfAWorkerAreNoFindingAlsoWhereItsFileIsGone) {
  EXPECT_THAT(tools({worker(), remover}), IsEmpty());
  RunningProcess relative = worker();
  relative.arguments[0] = "./Manager.app/Contents/Resources/Kelvane";
  EXPECT_THAT(tools({relative, copier}), IsEmpty());
}

TEST_F(ProcessChecks, WithoutSettingsTheBundleIsWhatIsReplaced) {
  bundle = "/nowhere.app";
  EXPECT_THAT(tools({remover}), IsEmpty());
  remover.arguments[2] = bundle;
  EXPECT_THAT(tools({remover}), ElementsAre("warning: /bin/rm (process 42) still removes "
                                            "/nowhere.app, and no worker is seen"));
}

TEST_F(ProcessChecks, OtherUsesOfTheToolsAreNoFinding) {
  EXPECT_THAT(tools({{42, {"/bin/rm", "-Rf", "/Applications/Other.app"}, "/"},
                     {43, {"rm", "-rf", "/Applications/Manager.app"}, "/"},
                     {44, {"/bin/cp", "-Rf", "/Applications/Manager.app", "/copy.app"}, "/"}}),
              IsEmpty());
}

}  // namespace
}  // namespace kelvane::console
