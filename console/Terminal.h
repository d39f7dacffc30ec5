// The terminal the console runs in: what its output is and can show.
#pragma once

#include <memory>
#include <ostream>

#include "console/DisplayText.h"
#include "console/View.h"

namespace kelvane::console {

// What the user's locale can show; takes that locale over for characters.
Charset charsetOfLocale();

// The view for standard output, which `out` writes to: bars in a terminal, plain lines elsewhere.
std::unique_ptr<View> viewOfStandardOutput(std::ostream& out, Charset charset);

}  // namespace kelvane::console
