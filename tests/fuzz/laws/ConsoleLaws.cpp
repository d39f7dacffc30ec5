#include "tests/fuzz/laws/ConsoleLaws.h"

#include <algorithm>
#include <array>
#include <regex>
#include <sstream>
#include <string_view>

#include <expat.h>

#include "console/display/Wrapping.h"
#include "console/job/ExitCode.h"
#include "tests/fuzz/Law.h"
#include "tests/support/PlainJson.h"

namespace kelvane::fuzz {
namespace {

constexpr std::array<std::string_view, 3> kColours = {"\x1b[31m", "\x1b[32m", "\x1b[33m"};
constexpr std::string_view kEndOfColour = "\x1b[0m";

bool isJsonText(const std::string& text) { return test::readPlainJson(text).has_value(); }

// How long the sequence is that may stand there; 0 where none may.
std::size_t sequenceAt(std::string_view text, bool isInColour) {
  if (isInColour) return text.starts_with(kEndOfColour) ? kEndOfColour.size() : 0;
  for (const std::string_view colour : kColours) {
    if (text.starts_with(colour)) return colour.size();
  }
  return 0;
}

}  // namespace

void requireForeseen(int exitCode, const std::string& messages) {
  require(exitCode != console::kInternalError, "no file makes an error of another kind", messages);
}

void requireFitting(const std::string& text, std::size_t columns) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    require(console::columnsOf(line) <= columns, "no line is wider than the screen", line);
  }
}

void requireJson(const std::string& text) {
  if (isJsonText(text)) return;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    require(isJsonText("[" + line + "]"), "what machines get is JSON", line);
  }
}

std::string withoutColours(const std::string& text) {
  std::string plain;
  bool isInColour = false;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = std::min(text.find('\x1b', at), text.size());
    plain.append(text, at, start - at);
    if (start == text.size()) break;
    const std::size_t length = sequenceAt(std::string_view(text).substr(start), isInColour);
    require(length != 0, "a terminal gets no sequences but the console's colours", text);
    isInColour = !isInColour;
    at = start + length;
  }
  require(!isInColour, "a colour ends", text);
  return plain;
}

void requireSameInColour(const std::string& plain, const std::string& coloured, bool isJson) {
  requireSame(plain, isJson ? coloured : withoutColours(coloured), "colours change nothing else");
}

std::string withoutDrawing(const std::string& drawn, std::size_t columns) {
  static constexpr std::string_view kEraseLineEnd = "\x1b[K";
  static const std::regex start("^(\x1b\\[J)?(\r\x1b\\[[0-9]+A)?");
  std::string text;
  std::istringstream lines(drawn);
  for (std::string line; std::getline(lines, line);) {
    line = std::regex_replace(line, start, "", std::regex_constants::format_first_only);
    if (line.ends_with(kEraseLineEnd)) {
      line.erase(line.size() - kEraseLineEnd.size());
      require(console::columnsOf(line) < columns, "no line that is drawn again is full", line);
    }
    text.append(line).append("\n");
  }
  return text;
}

void requirePage(const std::string& page) {
  requireHarmless(page, false, "no file steers whoever looks at a report");
  require(page.find("<script") == std::string::npos, "a report has no script", page);
  const XML_Parser parser = ::XML_ParserCreate("UTF-8");
  const auto status = ::XML_Parse(parser, page.data(), static_cast<int>(page.size()), XML_TRUE);
  ::XML_ParserFree(parser);
  require(status == XML_STATUS_OK, "a report is well-formed", page);
}

}  // namespace kelvane::fuzz
