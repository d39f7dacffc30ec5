// The screen: where a sub-command shows what came out, and how.
#pragma once

#include <cstddef>
#include <istream>
#include <ostream>

#include "console/display/DisplayText.h"

namespace kelvane::console {

struct Screen {
  std::ostream& out;  // not owned
  Charset charset = Charset::ascii;
  std::size_t columns = 0;  // no line may be longer; 0: lines may be as long as they like
  bool colour = false;
  bool json = false;                // for machines
  std::istream* answers = nullptr;  // where the user can be asked; null: nobody can be
  std::ostream* notices = nullptr;  // where others than answers go; not owned; null: to `out`
  int answersFile = -1;             // the same as a descriptor; negative: it has none
};

}  // namespace kelvane::console
