// A job in words: its state, its result, how long it takes.
#pragma once

#include <chrono>
#include <string>

#include "console/display/DisplayText.h"
#include "console/job/JobStatus.h"
#include "console/job/View.h"

namespace kelvane::console {

// "37%"; "-" where it is not known.
std::string percentText(int percent);

// "job 18: running", "job 18: running, no worker"
std::string jobLine(const JobStatus& status, Charset charset);

// A result as a number: "0", "32852 (0x8054)"; as it was written where it is no status.
std::string resultNumber(const std::string& digits);

// "result 0: no error", "result 32852 (0x8054): the flash failed"
std::string resultLine(const JobStatus& status, Charset charset);

// How far a firmware job's controllers came, in short: "1 done, 5000A1 failed, 2 not started".
// Empty of another job.
std::string progressText(const JobStatus& status);

// "1:05", "1:00:05"
std::string timeText(std::chrono::milliseconds time);

// Of a waiting job without a worker, that there is none, and where one is not to be started, why;
// else empty.
std::string noWorkerText(const Look& look, Charset charset);

// "no news for 14 s; a flash may be silent for minutes, do not unplug": what is to say of a job
// that runs or waits and has shown no change for longer than its pace explains; else empty.
std::string silenceText(const Look& look);

}  // namespace kelvane::console
