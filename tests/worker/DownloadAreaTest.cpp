#include <filesystem>
#include <map>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/Json.h"
#include "platform/Text.h"
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

class DownloadArea : public testing::WorkerWorld {
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
  EXPECT_THAT(log(), ElementsAre(StartsWith("createTmpFolder error: ")));
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
  fs::create_directory(folder / "to");
  worker.syncFiles(folder / "from", folder / "to");
  EXPECT_EQ(folder.names("to"), Names{"a"});
  const auto lines = log();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_THAT(lines[0], StartsWith("syncFiles: dirs 0 = "));
  EXPECT_THAT(lines[1], StartsWith("syncFiles: dirs 1 = "));
  EXPECT_THAT((Names{lines[0].substr(20), lines[1].substr(20)}),
              UnorderedElementsAre("a", ".hidden"));
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

}  // namespace
}  // namespace kelvane
