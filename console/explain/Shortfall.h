// What a job that ended with 0 did not do all the same.
#pragma once

#include <string>
#include <vector>

#include "console/job/LogStretch.h"
#include "console/job/Places.h"
#include "platform/Value.h"

namespace kelvane::console {

// What tells of an installation besides its record.
struct InstallationTraces {
  std::vector<std::string> standardError = {};
  bool isCopy = false;                  // then the package is not looked for
  std::string missingApplication = {};  // as missingApplication() tells it
};

// The first complaint of rm or cp, by which the worker replaces an application, among what was said
// on its standard error; empty where there is none.
std::string toolsComplaint(const std::vector<std::string>& standardError);

// In short, behind "no error, but ": "the update engine left no catalogue"; empty of a job with
// another result, and where nothing tells of any.
std::string shortfallOf(const platform::Value& record, const LogStretch& log,
                        const InstallationTraces& traces);

// The same, as these places tell of the job.
std::string shortfallAt(const Places& places, const platform::Value& record, const LogStretch& log);

}  // namespace kelvane::console
