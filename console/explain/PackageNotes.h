// What became of the packages of a download that failed, and what the update engine said.
#pragma once

#include <string>
#include <vector>

#include "console/job/LogStretch.h"
#include "platform/Value.h"

namespace kelvane::console {

// A line for each product whose package is not there, and where the engine's complaints stand; none
// of another job or of one that is done.
std::vector<std::string> packageNotes(const platform::Value& record);

// What the update engine printed last in a query that found no catalogue; empty of other jobs.
std::string engineNote(const platform::Value& record, const LogStretch& log);

}  // namespace kelvane::console
