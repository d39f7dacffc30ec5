// Flashes that go on in the controllers when the process has ended that started them. What they are
// stands in the fleet file, where a later process finds them.

#include <algorithm>
#include <cmath>

#include "simulators/controllers/Framework.h"

namespace kelvane::simulator {

using platform::Value;

Timeline firmwareTimeline(const ControllerRecord& record) {
  return {Timeline::Target::firmware, {record.firmwareSeconds}, record.firmwareFaults};
}

Timeline cpldTimeline(const ControllerRecord& record) {
  return {Timeline::Target::cpld,
          {record.cpldTransferSeconds, record.cpldProgrammingSeconds},
          record.cpldFaults};
}

void Framework::keepFlash(const Controller& controller, const char* flash,
                          const std::string& version) const {
  if (!survives_) return;
  const auto startedAt = static_cast<std::int64_t>(std::floor(clock_.timeOfDay()));
  store(controller, kFlashingKey,
        Value::dictionary({{kFlashKey, flash},
                           {kVersionKey, version},
                           {kStartedAtKey, Value::integer(startedAt)}}));
}

void Framework::forgetFlash(const Controller& controller) const {
  if (survives_) store(controller, kFlashingKey, {});
}

void Framework::takeSurvivor(Controller& controller) {
  const std::optional<SurvivingFlash>& kept = controller.record.flashing;
  if (!kept || !survives_) return;
  const ControllerRecord& record = controller.record;
  controller.survivor =
      RunningFlash{.timeline = kept->ofCpld ? cpldTimeline(record) : firmwareTimeline(record),
                   .startedAt = kept->startedAt,
                   .version = kept->version};
  isStillFlashing(controller);
}

bool Framework::isStillFlashing(Controller& controller) {
  if (!controller.survivor) return false;
  RunningFlash& flash = *controller.survivor;
  // The file may come from a system whose clock is ahead.
  const double passed = std::max(clock_.timeOfDay() - flash.startedAt, 0.0);
  const Reading reading = flash.timeline.at(passed);
  if (!reading.done && !reading.failed) return true;
  const bool ofCpld = controller.record.flashing->ofCpld;
  end(controller, flash, ofCpld ? kCpldKey : kFirmwareKey,
      ofCpld ? controller.record.cpld : controller.record.firmware);
  controller.survivor.reset();
  return false;
}

}  // namespace kelvane::simulator
