#include "console/display/Paragraphs.h"

#include <algorithm>

#include "console/display/Wrapping.h"

namespace kelvane::console {
namespace {

constexpr std::size_t kIndent = 2;
constexpr std::size_t kHeadGap = 2;
constexpr std::size_t kFewestTextColumns = 16;

std::vector<std::string> linesOf(const std::string& text, std::size_t columns,
                                 const Screen& screen) {
  const std::string safe = displayText(text, screen.charset);
  if (screen.columns == 0) return {safe};
  return wrapped(safe, columns);
}

// Where the texts begin.
std::size_t textColumn(const std::vector<Paragraph>& paragraphs) {
  std::size_t longest = 0;
  for (const Paragraph& paragraph : paragraphs) {
    if (!paragraph.text.empty()) longest = std::max(longest, paragraph.label.size());
  }
  return kIndent + longest + kHeadGap;
}

void showHeading(const Heading& heading, const Screen& screen) {
  std::vector<std::string> lines = linesOf(heading.text, screen.columns, screen);
  if (lines.empty()) return;
  std::string& first = lines.front();
  const std::size_t end = std::min(first.find(':'), first.size());
  first = coloured(first.substr(0, end), heading.colour, screen.colour) + first.substr(end);
  for (const std::string& line : lines) screen.out << line << '\n';
}

// Where the screen has no room beside the label, the text follows it.
void showNarrow(const Paragraph& paragraph, const Screen& screen) {
  for (const std::string& line :
       linesOf(paragraph.label + ": " + paragraph.text, screen.columns, screen)) {
    screen.out << line << '\n';
  }
}

void showBesideLabel(const Paragraph& paragraph, std::size_t column, const Screen& screen) {
  std::string head = std::string(kIndent, ' ') + paragraph.label;
  head.resize(column, ' ');
  for (const std::string& line :
       linesOf(paragraph.text, screen.columns - std::min(screen.columns, column), screen)) {
    screen.out << head << line << '\n';
    head.assign(column, ' ');
  }
}

}  // namespace

void showLines(const std::vector<std::string>& lines, const Screen& screen) {
  for (const std::string& line : lines) {
    for (const std::string& part : linesOf(line, screen.columns, screen)) {
      screen.out << part << '\n';
    }
  }
  screen.out.flush();
}

void showNotice(const std::string& line, bool isApart, const Screen& screen) {
  if (screen.json) return;
  const bool isElsewhere = isApart && screen.notices != nullptr;
  std::ostream& out = isElsewhere ? *screen.notices : screen.out;
  for (const std::string& part : linesOf(line, screen.columns, screen)) out << part << std::endl;
}

void showParagraphs(const Heading& heading, const std::vector<Paragraph>& paragraphs,
                    const Screen& screen) {
  showHeading(heading, screen);
  const std::size_t column = textColumn(paragraphs);
  const bool isNarrow = screen.columns != 0 && screen.columns < column + kFewestTextColumns;
  for (const Paragraph& paragraph : paragraphs) {
    if (paragraph.text.empty()) continue;
    if (isNarrow) {
      showNarrow(paragraph, screen);
    } else {
      showBesideLabel(paragraph, column, screen);
    }
  }
  screen.out.flush();
}

}  // namespace kelvane::console
