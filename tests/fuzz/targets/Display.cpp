// Text for people: safe, fitted to the columns, and still the same text.

#include <clocale>
#include <sstream>
#include <string>

#include "console/display/DisplayText.h"
#include "console/display/Question.h"
#include "console/display/ShellQuoting.h"
#include "console/display/Table.h"
#include "console/display/Wrapping.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/laws/DisplayLaws.h"

namespace kelvane::fuzz {
namespace {

using console::Charset;

void tabulate(const std::string& text, std::size_t columns, Charset charset) {
  console::Table table({{"First"}, {"Second", true}, {"Third"}});
  table.addRow({text, "1", text.substr(0, text.size() / 2)});
  table.addRow({"", text, ""});
  for (const std::string& line : table.lines(columns, charset)) {
    requireRow(line, columns, charset == Charset::ascii);
  }
}

void ask(const std::string& text, std::size_t columns, Charset charset) {
  std::ostringstream out;
  console::showQuestion(text, {out, charset, columns});
  requireQuestion(out.str(), columns, charset == Charset::ascii);
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  static const bool hasLocale = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
  fuzz::require(hasLocale, "widths of characters are known");
  fuzz::Bytes bytes(data, size);
  const std::size_t columns = 20 + bytes.pick(181);
  const auto charset = bytes.flag() ? fuzz::Charset::ascii : fuzz::Charset::utf8;
  const std::string text = bytes.rest();
  const std::string shown = console::displayText(text, charset);
  const std::string lines = console::displayLines(text, charset);
  fuzz::requireHarmless(shown, charset == fuzz::Charset::ascii, "what is shown steers nothing");
  fuzz::require(shown.find('\n') == std::string::npos, "what is shown is one line", shown);
  fuzz::requireSame(shown, console::displayText(shown, charset), "what is safe stays as it is");
  fuzz::requireHarmless(lines, charset == fuzz::Charset::ascii, "what is shown steers nothing");
  fuzz::requireWrapped(shown, columns, console::wrapped(shown, columns));
  fuzz::requireFitted(lines, columns, console::fittedLines(lines, columns));
  const std::string name = console::displayName(text);
  fuzz::requireShortened(console::shortened(name, columns, charset), columns);
  fuzz::tabulate(text, columns, charset);
  fuzz::ask(text, columns, charset);
  if (text.find('\0') == std::string::npos) {
    fuzz::requireQuoted(text, console::shellQuoted(text));
  }
  return 0;
}
