// The sub-command update-fw as a whole, with small scripts as workers; no time passes.

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "console/ExitCode.h"
#include "console/PlainView.h"
#include "console/UpdateFw.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "support/TempFolder.h"

namespace kelvane::console {
namespace {

constexpr char kJobFile[] = "shared/utility/command/BGPLog.json";

// A clock whose wait lasts until the worker has ended.
class UpdateFwTest : public ::testing::Test, public Clock {
 protected:
  UpdateFwTest() {
    options.sharedFolder = folder / "shared";
    options.bundle = folder / "Manager.app";
    options.updates = {"5000A1=" + folder.write("a=b.img", "image")};
  }

  bool wait(std::chrono::milliseconds /*time*/) override {
    if (interrupt) return false;
    siginfo_t info = {};
    ::waitid(P_ALL, 0, &info, WEXITED | WNOWAIT);
    return true;
  }

  int run() { return updateFw(options, {*this, view, messages, Charset::utf8}); }

  void makeWorker(const std::string& text) {
    const std::string path =
        folder.write("Manager.app/Contents/Resources/Kelvane", "#!/bin/sh\n" + text);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }
  // A worker that leaves the first record in this state with this result.
  void makeWorkerThatLeaves(const std::string& state, const std::string& result) {
    makeWorker(
        "cat > \"$2utility/command/BGPLog.json\" <<END\n[{\"log_id\": \"$1\", \"state_id\": \"" +
        state + "\", \"result\": " + result + ", \"resultStr\": \"the text\"}]\nEND\n");
  }
  // Expects that the options are refused with this message and that nothing was written.
  void expectRefused(const std::string& message) {
    EXPECT_EQ(run(), kBadUsage);
    EXPECT_EQ(messages.str(), "kelvane-console: " + message + "\n");
    EXPECT_FALSE(platform::exists(folder / "shared"));
  }

  testing::TempFolder folder;
  UpdateFwOptions options;
  bool interrupt = false;
  std::ostringstream shown;
  std::ostringstream messages;
  PlainView view{shown, Charset::utf8};
};

TEST_F(UpdateFwTest, Result0IsSuccess) {
  makeWorkerThatLeaves("FREE", "0");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(messages.str(), "");
  EXPECT_EQ(shown.str().substr(shown.str().rfind("result")), "result 0: the text\n");
}

TEST_F(UpdateFwTest, AnotherResultIsAFailedJob) {
  makeWorkerThatLeaves("FREE", "32852");
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_EQ(shown.str().substr(shown.str().rfind("result")), "result 32852: the text\n");
}

TEST_F(UpdateFwTest, TheWorkerFindsTheWaitingRecordWithAbsoluteImagePaths) {
  makeWorker("cp \"$2utility/command/BGPLog.json\" \"$2seen\"");
  options.updates.push_back("5000A2=" + std::filesystem::relative(folder / "a=b.img").string());
  run();
  const platform::Value records = platform::parseJson(folder.read("shared/seen"));
  ASSERT_EQ(records.count(), 1U);
  const platform::Value& record = records.at(0);
  EXPECT_EQ(record.get("log_id").string(), "1");
  EXPECT_EQ(record.get("job_id").string(), "updateFW");
  EXPECT_EQ(record.get("state_id").string(), "WAIT");
  const platform::Value& inputs = record.get("input_parameters");
  ASSERT_EQ(inputs.count(), 2U);
  EXPECT_EQ(inputs.at(0).get("wwn").string(), "5000A1");
  EXPECT_EQ(inputs.at(0).get("file_path").string(), folder / "a=b.img");
  EXPECT_EQ(inputs.at(1).get("wwn").string(), "5000A2");
  EXPECT_EQ(inputs.at(1).get("file_path").string().front(), '/');
}

TEST_F(UpdateFwTest, WorkerThatDiesInWait) {
  makeWorker("exit 0");
  EXPECT_EQ(run(), kWorkerFailed);
  EXPECT_EQ(messages.str(),
            "kelvane-console: the worker ended (exit status 0) without finishing job 1 and left it "
            "in state WAIT\n");
}

TEST_F(UpdateFwTest, WorkerThatDiesInRun) {
  makeWorkerThatLeaves("RUN", "0\n, \"x\": 1");
  EXPECT_EQ(run(), kWorkerFailed);
  EXPECT_NE(messages.str().find("left it in state RUN"), std::string::npos) << messages.str();
}

TEST_F(UpdateFwTest, WorkerThatLosesTheRecord) {
  makeWorker("echo '[]' > \"$2utility/command/BGPLog.json\"");
  EXPECT_EQ(run(), kJobFileFailed);
  EXPECT_EQ(messages.str(),
            "kelvane-console: the worker ended (exit status 0) and job 1 is not to be found in the "
            "job file\n");
}

TEST_F(UpdateFwTest, WorkerThatCannotBeStartedLeavesTheRecordWaiting) {
  options.worker = folder / "none";
  EXPECT_EQ(run(), kWorkerFailed);
  EXPECT_EQ(messages.str(), "kelvane-console: start " + (folder / "none") +
                                ": No such file or directory; job 1 stays waiting in " +
                                (folder / kJobFile) + "\n");
  EXPECT_NE(folder.read(kJobFile).find("\"WAIT\""), std::string::npos);
}

TEST_F(UpdateFwTest, GivenWorkerIsTakenBeforeTheBundles) {
  makeWorkerThatLeaves("FREE", "0");
  options.worker = options.bundle + "/Contents/Resources/Kelvane";
  options.bundle = "/nowhere";
  EXPECT_EQ(run(), kSuccess);
}

TEST_F(UpdateFwTest, InterruptTellsThatTheWorkerGoesOn) {
  // The worker lives until a line comes.
  const std::string line = folder / "line";
  ASSERT_EQ(::mkfifo(line.c_str(), 0600), 0);
  std::fstream writer(line);
  makeWorker("read word < " + line);
  interrupt = true;
  options.logId = "job-7";
  EXPECT_EQ(run(), kInterrupted);
  EXPECT_EQ(messages.str(), "kelvane-console: interrupted: the worker goes on with job job-7\n");
  writer << "end" << std::endl;
  ::wait(nullptr);
}

TEST_F(UpdateFwTest, DamagedJobFileStartsNoWorker) {
  makeWorker("touch \"$2started\"");
  folder.write(kJobFile, "[{");
  EXPECT_EQ(run(), kJobFileFailed);
  EXPECT_EQ(messages.str(), "kelvane-console: " + (folder / kJobFile) +
                                " is damaged (no JSON array): left as it is\n");
  EXPECT_EQ(folder.read(kJobFile), "[{");
}

TEST_F(UpdateFwTest, MissingImageIsRefused) {
  options.updates.push_back("5000A2=/nowhere/x.img");
  expectRefused("image /nowhere/x.img does not exist");
}

TEST_F(UpdateFwTest, FolderAsImageIsRefused) {
  options.updates = {"5000A1=/tmp"};
  expectRefused("image /tmp is a folder");
}

TEST_F(UpdateFwTest, ImagePathThatTheWorkerWouldCutIsRefused) {
  const std::string tooLong = folder.write(std::string(250, 'x'), "");
  options.updates = {"5000A1=" + tooLong};
  expectRefused("image " + tooLong + ": the path is longer than 255 bytes");
}

TEST_F(UpdateFwTest, UpdateOfAnotherFormIsRefused) {
  options.updates = {"5000A1"};
  expectRefused("\"5000A1\" is not of the form WWN=IMAGE");
}

TEST_F(UpdateFwTest, EmptyPartsAreRefused) {
  options.updates = {"=/bin/true"};
  expectRefused("the WWN of \"=/bin/true\" is missing");
  options.updates = {"5000A1="};
  messages.str("");
  expectRefused("the image is missing");
}

TEST_F(UpdateFwTest, WhatIsNotUtf8IsRefused) {
  options.updates = {"50\xFF=/bin/true"};
  expectRefused("the WWN of \"50�=/bin/true\" is not UTF-8: 50�");
}

TEST_F(UpdateFwTest, NoBundleAndNoWorkerIsRefused) {
  options.bundle = "";
  expectRefused("neither a bundle nor a worker is given");
}

TEST_F(UpdateFwTest, EmptySharedFolderIsRefused) {
  options.sharedFolder = "";
  expectRefused("the shared folder is missing");
}

TEST_F(UpdateFwTest, TakenLogIdIsRefused) {
  options.logId = "7";
  folder.write(kJobFile, R"([{"log_id": "7", "state_id": "RUN"}])");
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: log id 7 is taken: its job is in state RUN\n");
}

}  // namespace
}  // namespace kelvane::console
