#include "console/report/Tables.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <unordered_set>

#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::string shown(const Value& value) {
  if (value.isNothing()) return {};
  if (value.isArray() || value.isDictionary()) return platform::printJsonLine(value).value_or("");
  return platform::describe(value);
}

// What is short, such as a date or permissions, stays on one line; a path may break anywhere.
const char* classOfCell(const std::string& text) {
  constexpr std::size_t kShort = 20;
  if (text.find('/') != std::string::npos) return "path";
  return text.size() <= kShort ? "short" : "long";
}

constexpr std::size_t kMostCellBytes = 1024;
constexpr std::size_t kMostColumns = 30;

void showCell(Html& page, const std::string& text, const std::string& name = {}) {
  page.element("td", text, {{"class", classOfCell(text)}}, {.name = name, .most = kMostCellBytes});
}

void showRowsHeading(Html& page, const std::string& text) {
  page.element("th", text, {{"scope", "row"}, {"class", classOfCell(text)}});
}

bool isListOfObjects(const Value& value) {
  if (!value.isArray() || value.count() == 0) return false;
  const auto& all = value.elements();
  return std::all_of(all.begin(), all.end(), [](const Value& one) { return one.isDictionary(); });
}

// In the order in which they come first.
std::vector<std::string> keysOf(const Value& list) {
  std::vector<std::string> keys;
  std::unordered_set<std::string_view> known;
  for (const Value& one : list.elements()) {
    for (const auto& [key, value] : one.entries()) {
      if (known.insert(key).second) keys.push_back(key);
    }
  }
  return keys;
}

void openTable(Html& page, const char* name) {
  page.open("div",
            {{"class", "wide"}, {"tabindex", "0"}, {"role", "region"}, {"aria-label", name}});
  page.open("table");
}

void closeTable(Html& page) {
  page.close();
  page.close();
}

void showRow(Html& page, std::size_t number, const Value& object,
             std::span<const std::string> keys) {
  page.open("tr");
  page.label("th", std::to_string(number), {{"scope", "row"}});
  for (const std::string& key : keys) showCell(page, shown(object.get(key)), key);
  page.close();
}

void showArray(Html& page, const char* name, const Value& list) {
  const std::vector<std::string> all = keysOf(list);
  const std::span<const std::string> keys =
      std::span(all).first(std::min(all.size(), kMostColumns));
  openTable(page, name);
  page.open("thead");
  page.open("tr");
  page.label("th", "No.", {{"scope", "col"}});
  for (const std::string& key : keys) {
    page.element("th", key, {{"scope", "col"}}, {.most = kMostCellBytes});
  }
  page.close();
  page.close();
  page.open("tbody");
  const std::size_t rows = std::min(list.count(), kMostRows);
  for (std::size_t i = 0; i < rows; ++i) showRow(page, i, list.at(i), keys);
  page.close();
  closeTable(page);
  tellLeftOut(page, all.size() - keys.size(), "other key is", "other keys are");
  tellLeftOut(page, list.count() - rows, "other is", "others are");
}

void showDictionary(Html& page, const char* name, const Value& object) {
  openTable(page, name);
  page.open("tbody");
  const std::size_t rows = std::min(object.entries().size(), kMostRows);
  for (std::size_t i = 0; i < rows; ++i) {
    const auto& [key, value] = object.entries()[i];
    page.open("tr");
    page.element("th", key, {{"scope", "row"}}, {.most = kMostCellBytes});
    showCell(page, shown(value), key);
    page.close();
  }
  page.close();
  closeTable(page);
  tellLeftOut(page, object.entries().size() - rows, "other key is", "other keys are");
}

}  // namespace

void openSection(Html& page, const char* id, const char* heading, std::size_t mostBytes) {
  page.open("section", {{"id", id}});
  page.label("h2", heading);
  page.giveRoom(mostBytes);
}

void tellLeftOut(Html& page, std::size_t count, const char* one, const char* many) {
  if (count == 0) return;
  std::string text = std::to_string(count);
  page.label("p", text.append(" ").append(count == 1 ? one : many).append(" left out."));
}

HtmlTable::HtmlTable(Html& page, const char* name, const std::vector<const char*>& titles)
    : page_(page) {
  openTable(page_, name);
  page_.open("thead");
  page_.open("tr");
  for (const char* title : titles) page_.label("th", title, {{"scope", "col"}});
  page_.close();
  page_.close();
  page_.open("tbody");
}

HtmlTable::~HtmlTable() {
  page_.close();
  closeTable(page_);
}

void HtmlTable::addRow(const std::vector<std::string>& cells) {
  page_.open("tr");
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i == 0) {
      showRowsHeading(page_, cells[i]);
    } else {
      showCell(page_, cells[i]);
    }
  }
  page_.close();
}

void showPairs(Html& page, const std::vector<std::pair<const char*, std::string>>& pairs) {
  page.open("dl");
  for (const auto& [label, text] : pairs) {
    if (text.empty()) continue;
    page.label("dt", label);
    page.element("dd", text);
  }
  page.close();
}

void showValue(Html& page, const char* name, const Value& value) {
  if (isListOfObjects(value)) {
    showArray(page, name, value);
  } else if (value.isDictionary() && !value.entries().empty()) {
    showDictionary(page, name, value);
  } else {
    page.element("p", shown(value));
  }
}

}  // namespace kelvane::console
