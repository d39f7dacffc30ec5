// What was wrong with a firmware job that failed, where its record or an image is at fault.
#pragma once

#include <cstdint>
#include <optional>

#include "console/explain/Explanation.h"
#include "console/explain/JobExplanation.h"
#include "platform/Value.h"

namespace kelvane::console {

// Of a firmware job that is finished with this result, which is not 0; without a subject. Nothing
// where neither is seen to be at fault.
std::optional<Explanation> firmwareFault(std::int64_t code, const platform::Value& record,
                                         const JobCircumstances& circumstances);

}  // namespace kelvane::console
