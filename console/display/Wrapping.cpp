#include "console/display/Wrapping.h"

#include <algorithm>
#include <cwchar>
#include <sstream>
#include <string_view>

#include "console/display/Characters.h"

namespace kelvane::console {
namespace {

constexpr std::string_view kEllipsis = "\xE2\x80\xA6";  // U+2026
constexpr std::string_view kAsciiEllipsis = "...";

std::string_view ellipsis(Charset charset) {
  return charset == Charset::ascii ? kAsciiEllipsis : kEllipsis;
}

// The start of the character that stands at this byte, so that none is cut; of the first character
// its end, as a line has to hold something.
std::size_t characterStart(std::string_view text, std::size_t byte) {
  const auto continues = [text](std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80;
  };
  std::size_t start = byte;
  while (start > 0 && continues(start)) --start;
  return start > 0 ? start : lengthOfFirst(text);
}

}  // namespace

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

std::string shortened(const std::string& name, std::size_t columns, Charset charset) {
  if (name.size() <= columns) return name;
  const std::size_t ellipsisColumns = charset == Charset::ascii ? kAsciiEllipsis.size() : 1;
  if (columns <= ellipsisColumns) return name.substr(0, columns);
  const std::size_t kept = columns - ellipsisColumns;
  const std::size_t tail = kept / 2;
  std::string text = name.substr(0, kept - tail);
  text += ellipsis(charset);
  return text + name.substr(name.size() - tail);
}

std::string beginningOf(const std::string& text, std::size_t bytes, Charset charset) {
  if (text.size() <= bytes) return text;
  std::string beginning = text.substr(0, characterStart(text, bytes));
  beginning += ellipsis(charset);
  return beginning.append(" (").append(std::to_string(text.size())).append(" bytes)");
}

std::vector<std::string> wrapped(const std::string& text, std::size_t columns) {
  std::vector<std::string> lines;
  for (std::string_view rest = text; !rest.empty();) {
    std::size_t end = rest.size();
    if (end > columns) {
      const std::size_t blank = rest.rfind(' ', columns);
      end = blank == std::string_view::npos || blank == 0 ? characterStart(rest, columns) : blank;
    }
    lines.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(rest.find_first_not_of(' ', end), rest.size()));
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
