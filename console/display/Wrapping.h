// Text fitted to the columns there are. It is displayed text: no character of it steers.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "console/display/DisplayText.h"

namespace kelvane::console {

// The columns that the text takes.
std::size_t columnsOf(const std::string& text);

// The name, in at most `columns` columns: of a longer one the middle gives way to an ellipsis.
std::string shortened(const std::string& name, std::size_t columns, Charset charset);

// The text; of one with more bytes its beginning and how many it has: "5000... (20000000 bytes)".
// No character is cut.
std::string beginningOf(const std::string& text, std::size_t bytes, Charset charset);

// The text in lines of at most `columns` bytes, broken at its blanks; a longer word is cut,
// but no character.
std::vector<std::string> wrapped(const std::string& text, std::size_t columns);

// Lines of text, each wrapped where it is wider than `columns` (0: any width will do); what goes on
// is indented like its line.
std::string fittedLines(const std::string& text, std::size_t columns);

}  // namespace kelvane::console
