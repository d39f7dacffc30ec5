// What a finished job's result means.
#pragma once

#include "console/explain/Explanation.h"
#include "console/explain/JobExplanation.h"
#include "console/job/JobStatus.h"
#include "platform/Value.h"

namespace kelvane::console {

// The subject is without the job's name.
Explanation explainFinished(const platform::Value& record, const JobStatus& status,
                            const JobCircumstances& circumstances);

}  // namespace kelvane::console
