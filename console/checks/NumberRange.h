// Numbers that JSON allows and that the worker cannot read.
#pragma once

#include <string>

namespace kelvane::console {

// The first number of the JSON text that is beyond the range of a double, with its place: "the
// number 1e400 in line 3, column 12"; empty where there is none before the text's first mistake.
std::string numberOutOfRange(const std::string& text);

}  // namespace kelvane::console
