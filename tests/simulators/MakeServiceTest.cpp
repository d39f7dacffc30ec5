// make-service as a program: what a description becomes, and how its mistakes are told.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "platform/PropertyList.h"
#include "tests/support/FullFile.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::test {
namespace {

using platform::Value;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace fs = std::filesystem;

// SHA-256 of "abc".
constexpr char kHashOfAbc[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

class MakeService : public ::testing::Test {
 protected:
  MakeService() {
    folder.write("image", "abc");
    folder.write("Manager.app/b", "b");
    folder.write("Manager.app/a/z", "a");
    folder.write("Manager.app/c", "c");
  }
  Ended make(const std::string& json, const std::string& into = "service") const {
    folder.write("description.json", json);
    return runProgram({KELVANE_MAKE_SERVICE, "description.json", into}, folder.path());
  }
  // A service of these packages, read again.
  Value rules(const std::string& packages, const std::string& more = "") const {
    const Ended ended = make(R"({"packages": [)" + packages + "]" + more + "}");
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_EQ(ended.out + ended.err, "");
    return platform::readPropertyList(folder / "service/catalogue.plist").get("Rules");
  }
  std::string complaint(const std::string& json, const std::string& into = "service") const {
    const Ended ended = make(json, into);
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_FALSE(fs::exists(folder / "service/catalogue.plist"));
    EXPECT_THAT(ended.err, StartsWith("make-service: "));
    return ended.err.substr(14, ended.err.size() - 15);
  }

  TempFolder folder;
};

TEST_F(MakeService, ADescriptionBecomesACatalogueAndPackages) {
  const Value made = rules(
      R"({"product": "4301", "version": "2.4", "minimum_os": "10.15.0", "note": "any",
          "codebase": "https://host/FW_T3.img", "files": {"FW_T3.img": "image"}})");
  EXPECT_EQ(made, Value::array({Value::dictionary({{"ProductID", "4301"},
                                                   {"Version", "2.4"},
                                                   {"Size", Value::integer(3)},
                                                   {"Hash256", kHashOfAbc},
                                                   {"MinimumOSVersion", "10.15.0"},
                                                   {"Codebase", "https://host/FW_T3.img"}})}));
  EXPECT_THAT(folder.names("service"), ElementsAre("catalogue.plist", "packages"));
  EXPECT_EQ(folder.read("service/packages/4301/FW_T3.img"), "abc");
}

TEST_F(MakeService, TheCatalogueIsXmlOrBinary) {
  EXPECT_EQ(rules("").count(), 0U);
  EXPECT_THAT(folder.read("service/catalogue.plist"), StartsWith("<?xml"));
  EXPECT_EQ(rules("", R"(, "format": "xml")").count(), 0U);
  EXPECT_THAT(folder.read("service/catalogue.plist"), StartsWith("<?xml"));
  EXPECT_EQ(rules("", R"(, "format": "binary")"), Value::array());
  EXPECT_THAT(folder.read("service/catalogue.plist"), StartsWith("bplist00"));
}

TEST_F(MakeService, AFoldersHashIsThatOfItsFilesInTheOrderOfTheirPaths) {
  fs::create_symlink("b", folder / "Manager.app/link");  // which does not count
  const Value made =
      rules(R"({"product": "sw", "version": "1", "files": {"Manager.app": "Manager.app"}})");
  EXPECT_EQ(made.at(0).get("Size").integerValue(), 3);
  EXPECT_EQ(made.at(0).get("Hash256"), Value(kHashOfAbc));
  EXPECT_EQ(folder.read("service/packages/sw/Manager.app/a/z"), "a");
  EXPECT_TRUE(fs::is_symlink(folder / "service/packages/sw/Manager.app/link"));
}

TEST_F(MakeService, OfSeveralEntriesTheOrderIsThatOfTheirNames) {
  folder.write("c", "c");
  const Value made = rules(
      R"({"product": "fw", "version": "1",
          "files": {"note": 1, "3": "c", "1": "Manager.app/a", "2": "Manager.app/b"}})");
  EXPECT_EQ(made.at(0).get("Hash256"), Value(kHashOfAbc));
  EXPECT_THAT(folder.names("service/packages/fw"), ElementsAre("1", "2", "3"));
}

TEST_F(MakeService, ALinkIsDeliveredAsWhatItLeadsTo) {
  fs::create_symlink("image", folder / "link");
  const Value made = rules(R"({"product": "fw", "version": "1", "files": {"x": "link"}})");
  EXPECT_EQ(made.at(0).get("Hash256"), Value(kHashOfAbc));
  EXPECT_FALSE(fs::is_symlink(folder / "service/packages/fw/x"));
}

TEST_F(MakeService, FilesAreLookedForBesideTheDescription) {
  folder.write("below/description.json",
               R"({"packages": [{"product": "a", "version": "1", "files": {"x": "../image"}},
                                {"product": "b", "version": "1", "files": {"x": ")" +
                   (folder / "image") + R"("}}]})");
  const Ended ended =
      runProgram({KELVANE_MAKE_SERVICE, folder / "below/description.json", "made"}, folder.path());
  EXPECT_EQ(ended.err, "");
  EXPECT_EQ(folder.read("made/packages/a/x"), "abc");
  EXPECT_EQ(folder.read("made/packages/b/x"), "abc");
}

TEST_F(MakeService, ARuleWithoutFilesHasNeitherSizeNorHash) {
  EXPECT_EQ(rules(R"({"product": "a/b", "version": "1"})"),
            Value::array({Value::dictionary({{"ProductID", "a/b"}, {"Version", "1"}})}));
  EXPECT_THAT(folder.names("service"), ElementsAre("catalogue.plist"));
}

TEST_F(MakeService, FurtherKeysOfARuleAreCarriedAlongAndComeFirst) {
  const Value made = rules(
      R"({"product": "fw", "version": "1", "files": {"x": "image"},
          "rule": {"Size": 7, "Title": "Firmware", "note": 1.5, "More": {"list": [true, -1]}}})");
  EXPECT_EQ(made.at(0),
            Value::dictionary({{"ProductID", "fw"},
                               {"Version", "1"},
                               {"Size", Value::integer(7)},
                               {"Hash256", kHashOfAbc},
                               {"Title", "Firmware"},
                               {"note", Value::number("1.5")},
                               {"More", platform::parseJson(R"({"list":[true,-1]})")}}));
}

TEST_F(MakeService, KeysCanBeLeftOut) {
  const Value made = rules(
      R"({"product": "fw", "version": "1", "files": {"x": "image"},
          "leave_out": ["Hash256", "ProductID"]})");
  EXPECT_EQ(made.at(0), Value::dictionary({{"Version", "1"}, {"Size", Value::integer(3)}}));
}

TEST_F(MakeService, TwoRulesOfAProductMayDeliverTheSameFile) {
  const std::string one = R"({"product": "fw", "version": "1", "files": {"x": "image"}})";
  EXPECT_EQ(rules(one + "," + one).count(), 2U);
  EXPECT_EQ(folder.read("service/packages/fw/x"), "abc");
}

TEST_F(MakeService, TheServiceObjectBecomesTheFaults) {
  rules("", R"(, "service": {"note": "slow", "seconds": 3})");
  EXPECT_EQ(platform::parseJson(folder.read("service/service.json")),
            platform::parseJson(R"({"note": "slow", "seconds": 3})"));
}

TEST_F(MakeService, SparseFilesStaySmallInTheCatalogueOfTheirSize) {
  folder.write("sparse", "");
  fs::resize_file(folder / "sparse", 3000000);
  EXPECT_EQ(rules(R"({"product": "fw", "version": "1", "files": {"x": "sparse"}})")
                .at(0)
                .get("Size")
                .integerValue(),
            3000000);
  EXPECT_EQ(fs::file_size(folder / "service/packages/fw/x"), 3000000U);
}

// --- the folder

TEST_F(MakeService, AServiceMadeBeforeIsReplaced) {
  rules(R"({"product": "fw", "version": "1", "files": {"x": "image"}})",
        R"(, "service": {"seconds": 3})");
  EXPECT_EQ(rules("").count(), 0U);
  EXPECT_THAT(folder.names("service"), ElementsAre("catalogue.plist"));
  EXPECT_THAT(folder.names(), ElementsAre("Manager.app", "description.json", "image", "service"));
}

TEST_F(MakeService, AnEmptyFolderIsFilledAndMissingOnesAreMade) {
  fs::create_directory(folder / "service");
  EXPECT_EQ(rules("").count(), 0U);
  EXPECT_EQ(make(R"({"packages": []})", "a/b/c/").exitStatus, 0);
  EXPECT_THAT(folder.names("a/b/c"), ElementsAre("catalogue.plist"));
}

TEST_F(MakeService, AFolderThatIsNoServiceIsLeftAlone) {
  folder.write("service/mine", "mine");
  EXPECT_EQ(
      complaint(R"({"packages": []})"),
      "folder " + (folder / "service") + ": is not empty, and no service that was made before");
  EXPECT_EQ(folder.read("service/mine"), "mine");
  EXPECT_EQ(complaint(R"({"packages": []})", "image"),
            "folder " + (folder / "image") + ": is not a folder");
}

TEST_F(MakeService, AFailureLeavesTheServiceMadeBefore) {
  rules("");
  fs::resize_file(folder.write("Manager.app/large", ""), 2 << 20);
  const FullFile full;  // so that a file of this size cannot be made
  const Ended ended =
      make(R"({"packages": [{"product": "fw", "version": "1", "files": {"x": "Manager.app"}}]})");
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_THAT(ended.err, HasSubstr("make-service: copy " + (folder / "Manager.app") + " to "));
  EXPECT_THAT(ended.err, HasSubstr(": not all of it can be copied\n"));
  EXPECT_THAT(folder.names("service"), ElementsAre("catalogue.plist"));
  EXPECT_THAT(folder.names(), ElementsAre("Manager.app", "description.json", "image", "service"));
}

TEST_F(MakeService, AFolderThatCannotBeMadeIsTold) {
  EXPECT_THAT(complaint(R"({"packages": []})", "image/service"),
              ::testing::AllOf(StartsWith("make folder " + (folder / "image/")),
                               ::testing::EndsWith(": Not a directory")));
}

// --- the description

struct MistakenDescription {
  const char* json;
  const char* told;
};

class DescriptionMistake : public MakeService,
                           public ::testing::WithParamInterface<MistakenDescription> {};

TEST_P(DescriptionMistake, IsToldWithItsKey) {
  EXPECT_THAT(complaint(GetParam().json),
              StartsWith(std::string("description description.json: ") + GetParam().told));
}

INSTANTIATE_TEST_SUITE_P(
    OfTheWhole, DescriptionMistake,
    ::testing::Values(
        MistakenDescription{"[]", "is not JSON with an object at its top"},
        MistakenDescription{"{}", "packages: is missing"},
        MistakenDescription{R"({"packages":{}})", "packages: must be"},
        MistakenDescription{R"({"packages":[],"x":1})", "x: is not a known key"},
        MistakenDescription{R"({"packages":[],"format":"text"})",
                            "format: must be one of \"xml\", \"binary\""},
        MistakenDescription{R"({"packages":[],"service":1})", "service: must be an object"},
        MistakenDescription{R"({"packages":[],"service":{"x":1}})",
                            "service.x: is not a known key"},
        MistakenDescription{R"({"packages":[{}]})", "packages[0].product: is missing"},
        MistakenDescription{R"({"packages":[{"product":"a"}]})", "packages[0].version: is missing"},
        MistakenDescription{R"({"packages":[{"product":"a","version":"1","files":{"x":"image"}},
                                {"product":"a","version":"2","files":{"x":"Manager.app"}}]})",
                            "packages[1].files: the product has another \"x\" already"}));

class PackageMistake : public MakeService,
                       public ::testing::WithParamInterface<MistakenDescription> {};

TEST_P(PackageMistake, IsToldWithItsKey) {
  EXPECT_THAT(
      complaint(std::string(R"({"packages":[{"version":"1",)") + GetParam().json + "}]}"),
      StartsWith(std::string("description description.json: packages[0].") + GetParam().told));
}

INSTANTIATE_TEST_SUITE_P(
    OfOneKey, PackageMistake,
    ::testing::Values(
        MistakenDescription{R"("product":1)", "product: must be a text"},
        MistakenDescription{R"("product":"a/b","files":{"x":"image"})",
                            "product: must be a name without"},
        MistakenDescription{R"("product":"a","minimum_os":10)", "minimum_os: must be a text"},
        MistakenDescription{R"("product":"a","codebase":[])", "codebase: must be a text"},
        MistakenDescription{R"("product":"a","files":["image"])", "files: must be an object"},
        MistakenDescription{R"("product":"a","files":{"a/b":"image"})",
                            "files.a/b: must be the name of a"},
        MistakenDescription{R"("product":"a","files":{"x":1})", "files.x: must be a text"},
        MistakenDescription{R"("product":"a","files":{"x":"no"})",
                            "files.x: no: No such file or directory"},
        MistakenDescription{R"("product":"a","rule":1)", "rule: must be an object"},
        MistakenDescription{R"("product":"a","rule":{"k":null})",
                            "rule: null has no form in a property list"},
        MistakenDescription{R"("product":"a","leave_out":"Size")", "leave_out: must be a list"},
        MistakenDescription{R"("product":"a","leave_out":["Size"])",
                            "leave_out: the rule has no \"Size\""},
        MistakenDescription{R"("product":"a","x":1)", "x: is not a known key"}));

TEST_F(MakeService, ADescriptionThatIsNotThereIsTold) {
  const Ended ended = runProgram({KELVANE_MAKE_SERVICE, "none.json", "service"}, folder.path());
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_EQ(ended.err,
            "make-service: description none.json: open none.json: No such file or directory\n");
}

TEST_F(MakeService, BothArgumentsAreNeeded) {
  const Ended ended = runProgram({KELVANE_MAKE_SERVICE, "description.json"}, folder.path());
  EXPECT_NE(ended.exitStatus, 0);
  EXPECT_THAT(ended.err, HasSubstr("folder is required"));
}

}  // namespace
}  // namespace kelvane::test
