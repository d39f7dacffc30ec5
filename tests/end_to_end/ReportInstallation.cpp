#include "tests/end_to_end/ReportInstallation.h"

namespace kelvane {

using platform::Value;

void ReportInstallation::writeThree(const Faults& faults) const {
  constexpr std::array<const char*, 3> kWwns = {"50000000000000A1", "50000000000000B2",
                                                "50000000000000C3"};
  const std::string image = makeImage("new.img", {"standard", "--product", "0x4301", "--firmware",
                                                  "2.0", "--cpld", "1.5", "--usb", "3.0"});
  std::string controllers;
  Value inputs = Value::array();
  for (std::size_t i = 0; i < kWwns.size(); ++i) {
    if (i > 0) controllers += ", ";
    controllers.append(R"({"wwn": ")").append(kWwns.at(i));
    controllers.append(R"(", "product_id": "0x4301", "firmware": "1.0", "cpld": "1.0",
                          "usb_bridge": "1.0", "cpld_transfer_seconds": 10,
                          "cpld_programming_seconds": 10, "firmware_seconds": 40, "faults": [)");
    controllers.append(faults.at(i)).append("]}");
    inputs.append(Value::dictionary({{"wwn", kWwns.at(i)}, {"file_path", image}}));
  }
  writeFleet("[" + controllers + "]");
  writeJobs(test::waitingJob("updateFW", inputs));
}

void ReportInstallation::flashThree(const Faults& faults) const {
  writeThree(faults);
  EXPECT_EQ(runWorker({"17", shared()}).exitStatus, 0);
}

std::string ReportInstallation::report(const std::string& logId,
                                       const std::vector<std::string>& options) const {
  std::vector<std::string> arguments = {
      "report", "--shared", shared(), "--bundle", bundle.path(), "--output", folder / "report.html",
      logId};
  arguments.insert(arguments.end(), options.begin(), options.end());
  const test::Ended ended = console(arguments);
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  return folder.read("report.html");
}

}  // namespace kelvane
