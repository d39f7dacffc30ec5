// The framework that the simulated controllers stand behind: each of its functions as a method,
// with the framework's contract enforced.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulators/controllers/Call.h"
#include "simulators/controllers/Clock.h"
#include "simulators/controllers/Controller.h"
#include "simulators/controllers/Fleet.h"
#include "simulators/controllers/Image.h"
#include "simulators/controllers/Journal.h"
#include "zorapi/zorapi.h"

namespace kelvane::simulator {

// A call that breaks the contract does nothing, is refused with a status, and stands in the journal
// as a violation. Not thread-safe. No method raises but for memory that is not to be had.
class Framework {
 public:
  // The journal must outlive the framework.
  Framework(std::string fleetPath, Journal& journal, TimeOfDay timeOfDay = systemTimeOfDay);

  // --- start and discovery
  std::uint32_t initialize(const InitParm* parm);
  std::uint32_t discover(std::uint32_t zero);
  std::uint32_t getNumberOfHBA(std::uint32_t* count);
  std::uint32_t getNumberOfSubsystem(std::uint32_t* count);
  std::uint32_t getSubsystemInfo(ControllerAddress address, std::uint32_t sel, SubsystemInfo* info);
  void getStringWWN(WwnString* text, const void* wwnField);
  std::uint32_t getControllerInfo(std::uint16_t adapterNumber, std::uint32_t sel,
                                  const CtrlInfoRequest* request, void* buffer, std::uint32_t size);
  std::uint32_t locateBufferCtrlInfo(void* buffer, std::uint32_t size, std::uint32_t zero,
                                     std::uint32_t pageNumber, void** page);
  std::uint32_t getCurrentDeviceInterface(ControllerAddress address, std::uint32_t sel,
                                          DeviceInterfaceInfo* info);
  const char* errorDescription(std::uint32_t status);

  // --- standard image
  std::uint32_t getFDLImageInfo(FlashParm* flash, FwImgInfo* image);
  std::uint32_t getCPLDImageInfo(FlashParm* flash, CpldParm* cpld, FwImgInfo* image, void* page0,
                                 void* page1);
  std::uint32_t getUSBImageInfo(FlashParm* flash, UsbParm* usb);
  std::uint32_t initializeFlashProcess(ControllerAddress address, std::uint32_t sel);
  std::uint32_t checkFlashImage(ControllerAddress address, std::uint32_t sel, void* controllerInfo,
                                FlashParm* flash, UsbParm* usb, CpldParm* cpld, FwImgInfo* image);
  std::uint32_t transferFlashImage(ControllerAddress address, std::uint32_t sel, FlashParm* flash,
                                   UsbParm* usb, CpldParm* cpld, FwImgInfo* image);
  std::uint32_t verifyFlashImage(ControllerAddress address, std::uint32_t sel, FlashParm* flash);
  std::uint32_t flashImageEx(ControllerAddress address, std::uint32_t sel, std::uint32_t flashMode,
                             FlashParm* flash);
  std::uint32_t getFlashProgress(ControllerAddress address, std::uint32_t sel,
                                 FlashProgress* progress);
  std::uint32_t finalizeFlashProcess(ControllerAddress address, std::uint32_t sel);

  // --- QVXF image
  std::uint32_t checkQVXFFlashImage(ControllerAddress address, std::uint32_t sel, FlashParm* flash,
                                    QvxfCheckInfo* info);
  std::uint32_t transferQVXFFlashImage(ControllerAddress address, std::uint32_t sel,
                                       FlashParm* flash, FwImgInfo* image, std::uint32_t zero);
  std::uint32_t analyzeQVXFImage(ControllerAddress address, std::uint32_t sel,
                                 QvxfAnalysis* analysis);
  std::uint32_t flashQVXFImage(ControllerAddress address, std::uint32_t sel);
  std::uint32_t getFlashQVXFImageStatus(ControllerAddress address, std::uint32_t sel,
                                        FlashProgress* progress);
  std::uint32_t finializeQVXFImage(ControllerAddress address, std::uint32_t sel);

  // --- CPLD
  std::uint32_t initializeCPLDProcess(ControllerAddress address, std::uint32_t sel);
  std::uint32_t flashCPLDBin(ControllerAddress address, std::uint32_t sel, FlashParm* flash,
                             std::uint32_t zero, UsbParm* usb, CpldParm* cpld, FwImgInfo* image);
  std::uint32_t getCPLDProgress(ControllerAddress address, std::uint32_t sel,
                                CpldProgress* progress);
  std::uint32_t finalizeCPLDProcess(ControllerAddress address, std::uint32_t sel);

  // --- USB bridge
  std::uint32_t checkUSBFWVersion(ControllerAddress address, std::uint32_t sel, UsbParm* usb,
                                  std::uint32_t* updateFlag);
  std::uint32_t getNVRAM(ControllerAddress address, std::uint32_t sel, UsbNvram* nvram);
  std::uint32_t flashUSBFWbin(ControllerAddress address, std::uint32_t sel, FlashParm* flash,
                              UsbParm* usb);
  std::uint32_t setNVRAM(ControllerAddress address, std::uint32_t sel, FlashParm* flash,
                         UsbParm* usb, UsbNvram* nvram);
  std::uint32_t flashNVRAM(ControllerAddress address, std::uint32_t sel, UsbNvram* nvram);

 private:
  using Arguments = platform::Value::Entries;
  using Body = std::function<std::uint32_t()>;

  // Counts the call, for the faults that go by its number.
  Call begin(std::string function, Arguments arguments);
  // The status: that of the refusal, else that of a fault to play, else what the body gives.
  std::uint32_t finish(Call& call, const Body& body);
  std::uint32_t statusOf(const Call& call, const Body& body);
  std::uint32_t faultOf(const Call& call) const;

  // What the contract asks of every call; each returns whether the call still stands.
  bool requireDiscovered(Call& call) const;
  static bool requireSel(Call& call, std::uint32_t sel);
  static bool requireRecord(Call& call, const void* record, std::string_view name);
  // The controller that is meant; one that stands for none where the call is refused.
  Controller& addressed(Call& call, ControllerAddress address, std::uint32_t sel);
  std::optional<std::size_t> listedIndex(ControllerAddress address) const;
  std::size_t adapterCount() const;
  bool requireFlashParm(Call& call, const FlashParm* flash, const Controller& controller) const;
  bool requireImageRecords(Call& call, const UsbParm* usb, const CpldParm* cpld,
                           const FwImgInfo* image) const;
  void requireNothingOpen(Call& call) const;
  void requireExamination(Call& call, const FlashParm* flash);
  void requireCheckable(Call& call, const FlashParm* flash, const Controller& controller);
  void requireTransferred(Call& call, const FlashParm* flash, const Controller& controller) const;
  Controller& addressedQvxf(Call& call, ControllerAddress address, std::uint32_t sel);
  // Whether the pointer is that of the page in the buffer that was filled last.
  bool isPage(const void* page, std::size_t number) const;
  // The controller whose information was asked last.
  Controller& current();

  // Reads the image and checks that it suits; a status other than 0 tells why not.
  static ImageFile suitableImage(const FlashParm& flash, Image::Kind kind);

  static bool playBusy(BusyFault& busy);
  RunningFlash startFlash(Timeline timeline, std::string version) const;
  // What a flash that survives its process leaves in the fleet file, and takes away at its end.
  void keepFlash(const Controller& controller, const char* flash, const std::string& version) const;
  void forgetFlash(const Controller& controller) const;
  void takeSurvivor(Controller& controller);
  // Whether a flash of an earlier process still runs there; one that has come to its end counts.
  bool isStillFlashing(Controller& controller);
  std::uint32_t startCpld(Controller& controller, const Image& image) const;
  void startFirmware(Controller& controller, std::optional<RunningFlash>& flash,
                     const std::string& version) const;
  std::uint32_t firmwareProgress(Call& call, Controller& controller,
                                 std::optional<RunningFlash>& flash, FlashProgress* progress);
  Reading readProgress(Controller& controller, RunningFlash& flash, const char* key,
                       std::string& held);
  void closeFirmware(Controller& controller, std::optional<RunningFlash>& flash);
  void end(Controller& controller, RunningFlash& flash, const char* key, std::string& held);
  void complete(Controller& controller, RunningFlash& flash, const char* key, std::string& held);
  void store(const Controller& controller, const char* key, const platform::Value& value) const;
  void loadFleet();

  std::string fleetPath_;
  Journal& journal_;
  TimeOfDay timeOfDay_;
  Clock clock_;
  bool survives_ = false;  // whether flashes go on without this process
  std::vector<CallFault> faults_;
  std::map<std::string, std::uint64_t> calls_;  // how often each function has been called
  std::vector<Controller> controllers_;
  Controller nobody_{ControllerRecord{}};
  std::string complaint_;  // about the fleet file; empty where there is none
  bool initialised_ = false;
  bool discovered_ = false;
  // The number of adapters could not be had, so the caller addresses by a wrong one.
  bool countFailed_ = false;

  // Of the controller information asked last.
  Controller* current_ = nullptr;
  char* infoBuffer_ = nullptr;
  bool infoFilled_ = false;
  // Whether something failed since then: a worker that goes on has records that were never filled.
  bool failed_ = false;
  FwImgInfo filledImage_ = {};
  bool qvxfChecked_ = false;   // in this job
  bool qvxfAnalysed_ = false;  // in this job
};

}  // namespace kelvane::simulator
