#include "console/display/Packages.h"

#include <array>
#include <charconv>

#include "contract/Catalogue.h"
#include "contract/JobFile.h"
#include "platform/File.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::string textOf(const Value& value) {
  if (value.isString()) return value.string();
  return value.isNumber() ? value.digits() : "-";
}

// In decimal units, as disks are sold: "1.2 GB". What is no number stands as it is.
std::string sizeText(const Value& size) {
  if (!size.isNumber()) return textOf(size);
  const char* const units[] = {"kB", "MB", "GB", "TB"};
  auto amount = static_cast<double>(size.integerValue());
  if (amount < 1000) return textOf(size) + " B";
  const char* unit = "";
  for (const char* next : units) {
    if (amount < 1000) break;
    amount /= 1000;
    unit = next;
  }
  std::array<char, 32> digits;  // of numbers below 1000 and of the largest number of terabytes
  const auto end = std::to_chars(digits.begin(), digits.end(), amount, std::chars_format::fixed, 1);
  return std::string(digits.data(), end.ptr) + " " + unit;
}

std::string fileName(const Value& codebase) {
  const std::string url = textOf(codebase);
  return url.substr(url.rfind('/') + 1);
}

const char* presence(const Value& path, bool isCopy) {
  if (!path.isString() || path.string().empty()) return "no";
  if (isCopy) return "?";
  return platform::exists(path.string()) ? "yes" : "no";
}

}  // namespace

Table offeredPackages(const Value& rules) {
  Table table({{"Product"}, {"Version"}, {"Size", true}, {"System"}, {"Package"}});
  for (const Value& rule : rules.elements()) {
    if (!rule.isDictionary()) continue;
    table.addRow({textOf(rule.get(catalogue::kProductId)), textOf(rule.get(catalogue::kVersion)),
                  sizeText(rule.get(catalogue::kSize)), textOf(rule.get(catalogue::kMinimumOs)),
                  fileName(rule.get(catalogue::kCodebase))});
  }
  return table;
}

Table downloadedPackages(const Value& descriptions, bool isCopy) {
  Table table({{"Product"}, {"Version"}, {"Size", true}, {"Present"}, {"Path"}});
  for (const Value& description : descriptions.elements()) {
    if (!description.isDictionary()) continue;
    const Value& path = description.get(job::kFilePath);
    table.addRow({textOf(description.get(job::kProductId)), textOf(description.get(job::kVersion)),
                  sizeText(description.get(job::kSize)), presence(path, isCopy), textOf(path)});
  }
  return table;
}

void showPackages(const Value& record, const Screen& screen, bool isCopy) {
  const Value& output = record.get(job::kOutput);
  const Value& command = record.get(job::kJobId);
  if (!output.isArray() || record.get(job::kStateId) != Value(job::kFree)) return;
  if (command == Value(job::kGetOnlineUpdateData)) showTable(offeredPackages(output), screen);
  if (command == Value(job::kDownloadOnlineUpdateFile)) {
    showTable(downloadedPackages(output, isCopy), screen);
  }
}

}  // namespace kelvane::console
