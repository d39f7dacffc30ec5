#include "console/display/Colour.h"

#include <cstddef>

namespace kelvane::console {

std::string coloured(const std::string& text, Colour colour, bool showsColours) {
  if (!showsColours) return text;
  const char* const codes[] = {"31", "32", "33"};
  return std::string("\x1b[") + codes[static_cast<std::size_t>(colour)] + "m" + text + "\x1b[0m";
}

}  // namespace kelvane::console
