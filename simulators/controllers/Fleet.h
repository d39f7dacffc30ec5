// The fleet file: which controllers there are, what they hold, and the faults they play.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Value.h"
#include "simulators/controllers/Timeline.h"

namespace kelvane::simulator {

// Keys of a controller under which what was flashed is kept.
inline constexpr char kFirmwareKey[] = "firmware";
inline constexpr char kCpldKey[] = "cpld";
inline constexpr char kBridgeKey[] = "usb_bridge";
inline constexpr char kNvramKey[] = "nvram";
// The key under which a flash stands that survives its process, and the keys in it.
inline constexpr char kFlashingKey[] = "flashing";
inline constexpr char kFlashKey[] = "flash";
inline constexpr char kVersionKey[] = "version";
inline constexpr char kStartedAtKey[] = "started_at";
inline constexpr char kFirmwareFlash[] = "firmware";
inline constexpr char kCpldFlash[] = "cpld";

inline constexpr std::size_t kWwnSize = 8;

// A status that takes the place of a function's own.
struct CallFault {
  std::string function;
  std::uint64_t call = 1;   // the first call that gets it
  std::uint64_t count = 1;  // how many calls get it; 0: all from then on
  std::uint32_t status = 0;
};

// Calls that find a second flash process running.
struct BusyFault {
  bool forEver = false;
  std::uint64_t calls = 0;
};

// A flash that goes on also where the process has ended that started it.
struct SurvivingFlash {
  bool ofCpld = false;
  std::string version;   // what the controller holds afterwards
  double startedAt = 0;  // time of day
};

struct ControllerRecord {
  enum class Attachment { bridge, thunderbolt, other };
  std::string wwn;       // as the file spells it
  std::string wwnBytes;  // the same, as the framework's records carry it
  std::uint16_t productId = 0;
  std::string firmware;
  std::string cpld;
  std::string bridge;
  std::string nvram;  // bytes; empty where the file has none
  Attachment attached = Attachment::bridge;
  bool subsystem = false;  // discovery lists it as a subsystem, not as an adapter
  double cpldTransferSeconds = 0;
  double cpldProgrammingSeconds = 0;
  double firmwareSeconds = 0;
  std::vector<FlashFault> firmwareFaults;
  std::vector<FlashFault> cpldFaults;
  BusyFault firmwareBusy;
  BusyFault cpldBusy;
  std::optional<SurvivingFlash> flashing;
};

struct Fleet {
  std::optional<double> secondsPerQuery;  // nothing: the wall clock
  bool survives = false;                  // whether flashes go on without their process
  std::vector<CallFault> faults;
  std::vector<ControllerRecord> controllers;  // in the order of discovery
};

// Raises, with the path and the key, where the file cannot be read or holds anything else than a
// fleet: unknown keys, missing keys, wrong types, values out of range.
Fleet readFleet(const std::string& path);

// Keeps a value under a key of the controller with this WWN, in the file as it stands now; a
// nothing takes the key away. All else in the file stays. Raises where that failed; the file is
// then as it was.
void storeInFleet(const std::string& path, const std::string& wwn, std::string_view key,
                  const platform::Value& value);

}  // namespace kelvane::simulator
