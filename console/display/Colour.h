// Colour on the screen.
#pragma once

#include <string>

namespace kelvane::console {

enum class Colour { red, green, yellow };

// The text in a colour where the output shows colours, as it is where it does not.
std::string coloured(const std::string& text, Colour colour, bool showsColours);

}  // namespace kelvane::console
