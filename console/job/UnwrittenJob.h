// A waiting job that a worker took: it could not write the record, or was killed, and another
// program put the record back.
#pragma once

#include <string>

#include "console/job/LogStretch.h"
#include "platform/Value.h"

namespace kelvane::console {

// Whether a worker took this waiting job and did something for it, so that it may have been done
// though its record does not tell.
bool mayHaveBeenDone(const platform::Value& record, const LogStretch& log);

// " The log last saw "14:03:07 flashCPLD: ..."."; empty where there was no step.
std::string lastSeenText(const LogStretch& log);

// What of it the worker may have done: "the flash may have been done".
std::string whatMayHaveBeenDone(const platform::Value& record, const LogStretch& log);

}  // namespace kelvane::console
