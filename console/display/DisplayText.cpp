#include "console/display/DisplayText.h"

#include "console/display/Characters.h"
#include "platform/Utf8.h"

namespace kelvane::console {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

std::string_view shown(std::string_view character, Charset charset) {
  if (charset == Charset::ascii && character.size() > 1) return "?";
  if (!steersTheOutput(decoded(character))) return character;
  return charset == Charset::ascii ? "?" : kReplacement;
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

std::string displayName(std::string_view name) { return displayText(name, Charset::ascii); }

}  // namespace kelvane::console
