// Jobs in every state, explained.

#include <gtest/gtest.h>

#include "console/explain/JobExplanation.h"
#include "console/job/StandardError.h"
#include "platform/Json.h"
#include "tests/console/explain/LogOfFlashes.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using platform::parseJson;

// A job with this command; `rest` holds the other keys.
Explanation explained(const std::string& command, const std::string& rest,
                      const JobCircumstances& circumstances = {}) {
  return explainJob(parseJson(R"({"log_id": "17", "job_id": ")" + command + "\", " + rest + "}"),
                    circumstances);
}

Explanation finished(const std::string& command, const std::string& rest) {
  return explained(command, R"("state_id": "FREE", )" + rest);
}

constexpr char kRunning[] = R"("state_id": "RUN", "result": 0)";
constexpr char kWaiting[] = R"("state_id": "WAIT", "input_parameters":
    {"productid": "p", "version": "1", "url": "u", "folder": "/e"})";

JobCircumstances withWorker() {
  JobCircumstances circumstances;
  circumstances.workerRuns = true;
  return circumstances;
}

TEST(JobExplanation, WaitingWithoutAWorker) {
  const Explanation found = explained("getOnlineUpdateData", kWaiting);
  EXPECT_EQ(found.subject, "job 17 (getOnlineUpdateData): waiting");
  EXPECT_EQ(found.meaning, "No worker has taken it: none was started, or none could be.");
  EXPECT_EQ(found.whoActs, "user");
  EXPECT_EQ(found.tryAgain, "yes");
}

TEST(JobExplanation, WaitingWithAWorker) {
  const Explanation found = explained("getOnlineUpdateData", kWaiting, withWorker());
  EXPECT_EQ(found.meaning, "A worker was started for it and is about to take it.");
  EXPECT_EQ(found.whoActs, "nobody");
}

TEST(JobExplanation, WaitingThatNoWorkerStarts) {
  const Explanation found =
      explained("updateFW", R"("state_id": "WAIT", "input_parameters": [{"wwn": "A"}])");
  EXPECT_EQ(found.meaning,
            "It cannot be carried out as it is: input_parameters[0] has no \"file_path\".");
  EXPECT_EQ(found.whoActs, "support");
  EXPECT_EQ(found.tryAgain, "not as it is");
}

TEST(JobExplanation, RunningWithAWorker) {
  const Explanation found = explained("updateFW", kRunning, withWorker());
  EXPECT_EQ(found.subject, "job 17 (updateFW): running");
  EXPECT_EQ(found.advice, "Wait. A flash may show no news for minutes; do not unplug.");
  EXPECT_EQ(explained("updateSW", kRunning, withWorker()).advice, "Wait.");
}

TEST(JobExplanation, RunningWhoseWorkerWasKilled) {
  const Explanation found = explained("updateFW", kRunning);
  EXPECT_EQ(found.subject, "job 17 (updateFW): running, and no worker for it is seen");
  EXPECT_EQ(found.meaning,
            "Its worker was killed, the computer went down, or the end could not be written. "
            "Nothing takes the job up.");
  EXPECT_EQ(
      found.advice,
      "Leave the enclosures powered for some minutes: a flash that was started goes on in "
      "the controller. Then add the job anew under another log_id. A USB bridge that was "
      "flashed before its NVRAM was written does not get it then, as the versions are equal.");
  EXPECT_EQ(found.tryAgain, "yes, under another log_id");
}

TEST(JobExplanation, RunningWhoseWorkerGaveUp) {
  JobCircumstances circumstances;
  circumstances.log.isFound = true;
  circumstances.log.errors = {"14:03:07 getOnlineUpdateData: start: there is no path"};
  circumstances.log.lastStep = "a step";
  circumstances.log.gaveUp = true;
  const Explanation found = explained("getOnlineUpdateData", kRunning, circumstances);
  EXPECT_EQ(found.meaning, "Its worker gave up, and the log tells why. Nothing takes the job up.");
  EXPECT_EQ(found.advice,
            "Mend what the log's error tells, if it has one; then add the job anew under another "
            "log_id.");
  EXPECT_EQ(found.errors, circumstances.log.errors);
  EXPECT_EQ(found.lastStep, "a step");
}

JobCircumstances copied() {
  JobCircumstances circumstances = withWorker();
  circumstances.isCopy = true;
  return circumstances;
}

TEST(JobExplanation, WhatWasKeptOfStandardErrorIsTold) {
  const std::string failed =
      R"("state_id": "FREE", "result": 259, "input_parameters": [{"productid": "p"}],
         "output": [{"productid": "p"}])";
  const Explanation silent = explained("downloadOnlineUpdateFile", failed);
  ASSERT_EQ(silent.details.size(), 2U);
  EXPECT_NE(silent.details[1].find("it said nothing, or this console did not submit the job"),
            std::string::npos);
  JobCircumstances circumstances;
  circumstances.standardError = {"EngineRunner: no such service", "(kept in /x)"};
  const Explanation found = explained("downloadOnlineUpdateFile", failed, circumstances);
  ASSERT_EQ(found.details.size(), 4U);
  EXPECT_EQ(found.details[1], kNotToldByTheLog);
  EXPECT_EQ(found.details[2], "standard error: EngineRunner: no such service");
  EXPECT_EQ(found.details[3], "standard error: (kept in /x)");
}

TEST(JobExplanation, RunningInACopyDoesNotTellOfWorkers) {
  JobCircumstances circumstances = copied();
  const std::string output =
      R"(, "output": [{"wwn": "A1", "fw_percentage": 30, "total_percentage": 30}])";
  const Explanation found = explained("updateFW", kRunning + output, circumstances);
  EXPECT_EQ(found.subject, "job 17 (updateFW): running when it was copied");
  EXPECT_EQ(found.meaning,
            "A worker had taken it. Whether one still runs cannot be told from a copy.");
  EXPECT_EQ(found.tryAgain, "only where no worker runs");
  EXPECT_EQ(found.controller, "A1 at 30% (firmware)");
  EXPECT_NE(found.note.find("This is a copy: neither workers nor"), std::string::npos);
  circumstances.log.gaveUp = true;
  EXPECT_EQ(explained("updateFW", kRunning, circumstances).meaning,
            "A worker had taken it, and the log ends with an error of its. Unless it went on "
            "behind that, nothing takes the job up.");
}

TEST(JobExplanation, WaitingInACopyTellsWhatTheLogHasOfIt) {
  JobCircumstances circumstances = copied();
  EXPECT_EQ(explained("getOnlineUpdateData", kWaiting, circumstances).subject,
            "job 17 (getOnlineUpdateData): waiting when it was copied");
  EXPECT_EQ(explained("getOnlineUpdateData", kWaiting, circumstances).meaning,
            "The log has no worker that took it.");
  circumstances.log.absence = "The log is not at hand.";
  EXPECT_EQ(explained("getOnlineUpdateData", kWaiting, circumstances).meaning,
            "Whether a worker has taken it cannot be told.");
  circumstances.log = {};
  circumstances.log.isFound = true;
  EXPECT_EQ(explained("getOnlineUpdateData", kWaiting, circumstances).meaning,
            "A worker took it, and the log tells of no step of it.");
  circumstances.log.hasStarted = true;
  EXPECT_EQ(explained("getOnlineUpdateData", kWaiting, circumstances).subject,
            "job 17 (getOnlineUpdateData): waiting, though a worker took it");
}

TEST(JobExplanation, AbandonedInstallationMayHaveRemovedTheApplication) {
  EXPECT_EQ(explained("updateSW", kRunning).advice,
            "Look whether the application is still there: it is removed before the new one is "
            "copied. Wait until no rm or cp of the worker's runs any more. Then add the job anew "
            "under another log_id.");
}

TEST(JobExplanation, FinishedWithAKnownResult) {
  const Explanation found =
      finished("updateFW", R"("result": 32848, "resultStr": "as the framework says")");
  EXPECT_EQ(found.subject,
            "job 17 (updateFW): finished with result 32848 (0x8050), kZorFlashProcessRunning: "
            "another flash process is running");
  EXPECT_EQ(found.whoActs, "user");
  EXPECT_EQ(found.tryAgain, "yes");
}

TEST(JobExplanation, FinishedWithAStatusOfTheFrameworksOwnTellsItsText) {
  const Explanation found = finished("updateFW", R"("result": 32850, "resultStr": "no image")");
  EXPECT_EQ(found.subject,
            "job 17 (updateFW): finished with result 32850 (0x8052): a status of the controller "
            "framework's own, which says \"no image\"");
  EXPECT_EQ(found.whoActs, "support");
}

TEST(JobExplanation, The259OfADownloadAndOfAFirmwareJobDiffer) {
  const std::string rest = R"("result": 259, "resultStr": "said")";
  EXPECT_EQ(finished("downloadOnlineUpdateFile", rest).subject,
            "job 17 (downloadOnlineUpdateFile): finished with result 259 (0x0103), kFileNotFound: "
            "file is not found");
  EXPECT_EQ(finished("updateFW", rest).subject,
            "job 17 (updateFW): finished with result 259 (0x0103): a status of the controller "
            "framework's own, which says \"said\"");
}

TEST(JobExplanation, SuccessOfAFirmwareJob) {
  const Explanation found =
      finished("updateFW", R"("result": 0, "output": [{"wwn": "A1", "cpld_percentage": 100}])");
  EXPECT_EQ(found.meaning, "Every controller has its firmware.");
  EXPECT_EQ(found.whoActs, "nobody");
}

TEST(JobExplanation, SuccessThatLeftACpldNamesTheController) {
  const Explanation found = finished("updateFW", R"("result": 0, "output": [
      {"wwn": "A1", "cpld_percentage": 100}, {"wwn": "B2", "cpld_percentage": 25},
      {"wwn": "C3", "cpld_percentage": 0}])");
  EXPECT_EQ(found.meaning,
            "Every controller has its firmware, but not every CPLD was flashed: B2 (25%), C3 (0%). "
            "That is as it should be for controllers that take QVXF images.");
  EXPECT_EQ(found.tryAgain, "yes, for such a controller");
}

TEST(JobExplanation, SuccessOfAFirmwareJobThatLostItsProgress) {
  EXPECT_EQ(
      finished("updateFW", R"("result": 0, "input_parameters": [{"wwn": "A1"}])").meaning,
      "The job was done, but its first write failed, as on a full disk: its progress is lost, "
      "also whether the CPLDs were flashed.");
  EXPECT_EQ(finished("updateFW", R"("result": 0, "input_parameters": [])").meaning,
            "The job names no controller: nothing was flashed.");
}

TEST(JobExplanation, QueryWithAndWithoutAnOutput) {
  EXPECT_EQ(finished("getOnlineUpdateData", R"("result": 0, "output": [])").meaning,
            "What the update service offers is the job's output.");
  const Explanation without = finished("getOnlineUpdateData", R"("result": 0)");
  EXPECT_EQ(without.meaning,
            "The update engine left no catalogue that could be read: there is no output.");
  EXPECT_EQ(without.tryAgain, "yes");
}

TEST(JobExplanation, SuccessOfADownloadAndOfAnInstallation) {
  EXPECT_EQ(finished("downloadOnlineUpdateFile", R"("result": 0)").meaning,
            "Every package is there; the output has the paths.");
  EXPECT_EQ(finished("updateSW", R"("result": 0)").advice,
            "Look whether the new application stands in its place.");
}

TEST(JobExplanation, FinishedByAnotherHand) {
  const Explanation found = finished("updateFW", R"("resultStr": "x")");
  EXPECT_EQ(found.subject, "job 17 (updateFW): finished without a result");
  EXPECT_EQ(found.meaning, "Not the worker marked it as finished.");
  EXPECT_EQ(finished("updateHW", R"("result": 0)").meaning,
            "The job is done. updateSW and getOnlineUpdateData end so in any case.");
}

TEST(JobExplanation, FinishedWithoutItsFirstWrite) {
  for (const char* command : {"getOnlineUpdateData", "downloadOnlineUpdateFile", "updateSW"}) {
    const Explanation found = finished(command, R"("output": [])");
    EXPECT_EQ(found.meaning,
              "The worker's first write of the job failed, as on a full disk, and its last one did "
              "not. The job was done, and would have the result 0.");
    EXPECT_EQ(found.whoActs, "user");
  }
}

TEST(JobExplanation, AnErrorAtTheStartIsNotBlamedWhereStepsFollowed) {
  JobCircumstances circumstances;
  circumstances.log.isFound = true;
  circumstances.log.startErrors = {"14:03:07 init: open setting.json"};
  EXPECT_EQ(explained("updateFW", kRunning, circumstances).errors, circumstances.log.startErrors);
  circumstances.log.lastStep = "a step";
  const Explanation found = explained("updateFW", kRunning, circumstances);
  EXPECT_TRUE(found.errors.empty());
  EXPECT_EQ(found.meaning.rfind("Its worker was killed", 0), 0U);
}

TEST(JobExplanation, AFlashThatFailedNamesTheControllerAndTheLine) {
  const auto record = parseJson(R"({"log_id": "17", "job_id": "updateFW", "state_id": "FREE",
    "result": 32852, "resultStr": "x", "input_parameters": [
      {"wwn": "A1", "file_path": "/no.img"}, {"wwn": "B2", "file_path": "/b"}]})");
  const LogStretch log = test::stretchWith(
      record, test::controllerLines("/no.img") + test::logLine("updateFW", "Flash Error") +
                  test::logLine("updateFW", "pPage0->ci_ProductID = 4301") +
                  test::logLine("updateFW", "u32Ret is not 0") + test::endLine("17"));
  const Explanation found = explainJob(record, {false, log});
  EXPECT_EQ(found.controller, "A1 failed at 0%, 1 not started");
  EXPECT_EQ(found.toldBy, "14:03:07 updateFW: Flash Error");
  EXPECT_EQ(found.lastStep, found.toldBy);
  EXPECT_EQ(found.details,
            (std::vector<std::string>{
                "A1: its image: /no.img does not exist; product 0x4301 takes standard images"}));
}

TEST(JobExplanation, WaitingThatAWorkerTookMayHaveBeenDone) {
  const auto record = parseJson(R"({"log_id": "17", "job_id": "updateFW", "state_id": "WAIT",
    "input_parameters": [{"wwn": "A1", "file_path": "/a"}]})");
  const Explanation found = explainJob(
      record,
      {false, test::stretchWith(record, test::controllerLines("/a") + test::flashedLines())});
  EXPECT_EQ(found.subject, "job 17 (updateFW): waiting, though a worker took it");
  EXPECT_EQ(found.meaning,
            "A worker took it, and its record does not tell what became of it: the flash may have "
            "been done, "
            "by the log of 1 controller.");
  EXPECT_EQ(found.tryAgain, "only where it was not done");
  EXPECT_EQ(found.lastStep, "14:03:07 updateFW: Flash Completed.");
}

// Killed while rm ran: the log has what was written of the job, and no step.
constexpr char kWrittenAsRunning[] = "writeJSONFile, newArray = (\n)";

TEST(JobExplanation, WaitingWhoseWorkerWasKilledAtItsFirstProgramMayHaveBeenDone) {
  const auto record = parseJson(R"({"log_id": "17", "job_id": "updateSW", "state_id": "WAIT",
    "input_parameters": {"file_path": "/a"}})");
  const std::string written = test::logLine("writeJSONFile", kWrittenAsRunning);
  const Explanation killed = explainJob(record, {false, test::stretchWith(record, written)});
  EXPECT_EQ(killed.subject, "job 17 (updateSW): waiting, though a worker took it");
  EXPECT_EQ(killed.meaning,
            "A worker took it, and its record does not tell what became of it: the application may "
            "have been removed or replaced.");
  EXPECT_EQ(killed.advice.rfind("Wait until no rm or cp of the worker's runs any more. ", 0), 0U);
  EXPECT_EQ(killed.tryAgain, "only where it was not done");
}

TEST(JobExplanation, WaitingThatWasPutBackInTheMiddleOfAFlashIsNotToBeStartedAtOnce) {
  const auto record = parseJson(R"({"log_id": "17", "job_id": "updateFW", "state_id": "WAIT",
    "input_parameters": [{"wwn": "A1", "file_path": "/bin/sh"}], "result": 0})");
  const LogStretch log = test::stretchWith(record, test::controllerLines("/bin/sh"));
  const Explanation found = explainJob(record, {false, log});
  EXPECT_EQ(found.subject, "job 17 (updateFW): waiting, put back into this state");
  EXPECT_EQ(found.advice.rfind("Leave the enclosures powered for some minutes: ", 0), 0U);
}

TEST(JobExplanation, WaitingWhoseWorkerCouldNotBeStartedTellsWhatItSaid) {
  JobCircumstances circumstances;
  circumstances.standardError = {"Kelvane: error while loading shared libraries", "(kept in /x)"};
  const Explanation found = explained("getOnlineUpdateData", kWaiting, circumstances);
  EXPECT_EQ(found.meaning,
            "No worker has taken it. One that was started said: \"Kelvane: error while loading "
            "shared libraries\".");
  EXPECT_EQ(found.tryAgain, "once that is mended");
  ASSERT_EQ(found.details.size(), 3U);
  EXPECT_EQ(found.details[0], kNotToldByTheLog);
}

TEST(JobExplanation, WhatToolsComplainedOfInARunThatTheLogDoesNotHaveIsNoFailure) {
  JobCircumstances circumstances;
  circumstances.isCopy = true;
  circumstances.standardError = {"rm: cannot remove it"};
  const std::string done =
      R"("state_id": "FREE", "result": 0, "input_parameters": {"file_path": "/x"})";
  const Explanation doubtful = explained("updateSW", done, circumstances);
  EXPECT_NE(doubtful.meaning.find("complained in this run or in an earlier one"),
            std::string::npos);
  EXPECT_FALSE(doubtful.fellShort);
  circumstances.log.isFound = true;
  EXPECT_TRUE(explained("updateSW", done, circumstances).fellShort);
}

TEST(JobExplanation, WaitingThatWasPutBackSaysSo) {
  EXPECT_EQ(explained("getOnlineUpdateData", std::string(kWaiting) + R"(, "result": 0)").subject,
            "job 17 (getOnlineUpdateData): waiting, put back into this state");
}

TEST(JobExplanation, AbandonedFirmwareJobTellsHowFarEachControllerCame) {
  EXPECT_EQ(explained("updateFW", std::string(kRunning) + R"(, "output": [
                {"wwn": "A1", "total_percentage": 100}, {"wwn": "B2", "total_percentage": 68},
                {"wwn": "C3", "total_percentage": 0}])")
                .controller,
            "1 done, B2 stopped at 68%, 1 not started");
}

TEST(JobExplanation, UnknownState) {
  EXPECT_EQ(explained("updateSW", R"("state_id": "free")").subject,
            "job 17 (updateSW): in state \"free\"");
}

TEST(JobExplanation, SaysWhereTheLogHasNothing) {
  EXPECT_EQ(explained("getOnlineUpdateData", kWaiting).note, "The log has no lines of this job.");
  JobCircumstances circumstances;
  circumstances.log.absence = "there is no log";
  EXPECT_EQ(explained("getOnlineUpdateData", kWaiting, circumstances).note, "there is no log.");
}

TEST(JobExplanation, FinishedWithANumberThatTheWorkerNeverWrites) {
  for (const char* number : {"1e300", "-1e300", "0.5", "1e2", "99999999999999999999"}) {
    const Explanation found =
        finished("updateSW", std::string(R"("result": )") + number + R"(, "resultStr": "x")");
    EXPECT_EQ(found.subject, std::string("job 17 (updateSW): finished with the result ") + number +
                                 ", which is no whole number of 64 bits");
    EXPECT_EQ(found.whoActs, "support");
  }
}

TEST(JobExplanation, RunningThoughTheLogHasItsEnd) {
  JobCircumstances circumstances;
  circumstances.log.isFound = true;
  circumstances.log.hasEnded = true;
  circumstances.log.endedWith = "32852";
  EXPECT_EQ(explained("updateFW", kRunning, circumstances).meaning,
            "The log has the job's last line, with the result 32852 (0x8054): it came to its end, "
            "and the job file's last write failed, as on a full disk.");
  circumstances.isCopy = true;
  const Explanation found = explained("updateFW", kRunning, circumstances);
  EXPECT_EQ(found.subject, "job 17 (updateFW): running, though the log has its end");
  EXPECT_EQ(found.meaning,
            "The log has the job's last line, with the result 32852 (0x8054): it came to its end, "
            "and the job file is older than the log or its last write failed.");
  EXPECT_EQ(found.advice,
            "Ask for the job file once more. What the result means tells \"kelvane-console explain "
            "32852\".");
  circumstances.isCopy = false;
  circumstances.workerRuns = true;
  EXPECT_EQ(explained("updateFW", kRunning, circumstances).subject, "job 17 (updateFW): running");
}

TEST(JobExplanation, WaitingBehindARecordThatKeepsAllFromBeingUpdatedIsNotToBeStarted) {
  JobCircumstances circumstances;
  circumstances.jobFileFault = "/f: [0] has a log_id that is no string: 7";
  const Explanation found = explained("getOnlineUpdateData", kWaiting, circumstances);
  EXPECT_EQ(found.meaning,
            "No job of its file can be updated: /f: [0] has a log_id that is no string: 7.");
  EXPECT_EQ(found.advice.rfind("Start no worker before that is mended", 0), 0U);
  EXPECT_EQ(found.tryAgain, "once that is mended");
}

TEST(JobExplanation, TheErrorOfAWorkerThatTookNoJobIsTold) {
  JobCircumstances circumstances;
  circumstances.log.errorWithoutJob = "14:03:07 run: compared a number as a string";
  EXPECT_EQ(explained("getOnlineUpdateData", kWaiting, circumstances).note,
            "The log has no lines of this job. Its last worker took none, and said: 14:03:07 run: "
            "compared a number as a string");
}

TEST(JobExplanation, AnInstallationWithoutAnApplicationIsNotToBeStarted) {
  for (const char* path : {"", "/no/Manager.app", "Manager.app", "/tmp"}) {
    const Explanation found =
        explained("updateSW", R"("state_id": "WAIT", "input_parameters": {"file_path": ")" +
                                  std::string(path) + "\"}");
    const bool isThere = std::string(path) == "/tmp";
    EXPECT_EQ(found.meaning.rfind(std::string("It would remove the application and put ") +
                                      (isThere ? "what is none" : "none") + " in its place: ",
                                  0),
              0U);
    EXPECT_EQ(found.advice.rfind("Start no worker for it.", 0), 0U);
    EXPECT_EQ(found.tryAgain, "not as it is");
  }
}

TEST(JobExplanation, AFirmwareJobWithoutItsImageIsNotToBeStarted) {
  const auto waitingWith = [](const std::string& path, const JobCircumstances& circumstances = {}) {
    return explained("updateFW",
                     R"("state_id": "WAIT", "input_parameters": [
                       {"wwn": "A", "file_path": "/etc/passwd"}, {"wwn": "B", "file_path": ")" +
                         path + "\"}]",
                     circumstances);
  };
  const Explanation missing = waitingWith("/no.img", {.sharedFolder = "/s/"});
  EXPECT_EQ(missing.meaning,
            "It would fail: the image of input_parameters[1], /no.img, does not exist. The "
            "controllers before it would be flashed, those after it not started.");
  EXPECT_EQ(
      missing.advice,
      "Start no worker for it. Remove the record (\"kelvane-console remove --shared /s/ 17\"), "
      "and add the job anew with the absolute path of an image that can be read.");
  EXPECT_EQ(missing.tryAgain, "once the image is there");
  const Explanation empty = waitingWith("");
  EXPECT_EQ(empty.meaning.rfind("It would fail: the path of the image of input_parameters[1] is "
                                "empty.",
                                0),
            0U)
      << empty.meaning;
  EXPECT_EQ(empty.tryAgain, "not as it is");
  EXPECT_EQ(waitingWith("a.img").tryAgain, "not as it is");
  EXPECT_EQ(waitingWith("/etc/passwd").tryAgain, "yes");
  JobCircumstances copy = copied();
  EXPECT_EQ(waitingWith("/no.img", copy).subject, "job 17 (updateFW): waiting when it was copied");
  EXPECT_EQ(waitingWith("", copy).tryAgain, "not as it is");
}

TEST(JobExplanation, AQueryThatWouldTakeSomebodysFilesIsNotToBeStarted) {
  const test::TempFolder folder;
  folder.write("letter", "");
  const std::string rest = R"("state_id": "WAIT", "input_parameters":
      {"productid": "p", "version": "1", "url": "u", "folder": ")" +
                           folder.path() + "\"}";
  const Explanation found = explained("getOnlineUpdateData", rest);
  EXPECT_EQ(found.meaning.rfind("It would take files that are not its own: the update engine's "
                                "folder " +
                                    folder.path() + " is not empty: it holds letter. When",
                                0),
            0U)
      << found.meaning;
  EXPECT_EQ(found.advice.rfind("Start no worker for it.", 0), 0U);
  EXPECT_EQ(found.tryAgain, "not as it is");
  EXPECT_EQ(explained("getOnlineUpdateData", rest, copied()).tryAgain, "only where no worker runs");
}

TEST(JobExplanation, OfFilesAloneStandardErrorIsNotSaidToBeSilent) {
  JobCircumstances files = copied();
  files.lacksStandardError = true;
  const Explanation installation = explained(
      "updateSW", R"("state_id": "FREE", "result": 0, "input_parameters": {"file_path": "/a"})",
      files);
  EXPECT_NE(installation.advice.find("ask for utility/logs/standard-error-17.txt."),
            std::string::npos);
  EXPECT_NE(installation.note.find("What was kept of the worker's standard error is not at hand."),
            std::string::npos);
  const Explanation download = explained("downloadOnlineUpdateFile",
                                         R"("state_id": "FREE", "result": 259, "input_parameters":
      [{"productid": "p"}], "output": [{"productid": "p"}])",
                                         files);
  EXPECT_NE(download.details.back().find("and what was kept of that is not at hand"),
            std::string::npos);
}

TEST(JobExplanation, AWorkerThatGaveUpAtAFaultyRecordWouldGiveUpAgain) {
  JobCircumstances circumstances;
  circumstances.log.isFound = true;
  circumstances.log.gaveUp = true;
  const Explanation found = explained(
      "updateFW", std::string(kRunning) + R"(, "input_parameters": [{"wwn": "A", "file_path": 7}])",
      circumstances);
  EXPECT_EQ(found.meaning,
            "It cannot be carried out as it is: input_parameters[0] has a \"file_path\" that is no "
            "string. The log tells where its worker gave up. Nothing takes the job up.");
  EXPECT_EQ(found.tryAgain, "not as it is");
}

}  // namespace
}  // namespace kelvane::console
