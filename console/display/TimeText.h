// How long a job still takes, and how long it took, in words and for machines.
#pragma once

#include <string>
#include <vector>

#include "console/job/Course.h"
#include "console/job/View.h"
#include "platform/Value.h"

namespace kelvane::console {

// The key of what the console adds to a record that it shows.
inline constexpr char kTimesKey[] = "console_times";

// "2:05", of a job whose beginning is not known "watched for 0:12"; empty where no time is known.
std::string jobTimeText(const Look& look);

// "about 3:20 left for 5000A1, 7:40 for the job", "about 0:40 left for the CPLD of 5000A1", of a
// job with one controller "about 3:20 left"; empty where it is not known.
std::string timeLeftText(const Look& look);

// A line each: "5000A1: CPLD 0:12, firmware 1:20".
std::vector<std::string> timeLines(const std::vector<ControllerTimes>& times);

// The look's record for machines: where something is known of the job's times, with an object of
// them below kTimesKey, lengths in seconds.
platform::Value recordWithTimes(const Look& look);

// The phases as a list of objects, as in recordWithTimes().
platform::Value phasesForMachines(const std::vector<ControllerTimes>& times);

}  // namespace kelvane::console
