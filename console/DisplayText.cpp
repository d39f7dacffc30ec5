#include "console/DisplayText.h"

#include <cstdint>

#include "console/JobRecord.h"
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

std::string jobLine(const JobStatus& status, Charset charset) {
  return "job " + displayText(status.logId, charset) + ": " + stateText(status.state, charset);
}

std::string resultLine(const JobStatus& status, Charset charset) {
  const std::string result = status.result.empty() ? "missing" : status.result;
  return "result " + result + ": " + displayText(status.resultText, charset);
}

}  // namespace kelvane::console
