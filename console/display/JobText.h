// A job in words: its state, its result, how long it takes.
#pragma once

#include <chrono>
#include <string>

#include "console/display/DisplayText.h"
#include "console/job/JobStatus.h"
#include "console/job/View.h"

namespace kelvane::console {

// "job 18: running"
std::string jobLine(const JobStatus& status, Charset charset);

// "result 0: no error"
std::string resultLine(const JobStatus& status, Charset charset);

// "1:05", "1:00:05"
std::string timeText(std::chrono::milliseconds time);

// "no news for 14 s; a flash may be silent for minutes, do not unplug": what is to say of a job
// that runs or waits and has shown no change for a while; else empty.
std::string silenceText(const Look& look);

}  // namespace kelvane::console
