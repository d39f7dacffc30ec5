// The worker while the system fails it: each call that can fail does so once, and from then on; and
// so does each request for memory.
#pragma once

#include <cstdint>

#include "tests/proofs/Tally.h"
#include "tests/proofs/World.h"

namespace kelvane::proofs {

// Every `stride`-th failure, from the one of that number on.
Tally proveCalls(World& world, std::uint64_t stride, std::uint64_t first, const Tell& tell);
Tally proveMemory(World& world, std::uint64_t stride, std::uint64_t first, const Tell& tell);

}  // namespace kelvane::proofs
