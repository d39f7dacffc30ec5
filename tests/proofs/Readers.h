// The job file as others see it while jobs run.
#pragma once

#include <cstdint>

#include "tests/proofs/Tally.h"
#include "tests/proofs/World.h"

namespace kelvane::proofs {

// Reads the job file without pause, in several threads, while the job is run again and again, until
// there are so many readings, which are the points.
Tally proveReadings(World& world, std::uint64_t readings, const Tell& tell);

// Starts two consoles while a worker runs, so many times: nothing of anybody's is lost.
Tally proveConsoles(World& world, std::uint64_t rounds, const Tell& tell);

}  // namespace kelvane::proofs
