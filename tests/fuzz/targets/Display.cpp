// Text for people: safe, fitted to the columns, and still the same text.

#include <clocale>
#include <sstream>
#include <string>
#include <vector>

#include "console/display/DisplayText.h"
#include "console/display/Question.h"
#include "console/display/ShellQuoting.h"
#include "console/display/Table.h"
#include "console/display/Wrapping.h"
#include "platform/Utf8.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"

namespace kelvane::fuzz {
namespace {

using console::Charset;

std::string withoutBlanks(std::string text) {
  std::erase(text, ' ');
  return text;
}

void wrap(const std::string& text, std::size_t columns) {
  std::string all;
  for (const std::string& line : console::wrapped(text, columns)) {
    require(platform::isUtf8(line), "no character is cut", line);
    // One that does not fit by itself stands alone.
    require(line.size() <= columns || console::columnsOf(line) <= 2, "a wrapped line fits", line);
    all += line;
  }
  requireSame(withoutBlanks(text), withoutBlanks(all), "wrapping keeps all but blanks");
}

void fit(const std::string& text, std::size_t columns) {
  std::string all;
  for (const char character : console::fittedLines(text, columns)) {
    if (character != '\n') all += character;
  }
  std::string expected = text;
  std::erase(expected, '\n');
  requireSame(withoutBlanks(expected), withoutBlanks(all), "fitting keeps all but blanks");
}

void shorten(const std::string& text, std::size_t columns, Charset charset) {
  const std::string name = console::displayName(text);
  const std::string shown = console::shortened(name, columns, charset);
  require(console::columnsOf(shown) <= columns && platform::isUtf8(shown), "a shortened name fits",
          shown);
}

void tabulate(const std::string& text, std::size_t columns, Charset charset) {
  console::Table table({{"First"}, {"Second", true}, {"Third"}});
  table.addRow({text, "1", text.substr(0, text.size() / 2)});
  table.addRow({"", text, ""});
  for (const std::string& line : table.lines(columns, charset)) {
    requireHarmless(line, charset == Charset::ascii, "a table steers nothing");
    require(line.find('\n') == std::string::npos, "a row is one line", line);
    require(console::columnsOf(line) <= columns, "a table fits", line);
  }
}

// In a terminal; the answer is typed behind it.
void ask(const std::string& text, std::size_t columns, Charset charset) {
  std::ostringstream out;
  console::showQuestion(text, {out, charset, columns});
  const std::string question = out.str();
  requireHarmless(question, charset == Charset::ascii, "a question steers nothing");
  if (question.starts_with(' ')) return;  // its indentation may leave it no room
  require(question.ends_with("[y/N] "), "a question ends with what may be answered", question);
  std::istringstream lines(question.substr(0, question.size() - 1));
  for (std::string line; std::getline(lines, line);) {
    require(console::columnsOf(line) <= columns, "a question fits", line);
  }
}

// What a shell makes of it: of the single quotes what is in them, of a backslash what follows.
std::string unquoted(const std::string& quoted) {
  std::string text;
  bool isInside = false;
  for (std::size_t i = 0; i < quoted.size(); ++i) {
    if (quoted[i] == '\'') {
      isInside = !isInside;
    } else if (!isInside && quoted[i] == '\\') {
      text += quoted[++i];
    } else {
      require(isInside, "everything is quoted", quoted);
      text += quoted[i];
    }
  }
  return text;
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
  fuzz::wrap(shown, columns);
  fuzz::fit(lines, columns);
  fuzz::shorten(text, columns, charset);
  fuzz::tabulate(text, columns, charset);
  fuzz::ask(text, columns, charset);
  if (text.find('\0') == std::string::npos) {
    fuzz::requireSame(text, fuzz::unquoted(console::shellQuoted(text)),
                      "a shell reads what was quoted");
  }
  return 0;
}
