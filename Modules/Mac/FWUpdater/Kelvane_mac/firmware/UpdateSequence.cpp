// The command "updateFW": discovery, then one controller after the other, along the QVXF or the
// standard path.

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "Kelvane.h"
#include "contract/JobFile.h"
#include "firmware/Polling.h"
#include "firmware/UpdateLog.h"
#include "firmware/UsbBridge.h"
#include "platform/Text.h"
#include "platform/Utf8.h"
#include "zorapi/Discovery.h"
#include "zorapi/zorapi.h"

namespace kelvane {

using platform::Value;

namespace {

constexpr std::uint32_t kFlashMode = 4;
constexpr std::uint8_t kStageFinished = 5;
constexpr char kDeviceId[] = "device_id";

// The framework that the worker is linked to.
constexpr framework::DiscoveryFunctions kZorapi = {
#define KELVANE_LINKED_FUNCTION(name) &::name,
    KELVANE_DISCOVERY_FUNCTIONS(KELVANE_LINKED_FUNCTION)
#undef KELVANE_LINKED_FUNCTION
};

// The controller information buffer.
struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
using InfoBuffer = std::unique_ptr<void, Free>;

// One entry of the input parameters on its way through the update. The records start zeroed.
struct Entry {
  bool skipped = true;  // has no controller of its own and never starts anything
  Value progress;       // a copy of the input entry, with the percentages as they come
  std::int64_t devId = -1;
  Value filePath;
  framework::Product product{0};
  FlashParm flash = {};
  UsbParm usb = {};
  UsbNvram nvram = {};
  CpldParm cpld = {};
  FwImgInfo image = {};
  FlashProgress flashProgress = {};
};

class FirmwareJob {
 public:
  FirmwareJob(Kelvane& worker, const Value& record)
      : worker_(worker),
        record_(record),
        inputs_(record.get(job::kInputParameters)),
        logId_(record.get(job::kLogId)) {}

  Value run() {
    UPDATE_LOG("updateFW start, inputDict = %@", record_);
    startFramework();
    allocateInfoBuffer();
    if (infoBuffer_) {  // without it no controller can be read, so none is looked for
      listDevices();
      for (const Value& input : inputs_.elements()) updateEntry(input);
    }
    infoBuffer_.reset();
    return finish();
  }

 private:
  // --- the job's start

  void startFramework() {
    if (inputs_.isNothing()) {
      status_ = kZorDeviceNotFound;
      return;
    }
    worker_.initUpgradeFWStatus(record_);
    status_ = framework::startDiscovery(kZorapi, counts_);
  }

  void allocateInfoBuffer() {
    infoBuffer_.reset(std::malloc(ZOR_CONTROLLER_INFO_SIZE));
    if (!infoBuffer_ && status_ == 0) status_ = kZorOutOfMemory;
  }

  // A device that does not answer is left out, but the status stays that of the last one asked.
  void listDevices() {
    framework::listDevices(kZorapi, counts_, [this](const framework::ListedDevice& device) {
      if (!succeeded(device.status)) return;
      devices_.append(
          Value::dictionary({{job::kWwn, device.wwn}, {kDeviceId, Value::integer(device.id)}}));
    });
  }

  // --- one entry

  void updateEntry(const Value& input) {
    Entry entry;
    if (status_ == 0) findController(entry, input);
    if (page0_ == nullptr) {  // no controller of this job has shown its product identifier yet
      endOnFailure(entry);
      return;
    }
    entry.product = framework::Product(framework::productIdentifier(page0_));
    UPDATE_LOG("pPage0->ci_ProductID = %x", entry.product.identifier());
    if (entry.product.isQvxf()) {
      takeQvxfPath(entry);
    } else {
      takeStandardPath(entry);
    }
  }

  void findController(Entry& entry, const Value& input) {
    entry.progress = input.asDictionary();
    entry.devId = worker_.getDevIdByWWN(devices_, entry.progress.get(job::kWwn));
    if (entry.devId == -1) {
      status_ = kZorDeviceNotFound;
      return;
    }
    entry.skipped = false;
    entry.filePath = entry.progress.get(job::kFilePath);
    UPDATE_LOG("devId = %d, filePath = %@", static_cast<std::int32_t>(entry.devId), entry.filePath);
    address_ = framework::addressOf(entry.devId);
    readControllerInfo();
  }

  void readControllerInfo() {
    status_ = framework::readControllerInfo(kZorapi, *address_, infoBuffer_.get());
    UPDATE_LOG("zr_getControllerInfo(), u32Ret = %x", status_);
    if (status_ == 0 && locatePage(0, page0_)) locatePage(1, page1_);
  }

  bool locatePage(std::uint32_t number, void*& page) {
    return succeeded(framework::locatePage(kZorapi, infoBuffer_.get(), number, page));
  }

  static void fillFlashParm(Entry& entry) {
    entry.flash = framework::flashParm(
        entry.product, entry.filePath.isNothing() ? nullptr : entry.filePath.string().c_str());
  }

  // --- the QVXF path

  void takeQvxfPath(Entry& entry) {
    fillFlashParm(entry);
    UPDATE_LOG("rpf.rpf_uTransfer.rpf_u8ImageFilePath = %s",
               entry.flash.rpf_uTransfer.rpf_u8ImageFilePath);
    if (status_ == 0 && startQvxfFlash(entry)) {
      followFlash(entry);
      return;
    }
    UPDATE_LOG("u32Ret is not 0, u32Ret = 0x%x", status_);
    zr_finalizeFlashProcess(*address_, 0);
    zr_finializeQVXFImage(*address_, 0);
    endOnFailure(entry);  // which closes both once more: meant so
  }

  bool startQvxfFlash(Entry& entry) {
    status_ = zr_initializeFlashProcess(*address_, 0);
    UPDATE_LOG("[WRONG] zr_initializeFlashProcess = 0x%x", status_);
    if (status_ != 0) return false;
    status_ = zr_checkQVXFFlashImage(*address_, 0, &entry.flash, &qvxfCheckInfo_);
    UPDATE_LOG("[WRONG] zr_checkQVXFFlashImage = 0x%x", status_);
    if (status_ != 0) return false;
    status_ = zr_transferQVXFFlashImage(*address_, 0, &entry.flash, &entry.image, 0);
    UPDATE_LOG("[WRONG] zr_transferQVXFFlashImage = 0x%x", status_);
    zr_finalizeFlashProcess(*address_, 0);  // before the analysis, whatever the transfer gave
    if (status_ != 0) return false;
    status_ = zr_analyzeQVXFImage(*address_, 0, &qvxfAnalysis_);
    UPDATE_LOG("[WRONG] zr_analyzeQVXFImage = 0x%x", status_);
    if (status_ != 0) return false;
    status_ = zr_flashQVXFImage(*address_, 0);
    UPDATE_LOG("[WRONG] zr_flashQVXFImage = 0x%x", status_);
    return status_ == 0;
  }

  // --- the standard path

  void takeStandardPath(Entry& entry) {
    const bool prepared = status_ == 0 && examineImage(entry) && flashCpld(entry);
    if (!prepared && !isTolerable(entry)) {
      endOnFlashFailure(entry);
      return;
    }
    if (!succeeded(zr_initializeFlashProcess(*address_, 0))) {
      endOnFlashFailure(entry);
      return;
    }
    if (!entry.product.isStandard()) {
      status_ = kZorUnsupportedProduct;
      endOnFailure(entry);
      return;
    }
    if (!transferImage(entry)) {
      endOnFlashFailure(entry);
      return;
    }
    if (!startStandardFlash(entry)) {
      endOnFailure(entry);
      return;
    }
    followFlash(entry);
  }

  bool examineImage(Entry& entry) {
    fillFlashParm(entry);
    if (!succeeded(zr_getFDLImageInfo(&entry.flash, &entry.image))) return false;
    if (!succeeded(zr_getCPLDImageInfo(&entry.flash, &entry.cpld, &entry.image, page0_, page1_))) {
      return false;
    }
    if (!entry.product.hasUsbImage()) return true;  // the USB record stays zero
    UPDATE_LOG("zr_getUSBImageInfo() ....\n");
    status_ = zr_getUSBImageInfo(&entry.flash, &entry.usb);
    UPDATE_LOG("usb_u32checkUSB: %lu\n", entry.usb.usb_u32checkUSB);
    return status_ == 0;
  }

  bool flashCpld(Entry& entry) {
    return succeeded(worker_.flashCPLD(entry.progress, &entry.flash, &entry.usb, &entry.cpld,
                                       &entry.image, entry.devId, logId_));
  }

  // Failures that do not keep the controller from getting its firmware. Reached from every failure
  // up to here, not only from the CPLD flash; never for an entry without a controller.
  bool isTolerable(const Entry& entry) const {
    return !entry.skipped && framework::isTolerable(getErrorDescription(status_));
  }

  bool transferImage(Entry& entry) {
    if (!succeeded(zr_checkFlashImage(*address_, 0, infoBuffer_.get(), &entry.flash, &entry.usb,
                                      &entry.cpld, &entry.image))) {
      return false;
    }
    UPDATE_LOG("Start transferring image, please wait ...");
    return succeeded(
        zr_transferFlashImage(*address_, 0, &entry.flash, &entry.usb, &entry.cpld, &entry.image));
  }

  bool startStandardFlash(Entry& entry) {
    UPDATE_LOG("Flash image has been successfully transferred");
    if (!succeeded(zr_verifyFlashImage(*address_, 0, &entry.flash))) {
      UPDATE_LOG("Image format is invalid.");
      return false;
    }
    return succeeded(zr_flashImageEx(*address_, 0, kFlashMode, &entry.flash));
  }

  // --- both paths: following the flash, and the entry's end

  void followFlash(Entry& entry) {
    UPDATE_LOG("Start flashing image, please wait ...");
    while (!pollOnce(entry)) {
      if (status_ != 0) {
        endOnFailure(entry);
        return;
      }
    }
    publish(entry, 100, 100);  // also after a flash error
    if (status_ != 0) {
      endOnFailure(entry);
      return;
    }
    closeFlash(entry);
  }

  // Whether the flash has ended, well or not. A progress call that fails is acted on like any
  // other, the sleep included.
  bool pollOnce(Entry& entry) {
    FlashProgress& progress = entry.flashProgress;
    status_ = entry.product.isQvxf() ? zr_getFlashQVXFImageStatus(*address_, 0, &progress)
                                     : zr_getFlashProgress(*address_, 0, &progress);
    UPDATE_LOG("fshProg.fp_u8Status = %d, fshProg.fp_u8Stage = %d", progress.fp_u8Status,
               progress.fp_u8Stage);
    if (progress.fp_u8Status == 0 && progress.fp_u8Stage == kStageFinished) {
      UPDATE_LOG("  ... 100 percent completed...");
      UPDATE_LOG("Flash Completed.");
      return true;
    }
    if (progress.fp_u8Status == 1 || progress.fp_u8Status == 3) {
      UPDATE_LOG("Flash Error");
      status_ = kZorFlashFailed;
      return true;
    }
    publish(entry, progress.fp_u8Percent, 50 + progress.fp_u8Percent / 2);
    worker_.host().sleep(kPollSeconds);
    return false;
  }

  void publish(Entry& entry, int fwPercentage, int totalPercentage) {
    entry.progress.set(job::kFwPercentage, Value::integer(fwPercentage));
    entry.progress.set(job::kTotalPercentage, Value::integer(totalPercentage));
    worker_.updateFWUpdateStatus(entry.progress, logId_);
  }

  void closeFlash(Entry& entry) {
    status_ = zr_finalizeFlashProcess(*address_, 0);
    if (entry.product.isQvxf()) status_ = zr_finializeQVXFImage(*address_, 0);
    if (status_ != 0) return;
    if (entry.product.isQvxf()) {
      UPDATE_LOG("ignore upgrade usb fw");
      return;
    }
    status_ = updateUsbBridge(*address_, entry.flash, entry.usb, entry.nvram);
  }

  void endOnFlashFailure(const Entry& entry) {
    if (status_ == kZorFlashProcessRunning) UPDATE_LOG("There is another flash process running.");
    endOnFailure(entry);
  }

  // The status stays as it is: the closing calls' own results do not count here.
  void endOnFailure(const Entry& entry) {
    if (!address_) return;
    zr_finalizeFlashProcess(*address_, 0);
    if (entry.product.isQvxf()) zr_finializeQVXFImage(*address_, 0);
  }

  // --- the job's end

  Value finish() {
    Value stored = worker_.readJSONFileDict(record_);
    if (stored.has(job::kStateId)) {
      const std::string description = platform::format("%s", getErrorDescription(status_));
      stored.set(job::kResult, Value::integer(status_));
      stored.set(job::kResultStr, platform::repairedUtf8(description));
      worker_.finishJob(stored, {});
    }
    UPDATE_LOG("updateAllFW end, retDict = %@", stored);
    return stored;
  }

  bool succeeded(std::uint32_t status) {
    status_ = status;
    return status == 0;
  }

  Kelvane& worker_;
  const Value& record_;
  const Value inputs_;
  const Value logId_;
  std::uint32_t status_ = 0;  // carried from entry to entry
  framework::DeviceCounts counts_;
  InfoBuffer infoBuffer_;
  QvxfCheckInfo qvxfCheckInfo_ = {};
  QvxfAnalysis qvxfAnalysis_ = {};
  Value devices_ = Value::array();
  // Of the controller found last; an entry without one goes on with these.
  std::optional<ControllerAddress> address_;
  void* page0_ = nullptr;
  void* page1_ = nullptr;
};

}  // namespace

Value Kelvane::updateFW(const Value& record) {
  try {
    return FirmwareJob(*this, record).run();
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("updateFW:", caught);
    return {};
  }
}

std::int64_t Kelvane::getDevIdByWWN(const Value& devices, const Value& wwn) {
  try {
    for (const Value& device : devices.elements()) {
      const Value& deviceId = device.get(kDeviceId);
      if (deviceId.isNothing() || !device.has(job::kWwn)) continue;
      if (platform::equalStrings(device.get(job::kWwn), wwn)) return deviceId.integerValue();
    }
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("getDevIdByWWN:withWWN:", caught);
  }
  return -1;
}

}  // namespace kelvane
