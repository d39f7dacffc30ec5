// Text of values, and formats that show them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "platform/Value.h"

namespace kelvane::platform {

// What "%@" shows of a value: a string as it is, a container over several lines, nothing as
// "(null)".
std::string describe(const Value& value);

// The shortest decimal digits that are read back as the same number.
std::string shortestText(double number);

// The pieces between the separators, empty ones too: a list of one at the least.
Value split(std::string_view text, char separator);

// One argument of a format: a value or a text for "%@", a C string for "%s" (null shows as
// "(null)"), a whole number for "%d", "%x", "%ld", "%lu".
using FormatArgument =
    std::variant<Value, std::string_view, const char*, std::int64_t, std::uint64_t>;

// A format with its placeholders filled from the arguments, in order. "%@" is as in describe(), the
// others are C's. In pieces, so that what is a text already is not copied; both the format and the
// arguments must outlive it.
class FilledFormat {
 public:
  // Raises where the format asks for more arguments than there are or for another kind.
  FilledFormat(std::string_view format, std::span<const FormatArgument> arguments);
  FilledFormat(const FilledFormat&) = delete;
  FilledFormat& operator=(const FilledFormat&) = delete;

  const std::vector<std::string_view>& pieces() const { return pieces_; }

 private:
  void add(const std::string& placeholder, const FormatArgument& argument);
  void addMade(std::string&& text);
  void addContainer(const Value& container);

  std::vector<std::string_view> pieces_;
  std::vector<std::string> made_;  // the texts of pieces that are not someone else's
};

// The pieces one behind the other.
std::string joined(const std::vector<std::string_view>& pieces);

// The same as one text.
std::string formatList(std::string_view format, std::span<const FormatArgument> arguments);

// The argument as a format takes it; texts are not copied, and must outlive what is returned.
template <typename T>
FormatArgument formatArgument(const T& argument) {
  if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
    return static_cast<std::int64_t>(argument);
  } else if constexpr (std::is_integral_v<T>) {
    return static_cast<std::uint64_t>(argument);
  } else if constexpr (std::is_convertible_v<T, const char*>) {
    return static_cast<const char*>(argument);
  } else if constexpr (std::is_same_v<T, std::optional<std::string_view>>) {
    return argument ? FormatArgument(*argument) : FormatArgument(Value());
  } else if constexpr (std::is_convertible_v<const T&, std::string_view>) {
    return std::string_view(argument);
  } else {
    return Value(argument);
  }
}

template <typename... Arguments>
std::array<FormatArgument, sizeof...(Arguments)> argumentList(const Arguments&... arguments) {
  return {formatArgument(arguments)...};
}

template <typename... Arguments>
std::string format(std::string_view format, const Arguments&... arguments) {
  return formatList(format, argumentList(arguments...));
}

}  // namespace kelvane::platform
