#include "console/display/DisplayText.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <sstream>

#include <fmt/format.h>

#include "console/job/JobRecord.h"
#include "platform/Utf8.h"

namespace kelvane::console {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";     // U+2026
constexpr std::string_view kAsciiEllipsis = "...";

bool within(std::uint32_t character, std::uint32_t low, std::uint32_t high) {
  return character >= low && character <= high;
}

// Control characters, and those that take no room or turn the direction of writing.
bool steersTheOutput(std::uint32_t character) {
  return character < 0x20 || within(character, 0x7F, 0x9F) || character == 0xAD ||
         character == 0x61C || within(character, 0x200B, 0x200F) ||
         within(character, 0x2028, 0x202E) || within(character, 0x2060, 0x206F) ||
         character == 0xFEFF;
}

// The bytes of the character that starts the well-formed text.
std::size_t lengthOfFirst(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return 1;
  if (first < 0xE0) return 2;
  return first < 0xF0 ? 3 : 4;
}

std::uint32_t decoded(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  if (character.size() == 1) return first;
  std::uint32_t code = first & (0x7FU >> character.size());
  for (const char byte : character.substr(1)) {
    code = code << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
  }
  return code;
}

// The start of the character that stands at this byte, so that none is cut; of the first character
// its end, as a line has to hold something.
std::size_t characterStart(const std::string& text, std::size_t byte) {
  const auto continues = [&text](std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80;
  };
  std::size_t start = byte;
  while (start > 0 && continues(start)) --start;
  return start > 0 ? start : lengthOfFirst(text);
}

std::string_view shown(std::string_view character, Charset charset) {
  if (charset == Charset::ascii && character.size() > 1) return "?";
  if (!steersTheOutput(decoded(character))) return character;
  return charset == Charset::ascii ? "?" : kReplacement;
}

std::string stateText(const std::string& state, Charset charset) {
  if (state == job::kWait) return "waiting";
  if (state == job::kRun) return "running";
  if (state == job::kFree) return "finished";
  return displayText(state, charset);
}

constexpr std::chrono::seconds kLongSilence(10);

}  // namespace

std::string displayText(std::string_view text, Charset charset) {
  const std::string repaired = platform::repairedUtf8(text);
  std::string safe;
  for (std::string_view rest = repaired; !rest.empty();) {
    const std::string_view character = rest.substr(0, lengthOfFirst(rest));
    safe += shown(character, charset);
    rest.remove_prefix(character.size());
  }
  return safe;
}

std::string displayLines(std::string_view text, Charset charset) {
  std::string lines;
  for (;;) {
    const std::size_t end = text.find('\n');
    lines += displayText(text.substr(0, end), charset);
    if (end == std::string_view::npos) return lines;
    lines += '\n';
    text.remove_prefix(end + 1);
  }
}

std::string coloured(const std::string& text, Colour colour, bool showsColours) {
  if (!showsColours) return text;
  const char* const codes[] = {"31", "32", "33"};
  return fmt::format("\x1b[{}m{}\x1b[0m", codes[static_cast<std::size_t>(colour)], text);
}

std::string displayName(std::string_view name) { return displayText(name, Charset::ascii); }

std::string shortened(const std::string& name, std::size_t columns, Charset charset) {
  if (name.size() <= columns) return name;
  const bool inAscii = charset == Charset::ascii;
  const std::size_t ellipsisColumns = inAscii ? kAsciiEllipsis.size() : 1;
  if (columns <= ellipsisColumns) return name.substr(0, columns);
  const std::size_t kept = columns - ellipsisColumns;
  const std::size_t tail = kept / 2;
  std::string text = name.substr(0, kept - tail);
  text += inAscii ? kAsciiEllipsis : kEllipsis;
  return text + name.substr(name.size() - tail);
}

std::string shellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char character : text) {
    if (character == '\'') quoted += "'\\'";
    quoted += character;
  }
  return quoted + "'";
}

std::string jobLine(const JobStatus& status, Charset charset) {
  return "job " + displayText(status.logId, charset) + ": " + stateText(status.state, charset);
}

std::string resultLine(const JobStatus& status, Charset charset) {
  const std::string result = status.result.empty() ? "missing" : status.result;
  return "result " + result + ": " + displayText(status.resultText, charset);
}

std::string timeText(std::chrono::milliseconds time) {
  const auto all = std::chrono::duration_cast<std::chrono::seconds>(time).count();
  const auto hours = all / 3600;
  const auto minutes = all / 60 % 60;
  if (hours == 0) return fmt::format("{}:{:02}", minutes, all % 60);
  return fmt::format("{}:{:02}:{:02}", hours, minutes, all % 60);
}

std::string silenceText(const Look& look) {
  if (look.silence < kLongSilence || look.status.isFinished()) return {};
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(look.silence).count();
  const bool flashes = look.status.state == job::kRun && look.status.command == job::kUpdateFW;
  return fmt::format("no news for {} s{}", seconds,
                     flashes ? "; a flash may be silent for minutes, do not unplug" : "");
}

std::size_t columnsOf(const std::string& text) {
  std::size_t columns = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view character = rest.substr(0, lengthOfFirst(rest));
    const int width = ::wcwidth(static_cast<wchar_t>(decoded(character)));
    columns += width < 0 ? 1 : static_cast<std::size_t>(width);
    rest.remove_prefix(character.size());
  }
  return columns;
}

std::vector<std::string> wrapped(const std::string& text, std::size_t columns) {
  std::vector<std::string> lines;
  for (std::string rest = text; !rest.empty();) {
    std::size_t end = rest.size();
    if (end > columns) {
      const std::size_t blank = rest.rfind(' ', columns);
      end = blank == std::string::npos || blank == 0 ? characterStart(rest, columns) : blank;
    }
    lines.push_back(rest.substr(0, end));
    rest.erase(0, std::min(rest.find_first_not_of(' ', end), rest.size()));
  }
  return lines;
}

std::string fittedLines(const std::string& text, std::size_t columns) {
  std::istringstream lines(text);
  std::string fitted;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t blanks = std::min(line.find_first_not_of(' '), line.size());
    if (columns == 0 || columnsOf(line) <= columns || blanks >= columns) {
      fitted += line + '\n';
      continue;
    }
    for (const std::string& part : wrapped(line.substr(blanks), columns - blanks)) {
      fitted += std::string(blanks, ' ') + part + '\n';
    }
  }
  return fitted;
}

}  // namespace kelvane::console
