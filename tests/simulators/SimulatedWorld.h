// One simulated fleet and a caller that keeps the framework's contract, step by step.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Value.h"
#include "simulators/controllers/Framework.h"
#include "simulators/controllers/Image.h"
#include "simulators/controllers/Journal.h"
#include "tests/support/TempFolder.h"
#include "zorapi/zorapi.h"

namespace kelvane::test {

class MemoryJournal : public simulator::Journal {
 public:
  void write(const platform::Value& record) override { lines_.push_back(record); }
  const std::vector<platform::Value>& lines() const { return lines_; }
  std::vector<std::string> violations() const;
  // How often the function stands in the journal.
  std::size_t count(const std::string& function) const;

 private:
  std::vector<platform::Value> lines_;
};

// The records of a job, zeroed.
struct Job {
  FlashParm flash = {};
  UsbParm usb = {};
  CpldParm cpld = {};
  FwImgInfo image = {};
  UsbNvram nvram = {};
  QvxfCheckInfo checkInfo = {};
  QvxfAnalysis analysis = {};
  std::vector<char> buffer = std::vector<char>(ZOR_CONTROLLER_INFO_SIZE);
  void* page0 = nullptr;
  void* page1 = nullptr;
};

// The shortest fleet file: a standard controller of product 0x4301 that needs one firmware progress
// query to be done. `more` are further keys of the controller, `faults` of the fleet.
std::string fleetOfOne(const std::string& more = "", const std::string& faults = "");
// The same for a QVXF controller of product 0x4801.
std::string fleetOfOneQvxf();

InitParm initialParameters();
CtrlInfoRequest controllerInfoRequest();

class SimulatedWorld {
 public:
  explicit SimulatedWorld(const std::string& fleet = fleetOfOne());

  // Images that fit the controllers of the fleets above.
  std::string standardImage(const std::string& firmware = "2.0", const std::string& cpld = "2.0",
                            const std::string& usb = "2.0") const;
  std::string qvxfImage() const;

  // The steps; each gives the status of its last call, or of the first that failed.
  std::uint32_t start();
  std::uint32_t readController(std::uint16_t index = 0);
  std::uint32_t examine(const std::string& imagePath);
  std::uint32_t openCpld();
  std::uint32_t startCpld();
  CpldProgress pollCpld();
  std::uint32_t transfer();
  std::uint32_t startFirmware();
  FlashProgress pollFirmware();
  std::uint32_t prepareBridge();
  std::uint32_t flashBridge();
  std::uint32_t transferQvxf(const std::string& imagePath);
  std::uint32_t startQvxf();
  FlashProgress pollQvxf();

  // All steps up to the one named, on the first controller.
  std::uint32_t upToExamined(const std::string& imagePath);
  std::uint32_t upToFirmwareStarted(const std::string& imagePath);

  void fillFlashParm(const std::string& imagePath, std::uint16_t product);

  // What the fleet file says by now of its first controller.
  std::string stored(const std::string& key) const;

  TempFolder folder;
  std::string fleetPath;
  MemoryJournal journal;
  double timeOfDay = 1'000'000;  // seconds; stands still
  simulator::Framework framework;
  ControllerAddress address = {};
  Job job;

 private:
  CpldProgress cpldProgress_ = {};
  FlashProgress progress_ = {};
};

}  // namespace kelvane::test
