// The faults that an update service can ask the engine for.

#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/Exception.h"
#include "platform/Json.h"
#include "platform/PropertyList.h"
#include "platform/Utf8.h"
#include "simulators/engine/ServiceFaults.h"
#include "tests/simulators/EngineWorld.h"
#include "tests/support/LogLine.h"

namespace kelvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

namespace fs = std::filesystem;

class EngineFault : public EngineWorld {};

TEST_F(EngineFault, ThereIsNoCatalogue) {
  writeFaults(R"({"catalogue": "none"})");
  fs::remove(folder / "service/catalogue.plist");
  const Ended ended = run();
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_THAT(ended.out, HasSubstr("\nthere is no catalogue\n"));
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Manager.app"));
}

TEST_F(EngineFault, TheCatalogueIsCut) {
  writeFaults(R"({"catalogue": "cut", "catalogue_bytes": 50})");
  EXPECT_THAT(dryrun().out, HasSubstr("\nthe catalogue cannot be read\n"));
  EXPECT_EQ(read("Offers.plist"), catalogue.substr(0, 50));
  writeFaults(R"({"catalogue": "cut"})");
  EXPECT_EQ(dryrun().exitStatus, 0);
  EXPECT_EQ(read("Offers.plist"), "");
}

TEST_F(EngineFault, ACutBehindTheEndChangesNothing) {
  writeFaults(R"({"catalogue": "cut", "catalogue_bytes": 5000})");
  EXPECT_EQ(dryrun().exitStatus, 0);
  EXPECT_EQ(read("Offers.plist"), catalogue);
}

TEST_F(EngineFault, TheCatalogueIsGarbage) {
  writeFaults(R"({"catalogue": "garbage"})");
  EXPECT_EQ(dryrun().exitStatus, 0);
  EXPECT_EQ(read("Offers.plist").size(), catalogue.size());
  EXPECT_TRUE(platform::readPropertyList(folder / "into/Offers.plist").isNothing());
}

TEST_F(EngineFault, AFileIsMissing) {
  writeFaults(R"({"missing_files": ["FW_T3.img"]})");
  EXPECT_EQ(run().exitStatus, 0);
  EXPECT_THAT(delivered(), ElementsAre("Manager.app", "Offers.plist"));
}

TEST_F(EngineFault, AProductIsMissing) {
  writeFaults(R"({"missing_products": ["fw"], "sparse_packages": {"x": 1}})");
  EXPECT_EQ(run().exitStatus, 0);
  EXPECT_THAT(delivered(), ElementsAre("Offers.plist"));
  writeFaults(R"({"missing_products": ["other"]})");
  EXPECT_EQ(run().exitStatus, 0);
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Manager.app", "Offers.plist"));
}

TEST_F(EngineFault, APackageIsLargerThanAGibibyteAndTakesNoRoom) {
  writeFaults(R"({"sparse_packages": {"note": "big", "Big.img": 1200000000}})");
  EXPECT_EQ(run().exitStatus, 0);
  struct stat entry = {};
  ASSERT_EQ(::stat((folder / "into/Big.img").c_str(), &entry), 0);
  EXPECT_EQ(entry.st_size, 1200000000);
  EXPECT_LT(entry.st_blocks, 2048);
  EXPECT_FALSE(fs::exists(folder / "into/note"));
}

// --- time

TEST_F(EngineFault, ARunTakesItsSecondsSpreadOverTheLines) {
  writeFaults(R"({"seconds": 3})");
  EXPECT_EQ(dryrun().exitStatus, 0);
  EXPECT_EQ(folder.read("sleeps"), "1\n1\n1\n");
  fs::remove(folder / "sleeps");
  writeFaults(R"({"seconds": 700, "output": "none"})");
  EXPECT_EQ(dryrun().exitStatus, 0);
  EXPECT_EQ(folder.read("sleeps"), "100\n100\n100\n100\n100\n100\n100\n");
}

TEST_F(EngineFault, WithoutSecondsNothingIsSlept) {
  EXPECT_EQ(run().exitStatus, 0);
  EXPECT_FALSE(fs::exists(folder / "sleeps"));
}

// --- output

TEST_F(EngineFault, ARunIsSilent) {
  writeFaults(R"({"output": "none", "chatter_lines": 5})");
  const Ended ended = run();
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.out + ended.err, "");
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Manager.app", "Offers.plist"));
}

TEST_F(EngineFault, TheOutputIsNotUtf8) {
  writeFaults(R"({"output": "not_utf8"})");
  const Ended ended = run();
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_FALSE(platform::isUtf8(ended.out));
  EXPECT_THAT(ended.out, EndsWith("done\xFF\xFE\n"));
}

TEST_F(EngineFault, ChatterComesBeforeTheEnd) {
  writeFaults(R"({"chatter_lines": 5000})");
  const Ended ended = dryrun();
  EXPECT_EQ(splitLines(ended.out).size(), 5000U + 7U);
  EXPECT_THAT(ended.out, HasSubstr("\nchatter 1 that nobody asked for\n"));
  EXPECT_THAT(ended.out, EndsWith("chatter 5000 that nobody asked for\ndone\n"));
}

TEST_F(EngineFault, EndlessChatterEndsQuietlyWithItsReader) {
  writeFaults(R"({"endless_chatter": true})");
  const Ended ended = script(
      "mkfifo pipe; \"$@\" > pipe & exec 3< pipe; "
      "while read -r line <&3; do [ \"${line#chatter 2000}\" = \"$line\" ] || break; done; "
      "exec 3<&-; wait $!; echo \"$line, status $?\"");
  EXPECT_EQ(ended.out, "chatter 2000 that nobody asked for, status 0\n");
  EXPECT_EQ(ended.err, "");
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Manager.app", "Offers.plist"));
}

TEST_F(EngineFault, EndlessChatterEndsQuietlyWhenItIsTerminated) {
  writeFaults(R"({"endless_chatter": true})");
  const Ended ended = script(
      "mkfifo pipe; \"$@\" > pipe & exec 3< pipe; "
      "while read -r line <&3; do [ \"${line#chatter}\" = \"$line\" ] || break; done; "
      "kill -TERM $!; cat <&3 > /dev/null; wait $!; echo \"status $?\"");
  EXPECT_EQ(ended.out, "status " + std::to_string(128 + SIGTERM) + "\n");
  EXPECT_THAT(ended.err, Not(HasSubstr("EngineRunner:")));
}

TEST_F(EngineFault, AReaderThatGoesAwayStopsNothing) {
  const Ended ended = script("\"$@\" >&-; echo \"status $?\"");
  EXPECT_EQ(ended.out, "status 0\n");
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Manager.app", "Offers.plist"));
}

// --- a disk that is full

TEST_F(EngineFault, AFileThatCannotBeWrittenIsTold) {
  const Ended ended = script("(ulimit -f 0; \"$@\"; echo \"status $?\") 2>&1 | cat");
  EXPECT_THAT(ended.out, ::testing::ContainsRegex("\nEngineRunner: write .*: cannot be written\n"));
  EXPECT_THAT(ended.out, EndsWith("\nstatus 1\n"));
  EXPECT_THAT(delivered(), ElementsAre());
}

TEST_F(EngineFault, ASparseFileThatCannotBeMadeIsTold) {
  writeFaults(R"({"missing_files": ["FW_T3.img"], "sparse_packages": {"Big.img": 1200000000}})");
  const Ended ended = script("(ulimit -f 1; \"$@\"; echo \"status $?\") 2>&1 | cat");
  EXPECT_THAT(ended.out, ::testing::ContainsRegex("\nEngineRunner: make .*: File too large\n"));
  EXPECT_THAT(ended.out, EndsWith("\nstatus 1\n"));
  EXPECT_THAT(delivered(), ElementsAre("Manager.app", "Offers.plist"));
}

// --- crashes

TEST_F(EngineFault, AnEngineIsKilledHalfWayAndHasToldAllThatIsDone) {
  writeFaults(R"({"crash": {"after_percent": 50}})");
  const Ended ended = run();  // the catalogue, the first package by half, the second not at all
  EXPECT_EQ(ended.signal, SIGKILL);
  EXPECT_EQ(ended.err, "");
  EXPECT_THAT(ended.out, EndsWith("FW_T3.img: 25%\nFW_T3.img: 50%\n"));
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Offers.plist"));
  EXPECT_EQ(read("Offers.plist"), catalogue);
  EXPECT_EQ(read("FW_T3.img"), std::string(500, 'i'));
}

TEST_F(EngineFault, OfAFolderThereAreTheFirstFiles) {
  writeFaults(R"({"crash": {"after_percent": 84, "by": "abort"}})");
  EXPECT_EQ(run().signal, SIGABRT);  // 52 percent of the folder, 156 bytes
  EXPECT_EQ(read("FW_T3.img"), std::string(1000, 'i'));
  EXPECT_EQ(read("Manager.app/a"), std::string(100, 'a'));
  EXPECT_EQ(read("Manager.app/b/c"), std::string(56, 'c'));
  EXPECT_FALSE(fs::exists(folder / "into/Manager.app/d"));
}

TEST_F(EngineFault, ACrashInADryRunLeavesPartOfTheCatalogue) {
  writeFaults(R"({"crash": {"after_percent": 50}})");
  EXPECT_EQ(dryrun().signal, SIGKILL);
  EXPECT_EQ(read("Offers.plist"), catalogue.substr(0, catalogue.size() / 2));
}

TEST_F(EngineFault, ACrashAtTheStartLeavesNothing) {
  writeFaults(R"({"crash": {"after_percent": 0}})");
  EXPECT_EQ(run().signal, SIGKILL);
  EXPECT_THAT(delivered(), ElementsAre());
}

TEST_F(EngineFault, ACrashAtTheEndLeavesAll) {
  writeFaults(R"({"crash": {"after_percent": 100}})");
  const Ended ended = run();
  EXPECT_EQ(ended.signal, SIGKILL);
  EXPECT_THAT(ended.out, Not(HasSubstr("done")));
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Manager.app", "Offers.plist"));
  EXPECT_EQ(read("Manager.app/d"), std::string(100, 'd'));
}

TEST_F(EngineFault, ACutLeavesWhatALinkLeadsTo) {
  folder.write("service/packages/one/other/file", "whole");
  fs::remove_all(folder / "service/packages/fw");
  fs::create_directory(folder / "service/packages/fw");
  fs::create_symlink(folder / "service/packages/one/other", folder / "service/packages/fw/link");
  writeFaults(R"({"crash": {"after_percent": 75}})");
  EXPECT_EQ(run().signal, SIGKILL);
  EXPECT_TRUE(fs::is_symlink(folder / "into/link"));
  EXPECT_EQ(folder.read("service/packages/one/other/file"), "whole");
}

// --- a child that goes on

TEST_F(EngineFault, AChildGoesOnAfterTheEngineHasEnded) {
  // More chatter than a pipe holds: all is said only when it is read, and that is after the end.
  writeFaults(R"({"detached": true, "chatter_lines": 5000})");
  const Ended ended =
      script("mkfifo pipe; \"$@\" > pipe & exec 3< pipe; wait $!; echo \"status $?\"; cat <&3");
  EXPECT_THAT(ended.out, ::testing::StartsWith("status 0\nasking "));
  EXPECT_THAT(ended.out, EndsWith("chatter 5000 that nobody asked for\ndone\n"));
  EXPECT_THAT(delivered(), ElementsAre("FW_T3.img", "Manager.app", "Offers.plist"));
}

// --- the file

std::string mistakeIn(const std::string& json) {
  try {
    const platform::Value object = platform::parseJson(json);
    simulator::parseFaults(object);
    return "";
  } catch (const platform::Exception& caught) {
    return caught.what();
  }
}

struct MistakenFaults {
  const char* json;
  const char* told;
};

class FaultsMistake : public ::testing::TestWithParam<MistakenFaults> {};

TEST_P(FaultsMistake, IsToldWithItsKey) {
  EXPECT_THAT(mistakeIn(GetParam().json), ::testing::StartsWith(GetParam().told));
}

INSTANTIATE_TEST_SUITE_P(
    OfOneKey, FaultsMistake,
    ::testing::Values(
        MistakenFaults{R"({"colour": 1})", "colour: is not a known key"},
        MistakenFaults{R"({"catalogue": "half"})", "catalogue: must be one of \"whole\", \"none\""},
        MistakenFaults{R"({"catalogue": 1})", "catalogue: must be a text"},
        MistakenFaults{R"({"catalogue": "cut", "catalogue_bytes": -1})",
                       "catalogue_bytes: must be a"},
        MistakenFaults{R"({"catalogue_bytes": 1})", "catalogue_bytes: is not a known key"},
        MistakenFaults{R"({"missing_products": "fw"})", "missing_products: must be a list"},
        MistakenFaults{R"({"missing_files": [1]})", "missing_files: must be a list of texts"},
        MistakenFaults{R"({"sparse_packages": []})", "sparse_packages: must be an object"},
        MistakenFaults{R"({"sparse_packages": {"a": "1"}})",
                       "sparse_packages.a: must be a whole number"},
        MistakenFaults{R"({"sparse_packages": {"a/b": 1}})",
                       "sparse_packages.a/b: must be the name"},
        MistakenFaults{R"({"seconds": 1.5})", "seconds: must be a whole number"},
        MistakenFaults{R"({"output": "loud"})", "output: must be one of \"text\""},
        MistakenFaults{R"({"chatter_lines": true})", "chatter_lines: must be a whole number"},
        MistakenFaults{R"({"endless_chatter": 1})", "endless_chatter: must be true or false"},
        MistakenFaults{R"({"endless_chatter": true, "output": "none"})",
                       "endless_chatter: a run without"},
        MistakenFaults{R"({"crash": 50})", "crash: must be an object"},
        MistakenFaults{R"({"crash": {}})", "crash.after_percent: is missing"},
        MistakenFaults{R"({"crash": {"after_percent": 101}})",
                       "crash.after_percent: must be a whole"},
        MistakenFaults{R"({"crash": {"after_percent": 1, "by": "x"}})", "crash.by: must be one of"},
        MistakenFaults{R"({"crash": {"after_percent": 1, "at": 1}})",
                       "crash.at: is not a known key"},
        MistakenFaults{R"({"detached": "yes"})", "detached: must be true or false"}));

TEST(FaultsFile, NotesMayStandEverywhere) {
  EXPECT_EQ(mistakeIn(R"({"note": [1], "crash": {"note": {}, "after_percent": 1},
                          "sparse_packages": {"note": "x"}})"),
            "");
}

TEST_F(EngineFault, AMistakeInTheFileIsToldWithItsPath) {
  writeFaults(R"({"seconds": "long"})");
  const Ended ended = run();
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_EQ(ended.err, "EngineRunner: service file " + (folder / "service/service.json") +
                           ": seconds: must be a whole number from 0 to 1000000\n");
  writeFaults("{");
  EXPECT_EQ(run().err, "EngineRunner: service file " + (folder / "service/service.json") +
                           ": is not JSON with an object at its top\n");
  EXPECT_THAT(delivered(), ElementsAre());
}

}  // namespace
}  // namespace kelvane::test
