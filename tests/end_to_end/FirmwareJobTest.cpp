// Whole firmware jobs: the real executable on simulated controllers.

#include <filesystem>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "tests/end_to_end/Installation.h"
#include "tests/support/JobFiles.h"
#include "tests/support/LogLine.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Lines = std::vector<std::string>;

class FirmwareJob : public Installation {
 protected:
  // A controller on the standard path; `more` adds keys.
  static std::string standard(const std::string& wwn, const std::string& more = "",
                              int cpldStageSeconds = 4, int firmwareSeconds = 8) {
    return fmt::format(
        R"({{"wwn": "{}", "product_id": "0x4301", "firmware": "1.0", "cpld": "1.0",
            "usb_bridge": "1.0", "cpld_transfer_seconds": {}, "cpld_programming_seconds": {},
            "firmware_seconds": {}{}}})",
        wwn, cpldStageSeconds, cpldStageSeconds, firmwareSeconds, more);
  }
  static std::string qvxf(const std::string& wwn, const std::string& more = "") {
    return R"({"wwn": ")" + wwn +
           R"(", "product_id": "0x4801", "firmware": "1.0", "cpld": "1.0", "usb_bridge": "1.0",
              "firmware_seconds": 8)" +
           more + "}";
  }
  std::string standardImage() const {
    return makeImage("standard.img", {"standard", "--product", "0x4301", "--firmware", "2.0",
                                      "--cpld", "1.5", "--usb", "3.0"});
  }
  std::string qvxfImage() const {
    return makeImage("qvxf.img", {"qvxf", "--product", "0x4801", "--firmware", "5.0"});
  }
  std::string version(std::size_t controller, const char* part) const {
    return fleet().get("controllers").at(controller).get(part).string();
  }
  // The log without times and line numbers, object dumps folded to their first line.
  Lines logLines() const {
    Lines lines;
    for (const std::string& text : test::splitLines(log())) {
      const auto line = test::parseLogLine(text);
      if (line) {
        lines.push_back(
            fmt::format("{}[{}][{}] {}", line->file, line->function, line->level, line->message));
      } else {
        EXPECT_TRUE(text.empty() || std::string(" )}").find(text[0]) != std::string::npos) << text;
      }
    }
    return lines;
  }
};

TEST_F(FirmwareJob, UpdatesCpldFirmwareAndBridgeOfAStandardController) {
  writeFleet("[" + standard("50000000000000A1") + "]");
  updateFirmware({{"50000000000000A1", standardImage()}});
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(version(0, "firmware"), "2.0");
  EXPECT_EQ(version(0, "cpld"), "1.5");
  EXPECT_EQ(version(0, "usb_bridge"), "3.0");
  EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(FirmwareJob, UpdatesAQvxfControllerAndLeavesItsBridgeAlone) {
  writeFleet("[" + qvxf("50000000000000B1") + "]");
  updateFirmware({{"50000000000000B1", qvxfImage()}});
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(version(0, "firmware"), "5.0");
  EXPECT_EQ(version(0, "usb_bridge"), "1.0");
  EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(FirmwareJob, ProgressIsSeenAsASequenceOfJobFileVersions) {
  writeFleet("[" + standard("50000000000000A1") + "]");
  updateFirmware({{"50000000000000A1", standardImage()}});
  EXPECT_THAT(progress(), ElementsAre("RUN 0/0/0", "RUN 12/25/0", "RUN 25/50/0", "RUN 37/75/0",
                                      "RUN 50/100/0", "RUN 62/100/25", "RUN 75/100/50",
                                      "RUN 87/100/75", "RUN 100/100/100", "FREE 100/100/100"));
  EXPECT_THAT(sleeps(), ElementsAre("2", "2", "2", "2", "2", "2", "2", "2"));
}

TEST_F(FirmwareJob, UpdatesSeveralControllersOfAllKindsInOneJob) {
  writeFleet("[" + standard("50000000000000A1") + "," +
             standard("50000000000000A2", R"(, "attached": "thunderbolt")") + "," +
             standard("50000000000000A3", R"(, "listed_as": "subsystem")") + "," +
             qvxf("50000000000000B1", R"(, "listed_as": "subsystem")") + "]");
  const std::string image = standardImage();
  updateFirmware({{"50000000000000B1", qvxfImage()},
                  {"50000000000000A3", image},
                  {"50000000000000A1", image},
                  {"50000000000000A2", image}});
  EXPECT_EQ(result(), 0);
  for (const std::size_t controller : {0U, 1U, 2U})
    EXPECT_EQ(version(controller, "firmware"), "2.0");
  EXPECT_EQ(version(3, "firmware"), "5.0");
  EXPECT_EQ(version(1, "usb_bridge"), "1.0");  // not reached by Thunderbolt
  EXPECT_EQ(version(2, "usb_bridge"), "3.0");
  EXPECT_EQ(progress().back(), "FREE 100/0/100 100/100/100 100/100/100 100/100/100");
  EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(FirmwareJob, ASecondRunMeetsACurrentCpldAndTheSameBridgeVersion) {
  writeFleet("[" + standard("50000000000000A1") + "]");
  const std::string image = standardImage();
  updateFirmware({{"50000000000000A1", image}});
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
  updateFirmware({{"50000000000000A1", image}});
  EXPECT_EQ(result(), 0);
  EXPECT_THAT(log(), HasSubstr("[flashCPLD][debug] the version of CPLD is up to date\n"));
  EXPECT_THAT(log(), HasSubstr("[updateFW][debug] same usb fw version, won't flash\n"));
  EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(FirmwareJob, Product42IsFlashedWithoutAUsbPart) {
  writeFleet("[" + standard("50000000000000A1", R"(, "product_id": "0x4201")") + "]");
  const std::string image = makeImage(
      "42.img", {"standard", "--product", "0x4201", "--firmware", "2.0", "--cpld", "1.5"});
  updateFirmware({{"50000000000000A1", image}});
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(version(0, "firmware"), "2.0");
  EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(FirmwareJob, AnUnknownWwnTouchesNoController) {
  writeFleet("[" + standard("50000000000000A1") + "]");
  updateFirmware({{"XX", standardImage()}, {"50000000000000A1", standardImage()}});
  EXPECT_EQ(result(), 0x0402);
  EXPECT_EQ(version(0, "firmware"), "1.0");
  EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(FirmwareJob, BadImagesAreRefusedBeforeAnythingIsFlashed) {
  const std::string good = standardImage();
  std::string damaged = folder.read("standard.img");
  damaged[damaged.size() / 2] = static_cast<char>(damaged[damaged.size() / 2] ^ 1);
  const std::string other = makeImage(
      "other.img", {"standard", "--product", "0x4401", "--firmware", "2.0", "--usb", "3.0"});
  for (const std::string& image :
       {folder / "missing.img", folder.write("damaged.img", damaged), other, qvxfImage()}) {
    writeFleet("[" + standard("50000000000000A1") + "]");
    updateFirmware({{"50000000000000A1", image}});
    EXPECT_NE(result(), 0) << image;
    EXPECT_NE(jobs().at(0).get("resultStr"), Value("no error"));
    EXPECT_EQ(version(0, "firmware"), "1.0");
    EXPECT_EQ(version(0, "cpld"), "1.0");
    EXPECT_THAT(violations(), IsEmpty());
  }
}

TEST_F(FirmwareJob, AStatusPlayedByTheFrameworkIsTheResult) {
  writeFleet("[" + standard("50000000000000A1") + "]",
             R"([{"function": "zr_verifyFlashImage", "call": 1, "status": "0x8055"}])");
  updateFirmware({{"50000000000000A1", standardImage()}});
  EXPECT_EQ(result(), 0x8055);
  EXPECT_THAT(log(), HasSubstr("[updateFW][debug] Image format is invalid.\n"));
  EXPECT_EQ(version(0, "firmware"), "1.0");
  EXPECT_EQ(calls()[calls().size() - 2], "zr_finalizeFlashProcess");
  EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(FirmwareJob, AFlashThatFailsHalfWayIsAFlashError) {
  writeFleet("[" +
             standard("50000000000000A1",
                      R"(, "faults": [{"flash": "firmware", "do": "fail", "at": 50}])") +
             "]");
  updateFirmware({{"50000000000000A1", standardImage()}});
  EXPECT_EQ(result(), 0x8054);
  EXPECT_EQ(version(0, "firmware"), "1.0");
  EXPECT_EQ(version(0, "cpld"), "1.5");
  EXPECT_EQ(progress().back(), "FREE 100/100/100");
  EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(FirmwareJob, AJobFileKeepsAllThatNobodySet) {
  std::string others;
  for (int i = 0; i < 100; ++i) {
    others += fmt::format(
        R"({{"log_id": "other-{}", "job_id": "x", "state_id": "FREE", "größe": 12345678901234567890{:03},
            "text": "Grüße, \"日本\" \\ \t\u0001 😀", "n": [0.10, 1e3, -0, null, true, {{}}, []]}},)",
        i, i);
  }
  writeFleet("[" + qvxf("50000000000000B1") + "]");
  writeJobs("[" + others +
            R"({"zeta": 12345678901234567890123, "log_id": "17", "job_id": "updateFW",
      "state_id": "WAIT", "späte": ["x", 0.10], "result": 5,
      "input_parameters": [{"slot": 1.50, "wwn": "50000000000000B1", "file_path": ")" +
            qvxfImage() + R"(", "größe": 99999999999999999999999}]}])");
  const Value before = jobs();
  EXPECT_EQ(runWorker({"17", shared()}).exitStatus, 0);

  Value expected = Value::array();
  for (std::size_t i = 0; i < 100; ++i) expected.append(before.at(i));
  Value record = before.at(100);
  Value entry = record.get("input_parameters").at(0);
  for (const char* key : {"fw_percentage", "total_percentage"}) entry.set(key, Value::integer(100));
  entry.set("cpld_percentage", Value::integer(0));
  record.set("output", Value::array({entry}));
  record.set("result", Value::integer(0));
  record.set("resultStr", jobs().at(100).get("resultStr"));
  record.set("state_id", "FREE");
  expected.append(record);
  EXPECT_EQ(jobs(), expected);
  // And in the same order of keys.
  EXPECT_EQ(jobs().at(100).entries()[0].first, "zeta");
  EXPECT_EQ(jobs().at(100).entries()[4].first, "späte");
  EXPECT_EQ(platform::printJson(jobs().at(7)), platform::printJson(before.at(7)));
}

TEST_F(FirmwareJob, TheLogIsTheSequenceOfLinesOfAStandardJob) {
  writeFleet("[" + standard("50000000000000A1", "", 2, 2) + "]");
  const std::string image = standardImage();
  updateFirmware({{"50000000000000A1", image}});
  ASSERT_EQ(result(), 0);

  const std::string path = folder / test::kJobFile;
  const Lines write = {"JobFile.cpp[updateJSONFile][debug] currentJobArray = (",
                       "JobFile.cpp[updateJSONFile][debug] updateJSONFile, newJobArray = (",
                       "JobFile.cpp[writeJSONFile][debug] writeJSONFile, newArray = (",
                       "JobFile.cpp[writeJSONFile][debug] writeJSONFile, _BGPPath = " + path};
  Lines publish = write;
  publish.insert(publish.begin(),
                 "StatusReporting.cpp[updateFWUpdateStatus][debug] currentJobArray = (");
  Lines expected;
  const auto add = [&](const Lines& lines) {
    expected.insert(expected.end(), lines.begin(), lines.end());
  };
  add({"JobRunner.cpp[run][debug] currentJobArray = (",
       "JobRunner.cpp[run][debug] logId = 17, inputParmsDict = {",
       "UpdateSequence.cpp[updateFW][debug] updateFW start, inputDict = {"});
  add(write);
  add({"UpdateSequence.cpp[updateFW][debug] devId = 0, filePath = " + image,
       "UpdateSequence.cpp[updateFW][debug] zr_getControllerInfo(), u32Ret = 0",
       "UpdateSequence.cpp[updateFW][debug] pPage0->ci_ProductID = 4301",
       "UpdateSequence.cpp[updateFW][debug] zr_getUSBImageInfo() ....",
       "UpdateSequence.cpp[updateFW][debug] usb_u32checkUSB: 3193262986",
       "CpldFlash.cpp[flashCPLD][debug] flashCPLD start",
       "CpldFlash.cpp[flashCPLD][debug] devId = 0, filePath = " + image,
       "CpldFlash.cpp[flashCPLD][debug] Start transferring CPLD image, please wait ...",
       "CpldFlash.cpp[flashCPLD][debug] Start flashing CPLD, please wait ...",
       "CpldFlash.cpp[flashCPLD][debug] progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
       "CpldFlash.cpp[flashCPLD][debug]   ...   0 percent completed... "});
  add(publish);
  add({"CpldFlash.cpp[flashCPLD][debug] progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 1",
       "CpldFlash.cpp[flashCPLD][debug]   ...  50 percent completed... "});
  add(publish);
  add({"CpldFlash.cpp[flashCPLD][debug] progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 2",
       "CpldFlash.cpp[flashCPLD][debug]   ... 100 percent completed... "});
  add(publish);
  add({"CpldFlash.cpp[flashCPLD][debug] flashCPLD end",
       "UpdateSequence.cpp[updateFW][debug] Start transferring image, please wait ...",
       "UpdateSequence.cpp[updateFW][debug] Flash image has been successfully transferred",
       "UpdateSequence.cpp[updateFW][debug] Start flashing image, please wait ...",
       "UpdateSequence.cpp[updateFW][debug] fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 1"});
  add(publish);
  add({"UpdateSequence.cpp[updateFW][debug] fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 5",
       "UpdateSequence.cpp[updateFW][debug]   ... 100 percent completed...",
       "UpdateSequence.cpp[updateFW][debug] Flash Completed."});
  add(publish);
  const std::string bridge = "UsbBridge.cpp[updateFW][debug] ";
  add({bridge + "usbfwupdatecheck = 1, different usb fw version, update usb fw",
       "UsbBridge.cpp[updateFW][debug] start _flashUSBFW, flashing Usb fw...",
       "UsbBridge.cpp[updateFW][debug] qvxflash start zr_mac_flashUSBFWbin",
       "UsbBridge.cpp[updateFW][debug] qvxflash -u usb start zr_mac_flashNVRAM",
       "JobFile.cpp[readJSONFileDict][debug] currentJobArray = ("});
  add(write);
  add({"UpdateSequence.cpp[updateFW][debug] updateAllFW end, retDict = {"});
  EXPECT_EQ(fmt::format("{}", fmt::join(logLines(), "\n")),
            fmt::format("{}", fmt::join(expected, "\n")));
}

TEST_F(FirmwareJob, TheJobFileIsSynchronisedBesideTheOldOneBeforeItTakesItsPlace) {
  writeFleet("[]");
  writeJobs(R"([{"log_id":"17","job_id":"updateFW","state_id":"WAIT","input_parameters":[{}]}])");
  runWorker({"17", shared()});
  const std::string commands = shared() + "utility/command";
  const Lines done = writes();
  ASSERT_EQ(done.size(), 3U);
  const std::string temporary = done[0].substr(std::string("fsync ").size());
  EXPECT_EQ(temporary.rfind(commands + "/", 0), 0U) << temporary;
  EXPECT_NE(temporary, commands + "/BGPLog.json");
  EXPECT_EQ(done[1], "rename " + temporary + " " + commands + "/BGPLog.json");
  EXPECT_EQ(done[2], "fsync " + commands);
}

TEST_F(FirmwareJob, AFileSizeLimitIsAWriteThatFails) {
  writeFleet("[]");
  const std::string text =
      R"([{"log_id":"17","job_id":"updateFW","state_id":"WAIT","input_parameters":[{}],"x":")" +
      std::string(5000, 'x') + "\"}]";
  writeJobs(text);
  std::filesystem::remove(shared() + "utility/logs/TarselVistrelUtility.txt");
  const test::Ended ended =
      test::runProgram({"/bin/sh", "-c", "ulimit -f 1; exec \"$0\" 17 \"$1\"",
                        bundle / "Contents/Resources/Kelvane", shared()},
                       folder.path(), {{"ZORAPI_FLEET", folder / "fleet.json"}});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(folder.read(test::kJobFile), text);
  EXPECT_EQ(folder.names("shared/utility/command"), Lines{"BGPLog.json"});
}

TEST_F(FirmwareJob, AMissingFleetIsADiscoveryError) {
  writeJobs(R"([{"log_id":"17","job_id":"updateFW","state_id":"WAIT",
                 "input_parameters":[{"wwn":"50000000000000A1","file_path":"/i"}]}])");
  const test::Ended ended = runWorker({"17", shared()});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_THAT(ended.err, HasSubstr("fleet.json"));
  EXPECT_NE(result(), 0);
}

}  // namespace
}  // namespace kelvane
