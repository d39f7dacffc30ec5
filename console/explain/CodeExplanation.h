// The explanation of a result by its number.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "console/explain/Explanation.h"

namespace kelvane::console {

// A bare number: one explanation, or several where it means something else in each command.
std::vector<Explanation> explainCode(std::int64_t code);

// As the result of a job with this command; `text` is its "resultStr".
Explanation explainResult(std::int64_t code, const std::string& command, const std::string& text);

// Whether any command is known to end with it; other numbers are statuses of the framework's own.
bool isKnownCode(std::int64_t code);

}  // namespace kelvane::console
