#include "console/display/JsonView.h"

#include <utility>

#include "console/display/JsonText.h"
#include "console/display/StatusForMachines.h"
#include "console/display/TimeText.h"

namespace kelvane::console {

using platform::Value;

namespace {

// While a worker is at the job the record tells all.
Value recordToShow(Value record, const Look& look) {
  if (!record.isDictionary() || (!look.status.isFinished() && !look.status.hasNoWorker)) {
    return record;
  }
  return recordWithStatus(std::move(record), look.status, look.shortfall);
}

}  // namespace

void JsonView::show(const Look& look) {
  const Value known = recordToShow(look.record, look);
  if (known == shown_) return;
  out_ << jsonLine(recordToShow(recordWithTimes(look), look)) << std::endl;
  shown_ = known;
}

}  // namespace kelvane::console
