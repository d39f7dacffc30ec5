// The worker with job files of a size that nobody meant.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/proofs/Tally.h"
#include "tests/proofs/World.h"

namespace kelvane::proofs {

// The scenarios that can be tried: firmware jobs write the job file again and again.
std::vector<std::string> sizeNames();

// The scenario's job beside a record of so many bytes. The world has no log, as it would hold many
// times as much. One point.
Tally proveSize(World& world, std::size_t bytes, const Tell& tell);

}  // namespace kelvane::proofs
