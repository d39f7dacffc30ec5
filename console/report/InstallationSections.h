// The sections of a report that tell of the installation around the job.
#pragma once

#include "console/report/Html.h"
#include "console/report/ReportMatter.h"

namespace kelvane::console {

void showFindings(Html& page, const ReportMatter& matter);

// Of console, worker, framework, engine and system, as far as they can be told without starting
// anything.
void showVersions(Html& page, const ReportMatter& matter);

// Both files. A damaged one is left out where the report is redacted: what is to be replaced in it
// cannot be told for sure.
void showSettings(Html& page, const ReportMatter& matter, bool isRedacted);

// Owners and permissions of the shared folder and of the bundle.
void showDiskEntries(Html& page, const ReportMatter& matter);

}  // namespace kelvane::console
