// The sub-command report: where the file goes, and what it is about.

#include <filesystem>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "console/commands/Report.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/console/explain/LogOfFlashes.h"

namespace kelvane::console {
namespace {

using platform::Value;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class Report : public ConsoleWorld {
 protected:
  Report() {
    folder.write(test::kJobFile,
                 R"([{"log_id": "16", "job_id": "getOnlineUpdateData", "state_id": "FREE",
                      "result": 0, "input_parameters": {}},
                     {"log_id": "17", "job_id": "updateSW", "state_id": "WAIT",
                      "input_parameters": {"file_path": "/Users/ann/a.app"}}])");
    options.sharedFolder = folder / "shared";
    options.output = folder / "report.html";
  }
  int run() { return runHere(report, options); }
  std::string written() const { return folder.read("report.html"); }

  ReportOptions options;
};

TEST_F(Report, OfAJob) {
  options.logId = "16";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "report of job 16: " + options.output + "\n");
  EXPECT_THAT(written(), HasSubstr("<h1>Report of job 16</h1>"));
}

TEST_F(Report, WithoutALogIdItIsOfTheLastJob) {
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(written(), HasSubstr("<h1>Report of job 17</h1>"));
}

TEST_F(Report, WithoutAJobItIsOfTheFolder) {
  folder.write(test::kJobFile, "[]");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "report of the shared folder, without a job: " + options.output + "\n");
  EXPECT_THAT(written(), HasSubstr("There is no job in the job file."));
}

TEST_F(Report, OfADamagedJobFileItIsMadeAllTheSame) {
  folder.write(test::kJobFile, "[{\"log_id\": \"17\",}]");
  options.logId = "17";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(written(), AllOf(HasSubstr("No job can be told"), HasSubstr("line 1, column 18"),
                               HasSubstr("job-file-damaged")));
}

TEST_F(Report, OfACopyItTellsOfNoWorkersAndOfNoOwners) {
  options.copy.offline = true;
  options.bundle = "/Manager/Manager.app";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(written(), AllOf(HasSubstr("this is a copy: whether a worker runs was not looked at"),
                               HasSubstr("<strong>Not finished</strong>"),
                               HasSubstr("No bundle goes with a copy."),
                               Not(HasSubstr("/Manager/Manager.app")),
                               HasSubstr("A copy&#39;s owners and permissions tell nothing"),
                               HasSubstr("system that made the report"), Not(HasSubstr("drwx"))));
}

TEST_F(Report, OfAJobFileThatWasMailed) {
  options.sharedFolder.clear();
  options.copy.jobFile = folder / test::kJobFile;
  options.logId = "16";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(written(), AllOf(HasSubstr("<h1>Report of job 16</h1>"),
                               HasSubstr("No shared folder is at hand."),
                               HasSubstr("the log is not at hand")));
}

TEST_F(Report, OfALogThatWasMailed) {
  options.sharedFolder.clear();
  options.copy.logFile =
      folder.write("log.txt",
                   "[14:03:07] [a.cpp][1][writeJSONFile][debug] writeJSONFile, newArray = (\n"
                   "        {\n        \"job_id\" = updateSW;\n        \"log_id\" = 5;\n"
                   "        \"state_id\" = RUN;\n    }\n)\n");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(written(), AllOf(HasSubstr("<h1>Report of job 5</h1>"),
                               HasSubstr("the records are as the log shows them last")));
}

TEST_F(Report, OfALogWithoutAJobItSaysThatItIsOfTheLog) {
  options.sharedFolder.clear();
  options.copy.logFile =
      folder.write("log.txt", "[14:03:07] [a.cpp][1][run][debug] currentJobArray = (\n)\n");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "report of the log, without a job: " + options.output + "\n");
  EXPECT_THAT(written(), AllOf(HasSubstr("<h1>Report of a log</h1>"),
                               HasSubstr("There is no job in the log. This report tells of the log "
                                         "alone.")));
}

TEST_F(Report, OfAnUnknownJobThereIsNone) {
  options.logId = "99";
  EXPECT_EQ(run(), kNotFound);
  EXPECT_THAT(messages.str(), HasSubstr("no job 99 in "));
  EXPECT_FALSE(std::filesystem::exists(options.output));
}

TEST_F(Report, OfAFolderThatIsNoneOfOursThereIsNone) {
  options.sharedFolder = folder / "other";
  std::filesystem::create_directories(options.sharedFolder);
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_FALSE(std::filesystem::exists(options.output));
}

TEST_F(Report, AnEarlierReportIsReplacedAndThatIsSaid) {
  run();
  shown.str("");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(),
            "report of job 17: " + options.output + " (in place of the report that was there)\n");
}

TEST_F(Report, AnyOtherFileIsLeftAlone) {
  folder.write("report.html", "mine");
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_THAT(messages.str(), HasSubstr("report.html is there already, and is no report"));
  EXPECT_EQ(written(), "mine");
}

TEST_F(Report, AFolderThatIsNotThereIsTold) {
  options.output = folder / "none/report.html";
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_THAT(messages.str(), HasSubstr("the report cannot be written to " + options.output));
}

TEST_F(Report, ForMachines) {
  screen.json = true;
  options.redact = true;
  EXPECT_EQ(run(), kSuccess);
  const Value told = platform::parseJson(shown.str());
  EXPECT_EQ(told.get("file"), Value(options.output));
  EXPECT_EQ(told.get("job"), Value("17"));
  EXPECT_EQ(told.get("bytes").integerValue(), static_cast<std::int64_t>(written().size()));
  EXPECT_EQ(told.get("replaced_a_report"), Value::boolean(false));
  EXPECT_EQ(told.get("redacted").get("home folders").get("different").integerValue(), 1);
}

TEST_F(Report, RedactedItSaysWhatWasReplaced) {
  options.redact = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(shown.str(), HasSubstr("\nredacted: "));
  EXPECT_THAT(shown.str(), HasSubstr(" WWNs, 0 credentials\n"));
  EXPECT_THAT(written(), AllOf(HasSubstr("/a.app"), Not(HasSubstr("/Users/ann"))));
}

TEST_F(Report, ADamagedSettingsFileIsLeftOutOfARedactedOne) {
  folder.write("shared/utility/config/setting.json", "{\"AppPath\": \"\\u002fUsers/ann\",");
  run();
  EXPECT_THAT(written(), HasSubstr("u002fUsers/ann"));
  options.redact = true;
  run();
  EXPECT_THAT(written(), AllOf(Not(HasSubstr("u002fUsers")), HasSubstr("It is left out")));
}

TEST_F(Report, TellsOwnersAndPermissions) {
  ::chmod((folder / "shared/utility").c_str(), 0750);
  run();
  EXPECT_THAT(written(),
              HasSubstr("<th scope=\"row\" class=\"path\">" + (folder / "shared/utility") +
                        "</th><td class=\"short\">folder</td><td class=\"short\">drwxr-x---</td>"));
}

TEST_F(Report, OfALongLogItIsBoundedAndSaysWhatIsLeftOut) {
  std::string log =
      "[14:03:07] [x][1][run][debug] currentJobArray = (\n)\n"
      "[14:03:07] [x][1][run][debug] logId = 17, inputParmsDict = {\n}, stateId = WAIT. jobId = "
      "updateSW\n";
  for (int i = 0; i < 20000; ++i) {
    log += "[14:03:07] [x][1][updateSW][debug] step = {\n    " + std::to_string(i) +
           std::string(200, 'x') + "\n}\n";
  }
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", log);
  EXPECT_EQ(run(), kSuccess);
  EXPECT_LT(written().size(), 3U << 20U);
  EXPECT_THAT(written(), HasSubstr("Left out for their size: 16002 entries"));
}

TEST_F(Report, WithoutALogItIsMadeAllTheSame) {
  std::filesystem::remove(folder / "shared/utility/logs/TarselVistrelUtility.txt");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(written(), HasSubstr("the worker never creates it, and logs nothing"));
}

TEST_F(Report, OfADamagedJobFileTheJobIsToldAsTheLogShowsIt) {
  folder.write(test::kJobFile, "[{\"log_id\": \"17\",}]");
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", test::writtenLine("17", "A1", 50));
  options.logId = "17";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(shown.str(), AllOf(HasSubstr("report of job 17: "),
                                 HasSubstr(". The job is told as the log shows it\n")));
  EXPECT_THAT(written(), HasSubstr("<h1>Report of job 17</h1>"));
}

TEST_F(Report, OfAJobFileThatIsMissingOrEmptyTheJobIsToldAsTheLogShowsIt) {
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", test::writtenLine("17", "A1", 50));
  folder.write(test::kJobFile, "[]");
  options.logId = "17";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(shown.str(), HasSubstr("BGPLog.json holds no records. The job is told as the log "
                                     "shows it\n"));
  std::filesystem::remove(folder / test::kJobFile);
  shown.str("");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(shown.str(), HasSubstr("BGPLog.json does not exist. The job is told"));
  EXPECT_THAT(written(), AllOf(HasSubstr("job-file-lost"), Not(HasSubstr("No findings"))));
}

TEST_F(Report, OfAJobThatTheLogAloneShowsTheWayToItIsTold) {
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", test::writtenLine("9", "A1", 50));
  options.logId = "9";
  EXPECT_EQ(run(), kNotFound);
  EXPECT_THAT(messages.str(), HasSubstr(". The log shows it: give list, show, explain or report "
                                        "--log-file "));
}

// What check calls a fault is not advised to be done.
TEST_F(Report, AdvisesNoStartOfAJobWhoseImageIsMissing) {
  folder.write(test::kJobFile, R"([{"log_id": "17", "job_id": "updateFW", "state_id": "WAIT",
      "input_parameters": [{"wwn": "A1", "file_path": "/no.img"}]}])");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(written(), AllOf(HasSubstr("Start no worker for it."),
                               Not(HasSubstr("Start the worker with this log_id"))));
}

}  // namespace
}  // namespace kelvane::console
