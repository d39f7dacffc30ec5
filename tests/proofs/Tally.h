// What a proof has tried, and what deviated.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kelvane::proofs {

struct Tally {
  std::uint64_t points = 0;
  std::uint64_t deviations = 0;
};

using Tell = std::function<void(const std::string& deviation)>;

}  // namespace kelvane::proofs
