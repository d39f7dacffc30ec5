#include "tests/support/PlainText.h"

#include <cctype>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <map>
#include <string_view>

namespace kelvane::test {
namespace {

using platform::Value;

std::string shownDate(platform::Date date) {
  const auto seconds = static_cast<std::time_t>(date.secondsSince1970);
  std::tm time = {};
  ::gmtime_r(&seconds, &time);
  char text[64] = {};
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d +0000", time.tm_year + 1900,
                time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec);
  return text;
}

std::string shownBytes(const std::string& bytes) {
  constexpr char kHexDigits[] = "0123456789abcdef";
  std::string text = "<";
  for (const char byte : bytes) {
    const auto number = static_cast<unsigned char>(byte);
    text += kHexDigits[number / 16];
    text += kHexDigits[number % 16];
  }
  return text + ">";
}

// Of anything but a container.
std::string shownAlone(const Value& value) {
  if (value.isString()) return value.string();
  if (value.isNumber()) return value.digits();
  if (value.kind() == Value::Kind::boolean) return value.truth() ? "1" : "0";
  if (value.kind() == Value::Kind::data) return shownBytes(value.bytes());
  if (value.kind() == Value::Kind::date) return shownDate(value.date());
  return value.isNothing() ? "(null)" : "<null>";
}

// A text of ASCII letters and digits stands bare, any other between quotation marks.
std::string inContainer(const std::string& text) {
  constexpr std::string_view kEscaped = "\"\\\n\r\t";
  constexpr std::string_view kNames = "\"\\nrt";
  std::string quoted;
  bool isBare = !text.empty();
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    isBare = isBare && byte < 0x80 && std::isalnum(byte) != 0;
    const std::size_t found = kEscaped.find(character);
    if (found != kEscaped.npos) quoted += '\\';
    quoted += found == kEscaped.npos ? character : kNames[found];
  }
  return isBare ? text : "\"" + quoted + "\"";
}

void show(std::string& text, const Value& value, std::size_t level) {
  if (!value.isArray() && !value.isDictionary()) {
    text += inContainer(shownAlone(value));
    return;
  }
  const std::string margin(4 * level, ' ');
  text.append(margin).append(value.isArray() ? "(" : "{");
  if (value.isArray()) {
    for (std::size_t i = 0; i < value.count(); ++i) {
      text.append(i == 0 ? "\n" : ",\n").append(margin).append("    ");
      show(text, value.at(i), level + 1);
    }
  } else {
    std::map<std::string, Value> sorted;
    for (const auto& [key, element] : value.entries()) sorted[key] = element;
    for (const auto& [key, element] : sorted) {
      text.append("\n").append(margin).append("    ").append(inContainer(key)).append(" = ");
      show(text, element, level + 1);
      text += ';';
    }
  }
  text.append("\n").append(margin).append(value.isArray() ? ")" : "}");
}

}  // namespace

std::string plainlyShown(const Value& value) {
  if (!value.isArray() && !value.isDictionary()) return shownAlone(value);
  std::string text;
  show(text, value, 0);
  return text;
}

}  // namespace kelvane::test
