#include "console/display/Table.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <utility>

#include "console/display/Wrapping.h"

namespace kelvane::console {
namespace {

using Row = std::vector<std::string>;

constexpr std::size_t kColumnGap = 2;
constexpr std::size_t kMostCellLines = 10;
constexpr std::size_t kFewestLastColumns = 20;  // that a text is wrapped in beside other cells
constexpr std::size_t kLongestWord = 12;        // a cell without text is no wider
constexpr std::size_t kIndentBelow = 4;

std::string padding(const std::string& text, std::size_t columns) {
  return std::string(columns - std::min(columns, columnsOf(text)), ' ');
}

std::vector<Row> displayed(const std::vector<Row>& rows, Charset charset) {
  std::vector<Row> all;
  for (const Row& row : rows) {
    Row shown;
    for (const std::string& cell : row) shown.push_back(displayText(cell, charset));
    all.push_back(std::move(shown));
  }
  return all;
}

std::string lineOf(const Row& row, const std::vector<Column>& columns,
                   const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i > 0) line.append(kColumnGap, ' ');
    const std::string blanks = padding(row[i], widths[i]);
    line += columns[i].toTheRight ? blanks + row[i] : row[i] + blanks;
  }
  return line.substr(0, line.find_last_not_of(' ') + 1);
}

std::vector<std::size_t> widthsOf(const Row& titles, const std::vector<Row>& rows) {
  std::vector<std::size_t> widths(titles.size());
  for (std::size_t i = 0; i < titles.size(); ++i) {
    widths[i] = columnsOf(titles[i]);
    for (const Row& row : rows) widths[i] = std::max(widths[i], columnsOf(row[i]));
  }
  return widths;
}

// Cells of several bytes a character are cut as they are: displayName has one column a byte.
std::string fitted(const std::string& text, std::size_t columns, Charset charset) {
  return columnsOf(text) <= columns ? text : shortened(displayName(text), columns, charset);
}

std::size_t widestWordOf(const std::string& text) {
  std::size_t widest = 0;
  std::istringstream words(text);
  for (std::string word; words >> word;) widest = std::max(widest, columnsOf(word));
  return widest;
}

// The cell in lines of so many columns; of an endless one the middle is left out.
std::vector<std::string> cellLines(const std::string& cell, std::size_t room, Charset charset) {
  return wrapped(fitted(cell, room * kMostCellLines, charset), room);
}

// A cell behind its title, which `titleWidth` columns are for; where a word of it has no room
// there, such as a WWN, which is to be read and copied whole, below the title.
void appendCell(const std::string& title, std::size_t titleWidth, const std::string& cell,
                std::size_t columns, Charset charset, std::vector<std::string>& lines) {
  std::string head = title + padding(title, titleWidth);
  std::size_t indent = titleWidth;
  if (columns <= titleWidth || widestWordOf(cell) > columns - titleWidth) {
    lines.push_back(fitted(title, columns, charset));
    indent = std::min(kColumnGap, columns - 1);
    head.assign(indent, ' ');
  }
  const std::size_t room = columns - indent;
  std::vector<std::string> parts = cellLines(cell, room, charset);
  if (parts.empty()) parts.emplace_back();
  for (const std::string& part : parts) {
    lines.push_back(head + part);
    head.assign(indent, ' ');
  }
}

std::vector<std::string> stackedLines(const Row& titles, const std::vector<Row>& rows,
                                      std::size_t columns, Charset charset) {
  std::size_t titleWidth = 0;
  for (const std::string& title : titles) titleWidth = std::max(titleWidth, columnsOf(title));
  std::vector<std::string> lines;
  for (const Row& row : rows) {
    if (!lines.empty()) lines.emplace_back();
    for (std::size_t i = 0; i < row.size(); ++i) {
      appendCell(titles[i], titleWidth + kColumnGap, row[i], columns, charset, lines);
    }
  }
  return lines;
}

// How the last cell of each row is set, a text that makes the rows too wide.
struct Hanging {
  bool isBeside = false;  // behind the other cells; else below them
  std::size_t indent = 0;
};

// Nothing where the cells before it have no room themselves, or a word of a text has none.
std::optional<Hanging> hangingFor(const std::vector<Column>& titles, const std::vector<Row>& rows,
                                  const std::vector<std::size_t>& widths, std::size_t columns) {
  if (titles.size() < 2 || titles.back().toTheRight) return std::nullopt;
  std::size_t before = 0;
  for (std::size_t i = 0; i + 1 < widths.size(); ++i) before += widths[i] + kColumnGap;
  std::size_t word = 0;
  for (const Row& row : rows) word = std::max(word, widestWordOf(row.back()));
  if (columns >= before + std::max(word, kFewestLastColumns)) return Hanging{true, before};
  const bool isText = widths.back() > kLongestWord;
  const bool hasRoom = columns + kColumnGap >= before && columns >= kIndentBelow + word;
  return isText && hasRoom ? std::optional(Hanging{false, kIndentBelow}) : std::nullopt;
}

void appendHanging(const Row& row, const std::vector<Column>& titles,
                   const std::vector<std::size_t>& widths, const Hanging& hanging,
                   std::size_t columns, Charset charset, std::vector<std::string>& lines) {
  std::string head = lineOf({row.begin(), row.end() - 1}, titles, widths);
  const std::vector<std::string> parts = cellLines(row.back(), columns - hanging.indent, charset);
  if (!hanging.isBeside || parts.empty()) lines.push_back(std::exchange(head, ""));
  for (const std::string& part : parts) {
    head += padding(head, hanging.indent);
    lines.push_back(std::exchange(head, "").append(part));
  }
}

}  // namespace

std::vector<std::string> Table::lines(std::size_t columns, Charset charset) const {
  Row titles;
  for (const Column& column : columns_) titles.push_back(column.title);
  const std::vector<Row> rows = displayed(rows_, charset);
  const std::vector<std::size_t> widths = widthsOf(titles, rows);
  std::size_t width = kColumnGap * (widths.size() - 1);
  for (const std::size_t one : widths) width += one;
  std::vector<std::string> lines;
  if (columns != 0 && width > columns) {
    const std::optional<Hanging> hanging = hangingFor(columns_, rows, widths, columns);
    if (!hanging) return stackedLines(titles, rows, columns, charset);
    appendHanging(titles, columns_, widths, *hanging, columns, charset, lines);
    for (const Row& row : rows) {
      appendHanging(row, columns_, widths, *hanging, columns, charset, lines);
    }
    return lines;
  }
  lines.push_back(lineOf(titles, columns_, widths));
  for (const Row& row : rows) lines.push_back(lineOf(row, columns_, widths));
  return lines;
}

void showTable(const Table& table, const Screen& screen) {
  for (const std::string& line : table.lines(screen.columns, screen.charset)) {
    screen.out << line << '\n';
  }
  screen.out.flush();
}

}  // namespace kelvane::console
