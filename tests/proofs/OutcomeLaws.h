// What holds of a job's outcome, whatever has failed it.
#pragma once

#include <cstddef>
#include <string>

#include "tests/proofs/JobWatcher.h"
#include "tests/proofs/World.h"

namespace kelvane::proofs {

// What is wrong with a version of the job file; empty where nothing is.
std::string faultOfVersion(const std::string& text);

// Whoever tells of a success has had one: a query's output is the undisturbed one's, what a
// download tells of is there, the firmware is the new one, but where the simulated framework has
// said that it could not keep it. Empty where that is so.
std::string faultOfSuccess(const World& world, const Baseline& baseline, const std::string& said);

// The "state_id" of the job's record.
std::string stateOf(const World& world);

// How many lines of the log tell of an error.
std::size_t errorsIn(const std::string& log);

}  // namespace kelvane::proofs
