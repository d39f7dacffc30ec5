#include "simulators/support/Number.h"

#include <charconv>
#include <locale>
#include <sstream>

namespace kelvane::simulator {

using platform::Value;

namespace {

constexpr char kHexDigits[] = "0123456789abcdef";
constexpr double kMostSeconds = 1e9;

std::optional<std::uint64_t> digits(std::string_view text, int base, std::uint64_t most) {
  std::uint64_t number = 0;
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number, base);
  if (text.empty() || read.ec != std::errc() || read.ptr != end || number > most) return {};
  return number;
}

}  // namespace

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::string hexText(std::uint64_t number, unsigned digits) {
  std::string text;
  for (; number != 0 || text.size() < digits; number >>= 4U) {
    text.insert(text.begin(), kHexDigits[number & 0xFU]);
  }
  return "0x" + text;
}

std::optional<std::uint64_t> hexNumber(std::string_view text, std::uint64_t most) {
  if (!text.starts_with("0x")) return {};
  return digits(text.substr(2), 16, most);
}

std::optional<std::uint64_t> wholeNumber(const Value& value, std::uint64_t most) {
  if (!value.isNumber()) return {};
  return digits(value.digits(), 10, most);
}

std::optional<std::uint64_t> codeNumber(const Value& value, std::uint64_t most) {
  return value.isString() ? hexNumber(value.string(), most) : wholeNumber(value, most);
}

std::optional<double> seconds(const Value& value) {
  if (!value.isNumber()) return {};
  std::istringstream text(value.digits());
  text.imbue(std::locale::classic());
  double number = -1;
  text >> number;
  if (text.fail() || number < 0 || number > kMostSeconds) return {};
  return number;
}

std::optional<std::string> hexBytes(std::string_view text) {
  if (text.size() % 2 != 0) return {};
  std::string bytes;
  for (; !text.empty(); text.remove_prefix(2)) {
    const std::optional<std::uint64_t> byte = digits(text.substr(0, 2), 16, 0xFF);
    if (!byte) return {};
    bytes.push_back(static_cast<char>(*byte));
  }
  return bytes;
}

std::string hexOfBytes(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text.push_back(kHexDigits[byte >> 4U]);
    text.push_back(kHexDigits[byte & 0xFU]);
  }
  return text;
}

}  // namespace kelvane::simulator
