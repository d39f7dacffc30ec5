#include "tests/docs/Page.h"

#include <stdexcept>

#include "platform/File.h"
#include "platform/Text.h"
#include "platform/Value.h"
#include "tests/support/LogLine.h"

namespace kelvane::docs {

using test::splitLines;

namespace {

// How deep a heading is; 0 for a line that is none.
std::size_t levelOf(const std::string& line) {
  const std::size_t level = line.find_first_not_of('#');
  return level != std::string::npos && level > 0 && line[level] == ' ' ? level : 0;
}

bool isFence(const std::string& line) { return line.rfind("```", 0) == 0; }

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

Row cellsOf(const std::string& line) {
  Row cells;
  std::size_t start = 1;
  for (std::size_t end = line.find('|', start); end != std::string::npos;
       end = line.find('|', start)) {
    cells.push_back(trimmed(line.substr(start, end - start)));
    start = end + 1;
  }
  return cells;
}

bool isRule(const std::string& line) { return line.rfind("|--", 0) == 0; }

}  // namespace

std::string readSource(const std::string& name) {
  return platform::readFile(KELVANE_SOURCES + name);
}

std::string section(const std::string& page, const std::string& heading) {
  std::string found;
  bool isInside = false;
  bool isCode = false;
  for (const std::string& line : splitLines(page)) {
    if (isFence(line)) isCode = !isCode;
    const std::size_t level = isCode ? 0 : levelOf(line);
    if (isInside && level != 0 && level <= levelOf(heading)) return found;
    if (isInside) found += line + "\n";
    if (line == heading) isInside = true;
  }
  if (!isInside) throw std::runtime_error("the page has no heading \"" + heading + "\"");
  return found;
}

std::vector<std::string> codeBlocks(const std::string& text, const std::string& language) {
  std::vector<std::string> blocks;
  std::string opening;
  for (const std::string& line : splitLines(text)) {
    if (isFence(line)) {
      opening = opening.empty() ? line : "";
      if (opening == "```" + language) blocks.emplace_back();
    } else if (opening == "```" + language) {
      blocks.back() += line + "\n";
    }
  }
  return blocks;
}

std::vector<Row> tableRows(const std::string& text) {
  std::vector<Row> rows;
  for (const std::string& line : splitLines(text)) {
    if (isRule(line)) {
      rows.pop_back();  // the line above is the heading
    } else if (line.rfind('|', 0) == 0) {
      rows.push_back(cellsOf(line));
    }
  }
  return rows;
}

std::vector<std::string> namesOf(const std::vector<Row>& rows) {
  std::vector<std::string> names;
  for (const Row& row : rows) {
    const platform::Value pieces = platform::split(row.at(0), '`');
    for (std::size_t i = 1; i < pieces.count(); i += 2) names.push_back(pieces.at(i).string());
  }
  return names;
}

}  // namespace kelvane::docs
