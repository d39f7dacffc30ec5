#include "simulators/controllers/Fleet.h"

#include <algorithm>
#include <utility>

#include "contract/Framework.h"
#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "simulators/controllers/Image.h"
#include "simulators/support/Number.h"
#include "simulators/support/ObjectReader.h"
#include "zorapi/zorapi.h"

namespace kelvane::simulator {

using platform::Exception;
using platform::Value;

namespace {

constexpr char kControllers[] = "controllers";
constexpr char kFaults[] = "faults";
constexpr char kWwn[] = "wwn";
constexpr char kAt[] = "at";
constexpr char kDo[] = "do";
constexpr char kStage[] = "stage";
constexpr char kStatusByte[] = "status_byte";
constexpr char kSeconds[] = "seconds";
constexpr char kSurvives[] = "survives";
constexpr std::uint64_t kMostSeconds = 1ULL << 40U;
constexpr char kCalls[] = "calls";
constexpr double kDefaultSecondsPerQuery = 2;
constexpr double kStageLength = 100;
constexpr std::uint64_t kMostCalls = 1000000000;
constexpr std::uint8_t kFirstUnknownStatusByte = 4;
constexpr std::uint8_t kUnknownStage = 9;

bool hasStatus(std::string_view name) {
  return std::any_of(std::begin(framework::kFunctions), std::end(framework::kFunctions),
                     [name](const framework::Function& function) {
                       return function.hasStatus && name == function.name;
                     });
}

CallFault readCallFault(ObjectReader& reader) {
  CallFault fault;
  fault.function = reader.text("function");
  if (!hasStatus(fault.function)) {
    reader.refuse("function", "no function of that name has a status");
  }
  fault.call = reader.code("call", kMostCalls, 1);
  if (fault.call == 0) reader.refuse("call", "the first call is number 1");
  fault.count = reader.code("count", kMostCalls, 1);
  fault.status = static_cast<std::uint32_t>(reader.code("status", UINT32_MAX));
  if (fault.status == 0) reader.refuse("status", "must not be 0, which is no fault");
  return fault;
}

// The faults of one controller, as they come in the file.
class FlashFaultReader {
 public:
  FlashFaultReader(ObjectReader& reader, ControllerRecord& controller)
      : reader_(reader),
        controller_(controller),
        cpld_(reader.choice(kFlashKey, {kFirmwareFlash, kCpldFlash}, true) == 1) {}

  void read() {
    switch (reader_.choice(kDo, {"busy", "fail", "retry", "stall", "backwards", "unknown"}, true)) {
      case 0:
        return readBusy();
      case 1:
        return readFail();
      case 2:
        return readRetry();
      case 3:
        return add(FlashFault::Kind::stall);
      case 4:
        return readBackwards();
      default:
        return readUnknown();
    }
  }

 private:
  void readBusy() {
    BusyFault& busy = cpld_ ? controller_.cpldBusy : controller_.firmwareBusy;
    busy.forEver = !reader_.has(kCalls);
    busy.calls = reader_.code(kCalls, kMostCalls, 0);
  }

  void readFail() {
    fault_.statusByte = byte(kStatusByte, 1);
    add(FlashFault::Kind::fail);
  }

  void readRetry() {
    if (!cpld_) reader_.refuse(kDo, "only a \"cpld\" flash has retries");
    add(FlashFault::Kind::retry);
  }

  void readBackwards() {
    fault_.to = reader_.percent("to");
    add(FlashFault::Kind::backwards);
  }

  void readUnknown() {
    fault_.statusByte = byte(kStatusByte, kFirstUnknownStatusByte);
    fault_.stage = byte("shown_stage", kUnknownStage);
    add(FlashFault::Kind::unknown);
  }

  std::uint8_t byte(const char* key, std::uint8_t fallback) {
    return static_cast<std::uint8_t>(reader_.code(key, UINT8_MAX, fallback));
  }

  void add(FlashFault::Kind kind) {
    fault_.kind = kind;
    fault_.at = reader_.percent(kAt);
    if (kind == FlashFault::Kind::stall || kind == FlashFault::Kind::unknown) {
      fault_.seconds = reader_.duration(kSeconds);
    }
    if (cpld_ && reader_.choice(kStage, {"transferring", "programming"}, false) == 1) {
      fault_.at += kStageLength;
      fault_.to += kStageLength;
    }
    if (kind == FlashFault::Kind::backwards && fault_.to > fault_.at) {
      reader_.refuse("to", "must not be above \"at\"");
    }
    std::vector<FlashFault>& faults = cpld_ ? controller_.cpldFaults : controller_.firmwareFaults;
    faults.push_back(fault_);
    if (firstUnreachable(faults)) reader_.refuse(kAt, "the flash has passed this by then");
  }

  ObjectReader& reader_;
  ControllerRecord& controller_;
  bool cpld_;
  FlashFault fault_;
};

std::string readVersion(ObjectReader& reader, const char* key) {
  std::string version = reader.text(key);
  if (!isVersion(version)) reader.refuse(key, "must be 1 to 23 visible ASCII characters");
  return version;
}

void readWwn(ObjectReader& reader, ControllerRecord& controller) {
  controller.wwn = reader.text(kWwn);
  std::string digits = controller.wwn;
  std::erase(digits, ':');
  const std::optional<std::string> bytes = hexBytes(digits);
  if (!bytes || bytes->size() != kWwnSize || controller.wwn.size() >= sizeof(WwnString)) {
    reader.refuse(kWwn, "must be 16 hexadecimal digits, with \":\" between them or not");
  }
  controller.wwnBytes = *bytes;
}

void readNvram(ObjectReader& reader, ControllerRecord& controller) {
  const std::optional<std::string> bytes = hexBytes(reader.text(kNvramKey, ""));
  if (!bytes || bytes->size() > sizeof(UsbNvram)) {
    reader.refuse(kNvramKey, "must be the hexadecimal digits of at most 516 bytes");
  }
  controller.nvram = *bytes;
}

void readFlashing(ObjectReader& reader, ControllerRecord& controller) {
  const Value& object = reader.object(kFlashingKey);
  if (object.isNothing()) return;
  ObjectReader flash(object, reader.nameOf(kFlashingKey));
  SurvivingFlash& flashing = controller.flashing.emplace();
  flashing.ofCpld = flash.choice(kFlashKey, {kFirmwareFlash, kCpldFlash}, true) == 1;
  flashing.version = readVersion(flash, kVersionKey);
  if (!flash.has(kStartedAtKey)) flash.refuse(kStartedAtKey, "is missing");
  flashing.startedAt = static_cast<double>(flash.number(kStartedAtKey, kMostSeconds));
  flash.finish();
}

ControllerRecord readController(ObjectReader& reader) {
  ControllerRecord controller;
  readWwn(reader, controller);
  controller.productId = static_cast<std::uint16_t>(reader.code("product_id", UINT16_MAX));
  controller.firmware = readVersion(reader, kFirmwareKey);
  controller.cpld = readVersion(reader, kCpldKey);
  controller.bridge = readVersion(reader, kBridgeKey);
  readNvram(reader, controller);
  using Attachment = ControllerRecord::Attachment;
  constexpr Attachment kAttachments[] = {Attachment::bridge, Attachment::thunderbolt,
                                         Attachment::other};
  controller.attached =
      kAttachments[reader.choice("attached", {"bridge", "thunderbolt", "other"}, false)];
  controller.subsystem = reader.choice("listed_as", {"adapter", "subsystem"}, false) == 1;
  controller.cpldTransferSeconds = reader.duration("cpld_transfer_seconds").value_or(0);
  controller.cpldProgrammingSeconds = reader.duration("cpld_programming_seconds").value_or(0);
  controller.firmwareSeconds = reader.duration("firmware_seconds").value_or(0);
  reader.each(kFaults, [&](ObjectReader& fault) { FlashFaultReader(fault, controller).read(); });
  readFlashing(reader, controller);
  return controller;
}

void readClock(ObjectReader& reader, Fleet& fleet) {
  const bool queries = reader.choice("clock", {"wall", "queries"}, false) == 1;
  const std::optional<double> perQuery = reader.duration("seconds_per_query");
  if (queries) fleet.secondsPerQuery = perQuery.value_or(kDefaultSecondsPerQuery);
  fleet.survives = reader.truth(kSurvives);
  if (queries && fleet.survives) reader.refuse(kSurvives, "goes by the clock \"wall\" alone");
}

void addController(ObjectReader& reader, Fleet& fleet) {
  ControllerRecord controller = readController(reader);
  for (const ControllerRecord& other : fleet.controllers) {
    if (other.wwnBytes == controller.wwnBytes) reader.refuse(kWwn, "another controller has it");
  }
  fleet.controllers.push_back(std::move(controller));
}

Fleet parseFleet(const Value& document) {
  Fleet fleet;
  ObjectReader reader(document, "");
  readClock(reader, fleet);
  reader.each(kFaults, [&](ObjectReader& each) { fleet.faults.push_back(readCallFault(each)); });
  if (!reader.has(kControllers)) reader.refuse(kControllers, "is missing");
  reader.each(kControllers, [&](ObjectReader& each) { addController(each, fleet); });
  reader.finish();
  // Adapters come first in the discovery index, then subsystems.
  std::stable_partition(fleet.controllers.begin(), fleet.controllers.end(),
                        [](const ControllerRecord& each) { return !each.subsystem; });
  return fleet;
}

// The object with another value of the key, or without it.
Value changed(Value object, std::string_view key, const Value& value) {
  if (!value.isNothing()) {
    object.set(key, value);
    return object;
  }
  Value rest = Value::dictionary();
  for (const auto& [name, kept] : object.entries()) {
    if (name != key) rest.set(name, kept);
  }
  return rest;
}

}  // namespace

Fleet readFleet(const std::string& path) {
  try {
    return parseFleet(readJsonObject(path));
  } catch (const Exception& caught) {
    throw Exception("fleet file " + path + ": " + caught.what());
  }
}

void storeInFleet(const std::string& path, const std::string& wwn, std::string_view key,
                  const Value& value) {
  Value document = readJsonObject(path);
  Value controllers = Value::array();
  for (const Value& controller : document.get(kControllers).elements()) {
    const bool isMeant = platform::equalStrings(controller.get(kWwn), wwn);
    controllers.append(isMeant ? changed(controller, key, value) : controller);
  }
  document.set(kControllers, controllers);
  const std::optional<std::string> bytes = platform::printJson(document);
  if (!bytes || !platform::replaceFile(path, *bytes + "\n")) {
    throw Exception("fleet file " + path + ": cannot be replaced");
  }
}

}  // namespace kelvane::simulator
