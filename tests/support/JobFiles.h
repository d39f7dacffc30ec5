// Job files as tests write them.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::test {

// The job file in a test's folder, where the folder "shared" is the shared one. Written out, as a
// witness of its own.
inline constexpr char kJobFile[] = "shared/utility/command/BGPLog.json";

// The text of a job file with one waiting job.
std::string waitingJob(const std::string& command, const platform::Value& inputs,
                       const std::string& logId = "17");

}  // namespace kelvane::test
