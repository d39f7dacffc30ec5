// The terminal the console runs in: what its output is and can show.
#pragma once

#include <cstddef>
#include <memory>
#include <ostream>

#include "console/display/DisplayText.h"
#include "console/display/Screen.h"
#include "console/job/View.h"

namespace kelvane::console {

// What the user's locale can show; takes that locale over for characters.
Charset charsetOfLocale();

// Standard output, which `out` writes to; takes the user's locale over for characters. Colour only
// in a terminal, and not where the environment has NO_COLOR. The user can be asked where standard
// input is a terminal, too.
Screen screenOfStandardOutput(std::ostream& out, bool json);

// How wide a line of standard error may be; 0 where it is no terminal: as wide as it likes.
std::size_t columnsOfStandardError();

// The view of a followed job on that screen: lines of JSON for machines, bars in a terminal, plain
// lines elsewhere. It writes to the screen's stream.
std::unique_ptr<View> viewOn(const Screen& screen);

}  // namespace kelvane::console
