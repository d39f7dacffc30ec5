#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/WorkerWorld.h"

namespace kelvane {
namespace {

namespace fs = std::filesystem;

using platform::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// A rule as a property list; `more` adds keys.
std::string rule(const std::string& product, const std::string& version,
                 const std::string& more = "") {
  return "<dict><key>ProductID</key><string>" + product + "</string><key>Version</key><string>" +
         version + "</string><key>Size</key><integer>7</integer><key>Hash256</key><string>h" +
         version + "</string>" + more + "</dict>";
}

std::string minimum(const std::string& version) {
  return "<key>MinimumOSVersion</key><string>" + version + "</string>";
}

std::string codebase(const std::string& url) {
  return "<key>Codebase</key><string>" + url + "</string>";
}

class Catalogue : public test::WorkerWorld {
 protected:
  Catalogue() {
    worker.setSettingDict(platform::parseJson(
        R"({"online_update_plist_name":"Offers","product_id_sw":"sw","app_name":"Manager",
            "product_id_tarsel2fw":"fw2","product_id_tarsel3fw":"fw3"})"));
    host.version = {14, 2, 1};
  }
  void writeRules(const std::string& rules) const {
    folder.write("d/Offers.plist", test::xmlPropertyList("<dict><key>Rules</key><array>" + rules +
                                                         "</array></dict>"));
  }
  Value parameters(const std::string& product) const {
    return Value::dictionary({{"productid", product}, {"version", "0"}, {"folder", folder / "d"}});
  }
  // The version of the rule chosen for the product, "none" where there is none.
  std::string chosen(const std::string& product) {
    const Value found = worker.getUpdateEngineDataInDownloadFolder(parameters(product));
    return found.has("Version") ? found.get("Version").string() : "none";
  }
  // The descriptions' "file_path", "absent" where they have none.
  std::vector<std::string> paths(std::initializer_list<const char*> products) {
    Value list = Value::array();
    for (const char* product : products) list.append(parameters(product));
    std::vector<std::string> found;
    const Value descriptions = worker.getDownloadFileData(list, Value());
    for (const Value& description : descriptions.elements()) {
      const Value& path = description.get("file_path");
      found.push_back(path.isNothing() ? "absent" : path.string());
    }
    return found;
  }
};

TEST_F(Catalogue, ItsPathIsMadeOfTheFolderAndTheSetting) {
  EXPECT_EQ(worker.getPlistPath("/x"), Value("/x/Offers.plist"));
  worker.setSettingDict(Value());
  EXPECT_EQ(worker.getPlistPath("/x"), Value("/x/(null).plist"));
}

TEST_F(Catalogue, SettingsThatAreNoDictionaryGiveNoPath) {
  worker.setSettingDict(Value::array());
  EXPECT_TRUE(worker.getPlistPath("/x").isNothing());
  EXPECT_THAT(log(), ElementsAre("getPlistPath error: asked an array for the key "
                                 "\"online_update_plist_name\""));
}

// --- the whole list of rules

TEST_F(Catalogue, AllRulesAreGivenAsTheyStand) {
  writeRules(rule("a", "1") + "<dict><key>odd</key><true/></dict>");
  const Value record = Value::dictionary({{"job_id", "x"}, {"input_parameters", parameters("z")}});
  const Value rules = worker.getUpdateEngineData(record);
  ASSERT_EQ(rules.count(), 2U);
  EXPECT_EQ(rules.at(1), Value::dictionary({{"odd", Value::boolean(true)}}));
  Value list = record;
  list.set("input_parameters", Value::array({parameters("z"), Value("x")}));
  EXPECT_EQ(worker.getUpdateEngineData(list), rules);
}

TEST_F(Catalogue, WithoutWhatItNeedsThereAreNoRules) {
  const Value record = Value::dictionary({{"job_id", "x"}, {"input_parameters", parameters("z")}});
  EXPECT_TRUE(worker.getUpdateEngineData(record).isNothing());  // no file
  folder.write("d/Offers.plist", "damaged");
  EXPECT_TRUE(worker.getUpdateEngineData(record).isNothing());
  folder.write("d/Offers.plist", test::xmlPropertyList("<dict/>"));
  EXPECT_TRUE(worker.getUpdateEngineData(record).isNothing());
  writeRules("");
  EXPECT_EQ(worker.getUpdateEngineData(record), Value::array());
  for (const char* json :
       {"{}", R"({"job_id":"x"})", R"({"input_parameters":{}})",
        R"({"job_id":"x","input_parameters":{}})", R"({"job_id":"x","input_parameters":[]})"}) {
    EXPECT_TRUE(worker.getUpdateEngineData(platform::parseJson(json)).isNothing()) << json;
  }
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Catalogue, ARecordWithoutACommandHasNoRules) {
  writeRules(rule("a", "1"));
  const Value record = Value::dictionary({{"log_id", "17"}, {"input_parameters", parameters("a")}});
  EXPECT_TRUE(worker.getUpdateEngineData(record).isNothing());
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Catalogue, ParametersOfAWrongKindHaveNoRulesAndAreLoggedOnce) {
  const Value record = Value::dictionary({{"job_id", "x"}, {"input_parameters", "text"}});
  EXPECT_TRUE(worker.getUpdateEngineData(record).isNothing());
  EXPECT_THAT(log(), ElementsAre("getUpdateEngineData error: asked a string for its elements"));
}

TEST_F(Catalogue, ARecordThatIsNoneHasNoRulesAndIsLoggedOnce) {
  EXPECT_TRUE(worker.getUpdateEngineData(Value::array()).isNothing());
  EXPECT_THAT(log(), ElementsAre("getUpdateEngineData error: asked an array for the key "
                                 "\"input_parameters\""));
}

// --- the selection

TEST_F(Catalogue, OfFirmwareTheFirstCompleteRuleIsChosen) {
  writeRules("<dict><key>ProductID</key><string>fw</string></dict>" + rule("FW", "0") +
             rule("fw", "1") + rule("fw", "2"));
  EXPECT_EQ(chosen("fw"), "1");
  EXPECT_EQ(chosen("other"), "none");
}

TEST_F(Catalogue, EachOfTheFourKeysIsNeeded) {
  for (const char* key : {"ProductID", "Version", "Size", "Hash256"}) {
    std::string lacking = rule("fw", "1");
    const std::size_t at = lacking.find(key);
    lacking.replace(at, std::string(key).size(), "Other");
    writeRules(lacking + rule("fw", "2"));
    EXPECT_EQ(chosen("fw"), "2") << key;
  }
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Catalogue, OfSoftwareTheGreatestMinimumByCharactersIsChosen) {
  writeRules(rule("sw", "1", minimum("10.15.0")) + rule("sw", "2", minimum("9.0.0")));
  EXPECT_EQ(chosen("sw"), "2");
}

TEST_F(Catalogue, AmongEqualMinimumsTheGreatestVersionByCharactersIsChosen) {
  writeRules(rule("sw", "10.0", minimum("9.0.0")) + rule("sw", "9.0", minimum("9.0.0")) +
             rule("sw", "1.0", minimum("9.0.0")));
  EXPECT_EQ(chosen("sw"), "9.0");
}

TEST_F(Catalogue, OfEqualRulesTheFirstStaysFirst) {
  std::string rules;
  for (int i = 1; i <= 40; ++i) {
    rules += rule("sw", "1",
                  minimum("9.0.0") + "<key>n</key><integer>" + std::to_string(i) + "</integer>");
  }
  writeRules(rules);
  EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(parameters("sw")).get("n").integerValue(),
            1);
}

TEST_F(Catalogue, AnyCharacterPartsAMinimumAndTextMayStandAroundIt) {
  writeRules(rule("sw", "1", minimum("10-15-0")) + rule("fw", "other"));
  EXPECT_EQ(chosen("sw"), "1");
  writeRules(rule("sw", "1", minimum("(10.15.0)")) + rule("fw", "other"));
  EXPECT_EQ(chosen("sw"), "1");
  writeRules(rule("sw", "1", minimum("99-0-0")) + rule("fw", "other"));
  EXPECT_EQ(chosen("sw"), "other");
}

// Of five characters the first, the third and the fifth are the numbers; of six the first has two.
TEST_F(Catalogue, ADigitPartsAMinimumToo) {
  for (const char* satisfied : {"11000", "100.1", "99000", "140201"}) {
    writeRules(rule("sw", "1", minimum(satisfied)) + rule("fw", "other"));
    EXPECT_EQ(chosen("sw"), "1") << satisfied;
  }
  for (const char* tooNew : {"140202", "140300", "150000"}) {
    writeRules(rule("sw", "1", minimum(tooNew)) + rule("fw", "other"));
    EXPECT_EQ(chosen("sw"), "other") << tooNew;
  }
}

TEST_F(Catalogue, ASystemThatIsTooOldIsNoCandidate) {
  for (const char* tooNew : {"14.2.2", "14.3.0", "15.0.0"}) {
    writeRules(rule("sw", "new", minimum(tooNew)) + rule("sw", "ok", minimum("10.0.0")));
    EXPECT_EQ(chosen("sw"), "ok") << tooNew;
  }
  for (const char* satisfied : {"14.2.1", "14.2.0", "14.1.9", "13.9.9"}) {
    writeRules(rule("sw", "new", minimum(satisfied)) + rule("sw", "ok", minimum("10.0.0")));
    EXPECT_EQ(chosen("sw"), "new") << satisfied;
  }
}

TEST_F(Catalogue, SoftwareThatNoSystemSuitsGivesTheCataloguesLastRule) {
  writeRules(rule("sw", "1", minimum("99.0.0")) + rule("fw", "other"));
  EXPECT_EQ(chosen("sw"), "other");
}

TEST_F(Catalogue, AMinimumOfTwoPartsOrNoneIsNoCandidateButFound) {
  writeRules(rule("sw", "1", minimum("11.0")) + rule("fw", "other"));
  EXPECT_EQ(chosen("sw"), "other");
  writeRules(rule("sw", "1") + rule("fw", "last"));
  EXPECT_EQ(chosen("sw"), "last");
}

TEST_F(Catalogue, AMinimumOfLettersIsSatisfiedByEverySystem) {
  writeRules(rule("sw", "1", minimum("abc.def.ghi")) + rule("fw", "other"));
  EXPECT_EQ(chosen("sw"), "1");
}

TEST_F(Catalogue, AMinimumThatIsNoTextIsLoggedOnceAndNoRuleIsChosen) {
  writeRules(rule("sw", "1", minimum("9.0.0")) +
             rule("sw", "2", "<key>MinimumOSVersion</key><integer>9</integer>"));
  EXPECT_EQ(chosen("sw"), "none");
  EXPECT_THAT(log(), ElementsAre("getUpdateEngineDataInDownloadFolder error: asked a number for "
                                 "its text"));
}

TEST_F(Catalogue, CandidatesWhoseVersionsDifferInKindAreLoggedOnceAndNoneIsChosen) {
  std::string number = rule("sw", "2", minimum("9.0.0"));
  const std::string text = "<string>2</string>";
  number.replace(number.find(text), text.size(), "<integer>2</integer>");
  writeRules(number);
  EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(parameters("sw")).get("Version"),
            Value::integer(2));
  writeRules(number + rule("sw", "1", minimum("9.0.0")));
  EXPECT_EQ(chosen("sw"), "none");
  EXPECT_THAT(log(),
              ElementsAre(StartsWith("getUpdateEngineDataInDownloadFolder error: cannot order a")));
}

TEST_F(Catalogue, AProductSettingThatIsNoTextIsLoggedOnceAndNoRuleIsChosen) {
  worker.setSettingDict(
      platform::parseJson(R"({"online_update_plist_name":"Offers","product_id_sw":5})"));
  writeRules(rule("fw", "1"));
  EXPECT_EQ(chosen("fw"), "none");
  EXPECT_THAT(log(), ElementsAre("getUpdateEngineDataInDownloadFolder error: compared a number as "
                                 "a string"));
}

// --- a file that someone else writes between two looks

TEST_F(Catalogue, AnotherFileOfTheSameSizeAndTimeIsSeen) {
  writeRules(rule("fw2", "1"));
  const auto time = fs::last_write_time(folder / "d/Offers.plist");
  EXPECT_EQ(chosen("fw2"), "1");
  writeRules(rule("fw2", "2"));
  fs::last_write_time(folder / "d/Offers.plist", time);
  EXPECT_EQ(chosen("fw2"), "2");
}

TEST_F(Catalogue, AFileThatIsCutShortIsSeen) {
  writeRules(rule("fw2", "1"));
  EXPECT_EQ(chosen("fw2"), "1");
  const std::string whole = folder.read("d/Offers.plist");
  folder.write("d/Offers.plist", whole.substr(0, whole.size() / 2));
  EXPECT_EQ(chosen("fw2"), "none");
  folder.write("d/Offers.plist", whole);
  EXPECT_EQ(chosen("fw2"), "1");
}

TEST_F(Catalogue, AFileThatALinkHasTakenThePlaceOfIsSeen) {
  writeRules(rule("fw2", "2"));
  fs::rename(folder / "d/Offers.plist", folder / "elsewhere");
  writeRules(rule("fw2", "1"));
  EXPECT_EQ(chosen("fw2"), "1");
  fs::remove(folder / "d/Offers.plist");
  fs::create_symlink(folder / "elsewhere", folder / "d/Offers.plist");
  EXPECT_EQ(chosen("fw2"), "2");
}

TEST_F(Catalogue, TheSameBytesHaveTheSameRulesWhoeverWroteThem) {
  writeRules(rule("fw2", "1"));
  const Value first = worker.getUpdateEngineDataInDownloadFolder(parameters("fw2"));
  writeRules(rule("fw2", "1"));
  EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(parameters("fw2")), first);
}

TEST_F(Catalogue, AFileThatIsGoneHasNoRulesThoughItWasRead) {
  writeRules(rule("fw2", "1"));
  EXPECT_EQ(chosen("fw2"), "1");
  fs::remove(folder / "d/Offers.plist");
  EXPECT_EQ(chosen("fw2"), "none");
}

TEST_F(Catalogue, WhatIsMadeOfARuleLeavesTheRuleAsItWas) {
  writeRules(rule("fw2", "1"));
  Value changed = worker.getUpdateEngineDataInDownloadFolder(parameters("fw2"));
  changed.set("Version", "9");
  EXPECT_EQ(chosen("fw2"), "1");
}

TEST_F(Catalogue, WithoutAFolderOrACatalogueTheAnswerIsEmpty) {
  EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(Value()), Value::dictionary());
  EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(Value::dictionary({{"productid", "x"}})),
            Value::dictionary());
  EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(parameters("fw")), Value::dictionary());
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Catalogue, RulesThatAreNoListAreLoggedOnce) {
  folder.write("d/Offers.plist",
               test::xmlPropertyList("<dict><key>Rules</key><string>text</string></dict>"));
  EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(parameters("fw")), Value::dictionary());
  EXPECT_THAT(log(), ElementsAre(StartsWith("getUpdateEngineDataInDownloadFolder error: ")));
}

TEST_F(Catalogue, RulesOfAWrongKindAreLoggedOnce) {
  for (const char* rules : {"<string>text</string>",
                            "<dict><key>ProductID</key><integer>1</integer><key>Version</key>"
                            "<true/><key>Size</key><true/><key>Hash256</key><true/></dict>"}) {
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    writeRules(rules);
    EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(parameters("fw")), Value::dictionary());
    EXPECT_THAT(log(), ElementsAre(StartsWith("getUpdateEngineDataInDownloadFolder error: ")));
  }
}

TEST_F(Catalogue, AProductThatIsNoTextIsLoggedOnceAndNoRuleIsChosen) {
  writeRules(rule("fw", "1"));
  Value wrong = parameters("fw");
  wrong.set("productid", Value::integer(1));
  EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(wrong), Value::dictionary());
  EXPECT_THAT(
      log(),
      ElementsAre("getUpdateEngineDataInDownloadFolder error: compared a number as a string"));
}

TEST_F(Catalogue, ParametersWithoutAProductChooseNoRule) {
  writeRules(rule("fw", "1"));
  EXPECT_EQ(worker.getUpdateEngineDataInDownloadFolder(
                Value::dictionary({{"folder", parameters("fw").get("folder")}})),
            Value::dictionary());
  EXPECT_THAT(log(), IsEmpty());
}

// --- the descriptions

TEST_F(Catalogue, ADescriptionTakesVersionSizeAndHashFromTheRule) {
  writeRules(rule("fw2", "2.5"));
  folder.write("d/FW_QRX550.img", "image");
  Value expected = parameters("fw2");
  expected.set("version", "2.5");
  expected.set("size", Value::integer(7));
  expected.set("Hash256", "h2.5");
  expected.set("file_path", folder / "d/FW_QRX550.img");
  EXPECT_EQ(worker.getDownloadFileData(Value::array({parameters("fw2")}), Value()),
            Value::array({expected}));
}

// A rule that lacks a key describes a product only as the catalogue's last entry.
TEST_F(Catalogue, OfTheRulesKeysEachIsTakenThatIsThere) {
  for (const char* key : {"Version", "Size", "Hash256"}) {
    std::string last = rule("other", "2.5");
    last.replace(last.find(key), std::string(key).size(), "Else");
    writeRules(rule("sw", "1", minimum("99.0.0")) + last);
    Value expected = parameters("sw");
    if (std::string(key) != "Version") expected.set("version", "2.5");
    if (std::string(key) != "Size") expected.set("size", Value::integer(7));
    if (std::string(key) != "Hash256") expected.set("Hash256", "h2.5");
    expected.set("file_path", "");
    EXPECT_EQ(worker.getDownloadFileData(Value::array({parameters("sw")}), Value()),
              Value::array({expected}))
        << key;
  }
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Catalogue, WithoutARuleTheParametersStay) {
  Value expected = parameters("fw2");
  expected.set("file_path", "");
  EXPECT_EQ(worker.getDownloadFileData(Value::array({parameters("fw2")}), Value()),
            Value::array({expected}));
}

TEST_F(Catalogue, ADownloadFolderReplacesTheElementsOwn) {
  folder.write("area/FW_T3.img", "image");
  folder.write("area/Offers.plist", test::xmlPropertyList("<dict><key>Rules</key><array>" +
                                                          rule("fw3", "3") + "</array></dict>"));
  const Value found =
      worker.getDownloadFileData(Value::array({parameters("fw3")}), folder / "area").at(0);
  EXPECT_EQ(found.get("folder"), Value(folder / "area"));
  EXPECT_EQ(found.get("version"), Value("3"));
  EXPECT_EQ(found.get("file_path"), Value(folder / "area/FW_T3.img"));
}

TEST_F(Catalogue, EachProductHasItsExpectedPlace) {
  folder.write("d/FW_QRX550.img", "");
  folder.write("d/Manager.app/inside", "");
  folder.write("d/FW_T3.img", "");
  EXPECT_THAT(paths({"fw2", "sw", "fw3", "tarselT3USBFW"}),
              ElementsAre(folder / "d/FW_QRX550.img", folder / "d/Manager.app",
                          folder / "d/FW_T3.img", folder / "d/FW_T3.img"));
}

TEST_F(Catalogue, OfEqualSettingsTheFirstGivesTheExpectedPlace) {
  folder.write("d/FW_QRX550.img", "");
  folder.write("d/(null).app", "");
  folder.write("d/FW_T3.img", "");
  worker.setSettingDict(platform::parseJson(
      R"({"product_id_tarsel2fw":"x","product_id_sw":"x","product_id_tarsel3fw":"x"})"));
  EXPECT_THAT(paths({"x"}), ElementsAre(folder / "d/FW_QRX550.img"));
  worker.setSettingDict(platform::parseJson(R"({"product_id_sw":"x","product_id_tarsel3fw":"x"})"));
  EXPECT_THAT(paths({"x"}), ElementsAre(folder / "d/(null).app"));
  worker.setSettingDict(platform::parseJson(R"({"product_id_sw":"tarselT3USBFW"})"));
  EXPECT_THAT(paths({"tarselT3USBFW"}), ElementsAre(folder / "d/(null).app"));
  worker.setSettingDict(platform::parseJson(R"({"product_id_tarsel2fw":"tarselT3USBFW"})"));
  EXPECT_THAT(paths({"tarselT3USBFW"}), ElementsAre(folder / "d/FW_QRX550.img"));
}

TEST_F(Catalogue, AProductSettingThatIsNoTextEndsTheDescriptionsAndIsLoggedOnce) {
  worker.setSettingDict(platform::parseJson(R"({"product_id_tarsel3fw":5,"product_id_sw":"sw"})"));
  folder.write("d/(null).app", "");
  EXPECT_THAT(paths({"sw", "fw", "sw"}), ElementsAre(folder / "d/(null).app"));
  EXPECT_THAT(log(), ElementsAre("getDownloadFileData error: compared a number as a string"));
}

TEST_F(Catalogue, AnUnknownProductIsTestedAgainstThePreviousPlace) {
  folder.write("d/FW_QRX550.img", "");
  EXPECT_THAT(paths({"unknown", "fw2", "unknown"}),
              ElementsAre("", folder / "d/FW_QRX550.img", folder / "d/FW_QRX550.img"));
}

TEST_F(Catalogue, ThePreviousPlaceIsThatOfThePreviousElementsFolder) {
  folder.write("d/FW_QRX550.img", "");
  Value elsewhere = parameters("unknown");
  elsewhere.set("folder", folder / "other");
  const Value found =
      worker.getDownloadFileData(Value::array({parameters("fw2"), elsewhere}), Value());
  EXPECT_EQ(found.at(1).get("file_path"), Value(folder / "d/FW_QRX550.img"));
}

TEST_F(Catalogue, AnApplicationsNameThatNoSettingGivesIsNull) {
  worker.setSettingDict(platform::parseJson(R"({"product_id_sw":"sw"})"));
  folder.write("d/(null).app", "");
  EXPECT_THAT(paths({"sw"}), ElementsAre(folder / "d/(null).app"));
}

TEST_F(Catalogue, ThePackagesOwnNameIsTriedWhereTheExpectedPlaceIsEmpty) {
  writeRules(rule("fw2", "1", codebase("https://host/path/Image.bin")));
  EXPECT_THAT(paths({"fw2"}), ElementsAre(""));
  folder.write("d/Image.bin", "");
  EXPECT_THAT(paths({"fw2"}), ElementsAre(folder / "d/Image.bin"));
}

TEST_F(Catalogue, DiskImagesArchivesAndNamesWithoutExtensionAreNotTried) {
  for (const char* name : {"Image.dmg", "Image.zip", "Image.2.zip", "Image", ""}) {
    writeRules(rule("fw2", "1", codebase("https://host/" + std::string(name))));
    if (*name != '\0') folder.write("d/" + std::string(name), "");
    EXPECT_THAT(paths({"fw2"}), ElementsAre("")) << name;
  }
}

TEST_F(Catalogue, ANameWithAnyOtherExtensionIsTriedHoweverManyDotsItHas) {
  for (const char* name : {"Image.2.bin", "Image.zip.bin", ".bin", "x.", "x.dmg.", "a..b"}) {
    writeRules(rule("fw2", "1", codebase("https://host/" + std::string(name))));
    folder.write("d/" + std::string(name), "");
    EXPECT_THAT(paths({"fw2"}), ElementsAre(folder / "d/" + std::string(name))) << name;
  }
}

TEST_F(Catalogue, ACodebaseWithoutASlashIsTheName) {
  writeRules(rule("fw2", "1", codebase("Image.bin")));
  folder.write("d/Image.bin", "");
  EXPECT_THAT(paths({"fw2"}), ElementsAre(folder / "d/Image.bin"));
}

TEST_F(Catalogue, ACodebaseThatIsNoTextEndsTheDescriptionsAndIsLoggedOnce) {
  writeRules(rule("a", "1", codebase("u/A.bin")) +
             rule("b", "1", "<key>Codebase</key><integer>5</integer>"));
  folder.write("d/A.bin", "");
  EXPECT_THAT(paths({"a", "b", "a"}), ElementsAre(folder / "d/A.bin"));
  EXPECT_THAT(log(), ElementsAre("getDownloadFileData error: asked a number for its text"));
}

TEST_F(Catalogue, ExtensionsAreComparedToTheLetter) {
  writeRules(rule("fw2", "1", codebase("u/Image.DMG")));
  folder.write("d/Image.DMG", "");
  EXPECT_THAT(paths({"fw2"}), ElementsAre(folder / "d/Image.DMG"));
}

TEST_F(Catalogue, AProductAtItsPlaceLeavesTheRememberedPackageRemembered) {
  writeRules(rule("a", "1", codebase("u/A.bin")) + rule("b", "1", codebase("u/B.dmg")));
  folder.write("d/A.bin", "");
  folder.write("d/FW_T3.img", "");
  const Value found = worker.getDownloadFileData(
      Value::array({parameters("a"), parameters("fw3"), parameters("sw"), parameters("b")}),
      Value());
  EXPECT_EQ(found.at(1).get("file_path"), Value(folder / "d/FW_T3.img"));
  EXPECT_FALSE(found.at(3).has("file_path"));
}

TEST_F(Catalogue, ARememberedPackageLeavesLaterOnesWithoutAPath) {
  writeRules(rule("a", "1", codebase("u/A.bin")) + rule("b", "1", codebase("u/B.dmg")) +
             rule("c", "1", codebase("u/C.bin")));
  folder.write("d/A.bin", "");
  EXPECT_THAT(paths({"b", "a", "b", "c", "b"}),
              ElementsAre("", folder / "d/A.bin", "absent", "", ""));
}

TEST_F(Catalogue, AnElementsOwnPathStaysWhereNoneIsSet) {
  writeRules(rule("a", "1", codebase("u/A.bin")));
  folder.write("d/A.bin", "");
  Value own = parameters("b");
  own.set("file_path", "/own");
  const Value found = worker.getDownloadFileData(Value::array({parameters("a"), own}), Value());
  EXPECT_EQ(found.at(1).get("file_path"), Value("/own"));
}

TEST_F(Catalogue, AnElementsOwnPathGivesWayWhereNoPackageIsRemembered) {
  Value own = parameters("b");
  own.set("file_path", "/own");
  const Value found = worker.getDownloadFileData(Value::array({own}), Value());
  EXPECT_EQ(found.at(0).get("file_path"), Value(""));
}

TEST_F(Catalogue, ElementsWithoutAProductAreDescribedByNothing) {
  EXPECT_EQ(worker.getDownloadFileData(Value::array({Value::dictionary()}), Value()),
            Value::array());
  EXPECT_EQ(worker.getDownloadFileData(Value::array(), "/x"), Value::array());
  EXPECT_EQ(worker.getDownloadFileData(Value(), Value()), Value::array());
}

TEST_F(Catalogue, AListOfAWrongKindIsLoggedOnce) {
  EXPECT_EQ(worker.getDownloadFileData(Value::dictionary(), Value()), Value::array());
  EXPECT_THAT(log(), ElementsAre("getDownloadFileData error: asked a dictionary for its elements"));
}

TEST_F(Catalogue, AnElementOfAWrongKindEndsTheDescriptionsAndIsLoggedOnce) {
  Value described = parameters("fw2");
  described.set("file_path", "");
  EXPECT_EQ(worker.getDownloadFileData(Value::array({parameters("fw2"), "text", parameters("fw3")}),
                                       Value()),
            Value::array({described}));
  EXPECT_THAT(log(), ElementsAre("getDownloadFileData error: asked a string for its entries"));
}

}  // namespace
}  // namespace kelvane
