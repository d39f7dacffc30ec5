#include "tests/fuzz/laws/OutputLaws.h"

#include "tests/fuzz/Law.h"
#include "tests/support/PlainUtf8.h"

namespace kelvane::fuzz {

void requireGathered(const std::string& output, std::optional<std::string_view> text) {
  require(text.has_value() == test::isPlainUtf8(output), "what is UTF-8 is text", output);
  if (text) requireSame(output, *text, "what is written is what is read");
}

// The line takes its message as a C string.
void requireLogged(const std::string& output, const std::string& line) {
  const std::string shown = test::isPlainUtf8(output) ? output : "(null)";
  const std::string end =
      "] execute EngineRunner result = " + shown.substr(0, shown.find('\0')) + "\n";
  require(line.ends_with(end), "the log shows what the engine wrote", line);
}

void requireNotLogged(const std::string& line) {
  require(line.empty(), "of a download's engine nothing is shown", line);
}

}  // namespace kelvane::fuzz
