// The rehearsal of a firmware job: all that can be looked at without flashing.
#pragma once

#include "console/devices/Discovery.h"
#include "console/devices/FrameworkQuestion.h"
#include "platform/Value.h"

namespace kelvane::console {

// The keys of what is told of an entry, beside those of the input and kProductId and kUpdate.
namespace rehearsal {

inline constexpr char kVerdict[] = "verdict";  // one of the three
inline constexpr char kFits[] = "fits";
inline constexpr char kFails[] = "fails";
inline constexpr char kNotCertain[] = "not certain";
inline constexpr char kWhy[] = "why";          // of the last two
inline constexpr char kNearest[] = "nearest";  // the WWN that may be meant

}  // namespace rehearsal

// For each of the job's input parameters, each by itself, how it would go: an array of
// dictionaries. Raises Failure where there is no discovery.
platform::Value rehearse(const platform::Value& inputs, const LookingFunctions& zorapi,
                         const Step& step);

}  // namespace kelvane::console
