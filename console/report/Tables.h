// Tables and sections of a page.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "console/report/Html.h"
#include "platform/Value.h"

namespace kelvane::console {

// A section with its heading of the second level, to be closed; `id` is what the contents lead to.
// The texts of files in it take so many bytes at the most.
inline constexpr std::size_t kMostSectionBytes = 256UL * 1024;
void openSection(Html& page, const char* id, const char* heading,
                 std::size_t mostBytes = kMostSectionBytes);

// Of longer lists and tables the rest is left out, and that is said.
inline constexpr std::size_t kMostRows = 200;
// Says how many are left out, "12 others are left out."; nothing where there are none.
void tellLeftOut(Html& page, std::size_t count, const char* one, const char* many);

// A table of texts; the first cell of each row is its heading. A wide one scrolls within itself.
class HtmlTable {
 public:
  HtmlTable(Html& page, const char* name, const std::vector<const char*>& titles);
  HtmlTable(const HtmlTable&) = delete;
  HtmlTable& operator=(const HtmlTable&) = delete;
  ~HtmlTable();

  void addRow(const std::vector<std::string>& cells);

 private:
  Html& page_;
};

// Labels with their texts, those without a text left out.
void showPairs(Html& page, const std::vector<std::pair<const char*, std::string>>& pairs);

// A value of a file: objects and lists of objects as tables, in bounds; others as text.
void showValue(Html& page, const char* name, const platform::Value& value);

}  // namespace kelvane::console
