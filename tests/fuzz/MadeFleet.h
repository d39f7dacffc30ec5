// Fleet files made of bytes, with what has to be read of them; and what is in a fleet, told in
// lines.
#pragma once

#include <string>

#include "simulators/controllers/Fleet.h"
#include "tests/fuzz/Bytes.h"

namespace kelvane::fuzz {

struct MadeFleet {
  std::string text;
  simulator::Fleet fleet;
};
MadeFleet madeFleet(Bytes& bytes);

std::string toldFleet(const simulator::Fleet& fleet);

}  // namespace kelvane::fuzz
