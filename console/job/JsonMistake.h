// Why a text is no JSON that the worker can read.
#pragma once

#include <string>

namespace kelvane::console {

// The text's first mistake with its place, and what was expected there: "line 2, column 7:
// unexpected '}'; expected string literal"; empty where there is none.
std::string jsonMistake(const std::string& text);

// The same of a number that JSON allows and that is beyond the range of a double: "the number 1e400
// in line 3, column 12"; empty where the first mistake is another one.
std::string numberOutOfRange(const std::string& text);

// Why the worker reads nothing from a file with this text, behind the file's path: " is not JSON:
// it is empty". Only of a text that it does read nothing from.
std::string whyNoJson(const std::string& text);

}  // namespace kelvane::console
