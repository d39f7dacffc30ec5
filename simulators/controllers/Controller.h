// A simulated controller: what it holds, and how far the work on it has got.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "simulators/controllers/Fleet.h"
#include "simulators/controllers/Timeline.h"

namespace kelvane::simulator {

// A flash that runs in the controller.
struct RunningFlash {
  Timeline timeline;
  double startedAt = 0;
  std::string version;  // what the controller holds afterwards
  bool polled = false;
  bool stored = false;
};

Timeline firmwareTimeline(const ControllerRecord& record);
Timeline cpldTimeline(const ControllerRecord& record);

struct Controller {
  explicit Controller(ControllerRecord all) : record(std::move(all)) {}

  unsigned productFamily() const { return record.productId >> 8U; }
  bool isQvxf() const { return productFamily() == 0x48 || productFamily() == 0x49; }
  // Whether the standard path can flash its firmware.
  bool isStandard() const {
    return (productFamily() >= 0x42 && productFamily() <= 0x47) || productFamily() == 0x88;
  }
  bool isBusy() const {
    return flashOpen || cpldOpen || firmwareFlash.has_value() || qvxfFlash.has_value();
  }

  ControllerRecord record;

  bool flashOpen = false;
  std::optional<std::string> transferred;  // the version of the standard image that has arrived
  std::optional<RunningFlash> firmwareFlash;

  std::optional<std::string> qvxfTransferred;
  bool qvxfAnalysed = false;
  std::optional<RunningFlash> qvxfFlash;

  bool cpldOpen = false;
  std::optional<RunningFlash> cpldFlash;

  std::optional<RunningFlash> survivor;  // that an earlier process has started

  bool bridgeChecked = false;
  std::optional<std::string> nvramRead;      // as handed out, until it is prepared
  std::optional<std::string> nvramPrepared;  // as made to go with the new bridge firmware
};

}  // namespace kelvane::simulator
