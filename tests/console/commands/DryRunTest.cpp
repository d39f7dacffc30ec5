// The dry run of update-fw: what it shows, and when it refuses.

#include "console/checks/Framework.h"
#include "console/commands/DryRun.h"
#include "console/commands/UpdateFw.h"
#include "console/display/Wrapping.h"
#include "console/job/ExitCode.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/support/LogLine.h"

namespace kelvane::console {
namespace {

constexpr char kFits[] = R"({"wwn": "50000000000000A1", "file_path": "/images/a.img",
  "product_id": "0x4301", "update": "standard", "verdict": "fits"})";
constexpr char kFails[] = R"({"wwn": "50000000000000A2", "file_path": "/images/a.img",
  "verdict": "fails", "why": "no controller has this WWN", "nearest": "50000000000000A1"})";
constexpr char kNotCertain[] = R"({"wwn": "50000000000000B2", "file_path": "/images/b.img",
  "product_id": "0x4801", "update": "qvxf", "verdict": "not certain", "why": "the cause"})";

class DryRun : public ConsoleWorld {
 protected:
  DryRun() { options.updates = {"5000A1=" + folder.write("a.img", "image")}; }

  int show(const std::string& entries) {
    return showRehearsal(platform::parseJson("[" + entries + "]"), screen);
  }
  int run() {
    options.job = job;
    options.dryRun = true;
    return runHere(updateFw, options);
  }

  UpdateFwOptions options;
};

TEST_F(DryRun, EachControllerHasItsVerdict) {
  EXPECT_EQ(show(std::string(kFits) + "," + kFails + "," + kNotCertain), kFindings);
  EXPECT_EQ(shown.str(),
            "fits: 50000000000000A1\n"
            "  image   /images/a.img\n"
            "  update  standard, product 0x4301\n"
            "fails: 50000000000000A2\n"
            "  image         /images/a.img\n"
            "  why           no controller has this WWN\n"
            "  did you mean  50000000000000A1\n"
            "not certain: 50000000000000B2\n"
            "  image   /images/b.img\n"
            "  update  QVXF, product 0x4801\n"
            "  why     the cause\n"
            "nothing was flashed\n");
}

TEST_F(DryRun, OnlyAFailureIsAFinding) {
  EXPECT_EQ(show(kFits), kSuccess);
  EXPECT_EQ(show(kNotCertain), kSuccess);
}

TEST_F(DryRun, FitsEveryScreen) {
  for (const Charset charset : {Charset::ascii, Charset::utf8}) {
    for (screen.columns = 20; screen.columns <= 200; ++screen.columns) {
      screen.charset = charset;
      shown.str("");
      show(std::string(kFits) + "," + kFails + "," + kNotCertain);
      for (const std::string& line : test::splitLines(shown.str())) {
        EXPECT_LE(columnsOf(line), screen.columns) << line;
      }
    }
  }
}

TEST_F(DryRun, ForMachinesItIsAList) {
  screen.json = true;
  EXPECT_EQ(show(kFits), kSuccess);
  EXPECT_EQ(platform::parseJson(shown.str()), platform::parseJson(std::string("[") + kFits + "]"));
}

TEST_F(DryRun, AsksTheBundlesFrameworkAndSubmitsNothing) {
  makeWorkerThatLeaves("FREE", "0");
  EXPECT_EQ(run(), kNoAnswer);
  EXPECT_EQ(messages.str(), "kelvane-console: the framework " + frameworkPath(job.bundle) +
                                ": No such file or directory\n");
  EXPECT_FALSE(platform::exists(folder / test::kJobFile));
}

TEST_F(DryRun, WithoutABundleThereIsNoneToAsk) {
  job.worker = "/bin/true";
  job.bundle.clear();
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(),
            "kelvane-console: --dry-run asks the bundle's framework, and no bundle is given\n");
}

TEST_F(DryRun, AnImageThatIsNotThereIsRefusedAsEver) {
  options.updates = {"5000A1=none.img"};
  EXPECT_EQ(run(), kBadUsage);
}

}  // namespace
}  // namespace kelvane::console
