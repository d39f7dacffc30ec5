// What became of the packages of a download that failed, and what the update engine said.
#pragma once

#include <string>
#include <vector>

#include "console/job/LogStretch.h"
#include "platform/Value.h"

namespace kelvane::console {

// A line for each product whose package is not there; none of another job or of one that is done.
// Of a copy from another system the files are not looked for.
std::vector<std::string> packageNotes(const platform::Value& record, bool isCopy = false);

// What to do where the same job would fail again: products that the catalogue does not offer, or
// several at once; empty where it might not, and of other jobs.
std::string packageAdvice(const platform::Value& record, bool isCopy);

// What the update engine printed last in a query that found no catalogue; empty of other jobs.
std::string engineNote(const platform::Value& record, const LogStretch& log);

}  // namespace kelvane::console
