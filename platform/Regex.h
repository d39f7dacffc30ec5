// Regular expressions with Unicode word characters, and numbers at the start of a text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kelvane::platform {

// A pattern, compiled once for any number of texts. "." is any character but a line end. Not
// thread-safe.
class Regex {
 public:
  // Raises where the text is no pattern.
  explicit Regex(const std::string& pattern);
  ~Regex();
  Regex(const Regex&) = delete;
  Regex& operator=(const Regex&) = delete;

  // The groups of the first match anywhere in the text, which is UTF-8, the whole match first;
  // nothing where there is none.
  std::optional<std::vector<std::string>> firstMatch(const std::string& text) const;

 private:
  struct Compiled;
  std::unique_ptr<Compiled> compiled_;
};

// Leading blanks skipped, an optional sign, digits as far as they go; 0 where there are none, held
// at the 64-bit limits.
std::int64_t leadingInteger(const std::string& text);

}  // namespace kelvane::platform
