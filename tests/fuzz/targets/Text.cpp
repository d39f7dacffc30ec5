// "%@" text, formats, and the log's lines made of them.

#include "platform/Text.h"

#include <array>
#include <string>
#include <vector>

#include "log/iLog.h"
#include "platform/Exception.h"
#include "platform/Json.h"
#include "platform/Utf8.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/MemoryDisk.h"
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

Argument takeArgument(Bytes& bytes) {
  Argument argument;
  argument.kind = bytes.pick(6);
  argument.text = bytes.part();
  argument.value = platform::parseJson(argument.text);
  if (argument.value.isNothing() && bytes.flag()) argument.value = argument.text;
  argument.number = std::uint64_t{bytes.word()} << 32U;
  argument.number |= bytes.word();
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

std::string filled(const std::string& format, const std::vector<FormatArgument>& arguments) {
  try {
    return platform::formatList(format, arguments);
  } catch (const platform::Exception& caught) {
    return caught.what();
  }
}

void writeLine(const std::string& format, const std::vector<FormatArgument>& arguments, int level) {
  const test::FakeHost host;
  MemoryDisk disk;
  disk.put("/log", "");
  iLog_host = &host;
  setLogPath("/log");
  bool isRaised = false;
  try {
    iLog_tellList(level, "/a/File.cpp", 7, "-[Kelvane run:]", format.c_str(), arguments);
  } catch (const platform::Exception&) {
    isRaised = true;
  }
  setLogPath("");
  iLog_host = nullptr;
  const std::string line = disk.bytesOf("/log").value_or("");
  require(isRaised == line.empty(), "a line is written, or its reason is raised", line);
  if (isRaised) return;
  const std::string start = "[14:03:07] [File.cpp][7][run][";
  require(line.starts_with(start + _base_level_name(level) + "] ") && line.ends_with('\n') &&
              platform::isUtf8(line) && line.find('\0') == std::string::npos,
          "a line of the log is UTF-8 text behind its fields", line);
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

  const std::string text = fuzz::filled(format, arguments);
  fuzz::requireSame(text, fuzz::filled(format, arguments), "a format shows the same twice");
  for (const fuzz::Argument& one : all) {
    fuzz::requireSame(platform::describe(one.value), platform::format("%@", one.value),
                      "\"%@\" is the description");
  }
  fuzz::writeLine(format, arguments, level);
  return 0;
}
