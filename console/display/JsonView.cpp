#include "console/display/JsonView.h"

#include "console/display/TimeText.h"
#include "platform/Json.h"

namespace kelvane::console {

void JsonView::show(const Look& look) {
  if (look.record == shown_) return;
  out_ << platform::printJsonLine(recordWithTimes(look)).value_or("null") << std::endl;
  shown_ = look.record;
}

}  // namespace kelvane::console
