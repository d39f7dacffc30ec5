// Text that is safe to show: whatever a file says, it cannot steer the terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "console/job/View.h"

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

// The name, in at most `columns` columns: of a longer one the middle gives way to an ellipsis.
std::string shortened(const std::string& name, std::size_t columns, Charset charset);

// The text in single quotes, as shells read it: "it's" is 'it'\''s'.
std::string shellQuoted(const std::string& text);

// "job 18: running"
std::string jobLine(const JobStatus& status, Charset charset);

// "result 0: no error"
std::string resultLine(const JobStatus& status, Charset charset);

enum class Colour { red, green, yellow };

// The text in a colour where the output shows colours, as it is where it does not.
std::string coloured(const std::string& text, Colour colour, bool showsColours);

// "1:05", "1:00:05"
std::string timeText(std::chrono::milliseconds time);

// "no news for 14 s; a flash may be silent for minutes, do not unplug": what is to say of a job
// that runs or waits and has shown no change for a while; else empty.
std::string silenceText(const Look& look);

// The columns that displayed text takes.
std::size_t columnsOf(const std::string& text);

// The text in lines of at most `columns` bytes, broken at its blanks; a longer word is cut,
// but no character.
std::vector<std::string> wrapped(const std::string& text, std::size_t columns);

// Lines of text, each wrapped where it is wider than `columns` (0: any width will do); what goes on
// is indented like its line.
std::string fittedLines(const std::string& text, std::size_t columns);

}  // namespace kelvane::console
