#include "tests/simulators/SimulatedWorld.h"

#include <cstring>

#include "platform/Json.h"

namespace kelvane::test {

using platform::Value;
using simulator::Image;

namespace {

std::string fleet(const std::string& product, const std::string& more, const std::string& faults) {
  return R"({"clock": "queries", "seconds_per_query": 1, "faults": [)" + faults +
         R"(], "controllers": [{"wwn": "500a098000000001", "product_id": ")" + product +
         R"(", "firmware": "1.0", "cpld": "1.0", "usb_bridge": "1.0")" +
         (more.empty() ? "" : ", " + more) + "}]}";
}

}  // namespace

std::vector<std::string> MemoryJournal::violations() const {
  std::vector<std::string> texts;
  for (const Value& line : lines_) {
    if (line.has("violation")) texts.push_back(line.get("violation").string());
  }
  return texts;
}

std::size_t MemoryJournal::count(const std::string& function) const {
  std::size_t count = 0;
  for (const Value& line : lines_) {
    if (!line.has("violation") && line.get("function") == Value(function)) ++count;
  }
  return count;
}

std::string fleetOfOne(const std::string& more, const std::string& faults) {
  return fleet("0x4301", more, faults);
}

std::string fleetOfOneQvxf() { return fleet("0x4801", "", ""); }

InitParm initialParameters() {
  InitParm parm = {};
  parm.at16 = 0xBABA0001;
  parm.at28 = 300;
  parm.at140 = 1;
  parm.at146 = 1;
  parm.at148 = 0x0401;
  parm.at160 = 16;
  parm.at164 = 4;
  return parm;
}

CtrlInfoRequest controllerInfoRequest() {
  CtrlInfoRequest request = {};
  request.at4 = 1;
  request.at40 = 255;
  return request;
}

SimulatedWorld::SimulatedWorld(const std::string& fleet)
    : fleetPath(folder.write("fleet.json", fleet)),
      framework(fleetPath, journal, [this] { return timeOfDay; }) {}

std::string SimulatedWorld::standardImage(const std::string& firmware, const std::string& cpld,
                                          const std::string& usb) const {
  Image image;
  image.products = {"0x4301"};
  image.firmware = {firmware, "firmware"};
  if (!cpld.empty()) image.cpld = {cpld, "cpld"};
  if (!usb.empty()) image.usb = {usb, "usb"};
  return folder.write("standard.img", encodeImage(image));
}

std::string SimulatedWorld::qvxfImage() const {
  Image image;
  image.kind = Image::Kind::qvxf;
  image.products = {"0x48"};
  image.firmware = {"2.0", "firmware"};
  return folder.write("qvxf.img", encodeImage(image));
}

std::uint32_t SimulatedWorld::start() {
  const InitParm parm = initialParameters();
  framework.initialize(&parm);
  return framework.discover(0);
}

std::uint32_t SimulatedWorld::readController(std::uint16_t index) {
  address.adapterNumber = index;
  const CtrlInfoRequest request = controllerInfoRequest();
  std::memset(job.buffer.data(), 0, job.buffer.size());
  const std::uint32_t status =
      framework.getControllerInfo(index, 0, &request, job.buffer.data(), ZOR_CONTROLLER_INFO_SIZE);
  if (status != 0) return status;
  framework.locateBufferCtrlInfo(job.buffer.data(), ZOR_CONTROLLER_INFO_SIZE, 0, 0, &job.page0);
  return framework.locateBufferCtrlInfo(job.buffer.data(), ZOR_CONTROLLER_INFO_SIZE, 0, 1,
                                        &job.page1);
}

void SimulatedWorld::fillFlashParm(const std::string& imagePath, std::uint16_t product) {
  job.flash = {};
  std::memcpy(job.flash.rpf_uTransfer.rpf_u8ImageFilePath, imagePath.data(), imagePath.size());
  job.flash.productId = product;
}

std::uint32_t SimulatedWorld::examine(const std::string& imagePath) {
  fillFlashParm(imagePath, 0x4301);
  std::uint32_t status = framework.getFDLImageInfo(&job.flash, &job.image);
  if (status != 0) return status;
  status = framework.getCPLDImageInfo(&job.flash, &job.cpld, &job.image, job.page0, job.page1);
  return status == 0 ? framework.getUSBImageInfo(&job.flash, &job.usb) : status;
}

std::uint32_t SimulatedWorld::openCpld() { return framework.initializeCPLDProcess(address, 0); }

std::uint32_t SimulatedWorld::startCpld() {
  cpldProgress_ = {};
  return framework.flashCPLDBin(address, 0, &job.flash, 0, &job.usb, &job.cpld, &job.image);
}

CpldProgress SimulatedWorld::pollCpld() {
  framework.getCPLDProgress(address, 0, &cpldProgress_);
  return cpldProgress_;
}

std::uint32_t SimulatedWorld::transfer() {
  std::uint32_t status = framework.initializeFlashProcess(address, 0);
  if (status != 0) return status;
  status = framework.checkFlashImage(address, 0, job.buffer.data(), &job.flash, &job.usb, &job.cpld,
                                     &job.image);
  if (status != 0) return status;
  return framework.transferFlashImage(address, 0, &job.flash, &job.usb, &job.cpld, &job.image);
}

std::uint32_t SimulatedWorld::startFirmware() {
  progress_ = {};
  const std::uint32_t status = framework.verifyFlashImage(address, 0, &job.flash);
  return status == 0 ? framework.flashImageEx(address, 0, 4, &job.flash) : status;
}

FlashProgress SimulatedWorld::pollFirmware() {
  framework.getFlashProgress(address, 0, &progress_);
  return progress_;
}

std::uint32_t SimulatedWorld::prepareBridge() {
  DeviceInterfaceInfo interface = {};
  framework.getCurrentDeviceInterface(address, 0, &interface);
  std::uint32_t flag = 0;
  const std::uint32_t status = framework.checkUSBFWVersion(address, 0, &job.usb, &flag);
  if (status != 0) return status;
  job.usb.flashRequest = flag;
  return framework.getNVRAM(address, 0, &job.nvram);
}

std::uint32_t SimulatedWorld::flashBridge() {
  std::uint32_t status = framework.flashUSBFWbin(address, 0, &job.flash, &job.usb);
  if (status != 0) return status;
  status = framework.setNVRAM(address, 0, &job.flash, &job.usb, &job.nvram);
  return status == 0 ? framework.flashNVRAM(address, 0, &job.nvram) : status;
}

std::uint32_t SimulatedWorld::transferQvxf(const std::string& imagePath) {
  fillFlashParm(imagePath, 0x4801);
  framework.initializeFlashProcess(address, 0);
  const std::uint32_t status =
      framework.checkQVXFFlashImage(address, 0, &job.flash, &job.checkInfo);
  if (status != 0) return status;
  return framework.transferQVXFFlashImage(address, 0, &job.flash, &job.image, 0);
}

std::uint32_t SimulatedWorld::startQvxf() {
  progress_ = {};
  const std::uint32_t status = framework.analyzeQVXFImage(address, 0, &job.analysis);
  return status == 0 ? framework.flashQVXFImage(address, 0) : status;
}

FlashProgress SimulatedWorld::pollQvxf() {
  framework.getFlashQVXFImageStatus(address, 0, &progress_);
  return progress_;
}

std::uint32_t SimulatedWorld::upToExamined(const std::string& imagePath) {
  start();
  readController();
  return examine(imagePath);
}

std::uint32_t SimulatedWorld::upToFirmwareStarted(const std::string& imagePath) {
  upToExamined(imagePath);
  const std::uint32_t status = transfer();
  return status == 0 ? startFirmware() : status;
}

std::string SimulatedWorld::stored(const std::string& key) const {
  const Value fleet = platform::parseJson(folder.read("fleet.json"));
  return fleet.get("controllers").at(0).get(key).string();
}

}  // namespace kelvane::test
