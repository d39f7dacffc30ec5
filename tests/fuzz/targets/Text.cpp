// UTF-8, "%@" text, formats, and the log's lines made of them.

#include "platform/Text.h"

#include <optional>
#include <string>
#include <vector>

#include "log/iLog.h"
#include "platform/Exception.h"
#include "platform/Json.h"
#include "platform/Utf8.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/MemoryDisk.h"
#include "tests/fuzz/laws/TextLaws.h"
#include "tests/support/FakeHost.h"

namespace kelvane::fuzz {
namespace {

using platform::FormatArgument;
using platform::Value;

// What an argument may show, alive as long as it is shown.
struct Argument {
  std::string text;
  Value value;
  unsigned kind = 0;
  std::uint64_t number = 0;

  FormatArgument forFormat() const {
    switch (kind) {
      case 0:
        return value;
      case 1:
        return std::string_view(text);
      case 2:
        return text.c_str();
      case 3:
        return static_cast<const char*>(nullptr);
      case 4:
        return number;
      default:
        return static_cast<std::int64_t>(number);
    }
  }
};

// What is not JSON stands as text, data, a date, both within one another, or for nothing.
Value otherValue(const Argument& argument, unsigned choice) {
  const platform::Date date{static_cast<std::int32_t>(argument.number)};
  if (choice % 2 == 1) return argument.text;
  if (choice % 8 == 2) return Value::data(argument.text);
  if (choice % 8 == 4) return date;
  if (choice % 8 == 0) return {};
  const Value both = Value::dictionary({{"at", date}, {argument.text, Value::data(argument.text)}});
  return Value::array({argument.text, both});
}

Argument takeArgument(Bytes& bytes) {
  Argument argument;
  argument.kind = bytes.pick(6);
  argument.text = bytes.part();
  argument.value = platform::parseJson(argument.text);
  const unsigned choice = argument.value.isNothing() ? bytes.byte() : 0;
  argument.number = std::uint64_t{bytes.word()} << 32U;
  argument.number |= bytes.word();
  if (argument.value.isNothing()) argument.value = otherValue(argument, choice);
  return argument;
}

// Formats are the worker's own: none asks for thousands of columns.
bool asksForMuchRoom(const std::string& format) {
  std::size_t digits = 0;
  for (const char character : format) {
    digits = character >= '0' && character <= '9' ? digits + 1 : 0;
    if (digits > 3) return true;
  }
  return false;
}

// Nothing where it raises.
std::optional<std::string> filled(const std::string& format,
                                  const std::vector<FormatArgument>& arguments) {
  try {
    return platform::formatList(format, arguments);
  } catch (const platform::Exception&) {
    return std::nullopt;
  }
}

std::string lineBy(const Caller& caller, const std::string& format,
                   const std::vector<FormatArgument>& arguments) {
  const test::FakeHost host;
  MemoryDisk disk;
  disk.put("/log", "");
  iLog_host = &host;
  setLogPath("/log");
  try {
    iLog_tellList(caller.level, caller.file.c_str(), caller.line, caller.function.c_str(),
                  format.c_str(), arguments);
  } catch (const platform::Exception&) {
    require(disk.bytesOf("/log") == "", "what raises writes nothing");
  }
  setLogPath("");
  iLog_host = nullptr;
  return disk.bytesOf("/log").value_or("(gone)");
}

std::string asC(const std::string& text) { return text.substr(0, text.find('\0')); }

// What the arguments hold serves for the caller as well.
Caller callerOf(int level, const std::vector<Argument>& all) {
  if (all.empty()) return {.level = level, .file = "", .line = 0, .function = ""};
  return {.level = level,
          .file = asC(all.front().text),
          .line = static_cast<std::int32_t>(all.back().number),
          .function = asC(all.back().text)};
}

void judgeUtf8(const std::string& bytes) {
  requireUtf8(bytes, platform::isUtf8(bytes), platform::repairedUtf8(bytes));
}

void trySwitches(int level) {
  std::uint8_t* const switches[] = {&iLog_enable_debug, &iLog_enable_info, &iLog_enable_warning,
                                    &iLog_enable_error, &iLog_enable_critical};
  for (int which = 0; which < 5; ++which) {
    for (const int value : {0, 2, 255, 1}) {  // and stays 1
      *switches[which] = static_cast<std::uint8_t>(value);
      requireSwitched(level, which, value, _check_level(level));
    }
  }
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::Bytes bytes(data, size);
  const int level = static_cast<int>(bytes.byte()) - 8;
  const std::string format = bytes.part();
  if (fuzz::asksForMuchRoom(format)) return 0;
  std::vector<fuzz::Argument> all;
  while (!bytes.isEmpty() && all.size() < 8) all.push_back(fuzz::takeArgument(bytes));
  std::vector<platform::FormatArgument> arguments;
  for (const fuzz::Argument& one : all) arguments.push_back(one.forFormat());

  fuzz::judgeUtf8(std::string(reinterpret_cast<const char*>(data), size));
  fuzz::requireFilled(format, arguments, fuzz::filled(format, arguments));
  for (const fuzz::Argument& one : all) {
    fuzz::judgeUtf8(one.text);
    fuzz::requireShown(one.value, platform::describe(one.value));
    fuzz::requireShown(one.value, platform::format("%@", one.value));
  }
  const fuzz::Caller caller = fuzz::callerOf(level, all);
  const std::string cText = fuzz::asC(format);
  fuzz::requireLine(caller, fuzz::filled(cText, arguments), fuzz::lineBy(caller, cText, arguments));
  fuzz::trySwitches(level);
  return 0;
}
