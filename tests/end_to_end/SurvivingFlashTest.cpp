// A worker that is killed while a flash goes on in the controller, and the job done again.

#include <csignal>

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include "contract/Framework.h"
#include "platform/Json.h"
#include "tests/end_to_end/SupportInstallation.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class KilledWorker : public SupportInstallation {
 protected:
  KilledWorker() {
    folder.write("fleet.json", R"({"survives": true, "controllers": [
        {"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "1.0", "cpld": "1.0",
         "usb_bridge": "3.0", "firmware_seconds": 1000000}]})");
    image = makeImage("new.img", {"standard", "--product", "0x4301", "--firmware", "2.0"});
  }

  void updateAndKill() {
    writeJobs(R"([{"log_id": "17", "job_id": "updateFW", "state_id": "WAIT", "input_parameters":
                   [{"wwn": "50000000000000A1", "file_path": ")" +
              image + "\"}]}]");
    const pid_t process = ::fork();
    if (process == 0) {
      ::setenv("ZORAPI_FLEET", (folder / "fleet.json").c_str(), 1);
      ::execl(worker().c_str(), worker().c_str(), "17", shared().c_str(), nullptr);
      ::_exit(127);
    }
    while (log().find("fshProg.") == std::string::npos) continue;
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
  }
  test::Ended retry() const {
    return consoleWithFleet(
        {"retry", "--yes", "--shared", shared(), "--bundle", bundle.path(), "17"});
  }
  Value controller() const { return fleet().get("controllers").at(0); }
  // As if the flash had begun long ago.
  void letTimePass() const {
    std::string text = folder.read("fleet.json");
    const std::string key = "\"started_at\": ";
    const std::size_t start = text.find(key) + key.size();
    const std::size_t end = text.find_first_not_of("0123456789", start);
    folder.write("fleet.json", text.replace(start, end - start, "0"));
  }

  std::string image;
};

TEST_F(KilledWorker, LeavesAFlashThatKeepsTheControllerBusyUntilItIsDone) {
  updateAndKill();
  ASSERT_EQ(state(), "RUN");
  EXPECT_EQ(controller().get("flashing").get("version"), Value("2.0"));

  const test::Ended early = retry();
  EXPECT_EQ(early.exitStatus, 1) << early.out << early.err;
  EXPECT_THAT(early.out, HasSubstr("32848 (0x8050)"));
  EXPECT_EQ(controller().get("firmware"), Value("1.0"));

  letTimePass();
  const test::Ended asked = consoleWithFleet({"devices", "--bundle", bundle.path()});
  EXPECT_EQ(asked.exitStatus, 0) << asked.err;
  EXPECT_EQ(controller().get("firmware"), Value("2.0"));
  EXPECT_FALSE(controller().has("flashing"));

  std::string quick = folder.read("fleet.json");
  folder.write("fleet.json", quick.replace(quick.find("1000000"), 7, "0"));
  const test::Ended late = retry();
  EXPECT_EQ(late.exitStatus, 0) << late.out << late.err;
  EXPECT_THAT(violations(), IsEmpty());
}

}  // namespace
}  // namespace kelvane
