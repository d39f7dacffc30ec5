// The sub-command update-fw, and what all that submit a job have in common, with small scripts as
// workers.

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <sys/wait.h>

#include "console/commands/UpdateFw.h"
#include "console/job/ExitCode.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/support/OrdinaryUser.h"

namespace kelvane::console {
namespace {

class UpdateFw : public ConsoleWorld {
 protected:
  UpdateFw() { options.updates = {"5000A1=" + folder.write("a=b.img", "image")}; }

  int run() {
    options.job = job;
    return runHere(updateFw, options);
  }
  // Expects that the options are refused with this message and that nothing was written.
  void expectRefused(const std::string& message) {
    EXPECT_EQ(run(), kBadUsage);
    EXPECT_EQ(messages.str(), "kelvane-console: " + message + "\n");
    EXPECT_FALSE(platform::exists(folder / test::kJobFile));
  }

  // A pipe for a worker that lives until a line comes.
  std::string makeLine() {
    std::string path = folder / "line";
    EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
    line.open(path);
    return path;
  }
  void endWorker() {
    line << "end" << std::endl;
    ::wait(nullptr);
  }

  UpdateFwOptions options;
  std::fstream line;
};

TEST_F(UpdateFw, Result0IsSuccess) {
  makeWorkerThatLeaves("FREE", "0");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(messages.str(), "");
  EXPECT_EQ(shownAtTheEnd(), "result 0: the text\n");
}

TEST_F(UpdateFw, AnotherResultIsAFailedJob) {
  makeWorkerThatLeaves("FREE", "32852");
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_EQ(shownAtTheEnd(), "result 32852 (0x8054): the text\n");
}

TEST_F(UpdateFw, TheWorkerFindsTheWaitingRecordWithAbsoluteImagePaths) {
  makeWorkerThatLooks();
  options.updates.push_back("5000A2=" + std::filesystem::relative(folder / "a=b.img").string());
  run();
  const platform::Value record = seenRecord();
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

TEST_F(UpdateFw, WorkerThatDiesInWait) {
  makeWorker("exit 0");
  EXPECT_EQ(run(), kWorkerFailed);
  EXPECT_EQ(messages.str(),
            "kelvane-console: the worker ended (exit status 0), and left job 1 unfinished in state "
            "WAIT: whether it was begun is not known, as there is no log. \"kelvane-console "
            "check\" tells what may be in the way; then \"kelvane-console retry --shared " +
                (folder / "shared/") + " 1\" runs it: its record is still waiting\n");
  EXPECT_EQ(shown.str().find("no worker"), std::string::npos) << shown.str();
}

TEST_F(UpdateFw, WorkerThatDiesWhileAControllerMayBeFlashed) {
  makeWorkerThatLeaves("RUN", "0", R"(, "job_id": "updateFW")");
  EXPECT_EQ(run(), kWorkerFailed);
  EXPECT_NE(messages.str().find(
                "unfinished in state RUN: nobody goes on with it. Leave the enclosures powered for "
                "some minutes, as a flash may still be going on in a controller; then "
                "\"kelvane-console retry --shared " +
                (folder / "shared/") + " 1\" adds it anew\n"),
            std::string::npos)
      << messages.str();
}

TEST_F(UpdateFw, HowToFollowAgainIsQuotedForAShell) {
  makeWorker("read word < " + makeLine());
  interrupt = true;
  job.logId = "it's 7";
  EXPECT_EQ(run(), kInterrupted);
  EXPECT_NE(messages.str().find(" 'it'\\''s 7'\n"), std::string::npos) << messages.str();
  endWorker();
}

TEST_F(UpdateFw, WorkerThatLosesTheRecord) {
  makeWorker("echo '[]' > \"$2utility/command/BGPLog.json\"");
  EXPECT_EQ(run(), kJobFileFailed);
  EXPECT_EQ(
      messages.str(),
      "kelvane-console: the worker ended (exit status 0), and job 1 is not to be found in the "
      "job file\n");
}

TEST_F(UpdateFw, WorkerThatCannotBeStartedLeavesTheRecordWaiting) {
  job.worker = folder.write("worker",
                            "\x7F"
                            "ELF of no system");
  ::chmod(job.worker.c_str(), 0700);
  EXPECT_EQ(run(), kWorkerFailed);
  EXPECT_EQ(messages.str(), "kelvane-console: start " + job.worker +
                                ": Exec format error; job 1 stays waiting in " +
                                (folder / test::kJobFile) + "\n");
  EXPECT_NE(folder.read(test::kJobFile).find("\"WAIT\""), std::string::npos);
}

TEST_F(UpdateFw, TheWorkerIsLookedForBeforeARecordIsWritten) {
  const std::pair<std::string, std::string> faults[] = {
      {folder / "none", " does not exist"},
      {folder.path(), " is no regular file"},
      {folder.write("data", "text"), " cannot be executed: Permission denied"},
      {folder.write("script", "#!/no/sh\n"),
       " cannot be started: its interpreter /no/sh does not "
       "exist"}};
  ::chmod((folder / "script").c_str(), 0700);
  for (const auto& [worker, fault] : faults) {
    job.worker = worker;
    messages.str("");
    EXPECT_EQ(run(), kWorkerFailed);
    std::string expected = "kelvane-console: the worker ";
    expected.append(worker).append(fault).append("; nothing was submitted\n");
    EXPECT_EQ(messages.str(), expected);
  }
  EXPECT_FALSE(platform::exists(folder / "shared/utility"));
}

TEST_F(UpdateFw, WhatTheWorkerSaidIsToldWithItsFailureAndKept) {
  makeWorker("echo 'no framework' >&2; exit 1");
  EXPECT_EQ(run(), kWorkerFailed);
  const std::string kept = "shared/utility/logs/standard-error-1.txt";
  EXPECT_NE(messages.str().find("\n  no framework\n  (kept in " + (folder / kept) + ")\n"),
            std::string::npos)
      << messages.str();
  EXPECT_TRUE(folder.read(kept).ends_with("}]}\nno framework\n")) << folder.read(kept);
}

TEST_F(UpdateFw, WhatTheWorkerSaidIsToldWithAFailedJob) {
  makeWorkerThatLeaves("FREE", "32852");
  makeWorker("echo complaint >&2\n" + folder.read("Manager.app/Contents/Resources/Kelvane"));
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_EQ(shownAtTheEnd().rfind("result 32852 (0x8054): the text\n  complaint\n  (kept in ", 0),
            0U)
      << shown.str();
}

TEST_F(UpdateFw, OfAWorkerThatSaysNothingNothingIsKept) {
  makeWorkerThatLeaves("FREE", "0");
  run();
  makeWorker("exit 1");
  run();
  EXPECT_EQ(folder.names("shared/utility/logs"), std::vector<std::string>());
}

TEST_F(UpdateFw, GivenWorkerIsTakenBeforeTheBundles) {
  makeWorkerThatLeaves("FREE", "0");
  job.worker = job.bundle + "/Contents/Resources/Kelvane";
  job.bundle = "/nowhere";
  EXPECT_EQ(run(), kSuccess);
}

TEST_F(UpdateFw, InterruptTellsThatTheWorkerGoesOn) {
  makeWorker("read word < " + makeLine());
  interrupt = true;
  job.logId = "job-7";
  EXPECT_EQ(run(), kInterrupted);
  EXPECT_EQ(messages.str(),
            "kelvane-console: interrupted: the worker goes on with job job-7; follow it again "
            "with: kelvane-console watch --shared " +
                (folder / "shared/") + " job-7\n");
  endWorker();
}

TEST_F(UpdateFw, DamagedJobFileStartsNoWorker) {
  makeWorker("touch \"$2started\"");
  folder.write(test::kJobFile, "[{");
  EXPECT_EQ(run(), kJobFileFailed);
  EXPECT_EQ(messages.str(), "kelvane-console: " + (folder / test::kJobFile) +
                                " is not JSON: line 1, column 3: unexpected end of input; expected "
                                "string literal. It is left "
                                "as it is; see \"kelvane-console check\"\n");
  EXPECT_EQ(folder.read(test::kJobFile), "[{");
}

TEST_F(UpdateFw, MissingImageIsRefused) {
  options.updates.push_back("5000A2=/nowhere/x.img");
  expectRefused("image /nowhere/x.img does not exist");
}

TEST_F(UpdateFw, FolderAsImageIsRefused) {
  options.updates = {"5000A1=/tmp"};
  expectRefused("image /tmp is a folder");
}

TEST_F(UpdateFw, ImagePathThatTheWorkerWouldCutIsRefused) {
  const std::string tooLong = folder.write(std::string(250, 'x'), "");
  options.updates = {"5000A1=" + tooLong};
  expectRefused("image " + tooLong + ": the path is longer than 255 bytes");
}

TEST_F(UpdateFw, UpdateOfAnotherFormIsRefused) {
  options.updates = {"5000A1"};
  expectRefused("\"5000A1\" is not of the form WWN=IMAGE");
}

TEST_F(UpdateFw, EmptyPartsAreRefused) {
  options.updates = {"=/bin/true"};
  expectRefused("the WWN of \"=/bin/true\" is missing");
  options.updates = {"5000A1="};
  messages.str("");
  expectRefused("the image is missing");
}

TEST_F(UpdateFw, WhatIsNotUtf8IsRefused) {
  options.updates = {"50\xFF=/bin/true"};
  expectRefused("the WWN of \"50�=/bin/true\" is not UTF-8: 50�");
}

TEST_F(UpdateFw, NoBundleAndNoWorkerIsRefused) {
  job.bundle = "";
  expectRefused(
      "neither a bundle nor a worker is given: give --bundle APP.app, set KELVANE_BUNDLE, or give "
      "--worker PATH");
}

TEST_F(UpdateFw, EmptySharedFolderIsRefused) {
  job.sharedFolder = "";
  expectRefused("the shared folder is missing");
}

TEST_F(UpdateFw, SharedFolderThatIsNotThereIsRefused) {
  job.sharedFolder = "/nowhere/shared";
  expectRefused("the shared folder /nowhere/shared does not exist");
}

TEST_F(UpdateFw, TakenLogIdIsRefused) {
  makeWorker("touch \"$2started\"");
  job.logId = "7";
  folder.write(test::kJobFile, R"([{"log_id": "7", "state_id": "FREE"}])");
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: log id 7 is taken: its job is in state FREE\n");
  EXPECT_FALSE(platform::exists(folder / "shared/started"));
}

TEST_F(UpdateFw, ARecordThatKeepsTheWorkerFromWritingIsRefused) {
  makeWorker("touch \"$2started\"");
  folder.write(test::kJobFile, R"([{"log_id": 7, "state_id": "FREE"}])");
  EXPECT_EQ(run(), kJobFileFailed);
  EXPECT_NE(messages.str().find("BGPLog.json: [0] has a log_id that is no string: 7. While"),
            std::string::npos);
  EXPECT_FALSE(platform::exists(folder / "shared/started"));
}

TEST_F(UpdateFw, AFolderThatTheWorkerCannotWriteIsRefused) {
  makeWorker("touch \"$2started\"");
  folder.write(test::kJobFile, "[]");
  folder.write("shared/utility/command/BGPLog.json.lock", "");
  for (const char* name :
       {"", "Manager.app", "Manager.app/Contents", "Manager.app/Contents/Resources",
        "Manager.app/Contents/Resources/Kelvane"}) {
    ::chmod((folder / name).c_str(), 0755);
  }
  const test::PermissionBits bits(folder / "shared/utility/command", 0555);
  const std::string told = test::asOrdinaryUser([this] {
    run();
    return messages.str();
  });
  EXPECT_EQ(told, "kelvane-console: the job file's folder cannot be changed: " +
                      (folder / "shared/utility/command") +
                      ": Permission denied. The worker replaces the job file there at every step; "
                      "nobody would learn what became of a job. Give the user that runs the worker "
                      "the right to write in the folder\n");
}

TEST_F(UpdateFw, AnImageThatCannotBeReadIsRefused) {
  ::chmod(folder.path().c_str(), 0755);
  const test::PermissionBits bits(folder / "a=b.img", 0);
  const std::string told = test::asOrdinaryUser([this] {
    run();
    return messages.str();
  });
  EXPECT_EQ(told, "kelvane-console: image " + (folder / "a=b.img") +
                      " cannot be read: Permission denied\n");
}

TEST_F(UpdateFw, APipeAsImageIsRefused) {
  options.updates = {"5000A1=/dev/null"};
  expectRefused("image /dev/null is no regular file");
}

// --- the question

class UpdateFwInATerminal : public UpdateFw {
 protected:
  UpdateFwInATerminal() {
    makeWorkerThatLeaves("FREE", "0");
    screen.answers = &answers;
  }

  std::istringstream answers;
};

TEST_F(UpdateFwInATerminal, SaysWhatItCannotTellAndAsks) {
  answers.str("y\n");
  EXPECT_EQ(run(), kSuccess) << messages.str();
  EXPECT_EQ(shown.str().rfind("how it would go cannot be told: the framework " +
                                  (folder / "Manager.app/Contents/Frameworks/libZORAPI.so") +
                                  ": No such file or directory\nFlash? [y/N] ",
                              0),
            0U)
      << shown.str();
}

TEST_F(UpdateFwInATerminal, WithoutABundleItAsksAlone) {
  job.worker = job.bundle + "/Contents/Resources/Kelvane";
  job.bundle.clear();
  answers.str("y\n");
  EXPECT_EQ(run(), kSuccess) << messages.str();
  EXPECT_EQ(shown.str().rfind("Flash? [y/N] ", 0), 0U) << shown.str();
}

TEST_F(UpdateFwInATerminal, WithoutAYesNothingIsSubmitted) {
  answers.str("n\n");
  EXPECT_EQ(run(), kNotConfirmed);
  EXPECT_FALSE(platform::exists(folder / test::kJobFile));
}

TEST_F(UpdateFwInATerminal, AnInterruptIsANo) {
  interrupt = true;
  EXPECT_EQ(run(), kInterrupted);
  EXPECT_FALSE(platform::exists(folder / test::kJobFile));
}

TEST_F(UpdateFwInATerminal, WithYesItDoesNotAsk) {
  options.yes = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().find("[y/N]"), std::string::npos);
}

// --- one job at a time

class UpdateFwWhileAJobRuns : public UpdateFw {
 protected:
  // Job 1 runs until a line comes, and every other job ends at once.
  UpdateFwWhileAJobRuns() {
    makeWorker("[ $1 != 1 ] || read word < " + makeLine());
    job.noWait = true;
    EXPECT_EQ(run(), kSuccess);
    EXPECT_EQ(shown.str(), "1\n");
    shown.str("");
  }
  ~UpdateFwWhileAJobRuns() override {
    if (!hasEnded) endWorker();
  }
  bool wait(std::chrono::milliseconds step) override {
    if (!hasEnded && !interrupt) {
      endWorker();
      hasEnded = true;
      return true;
    }
    return ConsoleWorld::wait(step);
  }
  std::vector<std::string> logIds() const {
    std::vector<std::string> found;
    const platform::Value records = platform::parseJson(folder.read(test::kJobFile));
    for (const platform::Value& record : records.elements()) {
      found.push_back(record.get("log_id").string());
    }
    return found;
  }

  using Ids = std::vector<std::string>;
  bool hasEnded = false;
};

TEST_F(UpdateFwWhileAJobRuns, ASecondOneIsRefused) {
  EXPECT_EQ(run(), kBusy);
  EXPECT_EQ(messages.str(),
            "kelvane-console: job 1 is running; --wait waits for the end, --even-so submits all "
            "the same\n");
  EXPECT_EQ(logIds(), Ids{"1"});
}

TEST_F(UpdateFwWhileAJobRuns, ASecondOneCanWait) {
  job.wait = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_TRUE(hasEnded);
  EXPECT_EQ(shown.str(), "job 1 is running; waiting\n2\n");
  EXPECT_EQ(logIds(), (Ids{"1", "2"}));
}

TEST_F(UpdateFwWhileAJobRuns, WhileItWaitsTheLogIdStaysTheOnlyAnswer) {
  job.wait = true;
  screen.notices = &messages;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "2\n");
  EXPECT_EQ(messages.str(), "job 1 is running; waiting\n");
}

TEST_F(UpdateFwWhileAJobRuns, AnInterruptEndsTheWaitingAndSubmitsNothing) {
  job.wait = true;
  interrupt = true;
  EXPECT_EQ(run(), kInterrupted);
  EXPECT_EQ(messages.str(),
            "kelvane-console: interrupted while job 1 is running; nothing was submitted\n");
  EXPECT_EQ(logIds(), Ids{"1"});
}

TEST_F(UpdateFwWhileAJobRuns, ASecondOneIsSubmittedWhereThatIsInsistedUpon) {
  job.evenSo = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(logIds(), (Ids{"1", "2"}));
  EXPECT_FALSE(hasEnded);
}

TEST_F(UpdateFwWhileAJobRuns, ForMachinesTheLogIdIsALineOfJson) {
  job.evenSo = true;
  screen.json = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "{\"log_id\":\"2\"}\n");
}

TEST_F(UpdateFwWhileAJobRuns, WaitingAndInsistingExcludeOneAnother) {
  job.wait = true;
  job.evenSo = true;
  EXPECT_EQ(run(), kBadUsage);
}

}  // namespace
}  // namespace kelvane::console
