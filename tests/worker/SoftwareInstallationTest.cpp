#include <filesystem>
#include <iterator>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "tests/support/JobFiles.h"
#include "tests/support/Program.h"
#include "tests/support/WorkerWorld.h"
#include "tests/worker/Children.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

class SoftwareInstallation : public test::WorkerWorld {
 protected:
  SoftwareInstallation() {
    folder.write("Installed.app/Contents/old", "old");
    folder.write("downloads/New.app/Contents/new", "new");
    worker.setSettingDict(Value::dictionary({{"AppPath", folder / "Installed.app"}}));
  }
  std::string job(const std::string& inputs) const {
    return test::waitingJob("updateSW", platform::parseJson(inputs));
  }
  // The job file's first record as the job runner hands it over.
  Value handedOver() const {
    Value record = jobs().at(0);
    record.set("result", Value::integer(0));
    record.set("resultStr", "no error");
    return record;
  }
  std::string package() const {
    return R"({"file_path":")" + (folder / "downloads/New.app") + R"(","more":1})";
  }
  std::string state() const { return jobs().at(0).get("state_id").string(); }
};

TEST_F(SoftwareInstallation, TheNewBundleTakesTheOldOnesPlaceWhole) {
  writeJobs(job(package()));
  worker.run("17");
  EXPECT_EQ(folder.names("Installed.app/Contents"), Names{"new"});
  EXPECT_EQ(folder.read("downloads/New.app/Contents/new"), "new");
  EXPECT_EQ(state(), "FREE");
}

TEST_F(SoftwareInstallation, TheOutputIsTheParameters) {
  writeJobs(job(package()));
  worker.run("17");
  EXPECT_EQ(jobs().at(0).get("output"), jobs().at(0).get("input_parameters"));
  EXPECT_EQ(jobs().at(0).get("result").integerValue(), 0);
  EXPECT_EQ(jobs().at(0).get("resultStr"), Value("no error"));
}

TEST_F(SoftwareInstallation, ReturnsTheRecordAsItWasMarkedRunning) {
  writeJobs(job(package()));
  Value expected = handedOver();
  expected.set("output", expected.get("input_parameters"));
  expected.set("state_id", "RUN");
  EXPECT_EQ(worker.updateSW(handedOver()), expected);
}

TEST_F(SoftwareInstallation, LogsTheOutputOfBothToolsAndNothingElse) {
  writeJobs(job(package()));
  worker.updateSW(handedOver());
  EXPECT_THAT(logWithoutStore(), ElementsAre("updateSW: result = ", "updateSW: result = "));
}

// Asked for their version, the tools have something to say.
TEST_F(SoftwareInstallation, WhatTheToolsSayIsLoggedWhole) {
  worker.setSettingDict(Value::dictionary({{"AppPath", "--version"}}));
  writeJobs(job(package()));
  worker.updateSW(handedOver());
  for (const char* tool : {"/bin/rm", "/bin/cp"}) {
    const std::string said = test::runProgram({tool, "--version"}, folder.path()).out;
    ASSERT_NE(said, "") << tool;
    EXPECT_THAT(logText(), HasSubstr("[updateSW][debug] result = " + said + "\n")) << tool;
  }
  EXPECT_EQ(state(), "FREE");
}

TEST_F(SoftwareInstallation, TheJobIsFreeBeforeTheCopyIsToldToEnd) {
  writeJobs(job(package()));
  test::Children children;
  std::string stateAtTheEnd;
  children.onEvent = [&](const std::string& event) {
    if (event == "start /bin/cp") children.outliveTheirOutput = true;
    if (event == "end /bin/cp") stateAtTheEnd = state();
  };
  worker.run("17");
  EXPECT_THAT(children.events, ElementsAre("start /bin/rm", "reap /bin/rm", "start /bin/cp",
                                           "end /bin/cp", "reap /bin/cp"));
  EXPECT_EQ(stateAtTheEnd, "FREE");
}

TEST_F(SoftwareInstallation, WhatSomeoneElseChangesInTheRecordMeanwhileIsKept) {
  writeJobs(job(package()));
  Value record = handedOver();
  record.set("note", "before");
  writeJobs(*platform::printJson(Value::array({record})));
  test::Children children;
  children.onEvent = [&](const std::string& event) {
    if (event != "start /bin/cp") return;
    Value changed = jobs().at(0);
    changed.set("note", "after");
    writeJobs(*platform::printJson(Value::array({changed})));
  };
  worker.updateSW(record);
  EXPECT_EQ(jobs().at(0).get("note"), Value("after"));
  EXPECT_EQ(state(), "FREE");
}

TEST_F(SoftwareInstallation, TheRemovalIsEndedBeforeTheCopyIsStarted) {
  writeJobs(job(package()));
  test::Children children;
  worker.run("17");
  EXPECT_THAT(children.events,
              ElementsAre("start /bin/rm", "reap /bin/rm", "start /bin/cp", "reap /bin/cp"));
}

TEST_F(SoftwareInstallation, ARemovalThatOutlivesItsOutputIsToldToEndBeforeTheCopyIsStarted) {
  writeJobs(job(package()));
  test::Children children;
  children.outliveTheirOutput = true;
  worker.run("17");
  EXPECT_THAT(children.events, ElementsAre("start /bin/rm", "end /bin/rm", "reap /bin/rm",
                                           "start /bin/cp", "reap /bin/cp"));
}

TEST_F(SoftwareInstallation, NoFileStaysOpen) {
  const auto openFiles = [] {
    const fs::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
  };
  writeJobs(job(package()));
  const auto before = openFiles();
  worker.updateSW(handedOver());
  EXPECT_EQ(openFiles(), before);
}

TEST_F(SoftwareInstallation, WithoutAPackageNothingIsTouched) {
  for (const char* inputs : {"{}", R"({"path":"/x"})"}) {
    const std::string text = job(inputs);
    writeJobs(text);
    EXPECT_EQ(worker.updateSW(jobs().at(0)), jobs().at(0));
    EXPECT_EQ(jobText(), text);
  }
  EXPECT_EQ(worker.updateSW(Value::dictionary({{"log_id", "17"}})),
            Value::dictionary({{"log_id", "17"}}));
  EXPECT_TRUE(worker.updateSW(Value()).isNothing());
  EXPECT_EQ(folder.names("Installed.app/Contents"), Names{"old"});
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SoftwareInstallation, AListOfParametersIsLoggedOnceAndTouchesNothing) {
  const std::string text = job("[" + package() + "]");
  writeJobs(text);
  EXPECT_EQ(worker.updateSW(jobs().at(0)), jobs().at(0));
  EXPECT_EQ(jobText(), text);
  EXPECT_EQ(folder.names("Installed.app/Contents"), Names{"old"});
  EXPECT_THAT(log(), ElementsAre(StartsWith("updateSW error: ")));
}

TEST_F(SoftwareInstallation, APackageThatIsNoTextIsLoggedOnceAndTouchesNothing) {
  const std::string text = job(R"({"file_path":5})");
  writeJobs(text);
  worker.updateSW(jobs().at(0));
  EXPECT_EQ(jobText(), text);
  EXPECT_EQ(folder.names("Installed.app/Contents"), Names{"old"});
  EXPECT_THAT(log(), ElementsAre(StartsWith("updateSW error: ")));
}

TEST_F(SoftwareInstallation, AMissingPackageLeavesTheApplicationRemovedAndTheJobFree) {
  writeJobs(job(R"({"file_path":"/nowhere/New.app"})"));
  ::testing::internal::CaptureStderr();
  worker.run("17");
  EXPECT_THAT(::testing::internal::GetCapturedStderr(), ::testing::HasSubstr("/nowhere/New.app"));
  EXPECT_FALSE(fs::exists(folder / "Installed.app"));
  EXPECT_EQ(state(), "FREE");
}

TEST_F(SoftwareInstallation, WithoutAnInstalledPathBothListsEndThere) {
  worker.setSettingDict(Value::dictionary());
  writeJobs(job(package()));
  ::testing::internal::CaptureStderr();
  worker.run("17");
  EXPECT_THAT(::testing::internal::GetCapturedStderr(), ::testing::HasSubstr("cp: missing"));
  EXPECT_EQ(folder.names("Installed.app/Contents"), Names{"old"});
  EXPECT_EQ(state(), "FREE");
}

TEST_F(SoftwareInstallation, NamesWithBlanksAndQuotesAreOneArgument) {
  const std::string name = "New $(touch x) 'a\" b.app";
  folder.write(name + "/inside", "new");
  writeJobs("[]");
  worker.updateSW(Value::dictionary(
      {{"log_id", "17"}, {"input_parameters", Value::dictionary({{"file_path", folder / name}})}}));
  EXPECT_EQ(folder.names("Installed.app"), Names{"inside"});
}

TEST_F(SoftwareInstallation, AJobFileWithoutRecordsStaysEmpty) {
  const Value record = platform::parseJson(job(package())).at(0);
  worker.updateSW(record);
  EXPECT_EQ(jobText(), "[]");
}

TEST_F(SoftwareInstallation, AJobWhoseRecordIsGoneFreesTheLastRecordOfTheFile) {
  const Value record = platform::parseJson(job(package())).at(0);
  writeJobs(R"([{"log_id":"a"},{"log_id":"b"}])");
  worker.updateSW(record);
  EXPECT_EQ(jobs(), platform::parseJson(R"([{"log_id":"a"},{"log_id":"b","state_id":"FREE"}])"));
}

TEST_F(SoftwareInstallation, NothingIsRemovedBeforeTheJobIsMarkedRunning) {
  const Value record = platform::parseJson(job(package())).at(0);
  fs::remove(folder / test::kJobFile);
  worker.updateSW(record);
  EXPECT_EQ(folder.names("Installed.app/Contents"), Names{"old"});
  EXPECT_THAT(log(), ElementsAre(StartsWith("updateSW error: open ")));
}

TEST_F(SoftwareInstallation, SettingsThatAreNoDictionaryAreLoggedOnce) {
  worker.setSettingDict(Value::array());
  const std::string text = job(package());
  writeJobs(text);
  worker.updateSW(jobs().at(0));
  EXPECT_EQ(jobText(), text);
  EXPECT_THAT(log(), ElementsAre(StartsWith("updateSW error: ")));
}

// The tools would get the part before it.
TEST_F(SoftwareInstallation, APathThatHoldsANulCharacterStartsNothing) {
  const auto escaped = [](const std::string& path) { return path + "\\u0000junk"; };
  const std::string text = job(R"({"file_path":")" + escaped(folder / "downloads/New.app") + "\"}");
  writeJobs(text);
  worker.run("17");
  EXPECT_EQ(jobText(), text);
  EXPECT_EQ(folder.names("Installed.app/Contents"), Names{"old"});
  EXPECT_THAT(logWithoutStore(),
              ElementsAre(StartsWith("run: currentJobArray"), StartsWith("run: logId"),
                          StartsWith("updateSW error: start: an argument holds a NUL character")));
}

TEST_F(SoftwareInstallation, AnInstalledPathThatHoldsANulCharacterIsLeftAlone) {
  worker.setSettingDict(
      Value::dictionary({{"AppPath", (folder / "Installed.app") + std::string("\0x", 2)}}));
  writeJobs(job(package()));
  const std::string text = jobText();
  worker.run("17");
  EXPECT_EQ(jobText(), text);
  EXPECT_EQ(folder.names("Installed.app/Contents"), Names{"old"});
}

}  // namespace
}  // namespace kelvane
