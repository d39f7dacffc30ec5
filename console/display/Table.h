// A table of texts, fitted to the screen.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "console/display/DisplayText.h"
#include "console/display/Screen.h"

namespace kelvane::console {

struct Column {
  std::string title;
  bool toTheRight = false;  // numbers
};

class Table {
 public:
  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  // As many cells as there are columns, as the file has them.
  void addRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  bool isEmpty() const { return rows_.empty(); }

  // The titles and the rows, one line each. Where a line would be wider than `columns` (0: any
  // width will do) the last cell, if it is a text, is wrapped beside the others, or stands below
  // them. Where these have no room either, each cell begins a line of its own behind its title, the
  // rows parted by an empty line; it is wrapped, and stands below its title where a word has no
  // room beside it.
  std::vector<std::string> lines(std::size_t columns, Charset charset) const;

 private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

// Shows the table on the screen.
void showTable(const Table& table, const Screen& screen);

}  // namespace kelvane::console
