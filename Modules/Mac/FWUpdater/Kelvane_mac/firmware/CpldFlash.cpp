// The CPLD flash: one flash process on one controller, polled to its end.

#include <cstring>

#include "Kelvane.h"
#include "contract/JobFile.h"
#include "firmware/Polling.h"
#include "log/iLog.h"
#include "zorapi/zorapi.h"

#define CPLD_LOG(...)                                                                        \
  KELVANE_LOG(                                                                               \
      "flashCPLD:withParmFlash:withParmUSB:withParmCPLD:withParmFWImg:withDevId:withLogId:", \
      __VA_ARGS__)

namespace kelvane {

using platform::Value;

namespace {

constexpr std::uint8_t kStageTransferring = 0;
constexpr std::uint8_t kStageProgramming = 1;
constexpr std::uint8_t kStageDone = 2;
constexpr std::uint8_t kFirstUnknownStatusByte = 3;

// The records of the entry, handed through to the framework.
struct Records {
  FlashParm* flash;
  UsbParm* usb;
  CpldParm* cpld;
  FwImgInfo* image;
};

class CpldFlash {
 public:
  CpldFlash(Kelvane& worker, std::int64_t devId, const Value& logId)
      : worker_(worker), devId_(devId), logId_(logId) {
    address_.adapterNumber = static_cast<std::uint16_t>(devId);
  }

  // From the first log line to the last; what status() tells holds also after an exception.
  void run(const Value& deviceEntry, const Records& records) {
    progress_ = deviceEntry.asDictionary();
    CPLD_LOG("flashCPLD start");
    CPLD_LOG("devId = %d, filePath = %@", static_cast<std::int32_t>(devId_),
             progress_.get(job::kFilePath));
    status_ = zr_initializeCPLDProcess(address_, 0);
    if (status_ == 0) startFlash(records);
    poll();
    // The closing call's status is the method's result, not the flash's: meant so.
    status_ = zr_finalizeCPLDProcess(address_, 0);
    CPLD_LOG("flashCPLD end");
  }

  std::uint32_t status() const { return status_; }

 private:
  // The status is that of success where there is a running flash to poll.
  void startFlash(const Records& records) {
    status_ =
        zr_flashCPLDBin(address_, 0, records.flash, 0, records.usb, records.cpld, records.image);
    if (status_ == kZorCpldFlashAccepted) status_ = kZorSuccess;
    if (status_ == kZorSuccess) {
      CPLD_LOG("Start transferring CPLD image, please wait ...");
      CPLD_LOG("Start flashing CPLD, please wait ...");
      return;
    }
    if (status_ == kZorFlashProcessRunning) {
      CPLD_LOG("There is another flash process running.");
      return;
    }
    const char* description = getErrorDescription(status_);
    if (description != nullptr && std::strcmp(description, ZOR_TEXT_CPLD_UP_TO_DATE) == 0) {
      CPLD_LOG("the version of CPLD is up to date");
      publish(100, 50);
    }
  }

  // Polls what was started, without a limit, until the CPLD is done, an error status byte, or a
  // progress call that failed one poll earlier: what that one left in the record is still looked
  // at.
  void poll() {
    while (status_ == 0) {
      status_ = zr_getCPLDProgress(address_, 0, &record_);
      CPLD_LOG("progress.rdcp_u8Status = %d, progress.rdcp_u8Stage = %d", record_.rdcp_u8Status,
               record_.rdcp_u8Stage);
      if (record_.rdcp_u8Status == 0 && record_.rdcp_u8Stage == kStageDone) {
        CPLD_LOG("  ...%4d percent completed... ", 100);
        publish(100, 50);
        return;
      }
      if (record_.rdcp_u8Status == 1 || record_.rdcp_u8Status == 2) {
        CPLD_LOG("Flash Error");
        return;
      }
      if (record_.rdcp_u8Status < kFirstUnknownStatusByte) {
        takePercentage();
        publish(percentage_, percentage_ / 2);
      }
      retryCount_ = record_.rdcp_u8RetryCount;
      worker_.host().sleep(kPollSeconds);
    }
  }

  void takePercentage() {
    if (record_.rdcp_u8RetryCount != retryCount_) {
      CPLD_LOG("Found error, try to flash CPLD again, retry %d times...",
               record_.rdcp_u8RetryCount);
      return;
    }
    if (record_.rdcp_u8Stage == kStageTransferring) {
      percentage_ = record_.rdcp_u8Percent / 2;
    } else if (record_.rdcp_u8Stage == kStageProgramming) {
      percentage_ = (record_.rdcp_u8Percent + 100) / 2;
    } else {
      return;
    }
    CPLD_LOG("  ...%4d percent completed... ", percentage_);
  }

  void publish(int cpldPercentage, int totalPercentage) {
    progress_.set(job::kCpldPercentage, Value::integer(cpldPercentage));
    progress_.set(job::kTotalPercentage, Value::integer(totalPercentage));
    worker_.updateFWUpdateStatus(progress_, logId_);
  }

  Kelvane& worker_;
  std::int64_t devId_;
  const Value& logId_;
  ControllerAddress address_ = {};
  Value progress_;
  CpldProgress record_ = {};
  std::uint8_t retryCount_ = 0;
  int percentage_ = 0;
  std::uint32_t status_ = 0;
};

}  // namespace

std::uint32_t Kelvane::flashCPLD(const Value& deviceEntry, FlashParm* parmFlash, UsbParm* parmUSB,
                                 CpldParm* parmCPLD, FwImgInfo* parmFWImg, std::int64_t devId,
                                 const Value& logId) {
  CpldFlash flash(*this, devId, logId);
  try {
    flash.run(deviceEntry, {parmFlash, parmUSB, parmCPLD, parmFWImg});
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT(
        "flashCPLD:withParmFlash:withParmUSB:withParmCPLD:withParmFWImg:withDevId:withLogId:",
        caught);
  }
  return flash.status();
}

}  // namespace kelvane
