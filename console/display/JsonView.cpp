#include "console/display/JsonView.h"

#include "console/display/JsonText.h"
#include "console/display/TimeText.h"

namespace kelvane::console {

void JsonView::show(const Look& look) {
  if (look.record == shown_) return;
  out_ << jsonLine(recordWithTimes(look)) << std::endl;
  shown_ = look.record;
}

}  // namespace kelvane::console
