#include "console/commands/Given.h"

#include <stdexcept>

namespace kelvane::console {

void Given::declare(const std::string& name) { values_[name]; }

void Given::set(const std::string& name, const Values& values) { values_[name] = values; }

void Given::addFrom(const Given& other) {
  for (const auto& [name, values] : other.values_) {
    Values& own = values_[name];
    own.insert(own.begin(), values.begin(), values.end());
  }
}

void Given::fallBack(const std::string& name, const std::string& value) {
  if (has(name)) return;
  values_[name] = {value};
  fallbacks_.insert(name);
}

bool Given::knows(const std::string& name) const { return values_.count(name) != 0; }

bool Given::has(const std::string& name) const { return !texts(name).empty(); }

std::string Given::text(const std::string& name, const std::string& otherwise) const {
  const Values& values = texts(name);
  return values.empty() ? otherwise : values.front();
}

const Given::Values& Given::texts(const std::string& name) const {
  const auto found = values_.find(name);
  if (found == values_.end()) throw std::out_of_range("the sub-command does not declare " + name);
  return found->second;
}

bool Given::isOnTheLine(const std::string& name) const {
  return has(name) && fallbacks_.count(name) == 0;
}

}  // namespace kelvane::console
