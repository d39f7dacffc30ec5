// The worker killed before each of its calls, and before each that changes something of what it has
// started.
#pragma once

#include <cstdint>

#include "tests/proofs/Tally.h"
#include "tests/proofs/World.h"

namespace kelvane::proofs {

// Kills at every `stride`-th point, from the one of that number on.
Tally proveKills(World& world, std::uint64_t stride, std::uint64_t first, const Tell& tell);

}  // namespace kelvane::proofs
