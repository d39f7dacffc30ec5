// The job file as a file: whether the worker can read it and replace it.
#pragma once

#include <string>

#include "console/checks/Finding.h"
#include "console/job/Places.h"

namespace kelvane::console {

// Of the file at this path: readable, JSON with an array at the top, replaceable.
Findings jobFileFindings(const std::string& path);

// Of the same file, when it is there, what is in it alone.
Findings jobFileContentFindings(const std::string& path);

// Where the file is not there: whether it was.
Findings lostJobFileFindings(const Places& places);

// Temporary files that a killed writer left beside the job file.
Findings leftoverFindings(const std::string& path);

}  // namespace kelvane::console
