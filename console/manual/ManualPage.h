// The console's manual page, as man(7) source: what is written by hand, and what is made of the
// table of the sub-commands.
#pragma once

#include <string>

#include "console/command_line/CommandTable.h"

namespace kelvane::console {

// The hand-written page with the parts that are made put in place of the lines `.\" @SYNOPSIS@`,
// `.\" @COMMANDS@`, `.\" @OPTIONS@` and `.\" @ENVIRONMENT@`. Raises std::runtime_error where one of
// them is missing.
std::string manualPage(const std::string& handWritten, const CommandTable& table = commandTable());

// A text as it has to stand in the source to be shown as it is.
std::string asRoff(const std::string& text);

}  // namespace kelvane::console
