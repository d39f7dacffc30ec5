#include "tests/fuzz/laws/TextLaws.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <variant>

#include "tests/fuzz/Law.h"
#include "tests/fuzz/laws/NameLaws.h"
#include "tests/support/PlainText.h"
#include "tests/support/PlainUtf8.h"

namespace kelvane::fuzz {
namespace {

using platform::FormatArgument;
using platform::Value;

// "%4ld" has the width 4 and the conversion "d"; the conversion of one that is not known is 0.
struct Placeholder {
  std::size_t width = 0;
  char conversion = 0;
};

// Takes it off the front of the format.
Placeholder takePlaceholder(std::string_view& format) {
  Placeholder taken;
  format.remove_prefix(1);
  const auto next = [&format] { return format.empty() ? '\0' : format.front(); };
  const char first = next();
  const bool isBare = first < '1' || first > '9';
  while (next() >= (taken.width == 0 ? '1' : '0') && next() <= '9') {
    taken.width = 10 * taken.width + static_cast<std::size_t>(next() - '0');
    format.remove_prefix(1);
  }
  const bool isLong = next() == 'l';
  if (isLong) format.remove_prefix(1);
  const std::string_view known = isBare && !isLong ? "%@sdxu" : "dxu";
  if (next() != '\0' && known.find(next()) != known.npos) taken.conversion = next();
  return taken;
}

// What stands at a placeholder.
struct Shown {
  enum class Kind { text, raised, unknown };
  Kind kind = Kind::unknown;
  std::string text = {};
};

Shown text(std::string_view shown) { return {Shown::Kind::text, std::string(shown)}; }
Shown raised() { return {Shown::Kind::raised}; }

Shown number(const Placeholder& placeholder, std::uint64_t size, bool isNegative) {
  const bool isSigned = placeholder.conversion == 'd';
  const bool fits =
      isSigned ? isNegative || size <= std::numeric_limits<std::int64_t>::max() : !isNegative;
  if (!fits) return {};
  char digits[32] = {};
  const int base = placeholder.conversion == 'x' ? 16 : 10;
  const auto end = std::to_chars(digits, digits + sizeof digits, size, base).ptr;
  std::string shown = isNegative ? "-" : "";
  shown.append(digits, end);
  if (shown.size() < placeholder.width) shown.insert(0, placeholder.width - shown.size(), ' ');
  return text(shown);
}

Shown shownAt(const Placeholder& placeholder, const FormatArgument& argument) {
  const char conversion = placeholder.conversion;
  const auto* const value = std::get_if<Value>(&argument);
  const auto* const view = std::get_if<std::string_view>(&argument);
  if (value != nullptr) return conversion == '@' ? text(test::plainlyShown(*value)) : raised();
  if (view != nullptr) return conversion == '@' ? text(*view) : raised();
  if (const auto* const cText = std::get_if<const char*>(&argument)) {
    if (conversion != '@' && conversion != 's') return raised();
    return text(*cText == nullptr ? "(null)" : *cText);
  }
  if (conversion == '@' || conversion == 's') return raised();
  const auto* const whole = std::get_if<std::uint64_t>(&argument);
  if (whole != nullptr) return number(placeholder, *whole, false);
  const std::int64_t given = std::get<std::int64_t>(argument);
  const auto bits = static_cast<std::uint64_t>(given);
  return number(placeholder, given < 0 ? 0 - bits : bits, given < 0);
}

Shown shownBy(std::string_view format, const std::vector<FormatArgument>& arguments) {
  Shown all = text("");
  std::size_t used = 0;
  while (!format.empty()) {
    const std::size_t plain = std::min(format.find('%'), format.size());
    all.text += format.substr(0, plain);
    format.remove_prefix(plain);
    if (format.empty()) break;
    const Placeholder placeholder = takePlaceholder(format);
    if (placeholder.conversion == 0) return {};
    format.remove_prefix(1);
    if (placeholder.conversion == '%') {
      all.text += '%';
      continue;
    }
    if (used == arguments.size()) return raised();
    const Shown one = shownAt(placeholder, arguments[used++]);
    if (one.kind != Shown::Kind::text) return one;
    all.text += one.text;
  }
  return all;
}

// Any other is one of debugging.
int knownLevel(int level) { return level >= 1 && level <= 4 ? level : 0; }

}  // namespace

void requireUtf8(std::string_view bytes, bool isFound, std::string_view repaired) {
  require(isFound == test::isPlainUtf8(bytes), "UTF-8 is told from what is none", bytes);
  requireSame(test::plainlyRepaired(bytes), repaired, "what is no UTF-8 is repaired");
}

void requireShown(const Value& value, std::string_view shown) {
  requireSame(test::plainlyShown(value), shown, "\"%@\" shows what a value is");
}

void requireFilled(std::string_view format, const std::vector<FormatArgument>& arguments,
                   const std::optional<std::string>& filled) {
  const Shown expected = shownBy(format, arguments);
  if (expected.kind == Shown::Kind::unknown) return;
  require(filled.has_value() == (expected.kind == Shown::Kind::text),
          "a format raises where its arguments do not fit", format);
  if (filled) requireSame(expected.text, *filled, "a format shows its arguments");
}

void requireLine(const Caller& caller, const std::optional<std::string>& message,
                 std::string_view line) {
  if (!message) return require(line.empty(), "without its message no line is written", line);
  const char* const levels[] = {"debug", "info", "warning", "error", "critical"};
  std::string expected = "[14:03:07] [" + plainFile(caller.file) + "][";
  expected += std::to_string(caller.line) + "][" + plainFunction(caller.function) + "][";
  expected += levels[knownLevel(caller.level)];
  expected += "] " + message->substr(0, message->find('\0')) + "\n";
  requireSame(test::plainlyRepaired(expected), line, "a line of the log has its fields and text");
}

void requireSwitched(int level, int which, int value, int found) {
  const bool isOn = knownLevel(level) != which || value == 1;
  require(found == (isOn ? 1 : 0), "a level is written where its switch is 1",
          std::to_string(level));
}

}  // namespace kelvane::fuzz
