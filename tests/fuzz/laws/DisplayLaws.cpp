#include "tests/fuzz/laws/DisplayLaws.h"

#include <algorithm>
#include <sstream>

#include "console/display/Wrapping.h"
#include "tests/fuzz/Law.h"
#include "tests/support/PlainUtf8.h"

namespace kelvane::fuzz {
namespace {

std::string without(const char* characters, const std::string& text) {
  std::string rest;
  for (const char character : text) {
    if (std::string(characters).find(character) == std::string::npos) rest += character;
  }
  return rest;
}

// Of the single quotes what is in them, of a backslash what follows.
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
  require(!isInside, "what is quoted ends", quoted);
  return text;
}

}  // namespace

void requireWrapped(const std::string& text, std::size_t columns,
                    const std::vector<std::string>& lines) {
  std::string all;
  for (const std::string& line : lines) {
    require(test::isPlainUtf8(line), "no character is cut", line);
    // One that does not fit by itself stands alone.
    require(line.size() <= columns || console::columnsOf(line) <= 2, "a wrapped line fits", line);
    all += line;
  }
  requireSame(without(" ", text), without(" ", all), "wrapping keeps all but blanks");
}

void requireFitted(const std::string& text, std::size_t columns, const std::string& fitted) {
  std::istringstream lines(fitted);
  for (std::string line; std::getline(lines, line);) {
    const bool hasRoom = std::min(line.find_first_not_of(' '), line.size()) < columns;
    require(!hasRoom || console::columnsOf(line) <= columns ||
                console::columnsOf(without(" ", line)) <= 2,
            "a fitted line fits", line);
  }
  requireSame(without(" \n", text), without(" \n", fitted), "fitting keeps all but blanks");
}

void requireShortened(const std::string& shown, std::size_t columns) {
  require(console::columnsOf(shown) <= columns && test::isPlainUtf8(shown), "a shortened name fits",
          shown);
}

void requireRow(const std::string& line, std::size_t columns, bool isAscii) {
  requireHarmless(line, isAscii, "a table steers nothing");
  require(line.find('\n') == std::string::npos, "a row is one line", line);
  require(console::columnsOf(line) <= columns, "a table fits", line);
}

void requireQuestion(const std::string& question, std::size_t columns, bool isAscii) {
  requireHarmless(question, isAscii, "a question steers nothing");
  if (question.starts_with(' ')) return;  // its indentation may leave it no room
  require(question.ends_with("[y/N] "), "a question ends with what may be answered", question);
  std::istringstream lines(question.substr(0, question.size() - 1));
  for (std::string line; std::getline(lines, line);) {
    require(console::columnsOf(line) <= columns, "a question fits", line);
  }
}

void requireQuoted(const std::string& text, const std::string& quoted) {
  requireSame(text, unquoted(quoted), "a shell reads what was quoted");
}

}  // namespace kelvane::fuzz
