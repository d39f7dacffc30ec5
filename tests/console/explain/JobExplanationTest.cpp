// Jobs in every state, explained.

#include <gtest/gtest.h>

#include "console/explain/JobExplanation.h"
#include "platform/Json.h"

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
constexpr char kWaiting[] = R"("state_id": "WAIT", "input_parameters": {"file_path": "/a"})";

JobCircumstances withWorker() {
  JobCircumstances circumstances;
  circumstances.workerRuns = true;
  return circumstances;
}

TEST(JobExplanation, WaitingWithoutAWorker) {
  const Explanation found = explained("updateSW", kWaiting);
  EXPECT_EQ(found.subject, "job 17 (updateSW): waiting");
  EXPECT_EQ(found.meaning, "No worker has taken it: none was started, or none could be.");
  EXPECT_EQ(found.whoActs, "user");
  EXPECT_EQ(found.tryAgain, "yes");
}

TEST(JobExplanation, WaitingWithAWorker) {
  const Explanation found = explained("updateSW", kWaiting, withWorker());
  EXPECT_EQ(found.meaning, "A worker was started for it and is about to take it.");
  EXPECT_EQ(found.whoActs, "nobody");
}

TEST(JobExplanation, WaitingThatNoWorkerStarts) {
  const Explanation found =
      explained("updateFW", R"("state_id": "WAIT", "input_parameters": [{"wwn": "A"}])");
  EXPECT_EQ(found.meaning, "No worker starts it: input_parameters[0] has no \"file_path\".");
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
  circumstances.log = {true, {"14:03:07 getOnlineUpdateData: start: there is no path"}, "a step"};
  const Explanation found = explained("getOnlineUpdateData", kRunning, circumstances);
  EXPECT_EQ(found.meaning, "Its worker gave up, and the log tells why. Nothing takes the job up.");
  EXPECT_EQ(found.advice,
            "Mend what the log's error tells, if it has one; then add the job anew under another "
            "log_id.");
  EXPECT_EQ(found.errors, circumstances.log.errors);
  EXPECT_EQ(found.lastStep, "a step");
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

TEST(JobExplanation, UnknownState) {
  EXPECT_EQ(explained("updateSW", R"("state_id": "free")").subject,
            "job 17 (updateSW): in state \"free\"");
}

TEST(JobExplanation, SaysWhereTheLogHasNothing) {
  EXPECT_EQ(explained("updateSW", kWaiting).note, "The log has no lines of this job.");
  JobCircumstances circumstances;
  circumstances.noLog = "there is no log";
  EXPECT_EQ(explained("updateSW", kWaiting, circumstances).note, "there is no log");
}

}  // namespace
}  // namespace kelvane::console
