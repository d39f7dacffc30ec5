#include "console/display/Table.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "console/display/Wrapping.h"

namespace kelvane::console {
namespace {

using Row = std::vector<std::string>;

constexpr std::size_t kColumnGap = 2;
constexpr std::size_t kMostCellLines = 10;

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

bool holdsWordWiderThan(const std::string& text, std::size_t columns) {
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    if (columnsOf(word) > columns) return true;
  }
  return false;
}

// A cell behind its title, which `titleWidth` columns are for; where a word of it has no room
// there, such as a WWN, which is to be read and copied whole, below the title.
void appendCell(const std::string& title, std::size_t titleWidth, const std::string& cell,
                std::size_t columns, Charset charset, std::vector<std::string>& lines) {
  std::string head = title + padding(title, titleWidth);
  std::size_t indent = titleWidth;
  if (columns <= titleWidth || holdsWordWiderThan(cell, columns - titleWidth)) {
    lines.push_back(fitted(title, columns, charset));
    indent = std::min(kColumnGap, columns - 1);
    head.assign(indent, ' ');
  }
  const std::size_t room = columns - indent;
  std::vector<std::string> parts = wrapped(fitted(cell, room * kMostCellLines, charset), room);
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

}  // namespace

std::vector<std::string> Table::lines(std::size_t columns, Charset charset) const {
  Row titles;
  for (const Column& column : columns_) titles.push_back(column.title);
  const std::vector<Row> rows = displayed(rows_, charset);
  const std::vector<std::size_t> widths = widthsOf(titles, rows);
  std::size_t width = kColumnGap * (widths.size() - 1);
  for (const std::size_t one : widths) width += one;
  if (columns != 0 && width > columns) return stackedLines(titles, rows, columns, charset);
  std::vector<std::string> lines = {lineOf(titles, columns_, widths)};
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
