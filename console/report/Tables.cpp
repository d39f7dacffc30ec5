#include "console/report/Tables.h"

#include <algorithm>

#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::string textOf(const Value& value) {
  if (value.isNothing()) return {};
  if (value.isArray() || value.isDictionary()) return platform::printJsonLine(value).value_or("");
  return platform::describe(value);
}

// What is short, such as a date or permissions, stays on one line; a path may break anywhere.
const char* classOf(const std::string& text) {
  constexpr std::size_t kShort = 20;
  if (text.find('/') != std::string::npos) return "path";
  return text.size() <= kShort ? "short" : "long";
}

void showCell(Html& page, const std::string& text) {
  page.element("td", text, {{"class", classOf(text)}});
}

void showRowsHeading(Html& page, const std::string& text) {
  page.element("th", text, {{"scope", "row"}, {"class", classOf(text)}});
}

bool isListOfObjects(const Value& value) {
  if (!value.isArray() || value.count() == 0) return false;
  const auto& all = value.elements();
  return std::all_of(all.begin(), all.end(), [](const Value& one) { return one.isDictionary(); });
}

// In the order in which they come first.
std::vector<std::string> keysOf(const Value& list) {
  std::vector<std::string> keys;
  for (const Value& one : list.elements()) {
    for (const auto& [key, value] : one.entries()) {
      if (std::find(keys.begin(), keys.end(), key) == keys.end()) keys.push_back(key);
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

void showList(Html& page, const char* name, const Value& list) {
  const std::vector<std::string> keys = keysOf(list);
  openTable(page, name);
  page.open("thead");
  page.open("tr");
  page.label("th", "No.", {{"scope", "col"}});
  for (const std::string& key : keys) page.element("th", key, {{"scope", "col"}});
  page.close();
  page.close();
  page.open("tbody");
  std::size_t number = 0;
  for (const Value& one : list.elements()) {
    page.open("tr");
    page.label("th", std::to_string(number++), {{"scope", "row"}});
    for (const std::string& key : keys) showCell(page, textOf(one.get(key)));
    page.close();
  }
  page.close();
  closeTable(page);
}

void showObject(Html& page, const char* name, const Value& object) {
  openTable(page, name);
  page.open("tbody");
  for (const auto& [key, value] : object.entries()) {
    page.open("tr");
    page.element("th", key, {{"scope", "row"}});
    showCell(page, textOf(value));
    page.close();
  }
  page.close();
  closeTable(page);
}

}  // namespace

void openSection(Html& page, const char* id, const char* heading) {
  page.open("section", {{"id", id}});
  page.label("h2", heading);
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
    showList(page, name, value);
  } else if (value.isDictionary() && !value.entries().empty()) {
    showObject(page, name, value);
  } else {
    page.element("p", textOf(value));
  }
}

}  // namespace kelvane::console
