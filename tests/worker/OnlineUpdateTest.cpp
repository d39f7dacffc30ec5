// The query and the download, with a shell script in the update engine's place.

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/support/JobFiles.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/WorkerWorld.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace fs = std::filesystem;

// Shell that goes on until a signal comes; without one it ends by itself, late.
constexpr char kUntilASignal[] = "until [ $((i+=1)) -gt 20000000 ]; do :; done";

class OnlineUpdate : public test::WorkerWorld {
 protected:
  OnlineUpdate() {
    worker.setSettingDict(platform::parseJson(
        R"({"online_update_plist_name":"Offers","product_id_tarsel2fw":"fw2"})"));
    folder.write("catalogue",
                 test::xmlPropertyList(
                     "<dict><key>Rules</key><array><dict><key>ProductID</key><string>fw2</string>"
                     "<key>Version</key><string>2</string><key>Size</key><integer>7</integer>"
                     "<key>Hash256</key><string>h</string></dict></array></dict>"));
    watchJobFile([](const Value& jobs) { return jobs.at(0).get("state_id").string(); });
  }
  // The engine writes its arguments down, one a line, and does what the commands say.
  void engine(const std::string& commands = "cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"") {
    const std::string path = folder.write(
        "EngineRunner", "#!/bin/sh\nSOURCE='" + folder.path() +
                            "'\nfor a in \"$@\"; do echo \"$a\"; done > \"$SOURCE/arguments\"\n" +
                            "cp '" + shared() +
                            "utility/command/BGPLog.json' \"$SOURCE/during\"\n" + commands + "\n");
    ::chmod(path.c_str(), 0755);
    worker.setEngineRunnerPath(path);
  }
  Value parameters(const std::string& product = "fw2") const {
    return Value::dictionary({{"productid", product},
                              {"version", "1"},
                              {"url", "u"},
                              {"folder", folder / "engine folder"}});
  }
  void runJob(const char* command, const Value& inputs) {
    writeJobs(test::waitingJob(command, inputs));
    worker.run("17");
  }
  void query(const Value& inputs) { runJob("getOnlineUpdateData", inputs); }
  void download(const Value& inputs) { runJob("downloadOnlineUpdateFile", inputs); }
  static bool isQuery(const std::string& command) { return command == "getOnlineUpdateData"; }
  // Writes a job with more in its record; the record as the job runner hands it over.
  Value handedOver(const char* command, const std::string& more = "{}") const {
    const Value inputs = isQuery(command) ? parameters() : Value::array({parameters()});
    Value record = platform::parseJson(test::waitingJob(command, inputs)).at(0);
    record.setAll(platform::parseJson(more));
    writeJobs(*platform::printJson(Value::array({record})));
    record.set("result", Value::integer(0));
    record.set("resultStr", "no error");
    return record;
  }
  Value perform(const char* command, const Value& record) {
    return isQuery(command) ? worker.getOnlineUpdateData(record)
                            : worker.downloadOnlineUpdateFile(record);
  }
  Value job() const { return jobs().at(0); }
  Value during() const { return platform::parseJson(folder.read("during")).at(0); }
  // An engine that is sure to have ended when its output ends: a process of its own, which holds
  // the output, waits for that.
  void engineThatHasEnded() {
    engine(
        "cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"\n"
        "(until grep -q '^State:.Z' /proc/$$/status; do :; done) &");
  }
  static std::ptrdiff_t openFiles() {
    const fs::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
  }
  static bool hasNoChildren() { return ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD; }
  std::vector<std::string> errors() const {
    std::vector<std::string> found;
    for (const std::string& line : log()) {
      if (line.find(" error: ") != std::string::npos) found.push_back(line);
    }
    return found;
  }
};

// --- query

TEST_F(OnlineUpdate, AQueryMakesTheRulesItsOutput) {
  engine();
  query(parameters());
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
  EXPECT_EQ(job().get("output").at(0).get("ProductID"), Value("fw2"));
  EXPECT_EQ(job().get("result").integerValue(), 0);
  EXPECT_EQ(during().get("state_id"), Value("RUN"));
  EXPECT_FALSE(during().has("output"));
  EXPECT_FALSE(fs::exists(folder / "engine folder"));  // moved into the download area
  EXPECT_TRUE(fs::exists(shared() + "tmp/OnlineUpdate/FW/Offers.plist"));
}

TEST_F(OnlineUpdate, TheEngineGetsItsArgumentsInOrder) {
  engine();
  query(parameters());
  EXPECT_EQ(folder.read("arguments"), "dryrun\n-productid\nfw2\n-version\n1\n-url\nu\n-folder\n" +
                                          (folder / "engine folder") + "\n-logId\n17\n-logPath\n" +
                                          shared() + "utility/command/BGPLog.json\n-log\n" +
                                          shared() + "/utility/logs/\n");
}

TEST_F(OnlineUpdate, AQueryInLogLines) {
  engine("echo progress; cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"");
  query(parameters());
  const auto all = logWithoutStore();
  EXPECT_THAT(all, ElementsAre("run: currentJobArray = (", StartsWith("run: logId = 17"),
                               "getOnlineUpdateData: getOnlineUpdateData start, "
                               "_EngineRunnerPath = " +
                                   (folder / "EngineRunner"),
                               "getOnlineUpdateData: arguments = (",
                               "getOnlineUpdateData: execute EngineRunner result = progress",
                               "syncDownloadFiles: syncDownloadFiles start, inputDict = {",
                               "syncFiles: dirs 0 = Offers.plist",
                               "getOnlineUpdateData: getOnlineUpdateData end, retDict = {"));
}

TEST_F(OnlineUpdate, AQueryReturnsTheRecordMarkedRunningWithTheOutput) {
  engine();
  writeJobs("[]");
  Value record = Value::dictionary({{"job_id", "x"}, {"input_parameters", parameters()}});
  const Value returned = worker.getOnlineUpdateData(record);
  EXPECT_EQ(returned.get("state_id"), Value("RUN"));
  EXPECT_EQ(returned.get("output").count(), 1U);
}

TEST_F(OnlineUpdate, TheLastLineOfAQueryShowsTheRecordThatIsReturned) {
  engine();
  const Value returned = worker.getOnlineUpdateData(handedOver("getOnlineUpdateData"));
  EXPECT_EQ(returned.get("state_id"), Value("RUN"));
  EXPECT_EQ(returned.get("output").count(), 1U);
  EXPECT_THAT(
      logText(),
      HasSubstr("getOnlineUpdateData end, retDict = " + platform::describe(returned) + "\n"));
}

TEST_F(OnlineUpdate, TheSynchronisationIsGivenTheRecordAsItWasHandedOver) {
  for (const char* command : {"getOnlineUpdateData", "downloadOnlineUpdateFile"}) {
    engine();
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    const Value record = handedOver(command);
    perform(command, record);
    EXPECT_THAT(
        logText(),
        HasSubstr("syncDownloadFiles start, inputDict = " + platform::describe(record) + "\n"));
  }
}

TEST_F(OnlineUpdate, AnEarlierOutputStaysWhereTheQueryFindsNoCatalogue) {
  engine("true");
  const Value earlier = Value::array({Value::dictionary({{"ProductID", "earlier"}})});
  const Value record = handedOver("getOnlineUpdateData", R"({"output":[{"ProductID":"earlier"}]})");
  EXPECT_EQ(worker.getOnlineUpdateData(record).get("output"), earlier);
  EXPECT_EQ(job().get("output"), earlier);
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
}

TEST_F(OnlineUpdate, WhatSomeoneElseChangesInTheRecordWhileTheEngineRunsIsKept) {
  for (const char* command : {"getOnlineUpdateData", "downloadOnlineUpdateFile"}) {
    engine(
        "cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"\n"
        "sed 's/\"before\"/\"after\"/' \"$SOURCE/during\" > '" +
        shared() + "utility/command/BGPLog.json'");
    perform(command, handedOver(command, R"({"note":"before"})"));
    EXPECT_EQ(during().get("note"), Value("before")) << command;
    EXPECT_EQ(job().get("note"), Value("after")) << command;
    EXPECT_EQ(job().get("state_id"), Value("FREE")) << command;
    EXPECT_EQ(job().get("output").count(), 1U) << command;
  }
}

TEST_F(OnlineUpdate, AJobWhoseRecordIsGoneFinishesTheLastRecordOfTheFile) {
  for (const char* command : {"getOnlineUpdateData", "downloadOnlineUpdateFile"}) {
    folder.write("others", R"([{"log_id":"a","state_id":"RUN"},{"log_id":"b"}])");
    engine(
        "cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"; echo image > \"$9/FW_QRX550.img\"\n"
        "cp \"$SOURCE/others\" '" +
        shared() + "utility/command/BGPLog.json'");
    const Value returned = perform(command, handedOver(command));
    EXPECT_EQ(returned.get("output").count(), 1U) << command;
    Value last = Value::dictionary({{"log_id", "b"}, {"state_id", "FREE"}});
    last.set("output", returned.get("output"));
    EXPECT_EQ(jobs(), Value::array({platform::parseJson(folder.read("others")).at(0), last}))
        << command;
  }
}

TEST_F(OnlineUpdate, AnEngineWithoutACatalogueEndsTheQueryWithoutOutput) {
  engine("true");
  query(parameters());
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
  EXPECT_FALSE(job().has("output"));
  EXPECT_TRUE(fs::is_directory(folder / "engine folder"));
}

TEST_F(OnlineUpdate, AnEmptyListOfRulesIsStillAnOutput) {
  folder.write("catalogue", test::binaryPropertyList("<dict><key>Rules</key><array/></dict>"));
  engine();
  query(parameters());
  EXPECT_EQ(job().get("output"), Value::array());
}

TEST_F(OnlineUpdate, ARuleThatJsonHasNoFormForLeavesTheJobRunning) {
  folder.write("catalogue", test::xmlPropertyList(
                                "<dict><key>Rules</key><array><data>AA==</data></array></dict>"));
  engine();
  query(parameters());
  EXPECT_EQ(job().get("state_id"), Value("RUN"));
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(OnlineUpdate, TheEnginesExitStatusDoesNotCount) {
  engine("cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"; exit 3");
  query(parameters());
  EXPECT_EQ(job().get("output").count(), 1U);
}

TEST_F(OnlineUpdate, EngineOutputThatIsNoTextShowsAsNull) {
  engine("printf 'a\\377'; cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"");
  query(parameters());
  EXPECT_THAT(log(), Contains("getOnlineUpdateData: execute EngineRunner result = (null)"));
  EXPECT_EQ(job().get("output").count(), 1U);
}

TEST_F(OnlineUpdate, AQueryThatLacksAParameterWritesNothing) {
  engine();
  const Value complete = parameters();
  for (const char* key : {"productid", "version", "url", "folder"}) {
    Value lacking = Value::dictionary();
    for (const auto& [name, value] : complete.entries()) {
      if (name != key) lacking.set(name, value);
    }
    query(lacking);
    EXPECT_EQ(job().get("state_id"), Value("WAIT")) << key;
    EXPECT_EQ(log().back(), "getOnlineUpdateData: getOnlineUpdateData end, retDict = {");
  }
  EXPECT_FALSE(fs::exists(folder / "arguments"));
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(OnlineUpdate, AQueryWithoutParametersLogsItsStartAndEndAndNothingElse) {
  engine();
  const Value record = Value::dictionary({{"log_id", "17"}, {"job_id", "getOnlineUpdateData"}});
  EXPECT_EQ(worker.getOnlineUpdateData(record), record);
  EXPECT_THAT(log(), ElementsAre("getOnlineUpdateData: getOnlineUpdateData start, "
                                 "_EngineRunnerPath = " +
                                     (folder / "EngineRunner"),
                                 "getOnlineUpdateData: getOnlineUpdateData end, retDict = {"));
  EXPECT_EQ(worker.getOnlineUpdateData(Value()), Value());
  EXPECT_FALSE(fs::exists(folder / "arguments"));
}

TEST_F(OnlineUpdate, AnEngineThatLivesOnIsToldToEndAfterTheLastSave) {
  // It closes its output, and looks at the job file when the signal comes.
  engine(
      "cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"\n"
      "trap 'cp \"" +
      shared() +
      "utility/command/BGPLog.json\" \"$SOURCE/after\"; exit' TERM\n"
      "exec 1>&- 2>/dev/null\n" +
      kUntilASignal);
  const auto stateAfter = [this] {
    while (::waitpid(-1, nullptr, 0) > 0) continue;  // until the engine has ended
    return platform::parseJson(folder.read("after")).at(0).get("state_id");
  };
  query(parameters());
  EXPECT_EQ(stateAfter(), Value("FREE"));
  download(Value::array({parameters()}));
  EXPECT_EQ(stateAfter(), Value("FREE"));
}

TEST_F(OnlineUpdate, AnEngineThatHasEndedIsReaped) {
  engineThatHasEnded();
  query(parameters());
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
  EXPECT_TRUE(hasNoChildren());
  download(Value::array({parameters()}));
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
  EXPECT_TRUE(hasNoChildren());
}

TEST_F(OnlineUpdate, AnEngineThatLivesOnIsEndedByTheSignal) {
  // It closes its output and lives on for as long as the fifo is open here.
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  engine("exec cat <\"$SOURCE/fifo\" >/dev/null");
  for (const char* command : {"getOnlineUpdateData", "downloadOnlineUpdateFile"}) {
    const int fifo = ::open((folder / "fifo").c_str(), O_RDWR);
    runJob(command, isQuery(command) ? parameters() : Value::array({parameters()}));
    ::close(fifo);
    int status = 0;
    if (::waitpid(-1, &status, 0) == -1) continue;  // it was quick to end and is reaped already
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << command;
  }
}

TEST_F(OnlineUpdate, NoFileStaysOpen) {
  engine();
  const auto before = openFiles();
  query(parameters());
  download(Value::array({parameters()}));
  EXPECT_EQ(openFiles(), before);
}

TEST_F(OnlineUpdate, TheEnginesStandardErrorIsTheWorkersOwn) {
  engine("echo complaint >&2");
  ::testing::internal::CaptureStderr();
  query(parameters());
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "complaint\n");
}

TEST_F(OnlineUpdate, AnEngineThatCannotBeStartedIsOneErrorLineAndLeavesTheJobRunning) {
  for (const Value& path : {Value(), Value(folder / "missing"), Value(folder.path()),
                            Value(folder.write("plain", "text"))}) {
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    worker.setEngineRunnerPath(path);
    query(parameters());
    EXPECT_EQ(job().get("state_id"), Value("RUN"));
    EXPECT_THAT(errors(), ElementsAre(StartsWith("getOnlineUpdateData error: start")));
    EXPECT_EQ(log().back(), errors().back());
  }
}

TEST_F(OnlineUpdate, AListOfParametersIsNotTakenByTheQuery) {
  engine();
  query(Value::array({parameters()}));
  EXPECT_EQ(job().get("state_id"), Value("WAIT"));
  EXPECT_THAT(errors(), ElementsAre(StartsWith("getOnlineUpdateData error: ")));
}

TEST_F(OnlineUpdate, AParameterThatIsNoTextIsOneErrorLineBeforeAnythingIsWritten) {
  engine();
  Value wrong = parameters();
  wrong.set("version", Value::integer(1));
  query(wrong);
  EXPECT_EQ(job().get("state_id"), Value("WAIT"));
  EXPECT_THAT(errors(), ElementsAre(StartsWith("getOnlineUpdateData error: ")));
}

TEST_F(OnlineUpdate, TheFolderIsMadeBeforeTheArgumentsAre) {
  Value wrong = parameters();
  wrong.set("version", Value::integer(1));
  for (const char* command : {"getOnlineUpdateData", "downloadOnlineUpdateFile"}) {
    engine();
    fs::remove_all(folder / "engine folder");
    runJob(command, isQuery(command) ? wrong : Value::array({wrong}));
    EXPECT_EQ(job().get("state_id"), Value("WAIT")) << command;
    EXPECT_EQ(errors().back(), std::string(command) + " error: asked a number for its text");
    EXPECT_TRUE(fs::is_directory(folder / "engine folder")) << command;
  }
  EXPECT_FALSE(fs::exists(folder / "arguments"));
}

TEST_F(OnlineUpdate, WithoutALogIdTheArgumentsEndThere) {
  engine();
  worker.getOnlineUpdateData(
      Value::dictionary({{"job_id", "x"}, {"input_parameters", parameters()}}));
  const std::string arguments = folder.read("arguments");
  EXPECT_EQ(arguments.substr(arguments.size() - 8), "\n-logId\n");
}

TEST_F(OnlineUpdate, WithoutAJobFilePathTheArgumentsEndOnePairLater) {
  engine();
  worker.setBGPPath(Value());
  worker.getOnlineUpdateData(
      Value::dictionary({{"job_id", "x"}, {"log_id", "17"}, {"input_parameters", parameters()}}));
  EXPECT_THAT(logText(), ::testing::HasSubstr("\"-logPath\"\n)"));
}

TEST_F(OnlineUpdate, OddParametersReachTheEngineAsOneArgumentEach) {
  engine("for a in \"$@\"; do printf '<%s>' \"$a\"; done > \"$SOURCE/exact\"");
  Value odd = parameters();
  odd.set("productid", "a \"b\" $(touch x) 'c'");
  odd.set("version", "-v");
  odd.set("url", "line\nfeed \xC3\xA9");
  query(odd);
  EXPECT_THAT(folder.read("exact"),
              StartsWith("<dryrun><-productid><a \"b\" $(touch x) 'c'><-version><-v><-url>"
                         "<line\nfeed \xC3\xA9><-folder><"));
}

// --- download

TEST_F(OnlineUpdate, ADownloadDescribesWhatCame) {
  engine("cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"; echo image > \"$9/FW_QRX550.img\"");
  download(Value::array({parameters()}));
  const std::string area = shared() + "tmp/OnlineUpdate/FW";
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
  EXPECT_EQ(job().get("result").integerValue(), 0);
  EXPECT_EQ(job().get("resultStr"), Value("no error"));
  const Value found = job().get("output").at(0);
  EXPECT_EQ(found.get("folder"), Value(area));
  EXPECT_EQ(found.get("version"), Value("2"));
  EXPECT_EQ(found.get("file_path"), Value(area + "/FW_QRX550.img"));
  EXPECT_EQ(during().get("state_id"), Value("RUN"));
  EXPECT_EQ(during().get("output"), Value::array({parameters()}));
  EXPECT_THAT(folder.read("arguments"), StartsWith("run\n-productid\nfw2\n"));
}

TEST_F(OnlineUpdate, ADownloadLogsNothingOfItsOwn) {
  engine();
  download(Value::array({parameters()}));
  EXPECT_THAT(logWithoutStore(),
              ElementsAre("run: currentJobArray = (", StartsWith("run: logId = 17"),
                          "syncDownloadFiles: syncDownloadFiles start, inputDict = {",
                          "syncFiles: dirs 0 = Offers.plist"));
}

TEST_F(OnlineUpdate, AMissingPackageIsNotFound) {
  engine();
  download(Value::array({parameters()}));
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
  EXPECT_EQ(job().get("result").integerValue(), 259);
  EXPECT_EQ(job().get("resultStr"), Value("file is not found"));
  EXPECT_EQ(job().get("output").at(0).get("file_path"), Value(""));
}

TEST_F(OnlineUpdate, TheEngineIsStartedOnceForAllProductsWithTheFirstOnesParameters) {
  engine(
      "echo once >> \"$SOURCE/starts\"; cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"; "
      "echo image > \"$9/FW_QRX550.img\"");
  Value second = parameters("second");
  second.set("version", "8");
  second.set("url", "other");
  download(Value::array({parameters(), second, parameters("third")}));
  EXPECT_EQ(folder.read("starts"), "once\n");
  EXPECT_THAT(folder.read("arguments"),
              StartsWith("run\n-productid\nfw2\n-version\n1\n-url\nu\n-folder\n"));
  const Value described = job().get("output");
  ASSERT_EQ(described.count(), 3U);
  EXPECT_EQ(described.at(1).get("productid"), Value("second"));
  EXPECT_EQ(described.at(2).get("productid"), Value("third"));
  EXPECT_EQ(job().get("result").integerValue(), 0);
}

TEST_F(OnlineUpdate, WhileTheEngineRunsTheOutputIsTheWholeListThatWasAskedFor) {
  engine();
  const Value asked = Value::array({parameters(), parameters("second")});
  download(asked);
  EXPECT_EQ(during().get("state_id"), Value("RUN"));
  EXPECT_EQ(during().get("output"), asked);
}

TEST_F(OnlineUpdate, AnElementWithoutAProductIsNeitherDescribedNorLookedFor) {
  engine("cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"; echo image > \"$9/FW_QRX550.img\"");
  download(Value::array({parameters(), Value::dictionary()}));
  EXPECT_EQ(job().get("output").count(), 1U);
  EXPECT_EQ(job().get("result").integerValue(), 0);
}

TEST_F(OnlineUpdate, OfSeveralProductsOneMissingIsEnough) {
  worker.setSettingDict(platform::parseJson(
      R"({"online_update_plist_name":"Offers","product_id_tarsel2fw":"fw2",
          "product_id_tarsel3fw":"fw3"})"));
  engine("cp \"$SOURCE/catalogue\" \"$9/Offers.plist\"; echo image > \"$9/FW_QRX550.img\"");
  download(Value::array({parameters(), parameters("fw3")}));
  EXPECT_EQ(job().get("output").count(), 2U);
  EXPECT_EQ(job().get("result").integerValue(), 259);
  EXPECT_EQ(job().get("resultStr"), Value("file is not found"));
}

TEST_F(OnlineUpdate, ADownloadWhoseEngineCannotBeStartedIsOneErrorLineAndStaysRunning) {
  worker.setEngineRunnerPath(folder / "missing");
  download(Value::array({parameters()}));
  EXPECT_EQ(job().get("state_id"), Value("RUN"));
  EXPECT_EQ(job().get("output"), Value::array({parameters()}));
  EXPECT_THAT(errors(), ElementsAre(StartsWith("downloadOnlineUpdateFile error: start")));
  EXPECT_EQ(log().back(), errors().back());
}

TEST_F(OnlineUpdate, WithoutACatalogueEachElementsOwnFolderIsSearched) {
  engine("echo image > \"$9/FW_QRX550.img\"");
  download(Value::array({parameters()}));
  EXPECT_EQ(job().get("output").at(0).get("file_path"),
            Value(folder / "engine folder/FW_QRX550.img"));
  EXPECT_EQ(job().get("result").integerValue(), 0);
}

TEST_F(OnlineUpdate, ADownloadThatLacksItsParametersDoesNothing) {
  engine();
  for (const Value& inputs : {Value::array(), Value::array({Value::dictionary()}),
                              Value::array({Value::dictionary({{"productid", "fw2"}})})}) {
    const Value record = Value::dictionary({{"log_id", "17"}, {"input_parameters", inputs}});
    EXPECT_EQ(worker.downloadOnlineUpdateFile(record), record);
  }
  EXPECT_EQ(worker.downloadOnlineUpdateFile(Value::dictionary()), Value::dictionary());
  EXPECT_THAT(log(), IsEmpty());
  EXPECT_FALSE(fs::exists(folder / "arguments"));
}

TEST_F(OnlineUpdate, ParametersOfAWrongKindAreOneErrorLine) {
  engine();
  download(parameters());
  EXPECT_EQ(job().get("state_id"), Value("WAIT"));
  EXPECT_THAT(errors(), ElementsAre(StartsWith("downloadOnlineUpdateFile error: ")));
}

TEST_F(OnlineUpdate, ADownloadReturnsTheRecordMarkedRunningWithoutTheCheck) {
  engine();
  const Value returned = worker.downloadOnlineUpdateFile(
      Value::dictionary({{"job_id", "x"}, {"input_parameters", Value::array({parameters()})}}));
  EXPECT_EQ(returned.get("state_id"), Value("RUN"));
  ASSERT_EQ(returned.get("output").count(), 1U);
  EXPECT_EQ(returned.get("output").at(0).get("Hash256"), Value("h"));
  EXPECT_EQ(returned.get("output").at(0).get("file_path"), Value(""));
  EXPECT_FALSE(returned.has("result"));
}

TEST_F(OnlineUpdate, TheCheckPassesWhatIsThere) {
  const Value there = Value::dictionary({{"file_path", folder.path()}});
  const Value notFound =
      Value::dictionary({{"result", Value::integer(259)}, {"resultStr", "file is not found"}});
  EXPECT_EQ(worker.checkDownloadFilePath(Value::array()), Value::dictionary());
  EXPECT_EQ(worker.checkDownloadFilePath(Value::array({there})), Value::dictionary());
  for (const Value& missing : {Value::dictionary(), Value::dictionary({{"file_path", ""}}),
                               Value::dictionary({{"file_path", folder / "no"}})}) {
    EXPECT_EQ(worker.checkDownloadFilePath(Value::array({there, missing})), notFound);
  }
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(OnlineUpdate, ACheckOfAWrongKindFindsNothingMissingAndIsLoggedOnce) {
  EXPECT_EQ(worker.checkDownloadFilePath("text"), Value::dictionary());
  EXPECT_THAT(log(), ElementsAre("checkDownloadFilePath error: asked a string for its elements"));
}

TEST_F(OnlineUpdate, ADescribedPathThatIsNoTextIsLoggedOnce) {
  EXPECT_EQ(worker.checkDownloadFilePath(
                Value::array({Value::dictionary({{"file_path", Value::integer(1)}})})),
            Value::dictionary());
  EXPECT_THAT(log(), ElementsAre("checkDownloadFilePath error: asked a number for its text"));
}

// --- what the engine could do harm with

// The engine would get the part before it.
TEST_F(OnlineUpdate, AParameterThatHoldsANulCharacterStartsNothing) {
  for (const char* command : {"getOnlineUpdateData", "downloadOnlineUpdateFile"}) {
    for (const char* key : {"productid", "version", "url", "folder"}) {
      engine();
      folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
      Value inputs = parameters();
      inputs.set(key, inputs.get(key).string() + std::string("\0x", 2));
      const bool isList = std::string(command) == "downloadOnlineUpdateFile";
      runJob(command, isList ? Value::array({inputs}) : inputs);
      EXPECT_EQ(job().get("state_id"), Value("WAIT")) << command << key;
      EXPECT_FALSE(fs::exists(folder / "arguments")) << command << key;
      EXPECT_THAT(errors(), ElementsAre(StartsWith(std::string(command) +
                                                   " error: start: an argument holds a NUL")));
    }
  }
}

TEST_F(OnlineUpdate, AnEnginePathThatHoldsANulCharacterStartsNothing) {
  engine();
  worker.setEngineRunnerPath((folder / "EngineRunner") + std::string("\0x", 2));
  query(parameters());
  EXPECT_EQ(job().get("state_id"), Value("WAIT"));
  EXPECT_FALSE(fs::exists(folder / "arguments"));
  EXPECT_THAT(errors(), ElementsAre(StartsWith("getOnlineUpdateData error: start: ")));
}

TEST_F(OnlineUpdate, ADescriptionWhosePathHoldsANulCharacterIsNotFound) {
  const Value check = worker.checkDownloadFilePath(
      Value::array({Value::dictionary({{"file_path", std::string("/tmp\0nothing", 12)}})}));
  EXPECT_EQ(check.get("result").integerValue(), 259);
}

// Containers inside one another in the rule, the list's own two and the rule included.
std::string nestedRule(int containers) {
  std::string arrays;
  for (int i = 3; i < containers; ++i) arrays += "<array>";
  std::string ends;
  for (int i = 3; i < containers; ++i) ends += "</array>";
  return test::xmlPropertyList("<dict><key>Rules</key><array><dict><key>x</key>" + arrays + ends +
                               "</dict></array></dict>");
}

TEST_F(OnlineUpdate, ACatalogueAsDeepAsCanBeReadCanBeWritten) {
  engine();
  folder.write("catalogue", nestedRule(511));
  query(parameters());
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
  EXPECT_EQ(job().get("output").count(), 1U);
}

TEST_F(OnlineUpdate, ADeeperCatalogueIsNoneAndTheJobEnds) {
  for (const int containers : {512, 513, 600}) {
    engine();
    folder.write("catalogue", nestedRule(containers));
    query(parameters());
    EXPECT_EQ(job().get("state_id"), Value("FREE")) << containers;
    EXPECT_FALSE(job().has("output")) << containers;
  }
}

TEST_F(OnlineUpdate, ACatalogueThatIsAPipeIsNoneAndTheJobEnds) {
  engine("mkfifo \"$9/Offers.plist\"");
  query(parameters());
  EXPECT_EQ(job().get("state_id"), Value("FREE"));
  EXPECT_FALSE(job().has("output"));
}

}  // namespace
}  // namespace kelvane
