// The sub-command check: what it shows, and its exit codes.

#include <filesystem>

#include "console/commands/Check.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/support/OrdinaryUser.h"

namespace kelvane::console {
namespace {

namespace fs = std::filesystem;

using platform::Value;

class Check : public ConsoleWorld {
 protected:
  // A shared folder without findings.
  Check() {
    makeWorker("");
    folder.write(test::kJobFile, "[]");
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    folder.write("shared/utility/config/setting.json",
                 R"({"AppPath": ")" + (folder / "Manager.app") + "\"}");
    const std::string engine =
        folder.write("Manager.app/Contents/Resources/EngineRunner", "#!/bin/sh\n");
    fs::permissions(engine, fs::perms::owner_all);
  }
  int run() { return runHere(check, options); }
  std::string found() const {
    return asLines(findingsOf(folder / "shared/", "", [](const std::string&) { return false; }));
  }

  CheckOptions options{folder / "shared", ""};
};

TEST_F(Check, AFileInTheSharedFoldersPlaceIsNoFolder) {
  options.sharedFolder = folder.write("a file", "");
  screen.json = true;
  EXPECT_EQ(run(), kFindings);
  const Value all = platform::parseJson(shown.str());
  ASSERT_EQ(all.count(), 1U);
  EXPECT_EQ(all.at(0).get("code"), Value("shared-folder-no-folder"));
}

TEST_F(Check, WithoutFindingsItSaysWhatWasLookedAt) {
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(),
            "no findings\n"
            "  job file  " +
                (folder / test::kJobFile) + "\n" + "  log       " +
                (folder / "shared/utility/logs/TarselVistrelUtility.txt") + "\n  settings  " +
                (folder / "shared/utility/config/setting.json") +
                "\n  bundle    none was given, none was looked at\n");
}

TEST_F(Check, BeforeTheFirstJobItSaysThatThereIsNoJobFileYet) {
  fs::remove(folder / test::kJobFile);
  EXPECT_EQ(run(), kSuccess);
  EXPECT_NE(shown.str().find((folder / test::kJobFile) + " (there is none yet)\n"),
            std::string::npos);
}

TEST_F(Check, FindingsAreShownWithTheirMeaningAndCounted) {
  fs::remove(folder / "shared/utility/logs/TarselVistrelUtility.txt");
  folder.write(test::kJobFile, "{}");
  EXPECT_EQ(run(), kFindings);
  EXPECT_EQ(shown.str(),
            "error: " + (folder / test::kJobFile) +
                " is an object, not an array of records\n"
                "  means  The worker finds no job in it and starts nothing.\n"
                "  to do  Put the records into an array, or move the file away.\n"
                "warning: open " +
                (folder / "shared/utility/logs/TarselVistrelUtility.txt") +
                ": No such file or directory\n"
                "  means  The worker never makes the log. Nothing is logged, and jobs run all the "
                "same: what a job did cannot be told afterwards.\n"
                "  to do  Make an empty file there.\n"
                "1 error, 1 warning\n");
}

TEST_F(Check, SeveritiesAreColoured) {
  fs::remove(folder / "shared/utility/logs/TarselVistrelUtility.txt");
  folder.write(test::kJobFile, "{}");
  screen.colour = true;
  run();
  EXPECT_EQ(shown.str().rfind("\x1b[31merror\x1b[0m: ", 0), 0U);
  EXPECT_NE(shown.str().find("\n\x1b[33mwarning\x1b[0m: open "), std::string::npos);
}

TEST_F(Check, ForMachinesTheFindingsAreAList) {
  screen.json = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "[]\n");
  shown.str("");
  folder.write(test::kJobFile, "{}");
  EXPECT_EQ(run(), kFindings);
  const Value all = platform::parseJson(shown.str());
  ASSERT_EQ(all.count(), 1U);
  EXPECT_EQ(all.at(0).get("code"), Value("job-file-no-list"));
  EXPECT_EQ(all.at(0).get("path"), Value(folder / test::kJobFile));
  EXPECT_EQ(all.at(0).get("job"), Value(""));
  EXPECT_EQ(all.at(0).get("severity"), Value("error"));
  EXPECT_EQ(all.at(0).get("what"),
            Value((folder / test::kJobFile) + " is an object, not an array of records"));
  EXPECT_TRUE(all.at(0).get("meaning").isString());
  EXPECT_TRUE(all.at(0).get("advice").isString());
}

TEST_F(Check, AMissingSharedFolderIsTheOneFindingOfIt) {
  fs::remove_all(folder / "shared");
  EXPECT_EQ(found(), "error: the shared folder " + (folder / "shared/") + " does not exist\n");
  folder.write("shared", "");
  EXPECT_EQ(found(), "error: the shared folder " + (folder / "shared/") + " is no folder\n");
}

TEST_F(Check, ASharedFolderThatCannotBeEnteredIsTheOneFindingOfIt) {
  fs::permissions(folder.path(), fs::perms(0755));
  const test::PermissionBits bits(folder / "shared", 0);
  EXPECT_EQ(test::asOrdinaryUser([this] { return found(); }),
            "error: the shared folder " + (folder / "shared/") +
                " cannot be entered: Permission denied\n");
}

TEST_F(Check, ADownloadAreaThatCannotBeMadeIsAnError) {
  folder.write("shared/tmp", "");
  EXPECT_EQ(found(), "error: the download area cannot be changed: " + (folder / "shared/tmp") +
                         ": Not a directory\n");
}

TEST_F(Check, LeftoversAreToldWhereNoWorkerRuns) {
  folder.write("shared/utility/command/.replace-a1b2c3", "");
  folder.write("shared/tmp/OnlineUpdate/FW/.incoming-FW_T3.img", "");
  EXPECT_EQ(found(), "warning: " + (folder / "shared/utility/command/.replace-a1b2c3") +
                         " is left over\nwarning: " +
                         (folder / "shared/tmp/OnlineUpdate/FW/.incoming-FW_T3.img") +
                         " is left over\n");
}

TEST_F(Check, WhileAWorkerRunsItsTemporaryFilesAreNoFinding) {
  folder.write("shared/utility/command/.replace-a1b2c3", "");
  folder.write("shared/tmp/OnlineUpdate/FW/.incoming-FW_T3.img", "");
  folder.write(test::kJobFile, R"([{"log_id": "18", "job_id": "updateSW", "state_id": "RUN",
                                  "input_parameters": {}}])");
  EXPECT_EQ(asLines(findingsOf(folder / "shared/", "",
                               [](const std::string& logId) { return logId == "18"; })),
            "");
}

TEST_F(Check, ASharedFolderThatEveryoneMayWriteIsAWarning) {
  const test::PermissionBits bits(folder / "shared", 0777);
  EXPECT_EQ(found(), "warning: " + (folder / "shared/") + " can be written by everyone\n");
}

TEST_F(Check, ADamagedJobFileDoesNotKeepItFromLookingAtTheRest) {
  folder.write(test::kJobFile, "");
  folder.write("shared/utility/config/setting.json", "{}");
  EXPECT_EQ(found(), "error: " + (folder / test::kJobFile) + " is not JSON: it is empty\n" +
                         "error: " + (folder / "shared/utility/config/setting.json") +
                         ": \"AppPath\" is missing\n");
}

TEST_F(Check, WithoutASharedFolderItIsBadUsage) {
  options.sharedFolder = "";
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(),
            "kelvane-console: the shared folder is missing: give --shared FOLDER or set "
            "KELVANE_SHARED; or give files that were mailed, with --job-file and --log-file\n");
}

TEST_F(Check, TheBundlesSlashDoesNotCount) {
  options.bundle = folder / "Manager.app///";
  EXPECT_EQ(run(), kFindings);
  EXPECT_NE(shown.str().find(folder / "Manager.app/Contents/Frameworks"), std::string::npos);
}

// What a user sees as no fault of the files, as it is of this system: nothing of it is looked at.
TEST_F(Check, OfACopyTheFilesAloneAreLookedAt) {
  folder.write(test::kJobFile, R"([
      {"log_id": "2", "job_id": "updateFW", "state_id": "WAIT",
       "input_parameters": [{"wwn": "A", "file_path": "/no.img"}]},
      {"log_id": "3", "job_id": "updateFW", "state_id": "RUN",
       "input_parameters": [{"wwn": "A", "file_path": "/no.img"}]}])");
  folder.write("shared/utility/config/setting.json", R"({"AppPath": "/no/such.app"})");
  folder.write("shared/utility/command/.replace-a1b2c3", "");
  folder.write("shared/tmp", "");
  const test::PermissionBits bits(folder / "shared", 0777);
  options.copy.offline = true;
  options.bundle = "/no/such.app";
  EXPECT_EQ(run(), kSuccess) << shown.str();
  EXPECT_NE(shown.str().find("not looked at  as this is a copy: processes, the bundle, "),
            std::string::npos)
      << shown.str();
  EXPECT_EQ(shown.str().find("no/such"), std::string::npos);
}

TEST_F(Check, OfACopyWhatIsInTheFilesIsFound) {
  folder.write(test::kJobFile, R"([{"log_id": "2", "job_id": "updateFW", "state_id": "WAIT",
                                    "input_parameters": []}, {"log_id": 5}])");
  folder.write("shared/utility/config/setting.json", "{}");
  const std::string settings = folder / "shared/utility/config/setting.json";
  Places places = placesIn(folder / "shared/");
  places.isCopy = true;
  EXPECT_EQ(asLines(findingsOf(places, "")),
            "error: " + (folder / test::kJobFile) +
                ": job 2 cannot be carried out: input_parameters is an empty array\n" + "error: " +
                (folder / test::kJobFile) + ": element [1] has a log_id that is no string: 5\n" +
                "error: " + settings + ": \"AppPath\" is missing\n");
  options.copy.offline = true;
  EXPECT_EQ(run(), kFindings);
  EXPECT_NE(shown.str().find("3 errors, 0 warnings\nnot looked at, as this is a copy: processes, "),
            std::string::npos)
      << shown.str();
}

TEST_F(Check, OfACopySettingsThatWereNotSentAreNoError) {
  folder.write(test::kJobFile, "[]");
  fs::remove(folder / "shared/utility/config/setting.json");
  options.copy.offline = true;
  EXPECT_EQ(run(), kFindings);
  EXPECT_EQ(shown.str().rfind("warning: " + (folder / "shared/utility/config/setting.json") +
                                  " is not among the files of the copy\n",
                              0),
            0U)
      << shown.str();
  EXPECT_NE(shown.str().find("0 errors, 1 warning\n"), std::string::npos);
}

TEST_F(Check, OfFilesThatWereMailedEachAlone) {
  const std::string jobs = folder.write("mail/jobs.json", "[");
  options = {};
  options.copy = {.jobFile = jobs};
  EXPECT_EQ(run(), kFindings);
  EXPECT_EQ(shown.str().rfind("error: " + jobs + " is not JSON: ", 0), 0U);
  shown.str("");
  options = {};
  options.copy = {.logFile = folder.write("mail/log.txt", "")};
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().rfind("no findings\n  job file       is not at hand\n", 0), 0U)
      << shown.str();
}

TEST_F(Check, ACopyThatIsNoSharedFolderIsBadUsage) {
  fs::create_directories(folder / "photos");
  options.sharedFolder = folder / "photos";
  options.copy.offline = true;
  EXPECT_EQ(run(), kBadUsage);
}

TEST_F(Check, EveryFindingHasAPathOrAJob) {
  options.bundle = folder / "Manager.app";
  fs::remove(folder / "shared/utility/logs/TarselVistrelUtility.txt");
  folder.write("shared/tmp", "");
  folder.write("shared/utility/config/setting.json", "{}");
  folder.write("Manager.app/Contents/Frameworks/libx.so", "");
  folder.write(test::kJobFile, R"([5, {"log_id": 5}, {}, {"log_id": "1", "state_id": "FREE"},
      {"log_id": "2", "job_id": "updateFW", "state_id": "WAIT",
       "input_parameters": [{"wwn": "A", "file_path": "/no.img"}]},
      {"log_id": "2", "job_id": "x", "state_id": "WAIT", "input_parameters": {}}])");
  const Findings all =
      findingsOf(folder / "shared/", options.bundle, [](const std::string&) { return false; });
  EXPECT_GT(all.size(), 12U);
  for (const Finding& finding : all) {
    EXPECT_FALSE(finding.path.empty() && finding.job.empty()) << finding.what;
  }
}

}  // namespace
}  // namespace kelvane::console
