// The power failing after each change that a program of ours makes to its files: states that
// the disk may then be in are made and looked at.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/proofs/Tally.h"

namespace kelvane::proofs {

// The programs, with what they do.
std::vector<std::string> powerLossNames();

// Fails the power after every `stride`-th change; the points are the disk's states. Raises where
// there is no program of that name.
Tally provePowerLoss(const std::string& name, std::uint64_t stride, const Tell& tell);

}  // namespace kelvane::proofs
