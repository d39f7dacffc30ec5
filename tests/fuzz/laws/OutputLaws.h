// What the update engine wrote, and what came of it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelvane::fuzz {

// What was read of it; nothing where it is no UTF-8.
void requireGathered(const std::string& output, std::optional<std::string_view> text);
// The line of the log that shows it.
void requireLogged(const std::string& output, const std::string& line);
// Of a download there is no such line.
void requireNotLogged(const std::string& line);

}  // namespace kelvane::fuzz
