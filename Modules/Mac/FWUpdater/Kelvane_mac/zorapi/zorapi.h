// ZORAPI: the maker's controller framework, as far as the worker uses it. The framework is closed;
// this header lays down its functions and its records byte by byte. Its status codes and the names
// of its functions, for those that do not call them, are the contract's.
//
// Every function whose name begins with zr_ returns a status: 0 is success, anything else an error
// code, whose text getErrorDescription() gives. `sel` is always 0. Records are owned by the caller
// and, where noted, zeroed by the caller before the call. Fields without a meaning to the worker
// are named by their offset; the framework knows what they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "contract/Framework.h"

extern "C" {

// Texts of getErrorDescription() that the worker tests.
#define ZOR_TEXT_UNSUPPORTED_COMMAND "unsupported management command"
#define ZOR_TEXT_CPLD_UP_TO_DATE "the version of CPLD is up to date"

// Passed by value, in one 64-bit argument.
struct ControllerAddress {
  std::uint16_t adapterNumber;  // index of the device in the discovery list
  std::uint16_t reserved2;
  std::uint16_t subsystemNumber;
  std::uint16_t reserved6;
};
static_assert(sizeof(ControllerAddress) == 8);
static_assert(offsetof(ControllerAddress, adapterNumber) == 0);
static_assert(offsetof(ControllerAddress, subsystemNumber) == 4);

// Zeroed, then given the fixed words that the framework expects.
struct InitParm {
  std::uint8_t at0[16];
  std::uint32_t at16;  // 0xBABA0001
  std::uint8_t at20[8];
  std::uint32_t at28;  // 300
  std::uint8_t at32[108];
  std::uint32_t at140;  // 1
  std::uint8_t at144[2];
  std::uint8_t at146;  // 1
  std::uint8_t at147;
  std::uint16_t at148;  // 0x0401
  std::uint8_t at150[10];
  std::uint32_t at160;  // 16
  std::uint32_t at164;  // 4
  std::uint8_t at168[104];
};
static_assert(sizeof(InitParm) == 272);
static_assert(offsetof(InitParm, at16) == 16);
static_assert(offsetof(InitParm, at28) == 28);
static_assert(offsetof(InitParm, at140) == 140);
static_assert(offsetof(InitParm, at146) == 146);
static_assert(offsetof(InitParm, at148) == 148);
static_assert(offsetof(InitParm, at160) == 160);
static_assert(offsetof(InitParm, at164) == 164);

// Zeroed before each call. Only the WWN field is of interest, as input of decod_getStringWWN().
struct SubsystemInfo {
  std::uint8_t at0[184];
  std::uint8_t wwn[8];
  std::uint8_t at192[384];
};
static_assert(sizeof(SubsystemInfo) == 576);
static_assert(offsetof(SubsystemInfo, wwn) == 184);

// Zeroed before each call; receives a NUL-terminated text.
struct WwnString {
  char text[32];
};
static_assert(sizeof(WwnString) == 32);

struct CtrlInfoRequest {
  std::uint32_t at0;  // 0
  std::uint32_t at4;  // 1
  std::uint8_t at8[32];
  std::uint16_t at40;  // 255
  std::uint8_t at42[2];
};
static_assert(sizeof(CtrlInfoRequest) == 44);
static_assert(offsetof(CtrlInfoRequest, at0) == 0);
static_assert(offsetof(CtrlInfoRequest, at4) == 4);
static_assert(offsetof(CtrlInfoRequest, at40) == 40);

// Size in bytes of the controller information buffer.
#define ZOR_CONTROLLER_INFO_SIZE 65535U

// A page inside the controller information buffer. It stands at any address there: read its fields
// byte by byte, not through a pointer to the record.
struct ControllerInfoPage {
  std::uint8_t at0[304];
  std::uint16_t ci_ProductID;  // the high byte chooses the update path
};
static_assert(offsetof(ControllerInfoPage, ci_ProductID) == 304);

// The image file is named by its path; transfer by buffer is never used.
union FlashTransfer {
  char rpf_u8ImageFilePath[256];  // NUL-terminated
  struct {
    std::uint8_t at0[32];
    std::uint32_t at32;
    std::uint8_t at36[128];
  } byBuffer;
};
static_assert(sizeof(FlashTransfer) == 256);
static_assert(offsetof(FlashTransfer, byBuffer.at32) == 32);
static_assert(offsetof(FlashTransfer, byBuffer.at36) == 36);

struct FlashParm {
  std::uint8_t at0;
  std::uint8_t at1;
  std::uint16_t productId;  // ci_ProductID of the target controller
  std::uint8_t at4;
  std::uint8_t at5;
  std::uint8_t at6[2];
  FlashTransfer rpf_uTransfer;
  std::uint32_t at264;
  std::uint32_t at268;
  std::uint16_t at272[6];
  std::uint32_t at284[6];
  std::uint8_t at308[4];
};
static_assert(sizeof(FlashParm) == 312);
static_assert(offsetof(FlashParm, at0) == 0);
static_assert(offsetof(FlashParm, at1) == 1);
static_assert(offsetof(FlashParm, productId) == 2);
static_assert(offsetof(FlashParm, at4) == 4);
static_assert(offsetof(FlashParm, at5) == 5);
static_assert(offsetof(FlashParm, at6) == 6);
static_assert(offsetof(FlashParm, rpf_uTransfer) == 8);
static_assert(offsetof(FlashParm, at264) == 264);
static_assert(offsetof(FlashParm, at268) == 268);
static_assert(offsetof(FlashParm, at272) == 272);
static_assert(offsetof(FlashParm, at284) == 284);
static_assert(offsetof(FlashParm, at308) == 308);

struct UsbParm {
  std::uint32_t usb_u32checkUSB;
  std::uint32_t at4;
  std::uint8_t at8;
  std::uint8_t at9;
  std::uint8_t at10;
  std::uint8_t at11;
  std::uint16_t at12;
  std::uint8_t at14;
  std::uint8_t at15;
  std::uint16_t at16;
  std::uint16_t at18;
  std::uint16_t at20;
  std::uint8_t at22;
  std::uint8_t at23[16];
  std::uint8_t at39[24];
  std::uint8_t at63[24];
  std::uint8_t at87;
  std::uint32_t flashRequest;  // 1 asks for the bridge to be written
};
static_assert(sizeof(UsbParm) == 92);
static_assert(std::has_unique_object_representations_v<UsbParm>);  // zeroed, it is zero throughout
static_assert(offsetof(UsbParm, usb_u32checkUSB) == 0);
static_assert(offsetof(UsbParm, at4) == 4);
static_assert(offsetof(UsbParm, at8) == 8);
static_assert(offsetof(UsbParm, at9) == 9);
static_assert(offsetof(UsbParm, at10) == 10);
static_assert(offsetof(UsbParm, at12) == 12);
static_assert(offsetof(UsbParm, at14) == 14);
static_assert(offsetof(UsbParm, at15) == 15);
static_assert(offsetof(UsbParm, at16) == 16);
static_assert(offsetof(UsbParm, at18) == 18);
static_assert(offsetof(UsbParm, at20) == 20);
static_assert(offsetof(UsbParm, at22) == 22);
static_assert(offsetof(UsbParm, at23) == 23);
static_assert(offsetof(UsbParm, at39) == 39);
static_assert(offsetof(UsbParm, at63) == 63);
static_assert(offsetof(UsbParm, flashRequest) == 88);

struct CpldParm {
  std::uint16_t at0;
  std::uint8_t at2[2];
  std::uint32_t at4[6];
};
static_assert(sizeof(CpldParm) == 28);
static_assert(std::has_unique_object_representations_v<CpldParm>);
static_assert(offsetof(CpldParm, at0) == 0);
static_assert(offsetof(CpldParm, at4) == 4);

struct FwImgInfo {
  std::uint32_t at0;
  std::uint32_t at4;
};
static_assert(sizeof(FwImgInfo) == 8);
static_assert(offsetof(FwImgInfo, at0) == 0);
static_assert(offsetof(FwImgInfo, at4) == 4);

struct FlashProgress {
  std::uint8_t fp_u8Status;  // 0 running or done, 1 or 3 failed
  std::uint8_t at1;
  std::uint8_t fp_u8Stage;    // 5 finished
  std::uint8_t fp_u8Percent;  // 0 to 100
  std::uint8_t at4[12];
};
static_assert(sizeof(FlashProgress) == 16);
static_assert(offsetof(FlashProgress, fp_u8Status) == 0);
static_assert(offsetof(FlashProgress, fp_u8Stage) == 2);
static_assert(offsetof(FlashProgress, fp_u8Percent) == 3);

struct CpldProgress {
  std::uint8_t at0[64];
  std::uint8_t rdcp_u8Status;      // 0 running or done, 1 or 2 failed
  std::uint8_t rdcp_u8Stage;       // 0 transferring, 1 programming, 2 done
  std::uint8_t rdcp_u8Percent;     // within the stage
  std::uint8_t rdcp_u8RetryCount;  // how often the framework has restarted the flash
};
static_assert(sizeof(CpldProgress) == 68);
static_assert(offsetof(CpldProgress, rdcp_u8Status) == 64);
static_assert(offsetof(CpldProgress, rdcp_u8Stage) == 65);
static_assert(offsetof(CpldProgress, rdcp_u8Percent) == 66);
static_assert(offsetof(CpldProgress, rdcp_u8RetryCount) == 67);

// Output areas that the worker does not read.
struct QvxfCheckInfo {
  std::uint8_t bytes[256];
};
static_assert(sizeof(QvxfCheckInfo) == 256);

struct QvxfAnalysis {
  std::uint8_t bytes[80];
};
static_assert(sizeof(QvxfAnalysis) == 80);

struct DeviceInterfaceInfo {
  std::uint8_t at0[33];
  std::uint8_t at33;  // 1: attached through the USB bridge
  std::uint8_t at34[22];
};
static_assert(sizeof(DeviceInterfaceInfo) == 56);
static_assert(offsetof(DeviceInterfaceInfo, at33) == 33);

struct UsbNvram {
  std::uint8_t bytes[516];
};
static_assert(sizeof(UsbNvram) == 516);

// --- Start and discovery

std::uint32_t zr_initialize(const InitParm* parm);
std::uint32_t zr_discover(std::uint32_t zero);
std::uint32_t zr_getNumberOfHBA(std::uint32_t* count);
std::uint32_t zr_getNumberOfSubsystem(std::uint32_t* count);
std::uint32_t zr_getSubsystemInfo(ControllerAddress addr, std::uint32_t sel, SubsystemInfo* info);
void decod_getStringWWN(WwnString* text, const void* wwnField);
// By adapter number alone; fills the buffer of `size` bytes with information pages.
std::uint32_t zr_getControllerInfo(std::uint16_t adapterNumber, std::uint32_t sel,
                                   const CtrlInfoRequest* request, void* buffer,
                                   std::uint32_t size);
// On success `*page` addresses the page inside the buffer.
std::uint32_t decod_locateBufferCtrlInfo(void* buffer, std::uint32_t size, std::uint32_t zero,
                                         std::uint32_t pageNumber, void** page);
std::uint32_t zr_getCurrentDeviceInterface(ControllerAddress addr, std::uint32_t sel,
                                           DeviceInterfaceInfo* info);
// A constant text, owned by the framework.
const char* getErrorDescription(std::uint32_t status);

// --- Standard image

std::uint32_t zr_getFDLImageInfo(FlashParm* flash, FwImgInfo* image);
std::uint32_t zr_getCPLDImageInfo(FlashParm* flash, CpldParm* cpld, FwImgInfo* image, void* page0,
                                  void* page1);
std::uint32_t zr_getUSBImageInfo(FlashParm* flash, UsbParm* usb);
std::uint32_t zr_initializeFlashProcess(ControllerAddress addr, std::uint32_t sel);
std::uint32_t zr_checkFlashImage(ControllerAddress addr, std::uint32_t sel, void* controllerInfo,
                                 FlashParm* flash, UsbParm* usb, CpldParm* cpld, FwImgInfo* image);
std::uint32_t zr_transferFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                    UsbParm* usb, CpldParm* cpld, FwImgInfo* image);
std::uint32_t zr_verifyFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash);
// Flash mode is always 4. Starts the flash, which then runs in the controller.
std::uint32_t zr_flashImageEx(ControllerAddress addr, std::uint32_t sel, std::uint32_t flashMode,
                              FlashParm* flash);
std::uint32_t zr_getFlashProgress(ControllerAddress addr, std::uint32_t sel,
                                  FlashProgress* progress);
// Also called when no flash process was opened, and also twice.
std::uint32_t zr_finalizeFlashProcess(ControllerAddress addr, std::uint32_t sel);

// --- QVXF image

std::uint32_t zr_checkQVXFFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                     QvxfCheckInfo* info);
std::uint32_t zr_transferQVXFFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                        FwImgInfo* image, std::uint32_t zero);
std::uint32_t zr_analyzeQVXFImage(ControllerAddress addr, std::uint32_t sel,
                                  QvxfAnalysis* analysis);
std::uint32_t zr_flashQVXFImage(ControllerAddress addr, std::uint32_t sel);
std::uint32_t zr_getFlashQVXFImageStatus(ControllerAddress addr, std::uint32_t sel,
                                         FlashProgress* progress);
std::uint32_t zr_finializeQVXFImage(ControllerAddress addr, std::uint32_t sel);

// --- CPLD

std::uint32_t zr_initializeCPLDProcess(ControllerAddress addr, std::uint32_t sel);
std::uint32_t zr_flashCPLDBin(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                              std::uint32_t zero, UsbParm* usb, CpldParm* cpld, FwImgInfo* image);
std::uint32_t zr_getCPLDProgress(ControllerAddress addr, std::uint32_t sel, CpldProgress* progress);
std::uint32_t zr_finalizeCPLDProcess(ControllerAddress addr, std::uint32_t sel);

// --- USB bridge

// The flag becomes non-zero when the bridge's firmware differs from the image's.
std::uint32_t zr_mac_checkUSBFWVersion(ControllerAddress addr, std::uint32_t sel, UsbParm* usb,
                                       std::uint32_t* updateFlag);
std::uint32_t zr_mac_getNVRAM(ControllerAddress addr, std::uint32_t sel, UsbNvram* nvram);
std::uint32_t zr_mac_flashUSBFWbin(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                   UsbParm* usb);
std::uint32_t zr_mac_setNVRAM(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                              UsbParm* usb, UsbNvram* nvram);
std::uint32_t zr_mac_flashNVRAM(ControllerAddress addr, std::uint32_t sel, UsbNvram* nvram);

}  // extern "C"
