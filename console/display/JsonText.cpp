#include "console/display/JsonText.h"

#include <string_view>

#include "console/display/Characters.h"
#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::console {
namespace {

// The characters that steer stand in strings, line feeds aside, which stand between the pieces.
std::string escaped(std::string_view json) {
  std::string text;
  text.reserve(json.size());
  while (!json.empty()) {
    const std::string_view character = json.substr(0, lengthOfFirst(json));
    const std::uint32_t number = decoded(character);
    if (steersTheOutput(number) && number != '\n') {
      text += platform::format("\\u%04x", number);
    } else {
      text += character;
    }
    json.remove_prefix(character.size());
  }
  return text;
}

}  // namespace

std::string jsonText(const platform::Value& value) {
  return escaped(platform::printJson(value).value_or("null"));
}

std::string jsonLine(const platform::Value& value) {
  return escaped(platform::printJsonLine(value).value_or("null"));
}

}  // namespace kelvane::console
