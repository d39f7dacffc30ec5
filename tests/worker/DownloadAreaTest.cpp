#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "log/iLog.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/support/FullFile.h"
#include "tests/support/SystemCallKiller.h"
#include "tests/support/WorkerWorld.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

class DownloadArea : public test::WorkerWorld {
 protected:
  DownloadArea() {
    worker.setSettingDict(platform::parseJson(
        R"({"online_update_plist_name":"Catalogue","product_id_sw":"sw",
            "product_id_korfw":"kor","product_id_zentanfw":"zen"})"));
  }
  // What the update engine left: a catalogue and a package.
  void makeDownload() const {
    folder.write("engine/Catalogue.plist", "catalogue");
    folder.write("engine/package.img", "new");
  }
  Value record(const std::string& productId) const {
    return Value::dictionary(
        {{"log_id", "17"},
         {"job_id", "any"},
         {"input_parameters",
          Value::dictionary({{"productid", productId}, {"folder", folder / "engine"}})}});
  }
  std::string area(const std::string& name) const { return shared() + "tmp/OnlineUpdate/" + name; }
};

// --- createTmpFolder

TEST_F(DownloadArea, APathThatHoldsANulCharacterHasNothingMadeOfIt) {
  worker.createTmpFolder(folder / "a/b" + std::string("\0/c", 3));
  EXPECT_FALSE(fs::exists(folder / "a"));
  EXPECT_TRUE(log().empty());
}

TEST_F(DownloadArea, APathTooLongForTheSystemIsMadeAsFarAsItReaches) {
  std::string path = folder / "top";
  for (int i = 0; i < 20'000; ++i) path += "/d";
  worker.createTmpFolder(path);
  const std::string reached = path.substr(0, 4000);
  EXPECT_TRUE(fs::is_directory(reached.substr(0, reached.rfind('/'))));
  EXPECT_TRUE(log().empty());
}

TEST_F(DownloadArea, EveryLevelOfAPathIsMade) {
  worker.createTmpFolder(folder.path() + "//a/b//c/");
  EXPECT_TRUE(fs::is_directory(folder / "a/b/c"));
  worker.createTmpFolder(folder.path() + "//a/b//c/");
  EXPECT_TRUE(log().empty());
}

TEST_F(DownloadArea, ARelativePathIsMadeFromTheRoot) {
  worker.createTmpFolder(folder.path().substr(1) + "/made");
  EXPECT_TRUE(fs::is_directory(folder / "made"));
}

TEST_F(DownloadArea, APlainFileInTheWayStaysAndStopsTheRestInSilence) {
  folder.write("file", "x");
  worker.createTmpFolder(folder / "file/below/deeper");
  EXPECT_EQ(folder.read("file"), "x");
  EXPECT_TRUE(log().empty());
}

TEST_F(DownloadArea, AFolderThatIsNoTextIsLoggedOnce) {
  worker.createTmpFolder(Value::integer(5));
  EXPECT_THAT(log(), ElementsAre("createTmpFolder error: asked a number for its text"));
}

// --- syncFiles

TEST_F(DownloadArea, SameNamedEntriesAreReplacedWholeAndOthersStay) {
  folder.write("from/file", "new");
  folder.write("from/folder/new", "n");
  folder.write("to/file", "old");
  folder.write("to/folder/old", "o");
  folder.write("to/other", "kept");
  worker.syncFiles(folder / "from", folder / "to");
  EXPECT_EQ(folder.read("to/file"), "new");
  EXPECT_EQ(folder.names("to/folder"), Names{"new"});
  EXPECT_EQ(folder.read("to/other"), "kept");
  EXPECT_EQ(folder.names("from"), (Names{"file", "folder"}));
}

TEST_F(DownloadArea, EveryEntryHasItsLineAndHiddenOnesAreNotCopied) {
  folder.write("from/a", "");
  folder.write("from/.hidden", "");
  folder.write("from/..twice", "");
  fs::create_directory(folder / "to");
  worker.syncFiles(folder / "from", folder / "to");
  EXPECT_EQ(folder.names("to"), Names{"a"});
  const auto lines = log();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_THAT(lines[0], StartsWith("syncFiles: dirs 0 = "));
  EXPECT_THAT(lines[1], StartsWith("syncFiles: dirs 1 = "));
  EXPECT_THAT(lines[2], StartsWith("syncFiles: dirs 2 = "));
  EXPECT_THAT((Names{lines[0].substr(20), lines[1].substr(20), lines[2].substr(20)}),
              UnorderedElementsAre("a", ".hidden", "..twice"));
}

TEST_F(DownloadArea, ASourceThatIsEmptyOrMissingChangesNothing) {
  fs::create_directory(folder / "empty");
  folder.write("to/file", "old");
  worker.syncFiles(folder / "empty", folder / "to");
  worker.syncFiles(folder / "missing", folder / "to");
  EXPECT_EQ(folder.names("to"), Names{"file"});
  EXPECT_TRUE(log().empty());
}

TEST_F(DownloadArea, AFailedCopyLeavesTheTargetEntryRemoved) {
  fs::create_directory(folder / "from");
  ASSERT_EQ(::mkfifo((folder / "from/file").c_str(), 0600), 0);
  folder.write("to/file", "old");
  worker.syncFiles(folder / "from", folder / "to");
  EXPECT_TRUE(folder.names("to").empty());
}

TEST_F(DownloadArea, ADanglingLinkInTheTargetsPlaceMakesThatCopyFail) {
  folder.write("from/file", "new");
  fs::create_directory(folder / "to");
  fs::create_symlink("missing", folder / "to/file");
  worker.syncFiles(folder / "from", folder / "to");
  EXPECT_TRUE(fs::is_symlink(folder / "to/file"));
  EXPECT_EQ(folder.names("to"), Names{"file"});
}

TEST_F(DownloadArea, ASourceOrTargetThatIsNoTextIsLoggedOnceAndCopiesNothing) {
  worker.syncFiles(Value::integer(5), folder / "to");
  EXPECT_THAT(log(), ElementsAre("syncFiles error: asked a number for its text"));
  folder.write("from/file", "new");
  worker.syncFiles(folder / "from", Value());
  EXPECT_THAT(
      log(), ElementsAre("syncFiles error: asked a number for its text", "syncFiles: dirs 0 = file",
                         "syncFiles error: asked nothing for its text"));
  EXPECT_EQ(folder.names("from"), Names{"file"});
}

// --- syncDownloadFiles

TEST_F(DownloadArea, EachProductHasItsFolder) {
  for (const auto& [product, name] : std::map<std::string, std::string>{
           {"sw", "SW"}, {"kor", "KORFW"}, {"zen", "ZENTANAS"}, {"SW", "FW"}, {"", "FW"}}) {
    makeDownload();
    EXPECT_EQ(worker.syncDownloadFiles(record(product)), Value(area(name))) << product;
    EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/" + name),
              (Names{"Catalogue.plist", "package.img"}));
    EXPECT_FALSE(fs::exists(folder / "engine"));
  }
}

TEST_F(DownloadArea, AMissingProductOrSettingGoesToTheCommonFolder) {
  makeDownload();
  worker.setSettingDict(platform::parseJson(R"({"online_update_plist_name":"Catalogue"})"));
  EXPECT_EQ(worker.syncDownloadFiles(record("sw")), Value(area("FW")));
  makeDownload();
  EXPECT_EQ(worker.syncDownloadFiles(Value::dictionary(
                {{"job_id", "any"},
                 {"input_parameters", Value::dictionary({{"folder", folder / "engine"}})}})),
            Value(area("FW")));
}

TEST_F(DownloadArea, OfAListOnlyTheFirstElementCounts) {
  makeDownload();
  Value job = record("sw");
  job.set("input_parameters",
          Value::array({job.get("input_parameters"), Value::dictionary({{"folder", "/x"}})}));
  EXPECT_EQ(worker.syncDownloadFiles(job), Value(area("SW")));
  makeDownload();
  job.set("input_parameters", Value::array());
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
  EXPECT_TRUE(worker.syncDownloadFiles(job).isNothing());
  EXPECT_THAT(log(), ElementsAre(StartsWith("syncDownloadFiles: syncDownloadFiles start")));
  EXPECT_TRUE(fs::exists(folder / "engine/package.img"));
}

TEST_F(DownloadArea, OfEqualSettingsTheFirstChooses) {
  for (
      const auto& [json, name] : std::map<std::string, std::string>{
          {R"({"online_update_plist_name":"Catalogue","product_id_sw":"x","product_id_korfw":"x"})",
           "SW"},
          {R"({"online_update_plist_name":"Catalogue","product_id_korfw":"x",
                "product_id_zentanfw":"x"})",
           "KORFW"}}) {
    makeDownload();
    worker.setSettingDict(platform::parseJson(json));
    EXPECT_EQ(worker.syncDownloadFiles(record("x")), Value(area(name)));
  }
}

TEST_F(DownloadArea, ASynchronisationLogsTheRecordAndEachEntryAndNothingElse) {
  makeDownload();
  folder.write("engine/.hidden", "");
  const Value job = record("sw");
  worker.syncDownloadFiles(job);
  EXPECT_EQ(log().size(), 4U);
  EXPECT_THAT(logText(), ::testing::HasSubstr("syncDownloadFiles start, inputDict = " +
                                              platform::describe(job) + "\n"));
  EXPECT_FALSE(fs::exists(folder / "engine"));
  EXPECT_FALSE(fs::exists(area("SW/.hidden")));
}

TEST_F(DownloadArea, ARelativeFolderIsTakenFromTheCurrentFolder) {
  makeDownload();
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  const Value target = worker.syncDownloadFiles(Value::dictionary(
      {{"job_id", "x"}, {"input_parameters", Value::dictionary({{"folder", "engine"}})}}));
  fs::current_path(before);
  EXPECT_EQ(target, Value(area("FW")));
}

TEST_F(DownloadArea, AnAbsentCatalogueNameStandsAsNull) {
  folder.write("engine/(null).plist", "catalogue");
  worker.setSettingDict(Value());
  EXPECT_EQ(worker.syncDownloadFiles(record("sw")), Value(area("FW")));
}

TEST_F(DownloadArea, ASecondSynchronisationReplacesAndKeeps) {
  makeDownload();
  worker.syncDownloadFiles(record("sw"));
  folder.write("shared/tmp/OnlineUpdate/SW/kept", "k");
  makeDownload();
  folder.write("engine/package.img", "newer");
  worker.syncDownloadFiles(record("sw"));
  EXPECT_EQ(folder.read("shared/tmp/OnlineUpdate/SW/package.img"), "newer");
  EXPECT_EQ(folder.read("shared/tmp/OnlineUpdate/SW/kept"), "k");
}

TEST_F(DownloadArea, WithoutACatalogueNothingIsCopiedOrRemoved) {
  folder.write("engine/package.img", "new");
  EXPECT_TRUE(worker.syncDownloadFiles(record("sw")).isNothing());
  EXPECT_EQ(folder.names("engine"), Names{"package.img"});
  EXPECT_FALSE(fs::exists(area("SW")));
}

TEST_F(DownloadArea, AFolderAtTheCataloguesPathIsACatalogue) {
  folder.write("engine/Catalogue.plist/inside", "x");
  EXPECT_EQ(worker.syncDownloadFiles(record("sw")), Value(area("SW")));
  EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/SW/Catalogue.plist"), Names{"inside"});
  EXPECT_FALSE(fs::exists(folder / "engine"));
}

TEST_F(DownloadArea, AProductSettingThatIsNoTextIsLoggedOnceAndTouchesNothing) {
  makeDownload();
  worker.setSettingDict(platform::parseJson(
      R"({"online_update_plist_name":"Catalogue","product_id_sw":"sw","product_id_korfw":5})"));
  EXPECT_TRUE(worker.syncDownloadFiles(record("zen")).isNothing());
  EXPECT_THAT(log(), ElementsAre(StartsWith("syncDownloadFiles: syncDownloadFiles start"),
                                 "syncDownloadFiles error: compared a number as a string"));
  EXPECT_EQ(folder.names("engine"), (Names{"Catalogue.plist", "package.img"}));
  EXPECT_FALSE(fs::exists(shared() + "tmp"));
}

TEST_F(DownloadArea, MissingKeysEndItBeforeAnythingIsTouched) {
  makeDownload();
  for (const char* json : {"{}", R"({"job_id":"x"})", R"({"input_parameters":{}})",
                           R"({"job_id":"x","input_parameters":{"productid":"sw"}})"}) {
    EXPECT_TRUE(worker.syncDownloadFiles(platform::parseJson(json)).isNothing()) << json;
  }
  EXPECT_TRUE(worker.syncDownloadFiles(Value()).isNothing());
  EXPECT_EQ(folder.names("engine"), (Names{"Catalogue.plist", "package.img"}));
  EXPECT_EQ(log().size(), 5U);
  EXPECT_THAT(logText(), ::testing::HasSubstr("inputDict = (null)\n"));
  EXPECT_THAT(
      log(),
      Contains(StartsWith("syncDownloadFiles: syncDownloadFiles start, inputDict = ")).Times(5));
}

TEST_F(DownloadArea, ARecordWithoutACommandIsNotSynchronised) {
  makeDownload();
  const Value job = Value::dictionary(
      {{"log_id", "17"}, {"input_parameters", record("sw").get("input_parameters")}});
  EXPECT_TRUE(worker.syncDownloadFiles(job).isNothing());
  EXPECT_EQ(folder.names("engine"), (Names{"Catalogue.plist", "package.img"}));
  EXPECT_FALSE(fs::exists(shared() + "tmp"));
  EXPECT_THAT(log(), ElementsAre(StartsWith("syncDownloadFiles: syncDownloadFiles start")));
}

TEST_F(DownloadArea, ParametersThatAreNoneAreLoggedToTheCharacter) {
  worker.syncDownloadFiles(Value::dictionary({{"job_id", "x"}, {"input_parameters", "text"}}));
  EXPECT_EQ(log().back(), "syncDownloadFiles error: asked a string for its elements");
}

TEST_F(DownloadArea, WrongKindsAreLoggedOnce) {
  makeDownload();
  for (const char* json : {R"({"job_id":"x","input_parameters":"text"})",
                           R"({"job_id":"x","input_parameters":["text"]})"}) {
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    EXPECT_TRUE(worker.syncDownloadFiles(platform::parseJson(json)).isNothing());
    EXPECT_THAT(log(), ElementsAre(StartsWith("syncDownloadFiles: syncDownloadFiles start"),
                                   StartsWith("syncDownloadFiles error: ")));
  }
}

TEST_F(DownloadArea, ALongPathIsMadeToItsLastLevelHoweverManySlashesItHas) {
  std::string path = folder.path();
  while (path.size() < 4000) path += "/" + std::string(40, 'd');
  path += "/" + std::string(4095 - path.size() - 1, 'e');
  ASSERT_EQ(path.size(), 4095U);
  worker.createTmpFolder(std::string(5000, '/') + path);
  EXPECT_TRUE(fs::is_directory(path));
}

// --- what could be lost

TEST_F(DownloadArea, NamesThatDifferInTheirLastCharactersAloneKeepWhatIsTheirs) {
  makeDownload();
  const std::string name(240, 'x');
  for (const char* end : {"A", "B", "C"}) folder.write("engine/" + name + end, end);
  worker.syncDownloadFiles(record("kor"));
  for (const char* end : {"A", "B", "C"}) {
    EXPECT_EQ(folder.read("shared/tmp/OnlineUpdate/KORFW/" + name + end), end);
  }
  EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/KORFW").size(), 5U);
}

TEST_F(DownloadArea, TheFolderIsGoneHoweverItIsSpelled) {
  for (const char* spelling : {"engine/.", "engine/sub/..", "engine/sub/.././", "engine//"}) {
    makeDownload();
    folder.write("engine/sub/inside", "x");
    Value job = record("kor");
    job.set("input_parameters",
            Value::dictionary({{"productid", "kor"}, {"folder", folder / spelling}}));
    EXPECT_EQ(worker.syncDownloadFiles(job), Value(area("KORFW"))) << spelling;
    EXPECT_FALSE(fs::exists(folder / "engine")) << spelling;
    EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/KORFW"),
              (Names{"Catalogue.plist", "package.img", "sub"}));
  }
}

TEST_F(DownloadArea, AFolderWhoseNameHoldsANulCharacterIsNotThere) {
  makeDownload();
  Value job = record("kor");
  job.set("input_parameters",
          Value::dictionary(
              {{"productid", "kor"}, {"folder", (folder / "engine") + std::string("\0x", 2)}}));
  EXPECT_TRUE(worker.syncDownloadFiles(job).isNothing());
  EXPECT_EQ(folder.names("engine"), (Names{"Catalogue.plist", "package.img"}));
  EXPECT_FALSE(fs::exists(area("KORFW")));
}

TEST_F(DownloadArea, APackageThatCannotBeCopiedWholeIsNotThereAndTheOthersAre) {
  makeDownload();
  folder.write("engine/Manager.app/a", "a");
  fs::resize_file(folder.write("engine/Manager.app/large", "x"), 2 << 20);
  folder.write("shared/tmp/OnlineUpdate/SW/Manager.app/old", "old");
  {
    const test::FullFile full;  // so that a file of this size cannot be made
    worker.syncDownloadFiles(record("sw"));
  }
  EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/SW"), (Names{"Catalogue.plist", "package.img"}));
  EXPECT_FALSE(fs::exists(folder / "engine"));
}

TEST_F(DownloadArea, OfAPackageThatHoldsAPipeTheOtherEntriesArrive) {
  makeDownload();
  folder.write("engine/Manager.app/a", "a");
  ASSERT_EQ(::mkfifo((folder / "engine/Manager.app/pipe").c_str(), 0600), 0);
  ASSERT_EQ(::mkfifo((folder / "engine/pipe").c_str(), 0600), 0);
  folder.write("engine/Manager.app/z", "z");
  worker.syncDownloadFiles(record("sw"));
  EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/SW"),
            (Names{"Catalogue.plist", "Manager.app", "package.img"}));
  EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/SW/Manager.app"), (Names{"a", "z"}));
}

TEST_F(DownloadArea, WhatWasCopiedBeforeTheLogFailedArrives) {
  makeDownload();
  fs::create_directories(area("SW"));
  const test::FullFile full;
  fs::resize_file(full.path(), fs::file_size(full.path()) - 100);  // room for one line
  setLogPath(full.path().c_str());
  worker.syncFiles(folder / "engine", area("SW"));
  EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/SW").size(), 1U);
}

// Every file of the package, by its size; empty where there is none.
std::string described(const std::string& package) {
  std::vector<std::string> files;
  if (fs::exists(package)) {
    for (const auto& entry : fs::recursive_directory_iterator(package)) {
      if (entry.is_regular_file()) {
        files.push_back(entry.path().filename().string() + " " + std::to_string(entry.file_size()));
      }
    }
  }
  std::sort(files.begin(), files.end());
  std::string text;
  for (const std::string& file : files) text += file + "\n";
  return text;
}

TEST_F(DownloadArea, KilledAnywhereNoPackageIsThereInPart) {
  const std::string package = area("SW") + "/Manager.app";
  std::set<std::string> seen;
  setLogPath("");  // its calls are not what this is about
  bool killed = true;
  for (int n = 1; killed; ++n) {
    fs::remove_all(folder / "engine");
    fs::remove_all(area("SW"));
    makeDownload();
    folder.write("engine/Manager.app/a", "new");
    folder.write("engine/Manager.app/deep/b", "new too");
    folder.write("shared/tmp/OnlineUpdate/SW/Manager.app/a", "old one");
    folder.write("shared/tmp/OnlineUpdate/SW/Manager.app/deep/b", "old");
    killed = test::killedBeforeSystemCall(n, [&] { worker.syncDownloadFiles(record("sw")); });
    const std::string left = described(package);
    ASSERT_THAT(left, ::testing::AnyOf("", "a 3\nb 7\n", "a 7\nb 3\n"))
        << "killed before system call " << n;
    // The engine's own is given up for a copy that is in its place.
    const std::string source = described(folder / "engine/Manager.app");
    ASSERT_TRUE(source == "a 3\nb 7\n" || left == "a 3\nb 7\n") << n;
    seen.insert(left);
    ASSERT_LT(n, 2000);
  }
  EXPECT_EQ(seen.size(), 3U);
  EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/SW"),
            (Names{"Catalogue.plist", "Manager.app", "package.img"}));
}

}  // namespace
}  // namespace kelvane
