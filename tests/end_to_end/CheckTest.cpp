// What check finds: each fault is made, the real worker is run with it where it can be, and what
// becomes of the job is what the finding says.

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/Json.h"
#include "tests/end_to_end/SupportInstallation.h"
#include "tests/support/JobFiles.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/SystemCallKiller.h"

namespace kelvane {
namespace {

namespace fs = std::filesystem;

using platform::Value;
using test::PermissionBits;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kNoFile[] = ": No such file or directory";

using Check = SupportInstallation;

TEST_F(Check, AWholeInstallationHasNoFindingsBeforeAndAfterItsJobs) {
  EXPECT_THAT(findings(), IsEmpty());
  writeFleet("[]");
  query();
  download({"fw3"});
  runJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
  addFirmwareJob();
  runWorker({"17", shared()});
  ASSERT_EQ(state(), "FREE");
  EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(Check, WithoutFindingsItNamesWhatItLookedAt) {
  const test::Ended ended = check();
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.out, "no findings\n  job file   " + jobFile() + "\n  log        " + logFile() +
                           "\n  settings   " + sharedSettings() + "\n  bundle     " +
                           bundle.path() + "\n  worker     " + worker() + "\n  product    " +
                           productSettings() + "\n  framework  " + framework() + "\n");
}

// --- the job file

TEST_F(Check, WithoutTheJobFilesFolderTheWorkerFindsNothing) {
  fs::remove_all(shared() + "utility/command");
  runWorker({"17", shared()});
  EXPECT_THAT(log(), HasSubstr("[run][error] open " + jobFile() + kNoFile));
  EXPECT_THAT(findings(), ElementsAre("warning: the job file's folder " + shared() +
                                      "utility/command does not exist"));
}

TEST_F(Check, ADamagedJobFileIsLeftAloneByTheWorker) {
  addFirmwareJob();
  const std::string whole = folder.read(test::kJobFile);
  const std::string cut = whole.substr(0, whole.size() / 2);
  writeJobs(cut);
  runWorker({"17", shared()});
  EXPECT_EQ(folder.read(test::kJobFile), cut);
  EXPECT_THAT(findings(), ElementsAre(StartsWith("error: " + jobFile() + " is not JSON: ")));
}

TEST_F(Check, ANumberThatCannotBeReadKeepsEveryJobFromStarting) {
  const std::string text = R"([{"log_id": "17", "job_id": "updateSW", "state_id": "WAIT",
  "input_parameters": {"file_path": "/no.app"}}, {"log_id": "18", "n": 1e400}])";
  writeJobs(text);
  runWorker({"17", shared()});
  EXPECT_EQ(folder.read(test::kJobFile), text);
  EXPECT_THAT(log(), HasSubstr("[run][debug] currentJobArray = (null)\n"));
  EXPECT_THAT(findings(), ElementsAre("error: " + jobFile() +
                                      " cannot be read: the number 1e400 in line 2, column 72 is "
                                      "beyond the range of a double"));
}

TEST_F(Check, AJobWhoseFirstWriteFailedHasNoResultOrNoOutput) {
  environment["LD_PRELOAD"] = KELVANE_FAULT_INTERPOSER " " + environment["LD_PRELOAD"];
  environment["KELVANE_FAULT_DONE"] = folder / "done";
  environment["KELVANE_FAULT_REFUSE"] = "rename";
  environment["KELVANE_FAULT_TIMES"] = "1";
  environment.erase("KELVANE_TEST_VERSIONS");  // they are none that a whole run would write
  const std::string without = "warning: " + jobFile() + ": job 17 is finished, and there is no ";
  query();
  EXPECT_TRUE(job().has("output"));
  EXPECT_THAT(findings(), ElementsAre(without + "result"));
  download({"fw3"});
  EXPECT_TRUE(job().has("output"));
  EXPECT_THAT(findings(), ElementsAre(without + "result"));
  runJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
  EXPECT_EQ(folder.read("Installed.app/Contents/version"), "2.0");
  EXPECT_FALSE(job().has("output"));
  EXPECT_THAT(findings(), ElementsAre(without + "result"));
  writeFleet("[]");
  updateFirmware({{"50000000000000A1", "/no.img"}});
  EXPECT_EQ(result(), 1026);
  EXPECT_THAT(findings(), ElementsAre(without + "output"));
  environment["KELVANE_FAULT_TIMES"] = "2";
  runJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
  EXPECT_EQ(state(), "WAIT");  // though it was done
}

TEST_F(Check, AnEngineOutlivesItsKilledWorker) {
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  fs::remove(engine());
  bundle.write("Contents/Resources/EngineRunner",
               "#!/bin/sh\nread line < " + (folder / "pipe") + "\n");
  ::chmod(engine().c_str(), 0755);
  writeJobs(test::waitingJob("getOnlineUpdateData", parameters("fw3")));
  const std::string program = worker();
  const std::string sharedFolder = shared();
  const pid_t process = ::fork();
  if (process == 0) {
    ::execl(program.c_str(), program.c_str(), "17", sharedFolder.c_str(), nullptr);
    ::_exit(127);
  }
  const int pipe = ::open((folder / "pipe").c_str(), O_WRONLY | O_CLOEXEC);  // the engine reads it
  EXPECT_THAT(findings(), IsEmpty());
  ::kill(process, SIGKILL);
  ::waitpid(process, nullptr, 0);
  EXPECT_THAT(findings(),
              ElementsAre(HasSubstr("job 17 is in state RUN"),
                          AllOf(StartsWith("warning: an update engine runs for job 17 (process "),
                                ::testing::EndsWith("), and no worker for it is seen"))));
  ::close(pipe);
}

TEST_F(Check, ALogIdThatIsNoStringKeepsEveryJobFromEnding) {
  writeJobs(R"([{"log_id": "17", "job_id": "updateSW", "state_id": "WAIT",
                 "input_parameters": {"file_path": ")" +
            (folder / "Manager.app") + R"("}}, {"log_id": 5}])");
  runWorker({"17", shared()});
  EXPECT_EQ(state(), "WAIT");
  EXPECT_THAT(findings(), ElementsAre("error: " + jobFile() +
                                      ": element [1] has a log_id that is no string: 5"));
}

TEST_F(Check, AnElementThatIsNoObjectKeepsEveryJobFromEnding) {
  writeJobs(R"([{"log_id": "17", "job_id": "updateSW", "state_id": "WAIT",
                 "input_parameters": {"file_path": ")" +
            (folder / "Manager.app") + R"("}}, [1]])");
  runWorker({"17", shared()});
  EXPECT_EQ(state(), "WAIT");
  EXPECT_THAT(findings(), ElementsAre("error: " + jobFile() + ": element [1] is no object: [1]"));
}

TEST_F(Check, AnInstallationWithoutItsPackageOnlyRemovesTheApplication) {
  writeJobs(test::waitingJob("updateSW", Value::dictionary({{"file_path", "/no.app"}})));
  EXPECT_THAT(findings(), ElementsAre("error: " + jobFile() +
                                      ": job 17: the package, /no.app, does not exist"));
  runWorker({"17", shared()});
  EXPECT_EQ(result(), 0);
  EXPECT_FALSE(fs::exists(folder / "Installed.app"));
}

TEST_F(Check, AJobThatTheWorkerDoesNotStartSaysWhy) {
  for (const auto& [job, why] : std::vector<std::pair<std::string, std::string>>{
           {R"("job_id": "updateHW", "input_parameters": {})",
            "job_id is \"updateHW\", which is no command of the worker's"},
           {R"("job_id": "updateSW", "input_parameters": {})",
            "input_parameters has no \"file_path\""},
           {R"("job_id": "getOnlineUpdateData", "input_parameters": {"productid": "p"})",
            "input_parameters has no \"version\""},
           {R"("job_id": "downloadOnlineUpdateFile", "input_parameters": [{}])",
            "input_parameters[0] has no \"productid\""},
           {R"("job_id": "updateSW")", "there is no input_parameters"},
           {R"("input_parameters": {})", "there is no job_id"}}) {
    writeJobs(R"([{"log_id": "17", "state_id": "WAIT", )" + job + "}]");
    runWorker({"17", shared()});
    EXPECT_EQ(state(), "WAIT");
    EXPECT_THAT(findings(),
                ElementsAre("error: " + jobFile() + ": job 17 cannot be carried out: " + why));
  }
}

// What the finding says of firmware jobs whose second entry lacks something.
TEST_F(Check, AFirmwareJobWithAFaultyEntryFlashesThoseBeforeIt) {
  const std::string image = makeImage("new.img", {"qvxf", "--product", "0x48", "--firmware", "2"});
  const std::string whole = R"({"wwn": "50000000000000A1", "file_path": ")" + image + "\"}";
  environment.erase("KELVANE_TEST_VERSIONS");  // a faulty record is no valid one
  struct Case {
    std::string entry, state, meaning;
    int result;
  };
  for (const Case& one : std::vector<Case>{
           {R"({"file_path": "/no"})", "FREE", "the job ends with 1026 (0x0402)", 1026},
           {R"({"wwn": 5, "file_path": "/no"})", "FREE", "the job ends with 1026 (0x0402)", 1026},
           {R"({"wwn": "50000000000000B2"})", "FREE", "as with an image that cannot be read",
            32850},
           {R"({"wwn": "50000000000000B2", "file_path": 5})", "RUN", "the job stays in state RUN",
            0},
           {"5", "WAIT", "the job stays in state WAIT", 0}}) {
    const std::string rest = R"(", "product_id": "0x4801", "firmware": "1", "cpld": "1",
                               "usb_bridge": "1"})";
    writeFleet(R"([{"wwn": "50000000000000A1)" + rest + R"(, {"wwn": "50000000000000B2)" + rest +
               "]");
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    writeJobs(
        R"([{"log_id": "17", "job_id": "updateFW", "state_id": "WAIT", "input_parameters": [)" +
        whole + ", " + one.entry + "]}]");
    EXPECT_THAT(check().out,
                AllOf(HasSubstr("The controllers before it are flashed."), HasSubstr(one.meaning)));
    runWorker({"17", shared()});
    EXPECT_EQ(fleet().get("controllers").at(0).get("firmware"), Value("2"));
    EXPECT_EQ(fleet().get("controllers").at(1).get("firmware"), Value("1"));
    EXPECT_EQ(state(), one.state) << one.entry;
    if (one.state == "FREE") {
      EXPECT_EQ(result(), one.result) << one.entry;
    }
  }
}

TEST_F(Check, TwoJobsWithOneLogIdOverwriteEachOther) {
  writeJobs(R"([{"log_id": "17", "job_id": "updateFW", "state_id": "FREE", "result": 1026,
                 "resultStr": "x", "input_parameters": []},
                {"log_id": "17", "job_id": "updateSW", "state_id": "WAIT",
                 "input_parameters": {"file_path": "/no.app"}}])");
  environment.erase("KELVANE_TEST_VERSIONS");  // the record that is lost is no valid one
  runWorker({"17", shared()});
  EXPECT_EQ(jobs().at(0).get("job_id"), Value("updateSW"));
  EXPECT_THAT(findings(), Contains("warning: " + jobFile() + ": 2 jobs have the log_id 17"));
}

// Kills the worker before each of its system calls, one after the other, until one leaves a running
// job and the file that was to replace the job file.
TEST_F(Check, AKilledWorkerLeavesAJobInRunAndATemporaryFile) {
  writeFleet("[]");
  const std::string program = worker();
  const std::string sharedFolder = shared();
  std::vector<std::string> left;
  bool killed = true;
  for (int n = 1; killed && left.size() < 2; ++n) {
    fs::remove_all(shared() + "utility/command");
    addFirmwareJob();
    killed = test::killedBeforeSystemCall(n, [&] {
      ::setenv("ZORAPI_FLEET", (folder / "fleet.json").c_str(), 1);
      ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // the leak check traces, too
      ::execl(program.c_str(), program.c_str(), "17", sharedFolder.c_str(), nullptr);
    });
    left = state() == "RUN" ? folder.names("shared/utility/command") : left;
  }
  ASSERT_EQ(left.size(), 2U);
  EXPECT_THAT(findings(),
              ElementsAre("warning: " + jobFile() +
                              ": job 17 is in state RUN, and no worker for it is seen",
                          "warning: " + shared() + "utility/command/" + left[0] + " is left over"));
}

TEST_F(Check, AJobFileThatIsALinkIsReplacedWhereItLeads) {
  addFirmwareJob();
  writeFleet("[]");
  fs::rename(jobFile(), folder / "elsewhere.json");
  fs::create_symlink(folder / "elsewhere.json", jobFile());
  runWorker({"17", shared()});
  EXPECT_EQ(state(), "FREE");
  EXPECT_TRUE(fs::is_symlink(jobFile()));
  EXPECT_THAT(findings(), ElementsAre("warning: " + jobFile() + " is a link to " +
                                      (folder / "elsewhere.json")));
}

TEST_F(Check, AFolderThatCannotBeChangedKeepsTheJobAsItIs) {
  addFirmwareJob();
  writeFleet("[]");
  const PermissionBits jobBits(jobFile(), 0666);
  const PermissionBits logBits(logFile(), 0666);
  const PermissionBits areaBits(shared(), 0777);
  const PermissionBits bits(shared() + "utility/command", 0555);
  test::asOrdinaryUser([this] {
    test::runProgram({worker(), "17", shared()}, "/", {{"ZORAPI_FLEET", folder / "fleet.json"}});
    return std::string();
  });
  EXPECT_EQ(state(), "WAIT");
  EXPECT_THAT(log(), HasSubstr("updateAllFW end"));
  EXPECT_THAT(findingsOfOrdinaryUser(),
              Contains("error: the job file's folder cannot be changed: " + shared() +
                       "utility/command: Permission denied"));
}

// --- the log and the shared folder

TEST_F(Check, WithoutALogTheJobIsDoneAndNothingIsLogged) {
  fs::remove(logFile());
  query();
  EXPECT_EQ(state(), "FREE");
  EXPECT_FALSE(fs::exists(logFile()));
  EXPECT_THAT(findings(), ElementsAre("warning: open " + logFile() + kNoFile));
}

TEST_F(Check, ALogThatIsNoFileIsNone) {
  fs::remove(logFile());
  ASSERT_EQ(::mkfifo(logFile().c_str(), 0600), 0);
  query();
  EXPECT_EQ(state(), "FREE");
  EXPECT_THAT(findings(), ElementsAre("warning: " + logFile() + " is no regular file"));
}

TEST_F(Check, AJobFileThatIsNoFileIsNone) {
  fs::remove(jobFile());
  ASSERT_EQ(::mkfifo(jobFile().c_str(), 0600), 0);
  runWorker({"17", shared()});
  EXPECT_THAT(log(), HasSubstr("[run][error] open " + jobFile() + ": not a regular file"));
  EXPECT_TRUE(fs::is_fifo(jobFile()));
  EXPECT_THAT(findings(), ElementsAre("error: " + jobFile() + " is no regular file"));
}

TEST_F(Check, ALogThatCannotBeWrittenIsNotWritten) {
  const PermissionBits bits(logFile(), 0444);
  test::asOrdinaryUser([this] {
    test::runProgram({worker(), "17", shared()}, "/");
    return std::string();
  });
  EXPECT_EQ(log(), "");
  EXPECT_THAT(findingsOfOrdinaryUser(),
              Contains("warning: " + logFile() + " cannot be written: Permission denied"));
}

TEST_F(Check, ALargeLogIsNotRotatedByTheWorker) {
  fs::resize_file(logFile(), 104857600);
  runWorker({"17", shared()});
  EXPECT_GT(fs::file_size(logFile()), 104857600U);
  EXPECT_THAT(findings(), ElementsAre(AllOf(StartsWith("warning: " + logFile() + " has 1048"),
                                            ::testing::EndsWith(" bytes"))));
}

TEST_F(Check, ALogPathThatIsTooLongEndsTheWorker) {
  std::string longFolder = folder / "long";
  while (longFolder.size() < 480) longFolder += "/" + std::string(30, 'x');
  fs::create_directories(longFolder);
  EXPECT_EQ(runWorker({"17", longFolder + "/"}).signal, SIGABRT);
  const test::Ended ended = console({"check", "--shared", longFolder});
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_THAT(ended.out, HasSubstr("error: " + longFolder +
                                   "/utility/logs/TarselVistrelUtility.txt: the path has " +
                                   std::to_string(longFolder.size() + 38) + " bytes, and 511 are"));
}

TEST_F(Check, AMissingSharedFolderIsNotMade) {
  EXPECT_EQ(runWorker({"17", folder / "missing/"}).exitStatus, 0);
  const test::Ended ended = console({"check", "--shared", folder / "missing"});
  EXPECT_THAT(ended.out, StartsWith("error: the shared folder " + (folder / "missing/") +
                                    " does not exist\n"));
}

TEST_F(Check, ADownloadAreaThatCannotBeMadeEndsADownloadWith259) {
  folder.write("shared/tmp", "a file");
  download({"fw3"});
  EXPECT_EQ(result(), 259);
  EXPECT_THAT(findings(), ElementsAre("error: the download area cannot be changed: " + shared() +
                                      "tmp: Not a directory"));
}

// --- the settings and the update engine

TEST_F(Check, WithoutSharedSettingsAQueryStaysRunning) {
  fs::remove(sharedSettings());
  query();
  EXPECT_EQ(state(), "RUN");
  EXPECT_THAT(findings(), ElementsAre(HasSubstr("job 17 is in state RUN"),
                                      "error: open " + sharedSettings() + kNoFile));
}

TEST_F(Check, WithDamagedSharedSettingsAQueryStaysRunning) {
  for (const auto& [text, fault] : std::vector<std::pair<std::string, std::string>>{
           {"{", " is not JSON: "},
           {"{}", ": \"AppPath\" is missing"},
           {R"({"AppPath": 5})", ": \"AppPath\" is no string"},
           {R"({"AppPath": "/no.app"})", ": AppPath leads to /no.app, which is no bundle"}}) {
    folder.write("shared/utility/config/setting.json", text);
    query();
    EXPECT_EQ(state(), "RUN");
    EXPECT_THAT(findings(), Contains(StartsWith("error: " + sharedSettings() + fault)));
  }
}

TEST_F(Check, SettingsThatAreNoFileAreMissing) {
  fs::remove(sharedSettings());
  ASSERT_EQ(::mkfifo(sharedSettings().c_str(), 0600), 0);
  query();
  EXPECT_EQ(state(), "RUN");
  EXPECT_THAT(findings(), Contains("error: " + sharedSettings() + " is no regular file"));
  fs::remove(productSettings());
  ASSERT_EQ(::mkfifo(productSettings().c_str(), 0600), 0);
  runWorker({"17", shared()});
  EXPECT_THAT(log(), HasSubstr("[init][error] open " + productSettings() + ": not a regular file"));
  EXPECT_THAT(findings(), Contains("error: " + productSettings() + " is no regular file"));
}

TEST_F(Check, WhoeverMayWriteTheSettingsChoosesTheProgram) {
  const PermissionBits bits(sharedSettings(), 0666);
  folder.write("other.app/Contents/Resources/EngineRunner",
               "#!/bin/sh\necho started > " + (folder / "started") + "\n");
  ::chmod((folder / "other.app/Contents/Resources/EngineRunner").c_str(), 0755);
  folder.write("shared/utility/config/setting.json",
               R"({"AppPath": ")" + (folder / "other.app") + "\"}");
  query();
  EXPECT_EQ(folder.read("started"), "started\n");
  EXPECT_THAT(findings(),
              ElementsAre("warning: " + sharedSettings() + " can be written by everyone"));
}

TEST_F(Check, ACatalogueThatIsNoFileIsNone) {
  const std::string catalogue = engineFolder() + "/Offers.plist";
  fs::remove(engine());
  bundle.write("Contents/Resources/EngineRunner", "#!/bin/sh\nmkfifo '" + catalogue + "'\n");
  ::chmod(engine().c_str(), 0755);
  query();
  EXPECT_EQ(state(), "FREE");
  EXPECT_FALSE(job().has("output"));
  EXPECT_THAT(findings(), IsEmpty());  // it has gone with the engine's folder
  writeJobs(test::waitingJob("getOnlineUpdateData", parameters("fw3"), "18"));
  fs::create_directories(engineFolder());
  ASSERT_EQ(::mkfifo(catalogue.c_str(), 0600), 0);
  EXPECT_THAT(findings(),
              ElementsAre("warning: the update engine's folder " + engineFolder() +
                              " is not empty: it holds Offers.plist",
                          "warning: the catalogue " + catalogue + " is no regular file"));
}

TEST_F(Check, ALeftoverOfTheDownloadAreaIsTakenUpByTheNextDownload) {
  const std::string leftover = area("FW") + "/.incoming-FW_T3.img";
  folder.write("shared/tmp/OnlineUpdate/FW/.incoming-FW_T3.img/part", "");
  EXPECT_THAT(findings(), ElementsAre("warning: " + leftover + " is left over"));
  download({"fw3"});
  EXPECT_EQ(folder.read("shared/tmp/OnlineUpdate/FW/FW_T3.img"), "image of fw3");
  EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(Check, AnEngineThatCannotBeExecutedLeavesAQueryRunning) {
  ::chmod(engine().c_str(), 0644);
  query();
  EXPECT_EQ(state(), "RUN");
  EXPECT_THAT(log(), HasSubstr("[error] start " + engine() + ": Permission denied"));
  EXPECT_THAT(findings(), Contains("error: the update engine " + engine() +
                                   " cannot be executed: Permission denied"));
  fs::remove(engine());
  query();
  EXPECT_THAT(findings(), Contains("error: the update engine " + engine() + " does not exist"));
}

TEST_F(Check, WithoutTheCataloguesNameAQueryHasNoOutput) {
  bundle.write("Contents/Resources/Config/setting.json", "{}");
  query();
  EXPECT_EQ(state(), "FREE");
  EXPECT_FALSE(job().has("output"));
  const std::vector<std::string> found = findings();
  EXPECT_EQ(found.size(), 8U);
  EXPECT_THAT(
      found, Contains("error: " + productSettings() + ": \"online_update_plist_name\" is missing"));
  EXPECT_THAT(found, Contains("warning: " + productSettings() + ": \"app_name\" is missing"));
}

TEST_F(Check, ASettingThatIsNoStringKeepsAnInstallationFromStarting) {
  bundle.write("Contents/Resources/Config/setting.json", R"({"AppPath": 5})");
  runJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
  EXPECT_EQ(state(), "WAIT");
  EXPECT_THAT(findings(), Contains("error: " + productSettings() + ": \"AppPath\" is no string"));
}

TEST_F(Check, WithoutProductSettingsAnInstallationReplacesNothing) {
  fs::remove(productSettings());
  runJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(folder.read("Installed.app/Contents/version"), "1.0");
  EXPECT_THAT(findings(), ElementsAre("error: open " + productSettings() + kNoFile));
}

TEST_F(Check, AnApplicationThatIsNotThereIsOnlyCopied) {
  fs::remove_all(folder / "Installed.app");
  EXPECT_THAT(findings(),
              ElementsAre("warning: " + productSettings() + ": AppPath leads to " +
                          (folder / "Installed.app") + ", where no application stands"));
  runJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
  EXPECT_EQ(folder.read("Installed.app/Contents/version"), "2.0");
}

TEST_F(Check, AnApplicationThatCanBeRemovedInPartOnlyStaysInPart) {
  folder.write("Installed.app/Contents/fixed/file", "old");
  for (const char* place : {"", "Installed.app", "Installed.app/Contents"}) {
    fs::permissions(folder / place, fs::perms::all);
  }
  const PermissionBits bits(folder / "Installed.app/Contents/fixed", 0555);
  const PermissionBits jobBits(shared() + "utility/command", 0777);
  writeJobs(
      test::waitingJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}})));
  const PermissionBits fileBits(jobFile(), 0666);
  EXPECT_THAT(findingsOfOrdinaryUser(),
              Contains("error: the application cannot be replaced: " +
                       (folder / "Installed.app/Contents/fixed") + ": Permission denied"));
  test::asOrdinaryUser([this] {
    test::runProgram({worker(), "17", shared()}, "/");
    return std::string();
  });
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(folder.read("Installed.app/Contents/fixed/file"), "old");
}

// --- the bundle

TEST_F(Check, ABundleThatStandsDeeperTakesAnotherForItsOwn) {
  const std::string deep = folder / "Manager.app";
  fs::remove_all(deep);
  fs::copy(bundle.path(), deep, fs::copy_options::recursive);
  test::runProgram({deep + "/Contents/Resources/Kelvane", "17", shared()}, folder.path());
  EXPECT_THAT(log(), HasSubstr("[init][error] open " + folder.path() +
                               "/Contents/Resources/Config/setting.json" + kNoFile));
  const test::Ended ended = console({"check", "--shared", shared(), "--bundle", deep});
  EXPECT_THAT(ended.out, StartsWith("error: " + deep +
                                    " stands 3 levels below the root, not two\n  means  The "
                                    "worker takes " +
                                    folder.path() + " for its bundle"));
}

TEST_F(Check, AWorkerThatCannotBeExecutedIsToldAndCannotBeStarted) {
  ::chmod(worker().c_str(), 0644);
  EXPECT_EQ(runWorker({"17", shared()}).exitStatus, 127);
  EXPECT_THAT(findings(), ElementsAre("error: the worker " + worker() +
                                      " cannot be executed: Permission denied"));
}

TEST_F(Check, AWorkerThatIsALinkTakesTheOtherPlaceForItsOwn) {
  const test::TempFolder other(".app");
  fs::copy(bundle.path(), other.path(), fs::copy_options::recursive);
  fs::remove(other / "Contents/Resources/Config/setting.json");
  fs::remove(worker());
  fs::create_symlink(other / "Contents/Resources/Kelvane", worker());
  runWorker({"17", shared()});
  EXPECT_THAT(log(), HasSubstr("[init][error] open " + other.path()));
  EXPECT_THAT(findings(), ElementsAre("error: " + worker() + " leads to " +
                                      (other / "Contents/Resources/Kelvane")));
}

// --- the framework

class CheckFramework : public SupportInstallation {
 protected:
  CheckFramework() {
    addFirmwareJob();
    writeFleet("[]");
  }
  // The worker has none of the tests' own libraries.
  test::Ended runAlone() const {
    return test::runProgram({worker(), "17", shared()}, folder.path(),
                            {{"ZORAPI_FLEET", folder / "fleet.json"}});
  }
};

TEST_F(CheckFramework, WithoutItTheWorkerCannotBeStarted) {
  fs::remove(framework());
  EXPECT_EQ(runAlone().exitStatus, 127);
  EXPECT_EQ(state(), "WAIT");
  EXPECT_THAT(findings(), ElementsAre("error: open " + framework() + kNoFile));
}

TEST_F(CheckFramework, CutShortItCannotBeLoaded) {
  for (const std::uintmax_t size : {4096U, 100U, 0U}) {
    fs::resize_file(framework(), size);
    EXPECT_NE(runAlone().exitStatus, 0);
    EXPECT_EQ(state(), "WAIT");
    EXPECT_THAT(findings(),
                ElementsAre(StartsWith("error: " + framework() + " cannot be loaded: ")));
  }
}

TEST_F(CheckFramework, WithoutAFunctionTheWorkerCannotBeStarted) {
  installFramework(KELVANE_INCOMPLETE_FRAMEWORK);
  EXPECT_EQ(runAlone().exitStatus, 127);
  EXPECT_EQ(state(), "WAIT");
  EXPECT_THAT(findings(), Contains("error: " + framework() + " lacks zr_discover"));
  EXPECT_THAT(check().out, Not(HasSubstr("the framework greets")));
}

TEST_F(CheckFramework, ThatEndsTheProcessWhenLoadedDoesNotEndTheConsole) {
  installFramework(KELVANE_CRASHING_FRAMEWORK);
  EXPECT_EQ(runAlone().signal, SIGKILL);
  EXPECT_THAT(findings(), ElementsAre("error: " + framework() +
                                      " cannot be loaded: loading it ends with signal 9"));
}

TEST_F(CheckFramework, ThatTakesTooLongIsGivenUp) {
  installFramework(KELVANE_SLOW_FRAMEWORK);  // it rings the alarm itself
  EXPECT_THAT(findings(), ElementsAre("error: " + framework() +
                                      " cannot be loaded: loading it takes longer than 10 s"));
}

TEST_F(CheckFramework, ThatCannotBeReadCannotBeLoaded) {
  const PermissionBits bits(framework(), 0);
  EXPECT_THAT(findingsOfOrdinaryUser(),
              Contains(AllOf(StartsWith("error: " + framework() + " cannot be loaded: "),
                             HasSubstr("Permission denied"))));
}

}  // namespace
}  // namespace kelvane
