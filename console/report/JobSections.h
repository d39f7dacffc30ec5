// The sections of a report that tell of its job.
#pragma once

#include "console/report/Html.h"
#include "console/report/ReportMatter.h"

namespace kelvane::console {

// What became of it, where, and what to do; without a job, why there is none.
void tellOutcome(Html& page, const ReportMatter& matter);

void tellRequest(Html& page, const ReportMatter& matter);

// Each controller's percentages over time; nothing of another job.
void tellHistory(Html& page, const ReportMatter& matter);

void showRecord(Html& page, const ReportMatter& matter);

// The job's stretch of the log, or the end of the log.
void showLogOf(Html& page, const ReportMatter& matter);

// What worker and tools said on standard error.
void showStandardError(Html& page, const ReportMatter& matter);

}  // namespace kelvane::console
