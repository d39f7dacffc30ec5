// The update engine as a program: what it delivers, what it says, and how it fails.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/simulators/EngineWorld.h"
#include "tests/support/PropertyLists.h"

namespace kelvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace fs = std::filesystem;

class UpdateEngine : public EngineWorld {
 protected:
  // The one line of complaint, without the program's name; the status has to be 1.
  std::string complaint(const std::vector<std::string>& argv) const {
    const Ended ended = run(argv);
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_THAT(ended.err, StartsWith("EngineRunner: "));
    EXPECT_EQ(ended.err.find('\n'), ended.err.size() - 1);
    return ended.err.substr(14, ended.err.size() - 15);
  }
  // The first line of a complaint about the command line; the second has to be the usage.
  std::string usageComplaint(std::vector<std::string> argv) const {
    argv.insert(argv.begin(), engine);
    const Ended ended = run(argv);
    EXPECT_EQ(ended.exitStatus, 2);
    EXPECT_THAT(ended.err, HasSubstr("\nusage: EngineRunner dryrun|run -productid "));
    return ended.err.substr(14, ended.err.find('\n') - 14);
  }
};

TEST_F(UpdateEngine, TellsItsVersionAndDoesNothingElse) {
  const Ended ended = run({engine, "--version"});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.out, "EngineRunner " KELVANE_VERSION "\n");
  EXPECT_EQ(ended.err, "");
  EXPECT_EQ(usageComplaint({"--version", "dryrun"}), "--version: is not a known verb");
}

TEST_F(UpdateEngine, ADryRunLeavesTheCatalogueAlone) {
  const Ended ended = dryrun();
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.err, "");
  EXPECT_THAT(delivered(), ElementsAre("Offers.plist"));
  EXPECT_EQ(read("Offers.plist"), catalogue);
}

TEST_F(UpdateEngine, ARunLeavesTheProductsPackagesToo) {
  folder.write("service/packages/other/FW_QRX550.img", "of another product");
  EXPECT_EQ(run().exitStatus, 0);
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Manager.app", "Offers.plist"));
  EXPECT_EQ(read("FW_T3.img"), std::string(1000, 'i'));
  EXPECT_EQ(read("Manager.app/b/c"), std::string(100, 'c'));
}

TEST_F(UpdateEngine, ABinaryCatalogueIsCopiedByteForByte) {
  const std::string binary = binaryPropertyList("<dict><key>Rules</key><array/></dict>");
  folder.write("service/catalogue.plist", binary);
  EXPECT_THAT(dryrun().out, HasSubstr("packages in the catalogue: 0\n"));
  EXPECT_EQ(read("Offers.plist"), binary);
}

TEST_F(UpdateEngine, TellsItsProgressLineByLine) {
  fs::remove_all(folder / "service/packages/fw/Manager.app");
  EXPECT_EQ(run().out, "asking " + (folder / "service") +
                           " for fw, version 1.0 is installed\n"
                           "Offers.plist: 25%\nOffers.plist: 50%\nOffers.plist: 75%\n"
                           "Offers.plist: 100%\n"
                           "packages in the catalogue: 2\n"
                           "FW_T3.img: 25%\nFW_T3.img: 50%\nFW_T3.img: 75%\nFW_T3.img: 100%\n"
                           "done\n");
}

TEST_F(UpdateEngine, WhatIsInTheWayIsReplaced) {
  folder.write("into/Offers.plist/in a folder", "old");
  folder.write("into/FW_T3.img", "old");
  folder.write("into/Manager.app/old", "old");
  folder.write("into/other", "stays");
  EXPECT_EQ(run().exitStatus, 0);
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Manager.app", "Offers.plist", "other"));
  EXPECT_EQ(read("Offers.plist"), catalogue);
  EXPECT_EQ(read("FW_T3.img"), std::string(1000, 'i'));
  EXPECT_THAT(folder.names("into/Manager.app"), ElementsAre("a", "b", "d"));
}

TEST_F(UpdateEngine, AFolderReplacesAFile) {
  folder.write("into/Manager.app", "old");
  EXPECT_EQ(run().exitStatus, 0);
  EXPECT_EQ(read("Manager.app/a"), std::string(100, 'a'));
}

TEST_F(UpdateEngine, PackagesKeepPermissionsAndLinks) {
  ::chmod((folder / "service/packages/fw/Manager.app/a").c_str(), 0751);
  fs::create_symlink("a", folder / "service/packages/fw/Manager.app/link");
  fs::create_symlink("nowhere", folder / "service/packages/fw/dangling");
  EXPECT_EQ(run().exitStatus, 0);
  struct stat entry = {};
  ASSERT_EQ(::stat((folder / "into/Manager.app/a").c_str(), &entry), 0);
  EXPECT_EQ(entry.st_mode & 07777, 0751U);
  EXPECT_EQ(fs::read_symlink(folder / "into/Manager.app/link"), "a");
  EXPECT_EQ(fs::read_symlink(folder / "into/dangling"), "nowhere");
}

TEST_F(UpdateEngine, AProductWithoutPackagesGetsTheCatalogue) {
  EXPECT_EQ(run(with("-productid", "unknown")).exitStatus, 0);
  EXPECT_THAT(delivered(), ElementsAre("Offers.plist"));
}

TEST_F(UpdateEngine, AMissingFolderIsMade) {
  EXPECT_EQ(run(with("-folder", folder / "a/b")).exitStatus, 0);
  EXPECT_EQ(folder.read("a/b/Offers.plist"), catalogue);
}

// --- the command line

TEST_F(UpdateEngine, TakesTheWorkersWholeCommandLineAndLeavesTheJobFileAlone) {
  // A pipe without a reader or a writer: whoever opens it waits for ever.
  ASSERT_EQ(::mkfifo((folder / "BGPLog.json").c_str(), 0600), 0);
  std::vector<std::string> argv = commandLine("dryrun");
  argv.insert(argv.end(),
              {"-logId", "17", "-logPath", folder / "BGPLog.json", "-log", "/no/such/"});
  EXPECT_EQ(run(argv).exitStatus, 0);
}

TEST_F(UpdateEngine, ACommandLineMayEndAfterAnOptionalName) {
  std::vector<std::string> argv = commandLine("dryrun");
  argv.emplace_back("-logId");
  EXPECT_EQ(run(argv).exitStatus, 0);
  argv.insert(argv.end(), {"17", "-logPath"});
  EXPECT_EQ(run(argv).exitStatus, 0);
}

TEST_F(UpdateEngine, ValuesMayBeginWithADash) {
  folder.write("service/packages/-run/-url", "odd");
  std::vector<std::string> argv = with("-productid", "-run");
  argv[5] = "-folder";
  EXPECT_EQ(run(argv).exitStatus, 0);
  EXPECT_EQ(read("-url"), "odd");
}

TEST_F(UpdateEngine, ValuesMayBeBytesThatAreNoText) {
  const std::string product = "f\xFF w\n\"$(x)\"";
  folder.write("service/packages/" + product + "/\xFF", "odd");
  const Ended ended = run(with("-productid", product));
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_THAT(ended.out, HasSubstr("for f\xEF\xBF\xBD w\n\"$(x)\", version"));
  EXPECT_EQ(read("\xFF"), "odd");
}

TEST_F(UpdateEngine, AnotherCommandLineIsToldWithTheUsage) {
  EXPECT_EQ(usageComplaint({}), "there is no verb");
  EXPECT_EQ(usageComplaint({"walk"}), "walk: is not a known verb");
  EXPECT_EQ(usageComplaint({"run", "-productid", "fw", "-version", "1", "-url", "u"}),
            "-folder: is missing");
  EXPECT_EQ(usageComplaint({"run", "-productid"}), "-productid: has no value");
  EXPECT_EQ(usageComplaint({"run", "--url", "u"}), "--url: is not a known option");
  EXPECT_EQ(usageComplaint({"run", "-log", "a", "-log", "b"}), "-log: stands twice");
  EXPECT_EQ(
      usageComplaint({"run", "-productid", "fw", "-version", "1", "-url", "u", "-folder", ""}),
      "-folder: is empty");
}

TEST_F(UpdateEngine, EachOfTheFirstFourOptionsIsNeeded) {
  const std::vector<std::string> whole = commandLine("run");
  for (const int option : {1, 3, 5, 7}) {
    std::vector<std::string> lacking(whole.begin() + 1, whole.end());
    const auto name = lacking.begin() + option;
    const std::string told = *name + ": is missing";
    lacking.erase(name, name + 2);
    EXPECT_EQ(usageComplaint(lacking), told);
  }
}

TEST_F(UpdateEngine, AProductThatCanNameNoFolderIsRefused) {
  for (const std::string& product : std::vector<std::string>{"a/b", "..", ".", "", "/"}) {
    EXPECT_EQ(
        complaint(with("-productid", product)),
        "product \"" + product + "\": must be a name without \"/\", and neither \".\" nor \"..\"");
  }
  EXPECT_THAT(delivered(), IsEmpty());
}

// --- the service

TEST_F(UpdateEngine, AFileUrlNamesTheService) {
  fs::rename(folder / "service", folder / "my service");
  for (const std::string& start :
       std::vector<std::string>{"file://", "file://localhost", "FILE://LocalHost"}) {
    const std::string url = start + folder.path() + "/my%20%73ervice";
    fs::remove(folder / "into/Offers.plist");
    EXPECT_EQ(run(with("-url", url)).exitStatus, 0) << url;
    EXPECT_EQ(read("Offers.plist"), catalogue) << url;
  }
}

TEST_F(UpdateEngine, APlainPathIsNotDecoded) {
  fs::rename(folder / "service", folder / "a%20b");
  EXPECT_EQ(run(with("-url", "a%20b")).exitStatus, 0);
}

TEST_F(UpdateEngine, AServiceThatIsNoFolderIsTold) {
  const std::string file = folder.write("plain", "");
  EXPECT_EQ(complaint(with("-url", file)), "service " + file + ": is not a folder");
  EXPECT_EQ(complaint(with("-url", "/no/such")), "service /no/such: No such file or directory");
  EXPECT_EQ(complaint(with("-url", "file:///no/s%75ch")),
            "service /no/such: No such file or directory");
}

TEST_F(UpdateEngine, AnotherUrlIsTold) {
  EXPECT_EQ(complaint(with("-url", "https://host/x")),
            "service https://host/x: neither a path nor a file URL");
  for (const std::string& url :
       std::vector<std::string>{"file://host/x", "file://", "file://localhost"}) {
    EXPECT_EQ(complaint(with("-url", url)), "service " + url + ": is on another host");
  }
  for (const std::string& url :
       std::vector<std::string>{"file:///%", "file:///%2", "file:///%zz", "file:///%00"}) {
    EXPECT_EQ(complaint(with("-url", url)),
              "service " + url + ": a \"%\" is not followed by a byte's two digits");
  }
}

TEST_F(UpdateEngine, AServiceWithoutACatalogueIsTold) {
  fs::remove(folder / "service/catalogue.plist");
  EXPECT_EQ(complaint(commandLine("dryrun")),
            "open " + (folder / "service/catalogue.plist") + ": No such file or directory");
  EXPECT_THAT(delivered(), IsEmpty());
}

TEST_F(UpdateEngine, ACatalogueThatIsNoListIsDeliveredAllTheSame) {
  for (const char* odd : {"no list", "<plist><dict/></plist>"}) {
    folder.write("service/catalogue.plist", odd);
    EXPECT_THAT(dryrun().out, HasSubstr("\nthe catalogue cannot be read\n"));
    EXPECT_EQ(read("Offers.plist"), odd);
  }
}

TEST_F(UpdateEngine, APackageThatIsNeitherFileNorFolderIsTold) {
  const std::string pipe = folder / "service/packages/fw/A";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_THAT(complaint(commandLine("run")),
              ::testing::AllOf(StartsWith("copy " + pipe + " to "),
                               ::testing::EndsWith(": not all of it can be copied")));
  EXPECT_THAT(delivered(), ElementsAre("Offers.plist"));  // and nothing half done
}

TEST_F(UpdateEngine, AFolderThatCannotBeMadeIsTold) {
  const std::string file = folder.write("plain", "");
  const std::string start = "make folder " + file + ": ";
  EXPECT_THAT(complaint(with("-folder", file)),  // the C++ runtimes name different causes
              ::testing::AnyOf(start + "Not a directory", start + "File exists"));
}

// --- the settings

TEST_F(UpdateEngine, SettingsThatCannotBeUsedAreTold) {
  const std::string path = folder / "bundle/Config/setting.json";
  const std::string start = "settings " + path + ": ";
  for (const auto& [text, told] : std::map<std::string, std::string>{
           {"", "is not JSON with an object at its top"},
           {"[]", "is not JSON with an object at its top"},
           {"{}", "online_update_plist_name: is missing"},
           {R"({"online_update_plist_name": 1})", "online_update_plist_name: must be a text"},
           {R"({"online_update_plist_name": ""})",
            "online_update_plist_name: must be a file's name"},
           {R"({"online_update_plist_name": "a/b"})",
            "online_update_plist_name: must be a file's name"}}) {
    folder.write("bundle/Config/setting.json", text);
    EXPECT_EQ(complaint(commandLine("run")), start + told);
  }
  fs::remove(path);
  EXPECT_EQ(complaint(commandLine("run")), start + "open " + path + ": No such file or directory");
}

}  // namespace
}  // namespace kelvane::test
