// The simulated controllers' fleet file, as it is and as it is written of what the bytes make:
// read, played, and written to.

#include "simulators/controllers/Fleet.h"

#include <optional>
#include <string>

#include "platform/Exception.h"
#include "platform/Json.h"
#include "simulators/controllers/Controller.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/MadeFleet.h"
#include "tests/fuzz/MemoryDisk.h"

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
  bool isDone = false;
  for (double second = 0; second < 1e12; second = second * 2 + 1) {
    const simulator::Reading reading = timeline.at(second);
    require(reading.percent <= 100, "no flash comes beyond its end");
    require(!isDone || reading.done, "a flash that is done stays so");
    isDone = reading.done;
  }
}

void flash(MemoryDisk& disk, const Fleet& before) {
  const Value document = platform::parseJson(disk.bytesOf(kPath).value_or(""));
  const std::string& wwn = before.controllers.front().wwn;
  simulator::storeInFleet(kPath, wwn, simulator::kFirmwareKey, "9.9");
  const auto after = read();
  require(after && after->controllers.size() == before.controllers.size(),
          "a fleet that was written is one", disk.bytesOf(kPath).value_or(""));
  require(after->controllers.front().firmware == "9.9", "what was flashed is kept");
  for (std::size_t i = 1; i < before.controllers.size(); ++i) {
    require(after->controllers[i].firmware == before.controllers[i].firmware &&
                after->controllers[i].wwn == before.controllers[i].wwn,
            "the others stay as they are");
  }
  simulator::storeInFleet(kPath, wwn, simulator::kFirmwareKey, before.controllers.front().firmware);
  require(platform::parseJson(disk.bytesOf(kPath).value_or("")) == document,
          "all else in the file stays", disk.bytesOf(kPath).value_or(""));
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
