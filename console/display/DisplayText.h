// Text that is safe to show: whatever a file says, it cannot steer the terminal.
#pragma once

#include <string>
#include <string_view>

namespace kelvane::console {

// The characters that the output can show.
enum class Charset { ascii, utf8 };

// The text on one line: every control character, invisible or direction-changing ones included,
// becomes a replacement character, as does what the output cannot show.
std::string displayText(std::string_view text, Charset charset);

// The same over several lines: line feeds stay.
std::string displayLines(std::string_view text, Charset charset);

// A name, such as a WWN, in printable ASCII: as many columns as bytes.
std::string displayName(std::string_view name);

}  // namespace kelvane::console
