// What bytes are as text, what formats show and what the log's lines are, each told again from what
// it is made of.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Text.h"

namespace kelvane::fuzz {

// Whether the bytes were found to be UTF-8, and what was made of them so that they are.
void requireUtf8(std::string_view bytes, bool isFound, std::string_view repaired);

void requireShown(const platform::Value& value, std::string_view shown);

// Of the placeholders that the worker has: "%@", "%s", "%d", "%x", "%u", whole numbers also with an
// "l" and a width. What others show, and numbers that are no numbers of their placeholder, is not
// laid down. `filled` is nothing where the format has raised.
void requireFilled(std::string_view format, const std::vector<platform::FormatArgument>& arguments,
                   const std::optional<std::string>& filled);

// Who writes a line of the log.
struct Caller {
  int level = 0;
  std::string file;
  std::int32_t line = 0;
  std::string function;
};

// At 14:03:07. Without a message, as its format has raised, there is no line.
void requireLine(const Caller& caller, const std::optional<std::string>& message,
                 std::string_view line);

// Where of the five switches one has this value, and the others 1.
void requireSwitched(int level, int which, int value, int found);

}  // namespace kelvane::fuzz
