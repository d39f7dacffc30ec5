#include "tests/end_to_end/OnlineInstallation.h"

#include <sys/stat.h>

#include "platform/Json.h"
#include "tests/support/JobFiles.h"

namespace kelvane {

using platform::Value;

OnlineInstallation::OnlineInstallation() {
  install(KELVANE_ENGINE, "Contents/Resources/EngineRunner");
  bundle.write("Contents/Resources/Config/setting.json",
               R"({"online_update_plist_name": "Offers", "product_id_sw": "sw",
                   "product_id_tarsel2fw": "fw2", "product_id_tarsel3fw": "fw3",
                   "app_name": "Manager", "AppPath": ")" +
                   (folder / "Installed.app") + "\"}");
  folder.write("shared/utility/config/setting.json", R"({"AppPath": ")" + bundle.path() + "\"}");
  folder.write("FW_QRX550.img", "image of fw2");
  folder.write("FW_T3.img", "image of fw3");
  folder.write("Manager.app/Contents/version", "2.0");
  ::chmod(folder.write("Manager.app/Contents/MacOS/Manager", "the program").c_str(), 0755);
  makeService(R"({"packages": [
    {"product": "sw", "version": "2.0", "minimum_os": "1.0.0",
     "codebase": "https://updates.example/Manager.zip", "files": {"Manager.app": "Manager.app"}},
    {"product": "fw2", "version": "2.4.0", "codebase": "https://updates.example/fw2.zip",
     "files": {"FW_QRX550.img": "FW_QRX550.img"}},
    {"product": "fw3", "version": "3.4.0", "codebase": "https://updates.example/fw3.zip",
     "files": {"FW_T3.img": "FW_T3.img"}}]})");
}

void OnlineInstallation::makeService(const std::string& description) const {
  folder.write("description.json", description);
  const test::Ended made = test::runProgram(
      {KELVANE_MAKE_SERVICE, folder / "description.json", folder / "service"}, folder.path());
  EXPECT_EQ(made.exitStatus, 0) << made.err;
}

Value OnlineInstallation::parameters(const std::string& product) const {
  return Value::dictionary({{"productid", product},
                            {"version", "1.0"},
                            {"url", folder / "service"},
                            {"folder", engineFolder()}});
}

test::Ended OnlineInstallation::runJob(const std::string& command, const Value& inputs) const {
  writeJobs(test::waitingJob(command, inputs));
  test::Ended ended = runWorker({"17", shared()});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.out, "");
  return ended;
}

test::Ended OnlineInstallation::query(const std::string& product) const {
  return runJob("getOnlineUpdateData", parameters(product));
}

test::Ended OnlineInstallation::download(const std::vector<std::string>& products) const {
  Value inputs = Value::array();
  for (const std::string& product : products) inputs.append(parameters(product));
  return runJob("downloadOnlineUpdateFile", inputs);
}

std::vector<std::string> OnlineInstallation::states() const {
  std::vector<std::string> found;
  for (const Value& version : versions()) {
    found.push_back(version.at(0).get("state_id").string());
  }
  return found;
}

}  // namespace kelvane
