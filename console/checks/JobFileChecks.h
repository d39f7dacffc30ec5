// The job file as a file: whether the worker can read it and replace it.
#pragma once

#include <string>

#include "console/checks/Finding.h"
#include "console/job/Places.h"

namespace kelvane::console {

// Of the file at places.jobFile: readable, JSON with an array at the top, replaceable. Where it is
// damaged, the log may still show its jobs.
Findings jobFileFindings(const Places& places);

// Of the same file, when it is there, what is in it alone.
Findings jobFileContentFindings(const Places& places);

// Where the file is not there: whether it was.
Findings lostJobFileFindings(const Places& places);

// Temporary files that a killed writer left beside the job file.
Findings leftoverFindings(const std::string& path);

}  // namespace kelvane::console
