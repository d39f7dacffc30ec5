// The dry run of update-fw on the simulated framework: what it says is what the job then does.

#include <gmock/gmock.h>

#include "platform/Json.h"
#include "tests/end_to_end/SupportInstallation.h"
#include "tests/support/PseudoTerminal.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kThreeControllers[] = R"([
  {"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "1", "cpld": "1",
   "usb_bridge": "1"},
  {"wwn": "50000000000000B2", "product_id": "0x4801", "firmware": "1", "cpld": "1",
   "usb_bridge": "1"},
  {"wwn": "50000000000000C3", "product_id": "0x3201", "firmware": "1", "cpld": "1",
   "usb_bridge": "1"}])";

class DryRun : public SupportInstallation {
 protected:
  DryRun() {
    writeFleet(kThreeControllers);
    standard = makeImage("standard.img", {"standard", "--product", "0x43", "--product", "0x32",
                                          "--firmware", "2", "--cpld", "2"});
    qvxf = makeImage("qvxf.img", {"qvxf", "--product", "0x48", "--firmware", "2"});
  }

  test::Ended dryRun(const std::string& wwn, const std::string& image,
                     const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments = {"update-fw", "--dry-run", "--bundle",       bundle.path(),
                                          "--shared",  shared(),    wwn + "=" + image};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return consoleWithFleet(arguments);
  }
  // What the dry run says of the controller and the image, and the result of the job thereafter.
  std::string verdictAndResult(const std::string& wwn, const std::string& image) const {
    writeFleet(kThreeControllers);
    const test::Ended ended = dryRun(wwn, image, {"--json"});
    const Value all = platform::parseJson(ended.out);
    EXPECT_EQ(all.count(), 1U) << ended.out << ended.err;
    const std::string verdict = all.at(0).get("verdict").string();
    EXPECT_EQ(ended.exitStatus, verdict == "fails" ? 1 : 0);
    updateFirmware({{wwn, image}});
    return verdict + " " + std::to_string(result());
  }

  std::string standard;
  std::string qvxf;
};

TEST_F(DryRun, SaysWhatTheJobThenDoes) {
  EXPECT_EQ(verdictAndResult("50000000000000A1", standard), "fits 0");
  EXPECT_EQ(verdictAndResult("50000000000000A1", qvxf), "fails 32855");
  EXPECT_EQ(verdictAndResult("50000000000000A1", folder.write("text.img", "text")), "fails 32851");
  EXPECT_EQ(verdictAndResult("50000000000000B2", qvxf), "not certain 0");
  EXPECT_EQ(verdictAndResult("50000000000000B2", standard), "not certain 32855");
  const std::string both =
      makeImage("both.img", {"standard", "--product", "0x48", "--firmware", "2"});
  EXPECT_EQ(verdictAndResult("50000000000000B2", both), "fails 32855");
  EXPECT_EQ(verdictAndResult("50000000000000C3", standard), "fails 32853");
  EXPECT_EQ(verdictAndResult("50000000000000A2", standard), "fails 1026");
}

TEST_F(DryRun, ChangesNothing) {
  const std::string fleet = folder.read("fleet.json");
  const std::string jobs = folder.read(test::kJobFile);
  EXPECT_EQ(dryRun("50000000000000A1", standard).exitStatus, 0);
  EXPECT_EQ(folder.read("fleet.json"), fleet);
  EXPECT_EQ(folder.read(test::kJobFile), jobs);
  EXPECT_EQ(log(), "");
}

TEST_F(DryRun, KeepsTheFrameworksContractAndOpensNoFlash) {
  dryRun("50000000000000A1", standard, {"50000000000000B2=" + qvxf});
  EXPECT_THAT(violations(), IsEmpty());
  EXPECT_THAT(calls(), Contains("zr_getFDLImageInfo"));
  EXPECT_THAT(calls(), Not(Contains(StartsWith("zr_initializeFlash"))));
}

TEST_F(DryRun, AnUnknownWwnSuggestsTheNearestKnownOne) {
  const test::Ended ended = dryRun("50000000000000a1", standard);
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_EQ(ended.out,
            "fails: 50000000000000a1\n"
            "  image         " +
                standard +
                "\n"
                "  why           no controller has this WWN, letter by letter; found are "
                "50000000000000A1, 50000000000000B2, 50000000000000C3\n"
                "  did you mean  50000000000000A1\n"
                "nothing was flashed\n");
}

// --- in a terminal

class UpdateFwInATerminal : public DryRun {
 protected:
  // Answers the question; the exit status.
  int answered(const std::string& wwn, const std::string& answer) {
    std::map<std::string, std::string> around = environment;
    around.erase("LD_PRELOAD");
    test::PseudoTerminal terminal({bundle / "bin/kelvane-console", "update-fw", "--bundle",
                                   bundle.path(), "--shared", shared(), wwn + "=" + standard},
                                  folder.path(), {120, 24, true}, around);
    EXPECT_TRUE(terminal.waitFor("[y/N]")) << terminal.output();
    terminal.type(answer);
    const int status = terminal.end();
    output = terminal.output();
    return status;
  }

  std::string output;
};

TEST_F(UpdateFwInATerminal, ShowsHowItWouldGoAndAsks) {
  EXPECT_EQ(answered("50000000000000A1", "n\n"), 7);
  EXPECT_THAT(output, HasSubstr(": 50000000000000A1\r\n"));
  EXPECT_THAT(output, HasSubstr("  update  standard, product 0x4301\r\nFlash? [y/N] "));
  EXPECT_EQ(jobs(), Value::array());
  EXPECT_EQ(answered("50000000000000A1", "y\n"), 0) << output;
  EXPECT_EQ(fleet().get("controllers").at(0).get("firmware"), Value("2"));
}

TEST_F(UpdateFwInATerminal, SaysThatItWouldFail) {
  EXPECT_EQ(answered("50000000000000a1", "n\n"), 7);
  EXPECT_THAT(output, HasSubstr("  did you mean  50000000000000A1\r\n"));
  EXPECT_THAT(output, HasSubstr("It would fail. Submit it all the same? [y/N] "));
}

}  // namespace
}  // namespace kelvane
