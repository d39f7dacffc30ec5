#include "console/display/Colour.h"

#include <cstddef>

#include <fmt/format.h>

namespace kelvane::console {

std::string coloured(const std::string& text, Colour colour, bool showsColours) {
  if (!showsColours) return text;
  const char* const codes[] = {"31", "32", "33"};
  return fmt::format("\x1b[{}m{}\x1b[0m", codes[static_cast<std::size_t>(colour)], text);
}

}  // namespace kelvane::console
