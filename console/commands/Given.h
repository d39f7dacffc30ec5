// What was given on the command line: values of options and arguments, by the last of their names.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace kelvane::console {

class Given {
 public:
  using Values = std::vector<std::string>;

  // Makes the name known; nothing was given for it yet.
  void declare(const std::string& name);
  // A flag that was given has a value, too, whichever.
  void set(const std::string& name, const Values& values);
  // Takes what was given there, too: values of one name stand before those that it has here.
  void addFrom(const Given& other);
  // What the environment has, where nothing was given.
  void fallBack(const std::string& name, const std::string& value);

  bool knows(const std::string& name) const;

  // All three raise std::out_of_range for a name that is not known.
  bool has(const std::string& name) const;
  // The first value, or what stands in where none was given.
  std::string text(const std::string& name, const std::string& otherwise = {}) const;
  const Values& texts(const std::string& name) const;
  // Whether that was given on the command line, not by the environment alone.
  bool isOnTheLine(const std::string& name) const;

 private:
  std::map<std::string, Values> values_;
  std::set<std::string> fallbacks_;
};

}  // namespace kelvane::console
