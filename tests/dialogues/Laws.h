// What holds in every dialogue, whatever was answered: a second witness beside the oracle, which
// it judges too.
#pragma once

#include <string>
#include <vector>

namespace kelvane::dialogues {

// The first law that these events break, in words; empty where they keep all.
std::string brokenLaw(const std::vector<std::string>& events);

}  // namespace kelvane::dialogues
