#include "tests/fuzz/MadeFleet.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <vector>

#include <fmt/format.h>

#include "contract/Framework.h"

namespace kelvane::fuzz {
namespace {

using simulator::BusyFault;
using simulator::CallFault;
using simulator::ControllerRecord;
using simulator::FlashFault;
using simulator::Fleet;

constexpr double kStage = 100;

// An object of JSON, key by key.
class ObjectText {
 public:
  explicit ObjectText(Bytes& bytes) : bytes_(bytes) {
    if (bytes_.pick(8) == 1) add("note", R"({"any": [1.50, null, "\u00e4"]})");
  }

  void add(const char* key, const std::string& value) {
    text_ += fmt::format("{}\"{}\": {}", text_.empty() ? "" : ", ", key, value);
  }
  void addText(const char* key, const std::string& text) {
    std::string escaped;
    for (const char each : text) {
      if (each == '"' || each == '\\') escaped += '\\';
      escaped += each;
    }
    add(key, "\"" + escaped + "\"");
  }
  // As a number, or as "0x" and digits.
  void addCode(const char* key, std::uint64_t code) {
    add(key, bytes_.flag() ? fmt::format("\"0x{:X}\"", code) : std::to_string(code));
  }
  // As it is, or, where it is the first of the choices, not at all.
  std::size_t addChoice(const char* key, const std::vector<const char*>& choices) {
    const unsigned chosen = bytes_.pick(static_cast<unsigned>(choices.size()));
    if (chosen != 0 || bytes_.flag()) addText(key, choices[chosen]);
    return chosen;
  }
  // Nothing where it is not there.
  std::optional<double> addDuration(const char* key) {
    struct Duration {
      const char* text;
      double seconds;
    };
    static constexpr Duration kDurations[] = {
        {"0", 0}, {"6", 6}, {"0.25", 0.25}, {"1e3", 1000}, {"1000000000", 1e9}};
    const unsigned chosen = bytes_.pick(6);
    if (chosen == 5) return {};
    add(key, kDurations[chosen].text);
    return kDurations[chosen].seconds;
  }

  std::string whole() const { return "{" + text_ + "}"; }

 private:
  Bytes& bytes_;
  std::string text_;
};

std::string listOf(const std::vector<std::string>& elements) {
  return fmt::format("[{}]", fmt::join(elements, ", "));
}

std::string hexDigits(const std::string& bytes) {
  std::string digits;
  for (const char each : bytes) digits += fmt::format("{:02x}", static_cast<unsigned char>(each));
  return digits;
}

std::string shortVersion(Bytes& bytes) {
  std::string version;
  const unsigned size = 1 + bytes.pick(23);
  for (unsigned i = 0; i < size; ++i) version += static_cast<char>('!' + bytes.pick('~' - '!' + 1));
  return version;
}

// One controller with the flash faults of each of its flashes.
class ControllerMaker {
 public:
  ControllerMaker(Bytes& bytes, unsigned number) : bytes_(bytes), number_(number), object_(bytes) {}

  std::string make(ControllerRecord& record) {
    addWwn(record);
    record.productId = static_cast<std::uint16_t>(bytes_.word());
    object_.addCode("product_id", record.productId);
    for (auto [key, version] :
         {std::pair("firmware", &record.firmware), std::pair("cpld", &record.cpld),
          std::pair("usb_bridge", &record.bridge)}) {
      *version = shortVersion(bytes_);
      object_.addText(key, *version);
    }
    record.nvram = bytes_.text();
    if (!record.nvram.empty()) object_.addText("nvram", hexDigits(record.nvram));
    record.attached = static_cast<ControllerRecord::Attachment>(
        object_.addChoice("attached", {"bridge", "thunderbolt", "other"}));
    record.subsystem = object_.addChoice("listed_as", {"adapter", "subsystem"}) == 1;
    record.cpldTransferSeconds = object_.addDuration("cpld_transfer_seconds").value_or(0);
    record.cpldProgrammingSeconds = object_.addDuration("cpld_programming_seconds").value_or(0);
    record.firmwareSeconds = object_.addDuration("firmware_seconds").value_or(0);
    addFaults(record);
    if (bytes_.flag()) addFlashing(record);
    return object_.whole();
  }

 private:
  void addWwn(ControllerRecord& record) {
    constexpr std::size_t kTail = 7;
    record.wwnBytes = std::string("\x50\x0A\x09\x80\xFE\x12\x34", kTail);
    record.wwnBytes += static_cast<char>(number_);
    const unsigned spelling = bytes_.pick(3);
    for (const char each : record.wwnBytes) {
      if (spelling == 1 && !record.wwn.empty()) record.wwn += ':';
      const auto byte = static_cast<unsigned char>(each);
      record.wwn += spelling == 2 ? fmt::format("{:02X}", byte) : fmt::format("{:02x}", byte);
    }
    object_.addText("wwn", record.wwn);
  }

  void addFaults(ControllerRecord& record) {
    std::vector<std::string> faults;
    const unsigned count = bytes_.pick(5);
    for (unsigned i = 0; i < count; ++i) faults.push_back(fault(record));
    if (count > 0) object_.add("faults", listOf(faults));
  }

  std::string fault(ControllerRecord& record) {
    ObjectText object(bytes_);
    const bool ofCpld = bytes_.flag();
    object.addText("flash", ofCpld ? "cpld" : "firmware");
    if (bytes_.pick(4) == 1) {
      addBusy(object, ofCpld ? record.cpldBusy : record.firmwareBusy);
    } else {
      addPlayed(object, ofCpld, ofCpld ? record.cpldFaults : record.firmwareFaults);
    }
    return object.whole();
  }

  void addBusy(ObjectText& object, BusyFault& busy) {
    object.addText("do", "busy");
    busy.forEver = bytes_.flag();
    busy.calls = busy.forEver ? 0 : bytes_.byte();
    if (!busy.forEver) object.addCode("calls", busy.calls);
  }

  // At the position that the flash has by then, or behind it.
  void addPlayed(ObjectText& object, bool ofCpld, std::vector<FlashFault>& faults) {
    static constexpr const char* kNames[] = {"fail", "retry", "stall", "backwards", "unknown"};
    FlashFault fault;
    fault.kind = static_cast<FlashFault::Kind>(bytes_.pick(5));
    if (fault.kind == FlashFault::Kind::retry && !ofCpld) fault.kind = FlashFault::Kind::fail;
    object.addText("do", kNames[static_cast<int>(fault.kind)]);
    const auto from = static_cast<unsigned>(faults.empty() ? 0 : faults.back().next());
    const unsigned at = from + bytes_.pick((ofCpld ? 200U : 100U) - from + 1);
    const bool isProgrammed = ofCpld && at >= kStage && (at > kStage || bytes_.flag());
    const unsigned stageStart = isProgrammed ? 100 : 0;
    object.add("at", std::to_string(at - stageStart));
    if (ofCpld && (isProgrammed || bytes_.flag())) {
      object.addText("stage", isProgrammed ? "programming" : "transferring");
    }
    fault.at = at;
    if (fault.kind == FlashFault::Kind::backwards) {
      const unsigned to = bytes_.pick(at - stageStart + 1);
      object.add("to", std::to_string(to));
      fault.to = to + stageStart;
    }
    addShown(object, fault);
    faults.push_back(fault);
  }

  void addShown(ObjectText& object, FlashFault& fault) {
    const bool isUnknown = fault.kind == FlashFault::Kind::unknown;
    if (isUnknown || fault.kind == FlashFault::Kind::stall) {
      fault.seconds = object.addDuration("seconds");
    }
    if (isUnknown) fault.stage = shownByte(object, "shown_stage", 9);
    if (isUnknown || fault.kind == FlashFault::Kind::fail) {
      fault.statusByte = shownByte(object, "status_byte", isUnknown ? 4 : 1);
    }
  }

  std::uint8_t shownByte(ObjectText& object, const char* key, std::uint8_t unlessThere) {
    if (bytes_.flag()) return unlessThere;
    const std::uint8_t byte = bytes_.byte();
    object.addCode(key, byte);
    return byte;
  }

  void addFlashing(ControllerRecord& record) {
    simulator::SurvivingFlash& flashing = record.flashing.emplace();
    ObjectText object(bytes_);
    flashing.ofCpld = bytes_.flag();
    object.addText("flash", flashing.ofCpld ? "cpld" : "firmware");
    flashing.version = shortVersion(bytes_);
    object.addText("version", flashing.version);
    const std::uint32_t startedAt = bytes_.word();
    object.add("started_at", std::to_string(startedAt));
    flashing.startedAt = startedAt;
    object_.add("flashing", object.whole());
  }

  Bytes& bytes_;
  unsigned number_;
  ObjectText object_;
};

std::string madeCallFault(Bytes& bytes, CallFault& fault) {
  ObjectText object(bytes);
  std::vector<const char*> names;
  for (const framework::Function& function : framework::kFunctions) {
    if (function.hasStatus) names.push_back(function.name);
  }
  fault.function = names[bytes.pick(static_cast<unsigned>(names.size()))];
  object.addText("function", fault.function);
  if (bytes.flag()) object.addCode("call", fault.call = 1U + bytes.byte());
  if (bytes.flag()) object.addCode("count", fault.count = bytes.byte());
  fault.status = std::max<std::uint32_t>(bytes.word(), 1);
  object.addCode("status", fault.status);
  return object.whole();
}

void addClock(Bytes& bytes, ObjectText& object, Fleet& fleet) {
  const bool countsQueries = object.addChoice("clock", {"wall", "queries"}) == 1;
  const auto seconds = object.addDuration("seconds_per_query");
  if (countsQueries) fleet.secondsPerQuery = seconds.value_or(2);
  fleet.survives = !countsQueries && bytes.flag();
  if (fleet.survives || bytes.flag()) object.add("survives", fleet.survives ? "true" : "false");
}

std::string toldFault(const FlashFault& fault) {
  const bool isShown =
      fault.kind == FlashFault::Kind::fail || fault.kind == FlashFault::Kind::unknown;
  return fmt::format("    {} at {} to {} seconds {} shown {} {}\n", static_cast<int>(fault.kind),
                     fault.at, fault.kind == FlashFault::Kind::backwards ? fault.to : -1,
                     fault.seconds.value_or(-1), isShown ? fault.statusByte : -1,
                     fault.kind == FlashFault::Kind::unknown ? fault.stage : -1);
}

std::string toldController(const ControllerRecord& record) {
  std::string told = fmt::format(
      "{} {} {:04x}\n  {}\n  {}\n  {}\n  nvram {}\n  attached {} subsystem {}\n  {} {} {}\n",
      record.wwn, hexDigits(record.wwnBytes), record.productId, record.firmware, record.cpld,
      record.bridge, hexDigits(record.nvram), static_cast<int>(record.attached), record.subsystem,
      record.cpldTransferSeconds, record.cpldProgrammingSeconds, record.firmwareSeconds);
  told += "  firmware faults\n";
  for (const FlashFault& fault : record.firmwareFaults) told += toldFault(fault);
  told += "  cpld faults\n";
  for (const FlashFault& fault : record.cpldFaults) told += toldFault(fault);
  told += fmt::format("  busy {} {}, {} {}\n", record.firmwareBusy.forEver,
                      record.firmwareBusy.calls, record.cpldBusy.forEver, record.cpldBusy.calls);
  if (!record.flashing) return told;
  return told + fmt::format("  flashing {} {} {}\n", record.flashing->ofCpld,
                            record.flashing->version, record.flashing->startedAt);
}

}  // namespace

MadeFleet madeFleet(Bytes& bytes) {
  MadeFleet made;
  ObjectText object(bytes);
  addClock(bytes, object, made.fleet);
  std::vector<std::string> faults;
  const unsigned faultCount = bytes.pick(4);
  for (unsigned i = 0; i < faultCount; ++i) {
    faults.push_back(madeCallFault(bytes, made.fleet.faults.emplace_back()));
  }
  if (faultCount > 0) object.add("faults", listOf(faults));
  std::vector<std::string> controllers;
  const unsigned count = bytes.pick(4);
  for (unsigned i = 0; i < count; ++i) {
    controllers.push_back(ControllerMaker(bytes, i).make(made.fleet.controllers.emplace_back()));
  }
  object.add("controllers", listOf(controllers));
  made.text = object.whole();
  // Adapters are discovered first.
  std::stable_sort(
      made.fleet.controllers.begin(), made.fleet.controllers.end(),
      [](const auto& one, const auto& other) { return one.subsystem < other.subsystem; });
  return made;
}

std::string toldFleet(const Fleet& fleet) {
  std::string told =
      fmt::format("clock {} survives {}\n", fleet.secondsPerQuery.value_or(-1), fleet.survives);
  for (const CallFault& fault : fleet.faults) {
    told +=
        fmt::format("fault {} {} {} {:x}\n", fault.function, fault.call, fault.count, fault.status);
  }
  for (const ControllerRecord& controller : fleet.controllers) told += toldController(controller);
  return told;
}

}  // namespace kelvane::fuzz
