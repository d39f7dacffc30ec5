// Queries, downloads and installations by the real executable, with the simulated update engine.

#include <filesystem>
#include <map>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/File.h"
#include "tests/end_to_end/OnlineInstallation.h"
#include "tests/support/JobFiles.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace fs = std::filesystem;

using OnlineJob = OnlineInstallation;

std::vector<std::string> productsOf(const Value& rules) {
  std::vector<std::string> found;
  for (const Value& rule : rules.elements()) found.push_back(rule.get("ProductID").string());
  return found;
}

TEST_F(OnlineJob, AQueryGivesTheWholeCatalogue) {
  EXPECT_EQ(query().err, "");
  EXPECT_THAT(states(), ElementsAre("RUN", "FREE"));
  EXPECT_FALSE(versions()[0].at(0).has("output"));
  EXPECT_EQ(result(), 0);
  EXPECT_THAT(productsOf(job().get("output")), ElementsAre("sw", "fw2", "fw3"));
  EXPECT_EQ(job().get("output").at(2).get("Size").integerValue(), 12);
  EXPECT_FALSE(platform::exists(engineFolder()));
  EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/FW"), std::vector<std::string>{"Offers.plist"});
}

TEST_F(OnlineJob, ABinaryCatalogueIsReadLikeAnother) {
  makeService(R"({"format": "binary", "packages": [{"product": "fw3", "version": "1",
                  "files": {"FW_T3.img": "FW_T3.img"}}]})");
  query();
  EXPECT_THAT(productsOf(job().get("output")), ElementsAre("fw3"));
}

TEST_F(OnlineJob, TheEnginesOutputIsLogged) {
  query();
  EXPECT_THAT(log(), HasSubstr("execute EngineRunner result = "));
  EXPECT_THAT(log(), HasSubstr("getOnlineUpdateData end, retDict = {"));
}

TEST_F(OnlineJob, ADownloadPutsThePackageIntoTheDownloadArea) {
  EXPECT_EQ(download({"fw3"}).err, "");
  EXPECT_THAT(states(), ElementsAre("RUN", "FREE"));
  EXPECT_EQ(versions()[0].at(0).get("output"), Value::array({parameters("fw3")}));
  EXPECT_EQ(result(), 0);
  const Value described = job().get("output").at(0);
  EXPECT_EQ(described.get("version"), Value("3.4.0"));
  EXPECT_EQ(described.get("size").integerValue(), 12);
  EXPECT_EQ(described.get("Hash256").string().size(), 64U);
  EXPECT_EQ(described.get("file_path"), Value(area("FW") + "/FW_T3.img"));
  EXPECT_EQ(platform::readFile(area("FW") + "/FW_T3.img"), "image of fw3");
  EXPECT_FALSE(platform::exists(engineFolder()));
}

TEST_F(OnlineJob, OfSeveralProductsTheFirstIsFetchedAndAllAreLookedFor) {
  download({"fw3", "fw2"});
  EXPECT_EQ(result(), 259);
  EXPECT_EQ(job().get("resultStr"), Value("file is not found"));
  EXPECT_EQ(job().get("output").at(1).get("file_path"), Value(""));
  EXPECT_EQ(job().get("output").at(1).get("version"), Value("2.4.0"));
  download({"fw2", "fw3"});  // the other is still there
  EXPECT_EQ(result(), 0);
}

TEST_F(OnlineJob, ADownloadedImageIsFlashed) {
  writeFleet(
      R"([{"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "1.0", "cpld": "1.0",
                  "usb_bridge": "1.0"}])");
  makeImage("FW_T3.img", {"standard", "--product", "0x43", "--firmware", "2.0", "--cpld", "2.0",
                          "--usb", "1.1"});
  makeService(R"({"packages": [{"product": "fw3", "version": "2.0",
                  "files": {"FW_T3.img": "FW_T3.img"}}]})");
  download({"fw3"});
  ASSERT_EQ(result(), 0);
  updateFirmware({{"50000000000000A1", job().get("output").at(0).get("file_path").string()}});
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(fleet().get("controllers").at(0).get("firmware"), Value("2.0"));
}

TEST_F(OnlineJob, ADownloadedApplicationReplacesTheInstalledOne) {
  folder.write("Installed.app/Contents/old", "1.0");
  download({"sw"});
  ASSERT_EQ(result(), 0);
  const Value path = job().get("output").at(0).get("file_path");
  EXPECT_EQ(path, Value(area("SW") + "/Manager.app"));
  runJob("updateSW", Value::dictionary({{"file_path", path}}));
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(folder.names("Installed.app/Contents"), (std::vector<std::string>{"MacOS", "version"}));
  EXPECT_EQ(folder.read("Installed.app/Contents/version"), "2.0");
}

TEST_F(OnlineJob, ADamagedOrMissingCatalogueEndsAQueryWithoutOutput) {
  for (const char* faults : {R"({"catalogue": "none"})", R"({"catalogue": "garbage"})",
                             R"({"catalogue": "cut", "catalogue_bytes": 100})"}) {
    writeFaults(faults);
    query();
    EXPECT_THAT(states(), ElementsAre("RUN", "FREE")) << faults;
    EXPECT_FALSE(job().has("output")) << faults;
    EXPECT_EQ(result(), 0);
    fs::remove_all(engineFolder());
  }
}

TEST_F(OnlineJob, WithADamagedCatalogueAPackageCountsAllTheSame) {
  writeFaults(R"({"catalogue": "garbage"})");
  download({"fw3"});
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(job().get("output").at(0).get("version"), Value("1.0"));
  EXPECT_FALSE(job().get("output").at(0).has("size"));
}

TEST_F(OnlineJob, WithoutACatalogueTheEnginesFolderStaysAndIsSearched) {
  writeFaults(R"({"catalogue": "none"})");
  download({"fw3"});
  EXPECT_FALSE(platform::exists(area("FW")));
  EXPECT_TRUE(platform::exists(engineFolder()));
}

TEST_F(OnlineJob, AMissingPackageIsNotFound) {
  writeFaults(R"({"missing_files": ["FW_T3.img"]})");
  download({"fw3"});
  EXPECT_THAT(states(), ElementsAre("RUN", "FREE"));
  EXPECT_EQ(result(), 259);
}

TEST_F(OnlineJob, HoweverTheEngineTalksTheCatalogueCounts) {
  for (const char* faults :
       {R"({"output": "none"})", R"({"output": "not_utf8"})", R"({"chatter_lines": 100000})",
        R"({"detached": true})", R"({"seconds": 3000})"}) {
    writeFaults(faults);
    query();
    EXPECT_THAT(productsOf(job().get("output")), ElementsAre("sw", "fw2", "fw3")) << faults;
  }
}

TEST_F(OnlineJob, AnEngineThatCrashesHalfWayLeavesNoOutput) {
  for (const char* faults :
       {R"({"crash": {"after_percent": 0}})", R"({"crash": {"after_percent": 50}})",
        R"({"crash": {"after_percent": 50, "by": "abort"}})"}) {
    writeFaults(faults);
    query();
    EXPECT_THAT(states(), ElementsAre("RUN", "FREE")) << faults;
    EXPECT_FALSE(job().has("output")) << faults;
    fs::remove_all(engineFolder());
  }
}

TEST_F(OnlineJob, APackageLargerThanAGibibyteIsMovedWithItsHoles) {
  writeFaults(R"({"sparse_packages": {"FW_T3.img": 1200000000}})");
  download({"fw3"});
  EXPECT_EQ(result(), 0);
  struct stat entry = {};
  ASSERT_EQ(::stat((area("FW") + "/FW_T3.img").c_str(), &entry), 0);
  EXPECT_EQ(entry.st_size, 1'200'000'000);
  EXPECT_LT(entry.st_blocks * 512, 1 << 20);
}

TEST_F(OnlineJob, AServiceThatIsNotThereIsAFailedQueryOfTheEngineAlone) {
  fs::remove_all(folder / "service");
  const test::Ended ended = query();
  EXPECT_THAT(ended.err, HasSubstr("EngineRunner: "));  // the worker's standard error is its own
  EXPECT_THAT(states(), ElementsAre("RUN", "FREE"));
  EXPECT_FALSE(job().has("output"));
}

TEST_F(OnlineJob, OddParametersReachTheEngineAsOneArgumentEach) {
  // Each names a product whose package only comes where the name arrives unchanged.
  for (const char* product : {"a b", "'single' \"double\"", "$(touch pwned) `x`", "-url",
                              "two\nlines", "\\back*?[x]", "\xC3\xA9\xE6\x9C\xAC"}) {
    folder.write("service/packages/" + std::string(product) + "/delivered", product);
    download({product});
    EXPECT_EQ(platform::readFile(area("FW") + "/delivered"), product);
    fs::remove_all(area("FW"));
  }
  EXPECT_FALSE(platform::exists(folder / "pwned"));
}

// What a tree holds: for each name below it its kind, permissions and content or target.
std::map<std::string, std::string> treeOf(const std::string& root) {
  std::map<std::string, std::string> found;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
    const std::string path = entry.path().string();
    struct stat status = {};
    ::lstat(path.c_str(), &status);
    std::string text = std::to_string(status.st_mode);
    if (entry.is_symlink()) {
      text += " " + fs::read_symlink(entry).string();
    } else if (entry.is_regular_file()) {
      text += " " + platform::readFile(path);
    }
    found[path.substr(root.size())] = text;
  }
  return found;
}

TEST_F(OnlineJob, AFolderOfAllKindsOfEntriesIsSynchronised) {
  const std::string package = "service/packages/fw3/";
  folder.write(package + "a b/deep/er/file", "deep");
  folder.write(package + "\xC3\xA9t\xC3\xA9 \xE6\x9C\xAC.bin", "name");
  folder.write(package + "a b/.hidden inside", "kept");
  fs::create_symlink("deep", folder / package + "a b/link");
  fs::create_symlink("missing", folder / package + "dangling");
  fs::create_directories(folder / package + "empty");
  ::chmod(folder.write(package + "read-only", "r").c_str(), 0444);
  ::chmod(folder.write(package + "program", "x").c_str(), 0755);
  std::map<std::string, std::string> expected = treeOf(folder / "service/packages/fw3");
  folder.write(package + ".hidden", "left behind");
  download({"fw3"});
  std::map<std::string, std::string> found = treeOf(area("FW"));
  EXPECT_EQ(found.erase("/Offers.plist"), 1U);
  EXPECT_EQ(found, expected);
}

TEST_F(OnlineJob, ASecondDownloadReplacesItsOwnAndKeepsTheRest) {
  folder.write("service/packages/fw3/Folder/old", "");
  download({"fw3"});
  fs::remove(folder / "service/packages/fw3/Folder/old");
  folder.write("service/packages/fw3/Folder/new", "");
  folder.write("service/packages/fw3/FW_T3.img", "newer");
  folder.write("shared/tmp/OnlineUpdate/FW/other", "kept");
  download({"fw3"});
  EXPECT_EQ(folder.names("shared/tmp/OnlineUpdate/FW/Folder"), std::vector<std::string>{"new"});
  EXPECT_EQ(folder.read("shared/tmp/OnlineUpdate/FW/FW_T3.img"), "newer");
  EXPECT_EQ(folder.read("shared/tmp/OnlineUpdate/FW/other"), "kept");
}

TEST_F(OnlineJob, WhatElseIsInTheEnginesFolderGoesWithIt) {
  folder.write("engine's folder/letter", "of somebody else");
  query();
  EXPECT_FALSE(fs::exists(engineFolder()));
  EXPECT_EQ(folder.read("shared/tmp/OnlineUpdate/FW/letter"), "of somebody else");
}

TEST_F(OnlineJob, AJobFileThatIsDamagedWhileTheEngineRunsIsLeftAsItIs) {
  const std::string engine = bundle / "Contents/Resources/EngineRunner";
  fs::remove(engine);
  bundle.write("Contents/Resources/EngineRunner",
               "#!/bin/sh\nprintf '[{' > '" + (folder / test::kJobFile) + "'\n");
  fs::permissions(engine, fs::perms::owner_all);
  query();
  EXPECT_EQ(folder.read(test::kJobFile), "[{");
}

TEST_F(OnlineJob, WithoutAnEngineTheJobStaysRunning) {
  fs::remove(bundle / "Contents/Resources/EngineRunner");
  query();
  EXPECT_THAT(states(), ElementsAre("RUN"));
  EXPECT_THAT(log(), HasSubstr("/Contents/Resources/EngineRunner: No such file or directory"));
}

}  // namespace
}  // namespace kelvane
