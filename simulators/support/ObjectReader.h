// Reading an object of a JSON file key by key, strictly: every complaint names the key.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/Value.h"

namespace kelvane::simulator {

// The object that a JSON file holds. Raises where the file cannot be read or holds something else.
platform::Value readJsonObject(const std::string& path);

// All readers raise where the key's value is of another type or out of range, and, those without a
// fallback, where the key is missing.
class ObjectReader {
 public:
  // `where` is how complaints call the object, empty for the file's top level.
  ObjectReader(const platform::Value& object, std::string where);

  std::string text(const std::string& key);
  std::string text(const std::string& key, const std::string& fallback);
  // One of the choices; the first is the fallback where there is to be one.
  std::size_t choice(const std::string& key, const std::vector<std::string>& choices,
                     bool required);
  std::uint64_t code(const std::string& key, std::uint64_t most);
  std::uint64_t code(const std::string& key, std::uint64_t most, std::uint64_t fallback);
  std::optional<double> duration(const std::string& key);
  double percent(const std::string& key);
  // A whole number; 0 where it is missing.
  std::uint64_t number(const std::string& key, std::uint64_t most);
  bool truth(const std::string& key);  // false where it is missing
  // A list of texts; a missing one is empty.
  std::vector<std::string> texts(const std::string& key);
  // An object, nothing where it is missing; what is in it is the caller's to check.
  const platform::Value& object(const std::string& key);
  // Calls `read` with a reader for each object of the list; a missing list is an empty one.
  void each(const std::string& key, const std::function<void(ObjectReader&)>& read);

  bool has(const std::string& key) const { return object_.has(key); }
  // How complaints call the key's value.
  std::string nameOf(const std::string& key) const;
  // Complains about the key.
  [[noreturn]] void refuse(const std::string& key, const std::string& complaint) const;
  // To be called last: complains about a key that nobody has asked for. "note" is for everybody.
  void finish() const;

 private:
  const platform::Value& take(const std::string& key);

  const platform::Value& object_;
  std::string where_;
  std::set<std::string> known_{"note"};
};

}  // namespace kelvane::simulator
