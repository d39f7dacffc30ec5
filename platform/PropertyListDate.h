// Dates as property lists write them.
#pragma once

#include <optional>
#include <string>

#include "platform/Value.h"

namespace kelvane::platform {

// "2026-01-31T23:59:59Z"; nothing where the text is no date.
std::optional<Date> dateFromText(const std::string& text);

}  // namespace kelvane::platform
