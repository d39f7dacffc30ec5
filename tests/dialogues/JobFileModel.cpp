#include "tests/dialogues/JobFileModel.h"

#include <map>

namespace kelvane::dialogues {
namespace {

bool isBare(const std::string& text) {
  static constexpr char kBare[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  return !text.empty() && text.find_first_not_of(kBare) == std::string::npos;
}

// Inside a container; of the texts of these dialogues none holds what would have to be escaped.
std::string inside(const std::string& text) { return isBare(text) ? text : '"' + text + '"'; }

std::string element(const Json& value, int level) {
  if (value.is_structured()) return shown(value, level);
  return inside(value.is_string() ? value.get<std::string>() : value.dump());
}

}  // namespace

std::string shown(const Json& value, int level) {
  if (value.is_string()) return value.get<std::string>();
  const std::string margin(4 * static_cast<std::size_t>(level), ' ');
  const std::string line = "\n" + margin + "    ";
  std::string text = margin;
  if (value.is_array()) {
    const char* before = "(";
    for (const Json& each : value) {
      text.append(before).append(line).append(element(each, level + 1));
      before = ",";
    }
    if (value.empty()) text += '(';
    return text.append("\n").append(margin).append(")");
  }
  std::map<std::string, const Json*> sorted;
  for (const auto& [key, each] : value.items()) sorted[key] = &each;
  text += '{';
  for (const auto& [key, each] : sorted) {
    text.append(line).append(inside(key)).append(" = ");
    text.append(element(*each, level + 1)).append(";");
  }
  return text.append("\n").append(margin).append("}");
}

void setAll(Json& dictionary, const Json& changes) {
  for (const auto& [key, value] : changes.items()) dictionary[key] = value;
}

}  // namespace kelvane::dialogues
