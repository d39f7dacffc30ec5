// The simulated controllers' fleet file: how a flash goes, and what one leaves in the file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "simulators/controllers/Fleet.h"
#include "simulators/controllers/Timeline.h"

namespace kelvane::fuzz {

// What a flash shows at moments that follow one another.
void requireCourse(const std::vector<simulator::Reading>& readings);

// The fleet in which the first controller has got this version, as it was read of `text`; nothing
// where it could not be read.
void requireFlashed(const simulator::Fleet& before, const std::string& version,
                    const std::optional<simulator::Fleet>& after, const std::string& text);

// The file as it was, and after the first controller has got its version again.
void requireKept(const std::string& before, const std::string& after);

}  // namespace kelvane::fuzz
