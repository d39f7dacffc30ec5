// Which rule of a catalogue is the package for a product, told apart from the worker and of plain
// data; and what follows of it for a download's descriptions.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Value.h"

namespace kelvane::fuzz {

// A value of a rule: of a string its text, of a number its digits, of a date its seconds.
struct PlainField {
  platform::Value::Kind kind;
  std::string text;
};
// Nothing where it is no dictionary.
using PlainRule = std::optional<std::map<std::string, PlainField>>;

// Of a catalogue's rules; none where they are no array.
std::vector<PlainRule> plainRules(const platform::Value& rules);

struct Choice {
  enum class Kind { none, one, untold };  // untold: by texts beyond ASCII, or what is no number
  Kind kind = Kind::none;
  std::size_t rule = 0;
};
Choice chosenRule(const std::vector<PlainRule>& rules, const std::string& product,
                  const std::string& software, const std::array<std::int64_t, 3>& running);

// The path that the description of each product has, an empty one where nothing is there, none
// where it stays without. `rules` are the chosen ones, empty where none was; fewer paths than
// products where one of them cannot be described. Of products of kProductSettings.
std::vector<std::optional<std::string>> describedPaths(
    const std::vector<std::string>& products, const std::vector<PlainRule>& rules,
    const std::string& folder, const std::function<bool(const std::string&)>& exists);

}  // namespace kelvane::fuzz
