#include "tests/support/FakeFramework.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include <fmt/format.h>

namespace kelvane::test {
namespace {

FakeFramework* current = nullptr;

// Odd on purpose: a page may stand at any address inside the buffer.
constexpr std::size_t kPage0At = 7;
constexpr std::size_t kPage1At = 4001;

// Each byte is compared with the one before it, by the library: buffers are large.
bool isZero(const void* memory, std::size_t size) {
  const auto* bytes = static_cast<const std::uint8_t*>(memory);
  return bytes[0] == 0 && std::memcmp(bytes, bytes + 1, size - 1) == 0;
}

template <typename Record>
std::string zeroedOr(const Record* record, const std::string& content) {
  return isZero(record, sizeof *record) ? "zeroed" : content;
}

std::string text(ControllerAddress addr) {
  const bool reserved = addr.reserved2 != 0 || addr.reserved6 != 0;
  return fmt::format("{}/{}{}", addr.adapterNumber, addr.subsystemNumber,
                     reserved ? " reserved!" : "");
}

std::string text(const FlashParm* flash) {
  FlashParm rest = *flash;
  std::memset(rest.rpf_uTransfer.rpf_u8ImageFilePath, 0,
              std::strlen(flash->rpf_uTransfer.rpf_u8ImageFilePath));
  rest.productId = 0;
  if (rest.at308[3] == rest.at264) rest.at308[3] = 0;
  rest.at264 = 0;
  return fmt::format("flash[{:04x} {} {:x}{}]", flash->productId,
                     flash->rpf_uTransfer.rpf_u8ImageFilePath, flash->at264,
                     isZero(&rest, sizeof rest) ? "" : " dirty!");
}

std::string text(const UsbParm* usb) {
  return "usb[" + zeroedOr(usb, fmt::format("{:x} {:x}", usb->usb_u32checkUSB, usb->flashRequest)) +
         "]";
}

std::string text(const CpldParm* cpld) {
  return "cpld[" + zeroedOr(cpld, fmt::format("{:x}", cpld->at0)) + "]";
}

std::string text(const FwImgInfo* image) {
  return "image[" + zeroedOr(image, fmt::format("{:x} {:x}", image->at0, image->at4)) + "]";
}

std::string text(const UsbNvram* nvram) {
  return "nvram[" + zeroedOr(nvram, fmt::format("{:x}", nvram->bytes[0])) + "]";
}

std::string bufferText(const void* buffer) {
  return buffer == current->infoBuffer ? "buffer" : "another buffer!";
}

std::string pageText(const void* page, std::size_t at) {
  return page == current->infoBuffer + at ? "page" : "no page!";
}

bool isTheFixedInitParm(const InitParm& parm) {
  std::uint8_t expected[272] = {};
  const auto put = [&expected](std::size_t at, std::initializer_list<int> bytes) {
    for (const int byte : bytes) expected[at++] = static_cast<std::uint8_t>(byte);
  };
  put(16, {0x01, 0x00, 0xBA, 0xBA});
  put(28, {0x2C, 0x01, 0, 0});
  put(140, {1, 0, 0, 0, 0, 0, 1, 0});
  put(148, {0x01, 0x04});
  put(160, {16, 0, 0, 0, 4, 0, 0, 0});
  return std::memcmp(&parm, expected, sizeof expected) == 0;
}

bool isTheFixedRequest(const CtrlInfoRequest& request) {
  std::uint8_t expected[44] = {};
  expected[4] = 1;
  expected[40] = 255;
  return std::memcmp(&request, expected, sizeof expected) == 0;
}

FakeFramework::Progress next(std::deque<FakeFramework::Progress>& script,
                             FakeFramework::Progress whenEmpty) {
  if (script.empty()) return whenEmpty;
  const FakeFramework::Progress first = script.front();
  script.pop_front();
  return first;
}

std::uint32_t flashProgress(const char* function, ControllerAddress addr, std::uint32_t sel,
                            FlashProgress* progress) {
  const std::string before = zeroedOr(
      progress,
      fmt::format("{} {} {}", progress->fp_u8Status, progress->fp_u8Stage, progress->fp_u8Percent));
  std::uint32_t status =
      current->called(function, fmt::format("{}, {}, progress[{}]", text(addr), sel, before));
  if (status == 0) {
    const auto answer = next(current->flashProgress, {0, 5, 100});
    status = answer.callStatus;
    if (!answer.leavesRecord) {
      progress->fp_u8Status = answer.status;
      progress->fp_u8Stage = answer.stage;
      progress->fp_u8Percent = answer.percent;
    }
  }
  return current->note({.status = progress->fp_u8Status,
                        .stage = progress->fp_u8Stage,
                        .percent = progress->fp_u8Percent,
                        .callStatus = status});
}

std::uint32_t addressed(const char* function, ControllerAddress addr, std::uint32_t sel) {
  return current->called(function, fmt::format("{}, {}", text(addr), sel));
}

}  // namespace

FakeFramework::FakeFramework() { current = this; }
FakeFramework::~FakeFramework() { current = nullptr; }

int FakeFramework::count(const std::string& function) const {
  return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const auto& call) {
    return call.rfind(function + "(", 0) == 0;
  }));
}

std::uint32_t FakeFramework::called(const std::string& function, const std::string& arguments) {
  if (onCall) onCall();
  calls.push_back(function + "(" + arguments + ")");
  const std::uint32_t status = statusOf(function);
  given.resize(calls.size());
  given.back() = {status, {}, interfaceByte, usbUpdateFlag, failuresTellCounts};
  return status;
}

std::uint32_t FakeFramework::statusOf(const std::string& function) const {
  if (decide) return decide(function);
  const auto found = answers.find({function, count(function)});
  return found == answers.end() ? 0 : found->second;
}

std::uint32_t FakeFramework::note(const Progress& record) {
  given.back().status = record.callStatus;
  given.back().progress = record;
  return record.callStatus;
}

const char* FakeFramework::describe(std::uint32_t status) {
  const auto found = descriptions.find(status);
  if (found != descriptions.end()) return found->second;
  std::string& generic = genericDescriptions_[status];
  generic = fmt::format("text of {:#x}", status);
  return generic.c_str();
}

}  // namespace kelvane::test

using kelvane::test::bufferText;
using kelvane::test::current;
using kelvane::test::next;
using kelvane::test::pageText;
using kelvane::test::text;
using kelvane::test::zeroedOr;

extern "C" {

std::uint32_t zr_initialize(const InitParm* parm) {
  return current->called("zr_initialize",
                         kelvane::test::isTheFixedInitParm(*parm) ? "fixed words" : "wrong!");
}

std::uint32_t zr_discover(std::uint32_t zero) {
  return current->called("zr_discover", fmt::format("{}", zero));
}

std::uint32_t zr_getNumberOfHBA(std::uint32_t* count) {
  const std::uint32_t status = current->called("zr_getNumberOfHBA", fmt::format("{}", *count));
  if (status == 0 || current->failuresTellCounts) *count = current->adapters;
  return status;
}

std::uint32_t zr_getNumberOfSubsystem(std::uint32_t* count) {
  const std::uint32_t status =
      current->called("zr_getNumberOfSubsystem", fmt::format("{}", *count));
  if (status == 0 || current->failuresTellCounts) {
    *count = static_cast<std::uint32_t>(current->devices.size()) - current->adapters;
  }
  return status;
}

std::uint32_t zr_getSubsystemInfo(ControllerAddress addr, std::uint32_t sel, SubsystemInfo* info) {
  const std::uint32_t status = current->called(
      "zr_getSubsystemInfo", fmt::format("{}, {}, {}", text(addr), sel, zeroedOr(info, "dirty!")));
  current->lastSubsystem = info;
  const unsigned index = addr.adapterNumber + addr.subsystemNumber;
  info->wwn[0] = static_cast<std::uint8_t>(index);
  info->wwn[1] = static_cast<std::uint8_t>(index >> 8U);
  info->at0[0] = 0xEE;
  info->at192[std::size(info->at192) - 1] = 0xEE;
  return status;
}

void decod_getStringWWN(WwnString* wwn, const void* wwnField) {
  const auto* index = static_cast<const std::uint8_t*>(wwnField);
  current->called("decod_getStringWWN",
                  fmt::format("{}, {}", zeroedOr(wwn, "dirty!"),
                              wwnField == current->lastSubsystem->wwn ? "wwn" : "another field!"));
  const std::string& name = current->devices.at(index[0] + 256U * index[1]).wwn;
  wwn->text[sizeof wwn->text - 1] = '!';  // behind the end, but for a name that reaches so far
  std::copy_n(name.begin(), std::min(name.size(), sizeof wwn->text), wwn->text);
}

std::uint32_t zr_getControllerInfo(std::uint16_t adapterNumber, std::uint32_t sel,
                                   const CtrlInfoRequest* request, void* buffer,
                                   std::uint32_t size) {
  current->infoBuffer = static_cast<std::uint8_t*>(buffer);
  const std::uint32_t status = current->called(
      "zr_getControllerInfo",
      fmt::format("{}, {}, {}, {}, {}", adapterNumber, sel,
                  kelvane::test::isTheFixedRequest(*request) ? "request" : "wrong request!",
                  kelvane::test::isZero(buffer, size) ? "zeroed" : "dirty!", size));
  if (status != 0) return status;
  const std::uint16_t productId = current->devices.at(adapterNumber).productId;
  std::memcpy(
      current->infoBuffer + kelvane::test::kPage0At + offsetof(ControllerInfoPage, ci_ProductID),
      &productId, sizeof productId);
  current->infoBuffer[size - 1] = 0xEE;
  return 0;
}

std::uint32_t decod_locateBufferCtrlInfo(void* buffer, std::uint32_t size, std::uint32_t zero,
                                         std::uint32_t pageNumber, void** page) {
  const std::uint32_t status =
      current->called("decod_locateBufferCtrlInfo",
                      fmt::format("{}, {}, {}, {}", bufferText(buffer), size, zero, pageNumber));
  const std::size_t at = pageNumber == 0 ? kelvane::test::kPage0At : kelvane::test::kPage1At;
  if (status == 0 || current->failuresTellPages) *page = current->infoBuffer + at;
  return status;
}

std::uint32_t zr_getCurrentDeviceInterface(ControllerAddress addr, std::uint32_t sel,
                                           DeviceInterfaceInfo* info) {
  const std::uint32_t status =
      current->called("zr_getCurrentDeviceInterface",
                      fmt::format("{}, {}, {}", text(addr), sel, zeroedOr(info, "dirty!")));
  if (status == 0) info->at33 = current->interfaceByte;
  return status;
}

const char* getErrorDescription(std::uint32_t status) {
  current->called("getErrorDescription", fmt::format("{:#x}", status));
  return current->describe(status);
}

std::uint32_t zr_getFDLImageInfo(FlashParm* flash, FwImgInfo* image) {
  const std::uint32_t status =
      current->called("zr_getFDLImageInfo", fmt::format("{}, {}", text(flash), text(image)));
  flash->at264 = flash->at308[3] = 0xF1;
  image->at0 = 0xFD;
  return status;
}

std::uint32_t zr_getCPLDImageInfo(FlashParm* flash, CpldParm* cpld, FwImgInfo* image, void* page0,
                                  void* page1) {
  const std::uint32_t status = current->called(
      "zr_getCPLDImageInfo", fmt::format("{}, {}, {}, {}0, {}1", text(flash), text(cpld),
                                         text(image), pageText(page0, kelvane::test::kPage0At),
                                         pageText(page1, kelvane::test::kPage1At)));
  cpld->at0 = 0xC1;
  cpld->at4[5] = 0xC1;
  image->at4 = 0xCD;
  return status;
}

std::uint32_t zr_getUSBImageInfo(FlashParm* flash, UsbParm* usb) {
  const std::uint32_t status =
      current->called("zr_getUSBImageInfo", fmt::format("{}, {}", text(flash), text(usb)));
  if (status == 0) usb->usb_u32checkUSB = 0xFFFFFFF0;
  return status;
}

std::uint32_t zr_initializeFlashProcess(ControllerAddress addr, std::uint32_t sel) {
  return kelvane::test::addressed("zr_initializeFlashProcess", addr, sel);
}

std::uint32_t zr_checkFlashImage(ControllerAddress addr, std::uint32_t sel, void* controllerInfo,
                                 FlashParm* flash, UsbParm* usb, CpldParm* cpld, FwImgInfo* image) {
  return current->called(
      "zr_checkFlashImage",
      fmt::format("{}, {}, {}, {}, {}, {}, {}", text(addr), sel, bufferText(controllerInfo),
                  text(flash), text(usb), text(cpld), text(image)));
}

std::uint32_t zr_transferFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                    UsbParm* usb, CpldParm* cpld, FwImgInfo* image) {
  return current->called("zr_transferFlashImage",
                         fmt::format("{}, {}, {}, {}, {}, {}", text(addr), sel, text(flash),
                                     text(usb), text(cpld), text(image)));
}

std::uint32_t zr_verifyFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash) {
  return current->called("zr_verifyFlashImage",
                         fmt::format("{}, {}, {}", text(addr), sel, text(flash)));
}

std::uint32_t zr_flashImageEx(ControllerAddress addr, std::uint32_t sel, std::uint32_t flashMode,
                              FlashParm* flash) {
  return current->called("zr_flashImageEx",
                         fmt::format("{}, {}, {}, {}", text(addr), sel, flashMode, text(flash)));
}

std::uint32_t zr_getFlashProgress(ControllerAddress addr, std::uint32_t sel,
                                  FlashProgress* progress) {
  return kelvane::test::flashProgress("zr_getFlashProgress", addr, sel, progress);
}

std::uint32_t zr_finalizeFlashProcess(ControllerAddress addr, std::uint32_t sel) {
  return kelvane::test::addressed("zr_finalizeFlashProcess", addr, sel);
}

std::uint32_t zr_checkQVXFFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                     QvxfCheckInfo* info) {
  const std::uint32_t status = current->called(
      "zr_checkQVXFFlashImage",
      fmt::format("{}, {}, {}, {}", text(addr), sel, text(flash), zeroedOr(info, "used")));
  info->bytes[0] = info->bytes[std::size(info->bytes) - 1] = 0xE1;
  return status;
}

std::uint32_t zr_transferQVXFFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                        FwImgInfo* image, std::uint32_t zero) {
  return current->called(
      "zr_transferQVXFFlashImage",
      fmt::format("{}, {}, {}, {}, {}", text(addr), sel, text(flash), text(image), zero));
}

std::uint32_t zr_analyzeQVXFImage(ControllerAddress addr, std::uint32_t sel,
                                  QvxfAnalysis* analysis) {
  const std::uint32_t status =
      current->called("zr_analyzeQVXFImage",
                      fmt::format("{}, {}, {}", text(addr), sel, zeroedOr(analysis, "used")));
  analysis->bytes[0] = analysis->bytes[std::size(analysis->bytes) - 1] = 0xE2;
  return status;
}

std::uint32_t zr_flashQVXFImage(ControllerAddress addr, std::uint32_t sel) {
  return kelvane::test::addressed("zr_flashQVXFImage", addr, sel);
}

std::uint32_t zr_getFlashQVXFImageStatus(ControllerAddress addr, std::uint32_t sel,
                                         FlashProgress* progress) {
  return kelvane::test::flashProgress("zr_getFlashQVXFImageStatus", addr, sel, progress);
}

std::uint32_t zr_finializeQVXFImage(ControllerAddress addr, std::uint32_t sel) {
  return kelvane::test::addressed("zr_finializeQVXFImage", addr, sel);
}

std::uint32_t zr_initializeCPLDProcess(ControllerAddress addr, std::uint32_t sel) {
  return kelvane::test::addressed("zr_initializeCPLDProcess", addr, sel);
}

std::uint32_t zr_flashCPLDBin(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                              std::uint32_t zero, UsbParm* usb, CpldParm* cpld, FwImgInfo* image) {
  return current->called("zr_flashCPLDBin",
                         fmt::format("{}, {}, {}, {}, {}, {}, {}", text(addr), sel, text(flash),
                                     zero, text(usb), text(cpld), text(image)));
}

std::uint32_t zr_getCPLDProgress(ControllerAddress addr, std::uint32_t sel,
                                 CpldProgress* progress) {
  const std::string before =
      zeroedOr(progress, fmt::format("{} {} {} {}", progress->rdcp_u8Status, progress->rdcp_u8Stage,
                                     progress->rdcp_u8Percent, progress->rdcp_u8RetryCount));
  std::uint32_t status = current->called(
      "zr_getCPLDProgress", fmt::format("{}, {}, progress[{}]", text(addr), sel, before));
  if (status == 0) {
    const auto answer = next(current->cpldProgress, {0, 2, 100});
    status = answer.callStatus;
    if (!answer.leavesRecord) {
      progress->rdcp_u8Status = answer.status;
      progress->rdcp_u8Stage = answer.stage;
      progress->rdcp_u8Percent = answer.percent;
      progress->rdcp_u8RetryCount = answer.retries;
    }
  }
  return current->note({.status = progress->rdcp_u8Status,
                        .stage = progress->rdcp_u8Stage,
                        .percent = progress->rdcp_u8Percent,
                        .retries = progress->rdcp_u8RetryCount,
                        .callStatus = status});
}

std::uint32_t zr_finalizeCPLDProcess(ControllerAddress addr, std::uint32_t sel) {
  return kelvane::test::addressed("zr_finalizeCPLDProcess", addr, sel);
}

std::uint32_t zr_mac_checkUSBFWVersion(ControllerAddress addr, std::uint32_t sel, UsbParm* usb,
                                       std::uint32_t* updateFlag) {
  const std::uint32_t status =
      current->called("zr_mac_checkUSBFWVersion",
                      fmt::format("{}, {}, {}, {}", text(addr), sel, text(usb), *updateFlag));
  *updateFlag = current->usbUpdateFlag;
  return status;
}

std::uint32_t zr_mac_getNVRAM(ControllerAddress addr, std::uint32_t sel, UsbNvram* nvram) {
  const std::uint32_t status =
      current->called("zr_mac_getNVRAM", fmt::format("{}, {}, {}", text(addr), sel, text(nvram)));
  if (status == 0) nvram->bytes[0] = nvram->bytes[std::size(nvram->bytes) - 1] = 0xA1;
  return status;
}

std::uint32_t zr_mac_flashUSBFWbin(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                   UsbParm* usb) {
  return current->called("zr_mac_flashUSBFWbin",
                         fmt::format("{}, {}, {}, {}", text(addr), sel, text(flash), text(usb)));
}

std::uint32_t zr_mac_setNVRAM(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                              UsbParm* usb, UsbNvram* nvram) {
  const std::uint32_t status = current->called(
      "zr_mac_setNVRAM",
      fmt::format("{}, {}, {}, {}, {}", text(addr), sel, text(flash), text(usb), text(nvram)));
  if (status == 0) nvram->bytes[0] = 0xA2;
  return status;
}

std::uint32_t zr_mac_flashNVRAM(ControllerAddress addr, std::uint32_t sel, UsbNvram* nvram) {
  return current->called("zr_mac_flashNVRAM",
                         fmt::format("{}, {}, {}", text(addr), sel, text(nvram)));
}

}  // extern "C"
