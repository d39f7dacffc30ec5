// The simulated controllers' fleet file, as it is and as it is written of what the bytes make:
// read, played, and written to.

#include "simulators/controllers/Fleet.h"

#include <optional>
#include <string>
#include <vector>

#include "platform/Exception.h"
#include "simulators/controllers/Controller.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/MadeFleet.h"
#include "tests/fuzz/MemoryDisk.h"
#include "tests/fuzz/laws/FleetLaws.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;
using simulator::Fleet;

constexpr char kPath[] = "/fleet.json";

std::optional<Fleet> read() {
  try {
    return simulator::readFleet(kPath);
  } catch (const platform::Exception&) {
    return std::nullopt;
  }
}

// At moments that lie further and further apart.
void play(const simulator::Timeline& timeline) {
  std::vector<simulator::Reading> readings;
  for (double second = 0; second < 1e12; second = second * 2 + 1) {
    readings.push_back(timeline.at(second));
  }
  requireCourse(readings);
}

void flash(MemoryDisk& disk, const Fleet& before) {
  const auto text = [&] { return disk.bytesOf(kPath).value_or(""); };
  const std::string document = text();
  const simulator::ControllerRecord& first = before.controllers.front();
  simulator::storeInFleet(kPath, first.wwn, simulator::kFirmwareKey, "9.9");
  requireFlashed(before, "9.9", read(), text());
  simulator::storeInFleet(kPath, first.wwn, simulator::kFirmwareKey, first.firmware);
  requireKept(document, text());
}

void playAll(MemoryDisk& disk, const Fleet& fleet) {
  for (const simulator::ControllerRecord& controller : fleet.controllers) {
    play(simulator::firmwareTimeline(controller));
    play(simulator::cpldTimeline(controller));
  }
  if (!fleet.controllers.empty()) flash(disk, fleet);
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::MemoryDisk disk;
  disk.put(fuzz::kPath, fuzz::Bytes(data, size).rest());
  if (const auto fleet = fuzz::read()) fuzz::playAll(disk, *fleet);

  fuzz::Bytes bytes(data, size);
  const fuzz::MadeFleet made = fuzz::madeFleet(bytes);
  disk.put(fuzz::kPath, made.text);
  const auto fleet = fuzz::read();
  fuzz::require(fleet.has_value(), "a sound fleet is read", made.text);
  fuzz::requireSame(fuzz::toldFleet(made.fleet), fuzz::toldFleet(*fleet),
                    "a fleet is read as it was meant");
  fuzz::playAll(disk, *fleet);
  return 0;
}
