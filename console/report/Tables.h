// Tables and sections of a page.
#pragma once

#include <string>
#include <vector>

#include "console/report/Html.h"
#include "platform/Value.h"

namespace kelvane::console {

// A section with its heading of the second level, to be closed; `id` is what the contents lead to.
void openSection(Html& page, const char* id, const char* heading);

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

// A value of a file: objects and lists of objects as tables, others as text.
void showValue(Html& page, const char* name, const platform::Value& value);

}  // namespace kelvane::console
