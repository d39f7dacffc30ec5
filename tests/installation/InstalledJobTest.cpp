// Jobs in a bundle that cmake --install has filled, on the simulators that it put there.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "tests/end_to_end/OnlineInstallation.h"
#include "tests/installation/InstalledTree.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

class InstalledJob : public OnlineInstallation {
 protected:
  // In place of the programs as they are built.
  InstalledJob() {
    fs::remove_all(bundle / "Contents/Frameworks");
    fs::remove(bundle / "Contents/Resources/Kelvane");
    fs::remove(bundle / "Contents/Resources/EngineRunner");
    for (const char* component : {"worker", "simulators"}) {
      test::installComponent(component, bundle.path());
    }
    environment["LD_LIBRARY_PATH"] = "";
    makeImage("FW_T3.img", {"standard", "--product", "0x43", "--firmware", "2.0"});
    makeService(R"({"packages": [{"product": "fw3", "version": "2.0",
                    "files": {"FW_T3.img": "FW_T3.img"}}]})");
  }

  void move() {
    fs::remove(elsewhere.path());
    fs::rename(bundle.path(), elsewhere.path());
    worker = elsewhere / "Contents/Resources/Kelvane";
    folder.write("shared/utility/config/setting.json",
                 R"({"AppPath": ")" + elsewhere.path() + "\"}");
  }

  void expectAQueryToSucceed() const {
    EXPECT_EQ(query().err, "");
    EXPECT_EQ(result(), 0);
    EXPECT_EQ(job().get("output").at(0).get("ProductID"), Value("fw3"));
  }

  // Of an image that a download has left in the download area.
  void expectAFlashToSucceed() const {
    EXPECT_EQ(download({"fw3"}).err, "");
    ASSERT_EQ(result(), 0);
    writeFleet(
        R"([{"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "1.0", "cpld": "1.0",
             "usb_bridge": "1.0"}])");
    updateFirmware({{"50000000000000A1", area("FW") + "/FW_T3.img"}});
    EXPECT_EQ(result(), 0);
    EXPECT_EQ(fleet().get("controllers").at(0).get("firmware"), Value("2.0"));
    EXPECT_THAT(violations(), IsEmpty());
  }

  test::TempFolder elsewhere{".app"};
};

TEST_F(InstalledJob, AQueryADownloadAndAFirmwareJobSucceed) {
  expectAQueryToSucceed();
  expectAFlashToSucceed();
}

TEST_F(InstalledJob, TheySucceedAgainWhenTheBundleHasMoved) {
  expectAFlashToSucceed();
  move();
  expectAQueryToSucceed();
  expectAFlashToSucceed();
}

}  // namespace
}  // namespace kelvane
